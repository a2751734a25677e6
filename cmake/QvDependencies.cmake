# Libraries that are installed on the machine, found once, under one name each.
set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)
find_package(ZLIB REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(CURL 7.88 REQUIRED)
find_package(ODBC REQUIRED)
find_package(Boost 1.81 REQUIRED)
if(WIN32)
  # Boost uses the sockets of the system.
  target_link_libraries(Boost::headers INTERFACE ws2_32 mswsock)
endif()
if(MINGW)
  # Otherwise Asio decides by what was included before it, and differs between the sources of one program.
  target_compile_definitions(Boost::headers INTERFACE BOOST_ASIO_HAS_PTHREADS=1)
endif()
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(fmt REQUIRED)
if(NOT WIN32)
  # For the transfer components, which are not built for Windows.
  find_package(OpenSSL REQUIRED)
  find_package(pugixml REQUIRED)
  # With it, the stand-in server talks to PostgreSQL without a driver in between, which is several times as fast.
  find_package(PostgreSQL)
endif()

find_path(FAST_FLOAT_INCLUDE_DIR fast_float/fast_float.h REQUIRED)
add_library(fast_float INTERFACE)
target_include_directories(fast_float SYSTEM INTERFACE ${FAST_FLOAT_INCLUDE_DIR})

# Not by its own package file, which requires the command-line tools to be installed as well.
find_path(LIBZIP_INCLUDE_DIR zip.h REQUIRED)
find_library(LIBZIP_LIBRARY zip REQUIRED)
add_library(libzip UNKNOWN IMPORTED)
set_target_properties(libzip PROPERTIES IMPORTED_LOCATION ${LIBZIP_LIBRARY}
  INTERFACE_INCLUDE_DIRECTORIES ${LIBZIP_INCLUDE_DIR} INTERFACE_LINK_LIBRARIES ZLIB::ZLIB)

# Its package file differs from system to system.
find_path(LIBDEFLATE_INCLUDE_DIR libdeflate.h REQUIRED)
find_library(LIBDEFLATE_LIBRARY NAMES deflate deflatestatic REQUIRED)
add_library(libdeflate UNKNOWN IMPORTED)
set_target_properties(libdeflate PROPERTIES IMPORTED_LOCATION ${LIBDEFLATE_LIBRARY}
  INTERFACE_INCLUDE_DIRECTORIES ${LIBDEFLATE_INCLUDE_DIR})

# Debian's package has no package file.
find_path(UTF8PROC_INCLUDE_DIR utf8proc.h REQUIRED)
find_library(UTF8PROC_LIBRARY NAMES utf8proc utf8proc_static REQUIRED)
add_library(utf8proc UNKNOWN IMPORTED)
set_target_properties(utf8proc PROPERTIES IMPORTED_LOCATION ${UTF8PROC_LIBRARY}
  INTERFACE_INCLUDE_DIRECTORIES ${UTF8PROC_INCLUDE_DIR})
if(WIN32)
  # Without it, the header takes the library for a DLL. One that is a DLL still links.
  target_compile_definitions(utf8proc INTERFACE UTF8PROC_STATIC)
endif()

if(QV_BUILD_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()

if(MINGW)
  # The compiler's run-time libraries, beside the programs and libraries, as on every machine where these are installed.
  foreach(runtime IN ITEMS libstdc++-6 libgcc_s_seh-1 libwinpthread-1 zlib1)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime}.dll
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    list(APPEND QV_RUNTIME_LIBRARIES ${file})
  endforeach()
  file(COPY ${QV_RUNTIME_LIBRARIES} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  install(PROGRAMS ${QV_RUNTIME_LIBRARIES} DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
