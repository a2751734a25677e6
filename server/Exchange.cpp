#include "Exchange.h"

#include "ModuleState.h"
#include "qvnetcall/transport/QvHttpClient.h"
#include "qvnetcall/transport/QvNetClient4.h"

namespace qv {

Exchange::Exchange(std::uint32_t command, std::uint32_t request_bytes, std::uint32_t reply_bytes)
    : request_block_(request_bytes),
      reply_block_(reply_bytes),
      request_(request_block_),
      reply_(reply_block_) {
  request_.SetCommand(command);
}

int Exchange::Send() {
  const ModuleState& state = ModuleState::Get();
  return SendTo(state.server_name.c_str(), state.server_port);
}

int Exchange::SendTo(const char* server, std::uint32_t port) {
  return NetworkTransMsg(server, port, request_, reply_);
}

int Exchange::SendOverWeb(int compress) {
  const ModuleState& state = ModuleState::Get();
  return HttpworkTransMsg(state.server_name.c_str(), state.server_port, request_, reply_, compress);
}

}  // namespace qv
