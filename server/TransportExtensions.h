// What only some transports offer beside the calls that the platform knows. It is looked up by
// name, so that transports of others can do without it.
#pragma once

#include "base/call/CancelFlag.h"
#include "qvnetcall/transport/ManyCalls.h"

namespace qv {

enum class Transport { kSocket, kHttp };

// Makes both transports ask the flag during the calls of this thread; null ends that. Does nothing
// to a transport that cannot.
void SetTransportsCancel(const call::CancelFlag* flag);

// Keeps the error of this thread's call that has just returned `result`: what the transport says,
// or, if it says nothing, what the result means. No error if the call was delivered and the server
// gave no reason.
void KeepTransportError(Transport transport, int result);

// Makes calls to the module's server over the socket transport without waiting for each reply.
// Returns for how many of them, the first ones, `calls.finished` was called; 0 if the transport
// cannot do this. The caller makes the others one by one.
[[nodiscard]] int SendMany(int count, const NetworkCalls& calls);

}  // namespace qv
