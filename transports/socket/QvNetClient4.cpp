#include "qvnetcall/transport/QvNetClient4.h"

#include <algorithm>
#include <exception>

#include "MessageExchange.h"
#include "SocketParameters.h"
#include "transports/exchange/ReceiveReply.h"

namespace qv::wire {

namespace {

constexpr std::chrono::milliseconds kProbeTimeout{1000};

// Never destroyed, because threads of the host may still be in a call when the program ends.
Transport& SharedTransport() {
  static auto* const transport = new Transport;
  return *transport;
}

thread_local ProgressListener thread_listener;

int Deliver(const Peer& peer, const CMsgContent& request, CMsgContent& reply) {
  Transport& transport = SharedTransport();
  if (IsParameterCommand(request.Command())) {
    if (!reply.IsBound()) return kNotDelivered;
    return AnswerParameterCommand(transport.parameters, request, reply) ? kDelivered : kBadReply;
  }
  MessageExchange exchange(transport, peer, request, reply, thread_listener);
  try {
    return exchange.Run();
  } catch (const std::exception&) {
    return exchange.Interrupted();
  }
}

// Tries to reach the server again if a probe is due.
void ProbeBadNetwork() {
  Transport& transport = SharedTransport();
  const SocketSettings settings = transport.parameters.Snapshot();
  const auto probe = transport.health.ClaimProbe(settings.retry_after);
  if (!probe) return;
  const auto timeout = std::min(settings.connect_timeout, kProbeTimeout);
  if (SocketConnection::Open(probe->peer, timeout)) transport.health.ProbeSucceeded(*probe);
}

}  // namespace

}  // namespace qv::wire

extern "C" {

// Everything is created on first use.
void NetworkTransInit() {}

void NetworkTransFini() { qv::wire::SharedTransport().pool.Clear(); }

int NetworkTransMsg(const char* server, std::uint32_t port, CMsgContent& request,
                    CMsgContent& reply) {
  try {
    return qv::wire::Deliver({server != nullptr ? server : "", port}, request, reply);
  } catch (const std::exception&) {
    return qv::wire::kNotDelivered;
  }
}

int NetworkIsBadState(int n) {
  try {
    if (n == 0 && qv::wire::SharedTransport().health.IsBad()) qv::wire::ProbeBadNetwork();
  } catch (const std::exception&) {
    // If memory or threads run out, the state of the network does not change.
  }
  return qv::wire::SharedTransport().health.IsBad() ? 1 : 0;
}

void NetworkBadState(int bad) { qv::wire::SharedTransport().health.Declare(bad != 0); }

void NetworkTransSetProgress(NetworkProgress callback, void* context) {
  qv::wire::thread_listener = {callback, context};
}
}
