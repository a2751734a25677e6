// Progress of long transfers over the socket transport library that is built here. It is an
// extension: another socket transport need not have it, so a program that can do without it looks
// the function up by name at run time.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

extern "C" {

// What a report is about.
enum NetworkProgressKind : int {
  NetworkProgress_Message = 0,  // the fields of a request or reply; one report for each, at its end
  NetworkProgress_File = 1,     // the file that follows; about every MiB, and at its end
};

// Receives the report that `done` of `total` bytes were sent or received; `kind` is one of
// NetworkProgressKind. Runs on the thread that called NetworkTransMsg, during that call: it must be
// quick, must not throw and must not call the transport.
typedef void (*NetworkProgress)(std::uint64_t done, std::uint64_t total, int kind, void* context);

// Makes the transport call `callback`, with `context`, for the messages that the calling thread
// sends from now on; null ends this. Each thread has its own callback.
QVNETCALL_API void NetworkTransSetProgress(NetworkProgress callback, void* context);
}
