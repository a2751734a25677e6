// The socket transport library, as QvNetCall4 calls it. Replacing the library file replaces the
// transport; a program that defines these functions itself replaces them as well.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

class CMsgContent;

extern "C" {

// Starts the transport; once per process, before any message. The counterpart is NetworkTransFini,
// after the last, which closes what is open. In the library that is built here neither minds being
// called twice or without the other.
QVNETCALL_API void NetworkTransInit();
QVNETCALL_API void NetworkTransFini();

// Sends `request` to `server`:`port` and fills `reply`; both stay the caller's. Blocks until the
// reply is there or a deadline passed. A file that the request names travels with it; one that
// travels with the reply is written to the path that the reply object names. Any number of threads
// may call at once, each with messages of its own. A request is never sent twice. Returns
//    0 when the reply, and its file, are complete;
//   -1 when nothing reached the server;
//   -2 when the request was sent and no complete reply came, so that the outcome is unknown;
//   -3 when the reply was malformed, failed its checksum, did not fit the reply's block, or brought
//      a file that could not be written.
// After anything but 0 the reply holds no fields and no part of its file is left.
QVNETCALL_API int NetworkTransMsg(const char* server, std::uint32_t port, CMsgContent& request,
                                  CMsgContent& reply);

// 1 while the network is bad, else 0. With `n` 0 a bad network is probed now and then, so that the
// state recovers by itself; with 1 the state is only reported.
QVNETCALL_API int NetworkIsBadState(int n);

// Declares the network bad (non-zero) or good (0).
QVNETCALL_API void NetworkBadState(int bad);
}
