// The HTTP transport library, as QvNetCall4 calls it when the server is a web server.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

class CMsgContent;

extern "C" {

// Starts the transport; once per process, before any message. The counterpart is HttpworkTransFini,
// after the last.
QVNETCALL_API void HttpworkTransInit();
QVNETCALL_API void HttpworkTransFini();

// As NetworkTransMsg, over HTTP; a non-zero `compress` asks the server for compressed answers.
// The library of this name that is built here does not speak HTTP yet: it delivers nothing and
// returns -1.
QVNETCALL_API int HttpworkTransMsg(const char* server, std::uint32_t port, CMsgContent& request,
                                   CMsgContent& reply, int compress);

// Copies the login token that the server handed out to `token`, a buffer of the caller's that is
// large enough, and returns 1; without one, writes an empty text and returns 0.
QVNETCALL_API int HttpworkLoginToken(char* token);
}
