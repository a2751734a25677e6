#include "Exchange.h"

#include "ModuleState.h"
#include "TransportExtensions.h"
#include "base/call/CancelFlag.h"
#include "base/call/LastError.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/transport/QvHttpClient.h"
#include "qvnetcall/transport/QvNetClient4.h"

namespace qv {

int Refused(int result, std::string_view why) {
  call::SetErrorIfNone(error::kInternal,
                       why.empty() ? "the server refused the call without a reason" : why);
  return result;
}

Exchange::Exchange(std::uint32_t command, std::uint32_t request_bytes, std::uint32_t reply_bytes)
    : request_block_(request_bytes),
      reply_block_(reply_bytes),
      request_(request_block_.Zeros()),
      reply_(reply_block_.Zeros()) {
  request_.SetCommand(command);
}

Exchange::~Exchange() {
  request_block_.NoteUsed(request_.UsedBytes());
  reply_block_.NoteUsed(reply_.UsedBytes());
}

int Exchange::Send() {
  const ModuleState& state = ModuleState::Get();
  return SendTo(state.server_name.c_str(), state.server_port);
}

int Exchange::SendTo(const char* server, std::uint32_t port) {
  // Asking the transport for its parameters is part of other calls, whose errors stay.
  if (IsForTransport()) return NetworkTransMsg(server, port, request_, reply_);
  if (IsCancelledBefore()) return result::kNotDelivered;
  const int result = NetworkTransMsg(server, port, request_, reply_);
  KeepTransportError(Transport::kSocket, result);
  return result;
}

int Exchange::SendOverWeb(int compress) {
  if (IsCancelledBefore()) return result::kNotDelivered;
  const ModuleState& state = ModuleState::Get();
  const int result =
      HttpworkTransMsg(state.server_name.c_str(), state.server_port, request_, reply_, compress);
  KeepTransportError(Transport::kHttp, result);
  return result;
}

bool Exchange::ReadSuccess() {
  if (reply_.GetString(nullptr) != kStatusSuccess) return false;
  call::ClearError();
  return true;
}

bool Exchange::IsForTransport() const {
  return request_.Command() == kGetTransportParameter ||
         request_.Command() == kSetTransportParameter;
}

bool Exchange::IsCancelledBefore() {
  if (!call::IsCancelled()) return false;
  call::SetCancelled();
  return true;
}

}  // namespace qv
