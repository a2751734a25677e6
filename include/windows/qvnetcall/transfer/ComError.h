// How a transfer component says that a call failed as such: with _com_error as the compiler's COM
// support has it. It carries the HRESULT, and what the component says about the failure, its
// interface included, when it is one that says anything.
#pragma once

#include <comdef.h>
