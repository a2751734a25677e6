// QVNETCALL_API before a class or function makes it visible outside the shared library.
// QVNETCALL_BUILDING is defined while the library's own code is compiled, QVNETCALL_STATIC for a
// program that links that code directly instead of the shared library.
#pragma once

#if defined(_WIN32)
#if defined(QVNETCALL_BUILDING)
#define QVNETCALL_API __declspec(dllexport)
#elif defined(QVNETCALL_STATIC)
#define QVNETCALL_API
#else
#define QVNETCALL_API __declspec(dllimport)
#endif
#else
#define QVNETCALL_API __attribute__((visibility("default")))
#endif
