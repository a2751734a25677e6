// What a shared library shows: QVNETCALL_API before a class or function makes it visible to hosts.
// QVNETCALL_BUILDING is defined for the library's own code, QVNETCALL_STATIC for a program that
// links that code without the library around it.
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
