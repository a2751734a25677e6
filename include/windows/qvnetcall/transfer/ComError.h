// How a transfer component says that a call failed as such: in the system's own words, _com_error.
#pragma once

#include <windows.h>
// Behind it.
#include <comdef.h>
