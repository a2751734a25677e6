// The socket transport library, as QvNetCall4 calls it. Replacing the library file replaces the
// transport, and so does a program that defines these functions itself.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

class CMsgContent;  // declared in message/MsgContent.h

extern "C" {

// Starts the transport. Called once per process, before any message. The library that is built here
// also accepts repeated calls.
QVNETCALL_API void NetworkTransInit();
// Stops the transport: closes open connections. Called once per process, after the last message.
// The library that is built here also accepts repeated calls, and a call without NetworkTransInit.
QVNETCALL_API void NetworkTransFini();

// Sends `request` to `server`:`port` and fills `reply`; the caller keeps owning both. Blocks until
// the reply has arrived or a deadline has passed. A file that the request names is sent with it; a
// file that comes with the reply is written to the path that the reply object names. Any number of
// threads may call at once, each with messages of its own. A request is never sent twice. Returns
//    0 if the reply, and its file if it has one, are complete;
//   -1 if nothing reached the server;
//   -2 if the request was sent and no complete reply came, so that the outcome is unknown;
//   -3 if the reply was malformed, failed its checksum, did not fit the reply's block, or brought a
//      file that could not be written.
// After any result but 0, the reply holds no fields and no part of its file is left.
//
// Two commands never reach a server, whatever `server` and `port` are: the transport answers them
// itself, with the values of its own parameters (CRvoServer::SetNetClientPara names those of the
// library that is built here). An empty value is left out of either message, because no field is
// empty.
//
//   command          request                reply
//   -1 (0xFFFFFFFF)  text name              text "1", text value; "0" if the name is unknown
//   -2 (0xFFFFFFFE)  text name, text value  text "1"; "0" if the parameter was not set
QVNETCALL_API int NetworkTransMsg(const char* server, std::uint32_t port, CMsgContent& request,
                                  CMsgContent& reply);

// Returns 1 while the network is bad, else 0. If `n` is 0, a bad network is probed from time to
// time, so that the state recovers by itself; if `n` is 1, the state is only reported. Any thread
// may call.
QVNETCALL_API int NetworkIsBadState(int n);

// Declares the network bad (`bad` not 0) or good (0). Any thread may call.
QVNETCALL_API void NetworkBadState(int bad);
}
