# Libraries that are installed on the machine, found once, under one name each.
set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)
find_package(ZLIB REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(Boost 1.81 REQUIRED)
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(fmt REQUIRED)

find_path(FAST_FLOAT_INCLUDE_DIR fast_float/fast_float.h REQUIRED)
add_library(fast_float INTERFACE)
target_include_directories(fast_float SYSTEM INTERFACE ${FAST_FLOAT_INCLUDE_DIR})

if(QV_BUILD_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()
