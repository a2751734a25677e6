// Reasons of failures, and a way to cancel calls, in the transport libraries that are built here.
// They are extensions: other transports need not have them, so a program that can do without them
// looks the functions up by name at run time. QvNetCall4 does, and gives hosts the same as
// CRvoServer::GetLastErrorText and CRvoCancel.
#pragma once

#include "qvnetcall/Export.h"

extern "C" {

// Return the class of the error (qv::error in qvnetcall/ResultCodes.h) of the last call that this
// thread made to NetworkTransMsg or HttpworkTransMsg, or 0 if that call was delivered and its reply
// carries no reason. A reply may carry the reason for which the server refused the request; the
// call's result is 0 then. Copy the text of the error to `text`, a buffer of the caller of `size`
// bytes, in the code page of the program, cut between two characters and ended by a NUL. The text
// has at most 1000 bytes and no control characters. `text` may be null. A call that reads or sets a
// parameter of the transport leaves the error as it is.
QVNETCALL_API int NetworkTransLastError(char* text, int size);
QVNETCALL_API int HttpworkTransLastError(char* text, int size);

// Make the transport ask `is_cancelled`, with `context`, during the calls that this thread makes
// from now on; null ends this. Each thread has its own function. A call whose function returns
// another value than 0 ends: with -1 if no byte of the request was sent, else with -2, and the
// class of its error is qv::error::kCancelled. It is asked at least every 20 ms while a call waits,
// after each report of progress, and not after the call has returned. It runs on the thread of the
// call: it must be quick, must not throw and must not call the transport. The server is not told,
// but notices that the connection is closed, which a cancelled call always does.
QVNETCALL_API void NetworkTransSetCancel(int (*is_cancelled)(void* context), void* context);
QVNETCALL_API void HttpworkTransSetCancel(int (*is_cancelled)(void* context), void* context);
}
