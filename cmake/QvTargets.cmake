# One room, one target. All rooms see the project's folder, so that files are included by the path at which they are;
# a room may include the rooms that its target uses, which scripts/check-includes checks.

# qv_add_room(<target> SOURCES <files> [USES <targets>] [PRIVATE <targets>])
# The static library of the current folder. USES are the rooms below it, PRIVATE what only its own sources need.
function(qv_add_room target)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES;PRIVATE" ${ARGN})
  add_library(${target} STATIC ${ARG_SOURCES})
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PUBLIC ${ARG_USES} PRIVATE ${ARG_PRIVATE})
  target_compile_definitions(${target} INTERFACE QVNETCALL_STATIC)
  qv_note_room(${target})
endfunction()

# qv_add_program(<name> SOURCES <files> [USES <targets>] [PRIVATE <targets>]): a program that is installed.
function(qv_add_program target)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES;PRIVATE" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE ${ARG_USES} ${ARG_PRIVATE})
  qv_speaks_utf8(${target})
  qv_note_room(${target})
  install(TARGETS ${target})
endfunction()

# Records the folder of a target and what it uses.
function(qv_note_room target)
  cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_VARIABLE folder)
  list(JOIN ARG_USES " " uses)
  list(JOIN ARG_PRIVATE " " private)
  set_property(GLOBAL APPEND PROPERTY QV_ROOMS "${target} ${folder} USES ${uses} PRIVATE ${private}")
endfunction()

# qv_write_rooms(<file>): writes what was recorded, for scripts/check-includes.
function(qv_write_rooms file)
  get_property(rooms GLOBAL PROPERTY QV_ROOMS)
  list(JOIN rooms "\n" lines)
  file(WRITE ${file} "${lines}\n")
endfunction()

# qv_add_shared_library(<name> WHOLE <targets> [TRANSPORTS <targets>] [HIDDEN <targets>] [BESIDE_PROGRAMS])
# A library that is installed: WHOLE targets are linked completely, HIDDEN ones on demand and without exporting them.
# BESIDE_PROGRAMS puts it where hosts look for libraries that they load at run time.
function(qv_add_shared_library target)
  cmake_parse_arguments(ARG "BESIDE_PROGRAMS" "" "WHOLE;TRANSPORTS;HIDDEN" ${ARGN})
  file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp "// The code of the library is in the rooms that it links.\n")
  # Their objects, not their archives: the rooms link each other as well, and an archive must not be on a link line both
  # whole and on demand.
  list(TRANSFORM ARG_WHOLE REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE objects)
  add_library(${target} SHARED ${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp ${objects})
  if(WIN32)
    set_target_properties(${target} PROPERTIES PREFIX "")
  endif()
  target_link_libraries(${target} PRIVATE ${ARG_WHOLE} ${ARG_HIDDEN} ${ARG_TRANSPORTS} INTERFACE qv_headers)
  foreach(hidden IN LISTS ARG_HIDDEN)
    target_link_options(${target} PRIVATE "LINKER:--exclude-libs,lib${hidden}.a")
  endforeach()
  if(ARG_BESIDE_PROGRAMS)
    set_target_properties(${target} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
    install(TARGETS ${target} LIBRARY DESTINATION ${CMAKE_INSTALL_BINDIR})
  else()
    install(TARGETS ${target})
  endif()
endfunction()

# qv_export_only(<library> <map> [STAYS])
# Makes <library> export only what <map> names. A library that STAYS is never unloaded.
function(qv_export_only target map)
  cmake_parse_arguments(ARG "STAYS" "" "" ${ARGN})
  if(WIN32)
    if(ARG_STAYS)
      target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/base/platform/windows/StaysLoaded.cpp)
    endif()
    return()
  endif()
  target_link_options(${target} PRIVATE "LINKER:--version-script,${map}" $<$<BOOL:${ARG_STAYS}>:LINKER:-z,nodelete>)
  set_target_properties(${target} PROPERTIES LINK_DEPENDS ${map})
endfunction()

# qv_speaks_utf8(<program>): makes UTF-8 the narrow code page of a program, as it is off Windows.
function(qv_speaks_utf8 target)
  if(WIN32)
    target_sources(${target} PRIVATE ${PROJECT_BINARY_DIR}/Utf8.rc)
  endif()
endfunction()

# qv_add_test(<name> SOURCES <files> LINKS <targets> [TOGETHER] [THREADS] [CODE_PAGES <numbers>]
#   [NOT_ON_WINDOWS <cases>])
# One GoogleTest program. ctest knows its cases and runs each in a process of its own; TOGETHER runs them all in one
# process, if they share something that takes long to start. THREADS labels them "threads": the thread sanitizer's stage
# builds the target thread_tests and runs those. CODE_PAGES are the code pages, besides UTF-8, in which the cases run on
# Windows as well, because hosts there use them. NOT_ON_WINDOWS leaves out cases that depend on other systems.
function(qv_add_test target)
  cmake_parse_arguments(ARG "TOGETHER;THREADS" "" "SOURCES;LINKS;CODE_PAGES;NOT_ON_WINDOWS" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE ${ARG_LINKS} GTest::gmock GTest::gtest_main)
  target_compile_definitions(${target} PRIVATE _GLIBCXX_ASSERTIONS)
  qv_speaks_utf8(${target})
  set(labels "")
  if(ARG_THREADS)
    set(labels LABELS threads)
    if(NOT TARGET thread_tests)
      add_custom_target(thread_tests)
    endif()
    add_dependencies(thread_tests ${target})
  endif()
  set(filter "")
  set(arguments "")
  if(WIN32 AND ARG_NOT_ON_WINDOWS)
    list(JOIN ARG_NOT_ON_WINDOWS ":" left_out)
    set(filter -${left_out})
    set(arguments --gtest_filter=${filter})
  endif()
  # Under an emulator, starting a program for each case takes too long.
  if(ARG_TOGETHER OR CMAKE_CROSSCOMPILING)
    add_test(NAME ${target} COMMAND ${target} ${arguments})
    set_tests_properties(${target} PROPERTIES TIMEOUT 300 ${labels})
    if(WIN32 AND CMAKE_CROSSCOMPILING)
      foreach(page IN LISTS ARG_CODE_PAGES)
        qv_test_in_code_page(${target} ${page} ${arguments})
      endforeach()
    endif()
  else()
    gtest_discover_tests(${target} TEST_FILTER "${filter}" PROPERTIES TIMEOUT 120 ${labels} DISCOVERY_TIMEOUT 60)
  endif()
endfunction()

# qv_test_in_code_page(<test> <number> [<argument>...]): the same cases in another code page, as <test>.<number>. Wine
# takes it from the locale, which scripts/cross-deps made; a program that speaks UTF-8 does so everywhere, hence another
# program of the same objects.
function(qv_test_in_code_page test page)
  set(locale_936 zh_CN.UTF-8)
  set(target ${test}.${page})
  add_executable(${target} $<FILTER:$<TARGET_OBJECTS:${test}>,EXCLUDE,[.]res$>
    ${PROJECT_SOURCE_DIR}/tests/support/windows/CodePage.cpp)
  target_compile_definitions(${target} PRIVATE QV_CODE_PAGE=${page})
  target_link_libraries(${target} PRIVATE $<TARGET_PROPERTY:${test},LINK_LIBRARIES>)
  add_dependencies(${target} ${test})
  set_target_properties(${target} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY $<TARGET_PROPERTY:${test},RUNTIME_OUTPUT_DIRECTORY>)
  add_test(NAME ${target} COMMAND ${target} ${ARGN})
  # Both may use the same folders and registry entries.
  set_tests_properties(${test} ${target} PROPERTIES TIMEOUT 300 RESOURCE_LOCK ${test})
  set_tests_properties(${target} PROPERTIES
    ENVIRONMENT "LC_ALL=${locale_${page}};LOCPATH=${QV_CROSS_DEPS}/locale")
endfunction()
