// What a shared library shows: QVNETCALL_API before a class or function makes it visible to hosts.
#pragma once

#if defined(_WIN32)
#if defined(QVNETCALL_BUILDING)
#define QVNETCALL_API __declspec(dllexport)
#else
#define QVNETCALL_API __declspec(dllimport)
#endif
#else
#define QVNETCALL_API __attribute__((visibility("default")))
#endif
