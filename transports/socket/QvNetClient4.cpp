#include "qvnetcall/transport/QvNetClient4.h"

#include <algorithm>
#include <exception>

#include "ManyExchange.h"
#include "MessageExchange.h"
#include "SocketParameters.h"
#include "qvnetcall/transport/CallControl.h"
#include "qvnetcall/transport/ManyCalls.h"
#include "qvnetcall/transport/NetworkProgress.h"
#include "transports/exchange/ReceiveReply.h"

namespace qv::wire {

namespace {

constexpr std::chrono::milliseconds kProbeTimeout{1000};

// Never destroyed, because threads of the host may still be in a call when the program ends.
Transport& SharedTransport() {
  static auto* const transport = new Transport;
  return *transport;
}

int Deliver(const Peer& peer, const CMsgContent& request, CMsgContent& reply) {
  Transport& transport = SharedTransport();
  if (IsParameterCommand(request.Command())) {
    if (!reply.IsBound()) return kNotDelivered;
    return AnswerParameterCommand(transport.parameters, request, reply) ? kDelivered : kBadReply;
  }
  ThreadCall& thread = ThisThread();
  MessageExchange exchange(transport, peer, request, reply, thread);
  try {
    const int result = exchange.Run();
    thread.Keep(exchange.Error());
    return result;
  } catch (const std::exception&) {
    thread.KeepOutOfMemory();
    return exchange.Interrupted();
  }
}

int DeliverMany(const Peer& peer, int count, const NetworkCalls& calls) {
  ManyExchange exchange(SharedTransport(), peer, count, calls, ThisThread());
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
  const SocketConnection::Patience patience{SocketConnection::Clock::now() + timeout,
                                            ThisThread().cancel};
  std::string why_not;
  if (SocketConnection::Open(probe->peer, patience, why_not)) {
    transport.health.ProbeSucceeded(*probe);
  }
}

}  // namespace

}  // namespace qv::wire

extern "C" {

// Everything is created on first use.
void NetworkTransInit() {}

void NetworkTransFini() {
  qv::wire::SharedTransport().pool.Clear();
  qv::wire::SharedTransport().old_servers.Clear();
  qv::wire::SharedTransport().without_version_3.Clear();
}

int NetworkTransMsg(const char* server, std::uint32_t port, CMsgContent& request,
                    CMsgContent& reply) {
  try {
    return qv::wire::Deliver({server != nullptr ? server : "", port}, request, reply);
  } catch (const std::exception&) {
    qv::wire::ThisThread().KeepOutOfMemory();
    return qv::wire::kNotDelivered;
  }
}

int NetworkTransMany(const char* server, std::uint32_t port, int count, const NetworkCalls* calls) {
  try {
    return qv::wire::DeliverMany({server != nullptr ? server : "", port}, count, *calls);
  } catch (const std::exception&) {
    return 0;  // nothing was begun
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
  qv::wire::ThisThread().progress = {callback, context};
}

void NetworkTransSetCancel(int (*is_cancelled)(void*), void* context) {
  qv::wire::ThisThread().cancel = {is_cancelled, context};
}

int NetworkTransLastError(char* text, int size) {
  return qv::wire::ThisThread().CopyError(text, size);
}
}
