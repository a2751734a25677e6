// The HTTP transport library, as QvNetCall4 calls it when the server is a web server.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

class CMsgContent;

extern "C" {

// Starts the transport; once per process, before any message. The counterpart is HttpworkTransFini,
// after the last, which closes what is open and forgets the login tokens. In the library that is
// built here neither minds being called twice or without the other.
QVNETCALL_API void HttpworkTransInit();
QVNETCALL_API void HttpworkTransFini();

// As NetworkTransMsg, with the same results, over HTTP; a non-zero `compress` asks the server for
// compressed answers. `server` is a host name or an address; "http://" or "https://" may stand
// before it, nothing else. The library that is built here returns -1 also when the server's
// certificate is refused, and -3 also when the server answers with a status other than 200. Any
// number of threads may call at once, each with messages of its own.
QVNETCALL_API int HttpworkTransMsg(const char* server, std::uint32_t port, CMsgContent& request,
                                   CMsgContent& reply, int compress);

// Copies the login token that a server handed out last to `token`, a buffer of the caller's that is
// large enough, and returns 1; without one, writes an empty text and returns 0. The tokens of the
// library that is built here have at most 255 characters. Any thread.
QVNETCALL_API int HttpworkLoginToken(char* token);
}
