// Many calls over one connection of the socket transport, without waiting for a reply before the
// next request is sent. It is an extension: other transports need not have it, so a program that
// can do without it looks the function up by name at run time.
#pragma once

#include <cstdint>

#include "qvnetcall/Export.h"

class CMsgContent;  // declared in message/MsgContent.h

extern "C" {

// The calls of NetworkTransMany: functions of the caller, which get `context`. They run on the
// thread of NetworkTransMany, which passes `index`, the number of a call from 0 on. They must not
// throw, and must not take as long as the server waits for a client that does not receive. They may
// make other calls to the transport.
struct NetworkCalls {
  void* context;
  // Returns the request of a call, which the caller keeps owning. It is no longer needed when the
  // function is called again, and when NetworkTransMany returns, so that one block can serve all
  // calls. Called in the order of the calls, at most once for each, and for some ahead of the
  // replies to earlier ones. A call without a request (null), or whose request names a file, is a
  // command for the transport itself or has an unbound block, is not made: its result is -1.
  CMsgContent* (*request)(int index, void* context);
  // Returns the message for the reply of a call, which the caller keeps owning until `finished` is
  // called for it. Called in the order of the calls, at most once for each.
  CMsgContent* (*reply)(int index, void* context);
  // Called in the order of the calls when one of them is over. `result` is what NetworkTransMsg
  // would have returned: 0, -1, -2 or -3. NetworkTransLastError gives the error of this call until
  // the function returns.
  void (*finished)(int index, int result, void* context);
};

// Makes `count` calls to `server`:`port`, or as many of them as can be made over one connection.
// Requests are sent back to back, at most 256 KiB of them or one larger request ahead of their
// replies. No request is sent twice. Any number of threads may call at once.
//
// Returns for how many calls `finished` was called, the first ones; the caller makes the others one
// by one. That is
// - `count` if all were made, or if the connection was lost, made no progress or the calls were
//   cancelled: the results are then -2 for those of whose requests a byte was sent, else -1;
// - 0 if the server does not know numbered requests;
// - 1 if no connection could be opened; the result of the first call is -1;
// - fewer than `count` after a reply that is malformed or does not fit its message: the result of
//   its call is -3, and that of the others whose requests had been sent is -2;
// - fewer than `count` after the server refused a token, because it executes none of the requests
//   after that one.
QVNETCALL_API int NetworkTransMany(const char* server, std::uint32_t port, int count,
                                   const struct NetworkCalls* calls);
}
