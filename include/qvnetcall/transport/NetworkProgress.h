// Progress of long calls over the transport libraries that are built here. It is an extension:
// other transports need not have it, so a program that can do without it looks the functions up by
// name at run time.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

extern "C" {

// What a report is about.
enum NetworkProgressKind : int {
  NetworkProgress_Message = 0,  // the fields of a request or reply; one report for each, at its end
  NetworkProgress_File = 1,     // the file that follows; about every MiB, and at its end
  // The server is still at work; about once per second. `done` and `total` are both the
  // milliseconds that it has been at it.
  NetworkProgress_Working = 2,
};

// Receives the report that `done` of `total` bytes were sent or received; `kind` is one of
// NetworkProgressKind. Runs on the thread that made the call, during that call: it must be quick,
// must not throw and must not call the transport. It may make the call end, by having the function
// that was passed to NetworkTransSetCancel or HttpworkTransSetCancel return another value.
typedef void (*NetworkProgress)(std::uint64_t done, std::uint64_t total, int kind, void* context);

// Make the transport call `callback`, with `context`, for the messages that the calling thread
// sends from now on; null ends this. Each thread has its own callback.
QVNETCALL_API void NetworkTransSetProgress(NetworkProgress callback, void* context);
QVNETCALL_API void HttpworkTransSetProgress(NetworkProgress callback, void* context);
}
