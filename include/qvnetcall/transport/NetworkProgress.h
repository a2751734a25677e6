// An extension of the socket transport library that is built here: progress of long transfers.
// Another transport need not have it, so a program that can do without looks it up by name at run
// time.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

extern "C" {

// What a report is about.
enum NetworkProgressKind : int {
  NetworkProgress_Message = 0,  // the fields of a request or reply, once each is over
  NetworkProgress_File = 1,     // the file behind it, about every MiB and at its end
};

// Hears that `done` of `total` bytes were sent or received. Runs on the thread that called
// NetworkTransMsg, in the middle of the call: it must be quick, must not throw and must not call
// the transport.
typedef void (*NetworkProgress)(std::uint64_t done, std::uint64_t total, int kind, void* context);

// Has `callback` called, with `context`, for the messages that the calling thread sends from now
// on; null ends it. Each thread has its own.
QVNETCALL_API void NetworkTransSetProgress(NetworkProgress callback, void* context);
}
