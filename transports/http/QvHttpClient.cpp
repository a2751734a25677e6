#include "qvnetcall/transport/QvHttpClient.h"

#include <cstring>
#include <exception>

#include "HttpExchange.h"
#include "qvnetcall/transport/HttpParameters.h"
#include "transports/exchange/ReceiveReply.h"

namespace qv::wire {

namespace {

// Never destroyed, because threads of the host may still be in a call when the program ends.
HttpTransport& SharedTransport() {
  static auto* const transport = new HttpTransport;
  return *transport;
}

int Deliver(const char* server, std::uint32_t port, const CMsgContent& request, CMsgContent& reply,
            bool compress) {
  HttpExchange exchange(SharedTransport(), request, reply);
  try {
    return exchange.Run(server, port, compress);
  } catch (const std::exception&) {
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

int HttpworkSetParameter(const char* name, const char* value) {
  if (name == nullptr || value == nullptr) return 0;
  try {
    return qv::wire::SharedTransport().parameters.Set(name, value) ? 1 : 0;
  } catch (const std::exception&) {
    return 0;
  }
}
}
