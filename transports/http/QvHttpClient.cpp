#include "qvnetcall/transport/QvHttpClient.h"

#include <cstring>
#include <exception>

#include "HttpExchange.h"
#include "qvnetcall/transport/CallControl.h"
#include "qvnetcall/transport/HttpParameters.h"
#include "qvnetcall/transport/NetworkProgress.h"
#include "transports/exchange/ReceiveReply.h"
#include "transports/exchange/ThreadCall.h"

namespace qv::wire {

namespace {

// Never destroyed, because threads of the host may still be in a call when the program ends.
HttpTransport& SharedTransport() {
  static auto* const transport = new HttpTransport;
  return *transport;
}

int Deliver(const char* server, std::uint32_t port, const CMsgContent& request, CMsgContent& reply,
            bool compress) {
  ThreadCall& thread = ThisThread();
  HttpExchange exchange(SharedTransport(), request, reply, thread);
  try {
    const int result = exchange.Run(server, port, compress);
    thread.Keep(exchange.Error());
    return result;
  } catch (const std::exception&) {
    thread.KeepOutOfMemory();
    return exchange.Interrupted();
  }
}

}  // namespace

}  // namespace qv::wire

extern "C" {

void HttpworkTransInit() { qv::wire::SharedTransport(); }

void HttpworkTransFini() {
  qv::wire::SharedTransport().pool.Clear();
  qv::wire::SharedTransport().tokens.Clear();
}

int HttpworkTransMsg(const char* server, std::uint32_t port, CMsgContent& request,
                     CMsgContent& reply, int compress) {
  try {
    return qv::wire::Deliver(server, port, request, reply, compress != 0);
  } catch (const std::exception&) {
    qv::wire::ThisThread().KeepOutOfMemory();
    return qv::wire::kNotDelivered;
  }
}

int HttpworkLoginToken(char* token) {
  if (token == nullptr) return 0;
  *token = '\0';
  try {
    const std::string last = qv::wire::SharedTransport().tokens.Last();
    std::memcpy(token, last.c_str(), last.size() + 1);
    return last.empty() ? 0 : 1;
  } catch (const std::exception&) {
    return 0;
  }
}

void HttpworkTransSetProgress(NetworkProgress callback, void* context) {
  qv::wire::ThisThread().progress = {callback, context};
}

void HttpworkTransSetCancel(int (*is_cancelled)(void*), void* context) {
  qv::wire::ThisThread().cancel = {is_cancelled, context};
}

int HttpworkTransLastError(char* text, int size) {
  return qv::wire::ThisThread().CopyError(text, size);
}

int HttpworkSetParameter(const char* name, const char* value) {
  if (name == nullptr || value == nullptr) return 0;
  try {
    return qv::wire::SharedTransport().parameters.Set(name, value) ? 1 : 0;
  } catch (const std::exception&) {
    return 0;
  }
}
}
