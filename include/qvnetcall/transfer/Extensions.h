// Extensions of the transfer components that are built here: their parameters, and progress.
// Another component need not have them, so a program that can do without looks them up by name, in
// the component's library beside it, at run time.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

extern "C" {

// Where a run stands. Texts live until the callback returns.
struct QvTransferProgress {
  const char* file;          // the first path of the pair that is being moved
  std::int32_t file_index;   // its place in the run, from 0
  std::int32_t file_count;   // how many files the run has
  std::uint64_t file_done;   // bytes of this file
  std::uint64_t file_total;  // 0 while unknown
  std::int32_t attempt;      // 1 for the first try of this file
};

// Hears where a run stands: at the start and the end of each file, and about ten times a second in
// between. Runs on the thread that runs the queue, in the middle of the run: it must be quick, must
// not throw and must not call the component. 0 goes on; any other value ends the run, whose files
// that did not succeed stay queued.
typedef int (*QvTransferCallback)(const QvTransferProgress* progress, void* context);

// Has `callback` called, with `context`, by the runs of the calling thread from now on; null ends
// it.
QVNETCALL_API void QvCoFtpSetProgress(QvTransferCallback callback, void* context);
QVNETCALL_API void QvCoCSCSetProgress(QvTransferCallback callback, void* context);

// Sets a parameter for the objects that are made afterwards, in all threads; both texts stay the
// caller's. Any thread. 1, or 0 and no change for an unknown name or a value that it cannot have.
//
//   name                values
//   ca_file             a file of certificates of authorities, in PEM; empty: the system's
//   connect_timeout_ms  1 to 3600000: looking up the name, connecting, agreeing on TLS, together
//   io_timeout_ms       1 to 3600000: a stretch without progress
//   region              cloud only: the region that requests are signed for, "us-east-1" at first
//   part_bytes          cloud only: 5242880 to 5368709120, what one part of a large upload holds
QVNETCALL_API int QvCoFtpSetParameter(const char* name, const char* value);
QVNETCALL_API int QvCoCSCSetParameter(const char* name, const char* value);
}
