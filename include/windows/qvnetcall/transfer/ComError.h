// How a transfer component reports that a call as such failed: by the _com_error of the compiler's
// COM support. It carries the HRESULT and, if the component provides error information, that
// information, which includes the interface.
#pragma once

#include <comdef.h>
