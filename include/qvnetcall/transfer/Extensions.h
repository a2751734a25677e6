// Parameters and progress of the transfer components that are built here. They are extensions:
// another component need not have them, so a program that can do without them looks the functions
// up by name at run time, in the component's library beside the program.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

extern "C" {

// The state of a run. Texts are valid until the callback returns.
struct QvTransferProgress {
  const char* file;          // the first path of the pair that is being moved
  std::int32_t file_index;   // its position in the run, from 0
  std::int32_t file_count;   // the number of files in the run
  std::uint64_t file_done;   // bytes of this file that were moved
  std::uint64_t file_total;  // bytes of this file; 0 while unknown
  std::int32_t attempt;      // 1 for the first attempt at this file
};

// Receives the state of a run: at the start and the end of each file, and about ten times a second
// in between. Runs on the thread that runs the queue, during the run: it must be quick, must not
// throw and must not call the component. Returns 0 to continue; any other value ends the run, and
// the files that have not succeeded stay queued.
typedef int (*QvTransferCallback)(const QvTransferProgress* progress, void* context);

// Make the component call `callback`, with `context`, in the runs of the calling thread from now
// on; null ends this. Each thread has its own callback.
QVNETCALL_API void QvCoFtpSetProgress(QvTransferCallback callback, void* context);
QVNETCALL_API void QvCoCSCSetProgress(QvTransferCallback callback, void* context);

// Set a parameter for the objects that are created afterwards, on all threads. The caller keeps
// owning both texts. Any thread may call. Return 1. Return 0 and change nothing if a text is null,
// the name is unknown or the value is not allowed.
//
//   name                values
//   ca_file             a PEM file of trusted CA certificates; empty: the system's
//   connect_timeout_ms  1 to 3600000: for name lookup, connecting and the TLS handshake together
//   io_timeout_ms       1 to 3600000: for a stretch without progress
//   region              cloud only: the region that requests are signed for, at first "us-east-1"
//   part_bytes          cloud only: 5242880 to 5368709120, the size of a part of a large upload
QVNETCALL_API int QvCoFtpSetParameter(const char* name, const char* value);
QVNETCALL_API int QvCoCSCSetParameter(const char* name, const char* value);
}
