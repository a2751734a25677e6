// The HTTP transport library, which QvNetCall4 calls when the server is a web server.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

class CMsgContent;  // declared in message/MsgContent.h

extern "C" {

// Starts the transport. Called once per process, before any message. The library that is built here
// also accepts repeated calls.
QVNETCALL_API void HttpworkTransInit();
// Stops the transport: closes open connections and forgets the login tokens. Called once per
// process, after the last message. The library that is built here also accepts repeated calls, and
// a call without HttpworkTransInit.
QVNETCALL_API void HttpworkTransFini();

// Sends `request` to `server`:`port` over HTTP and fills `reply`; the caller keeps owning both.
// `server` is a host name or an address, optionally after "http://" or "https://"; nothing else is
// allowed in it. A non-zero `compress` asks the server for compressed answers. Blocks until the
// reply has arrived or a deadline has passed. A file that the request names is sent with it; a file
// that comes with the reply is written to the path that the reply object names. Any number of
// threads may call at once, each with messages of its own. A request is never sent twice. Returns
//    0 if the reply, and its file if it has one, are complete;
//   -1 if nothing reached the server; the library that is built here also returns it if the
//      certificate of the server is refused;
//   -2 if the request was sent and no complete reply came, so that the outcome is unknown;
//   -3 if the reply was malformed, failed its checksum, did not fit the reply's block, or brought a
//      file that could not be written; the library that is built here also returns it if the server
//      answers with an HTTP status other than 200.
// After any result but 0, the reply holds no fields and no part of its file is left.
QVNETCALL_API int HttpworkTransMsg(const char* server, std::uint32_t port, CMsgContent& request,
                                   CMsgContent& reply, int compress);

// Copies the login token that a server issued last to `token`, a buffer of the caller that is large
// enough for it and a NUL, and returns 1. Without a token, writes an empty text and returns 0. The
// tokens of the library that is built here have at most 255 characters. Any thread may call.
QVNETCALL_API int HttpworkLoginToken(char* token);
}
