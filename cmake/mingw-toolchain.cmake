# Builds for 64-bit Windows with Debian's MinGW-w64 (g++-mingw-w64-x86-64-posix), against what scripts/cross-deps made.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(QV_CROSS_DEPS ${CMAKE_CURRENT_LIST_DIR}/../build/cross-deps CACHE PATH "Where scripts/cross-deps installed")
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES QV_CROSS_DEPS)

# The variant with POSIX threads: the other one has no std::thread.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Libraries and headers come from these folders, never from those of this machine.
cmake_path(NORMAL_PATH QV_CROSS_DEPS)
set(CMAKE_FIND_ROOT_PATH ${QV_CROSS_DEPS} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Windows 10, for all headers alike.
add_compile_definitions(_WIN32_WINNT=0x0A00 WINVER=0x0A00 NOMINMAX WIN32_LEAN_AND_MEAN)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/under-wine)
