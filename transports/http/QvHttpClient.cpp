#include "qvnetcall/transport/QvHttpClient.h"

extern "C" {

void HttpworkTransInit() {}

void HttpworkTransFini() {}

int HttpworkTransMsg(const char* /*server*/, std::uint32_t /*port*/, CMsgContent& /*request*/,
                     CMsgContent& /*reply*/, int /*compress*/) {
  return -1;
}

int HttpworkLoginToken(char* token) {
  if (token != nullptr) *token = '\0';
  return 0;
}
}
