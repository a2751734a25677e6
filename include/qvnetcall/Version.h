// The version of the library that these headers belong to. The build reads it from this file; of
// all other files only vcpkg.json repeats it, and a test compares the two.
#pragma once

#define QVNETCALL_VERSION_MAJOR 4
#define QVNETCALL_VERSION_MINOR 0
#define QVNETCALL_VERSION_PATCH 0

// The three numbers as one text.
#define QVNETCALL_VERSION_TEXT "4.0.0"
