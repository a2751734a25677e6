#include "TransportExtensions.h"

#include <array>

#include "ModuleState.h"
#include "base/call/LastError.h"
#include "base/platform/Platform.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/transport/QvHttpClient.h"
#include "qvnetcall/transport/QvNetClient4.h"

namespace qv {

namespace {

// The declarations of qvnetcall/transport/CallControl.h and ManyCalls.h as pointers: naming the
// functions would make the library depend on them.
using LastErrorFunction = int (*)(char* text, int size);
using SetCancelFunction = void (*)(int (*is_cancelled)(void*), void* context);
using ManyFunction = int (*)(const char* server, std::uint32_t port, int count,
                             const NetworkCalls* calls);

struct Extensions {
  LastErrorFunction last_error;
  SetCancelFunction set_cancel;
  ManyFunction many;
};

template <class Function>
Function Find(const char* library, void* neighbour, const char* name) {
  return reinterpret_cast<Function>(platform::FindFunctionBeside(library, neighbour, name));
}

const Extensions& ExtensionsOf(Transport transport) {
  static const Extensions socket = [] {
    auto* const neighbour = reinterpret_cast<void*>(&NetworkTransMsg);
    return Extensions{Find<LastErrorFunction>("QvNetClient4", neighbour, "NetworkTransLastError"),
                      Find<SetCancelFunction>("QvNetClient4", neighbour, "NetworkTransSetCancel"),
                      Find<ManyFunction>("QvNetClient4", neighbour, "NetworkTransMany")};
  }();
  static const Extensions http = [] {
    auto* const neighbour = reinterpret_cast<void*>(&HttpworkTransMsg);
    return Extensions{Find<LastErrorFunction>("QvHttpClient", neighbour, "HttpworkTransLastError"),
                      Find<SetCancelFunction>("QvHttpClient", neighbour, "HttpworkTransSetCancel"),
                      nullptr};
  }();
  return transport == Transport::kSocket ? socket : http;
}

int AskFlag(void* flag) { return *static_cast<const call::CancelFlag*>(flag) != 0 ? 1 : 0; }

call::Error MeaningOf(int result) {
  switch (result) {
    case result::kSuccess:
      return {};
    case result::kNotDelivered:
      return {error::kCannotConnect, "the request did not reach the server"};
    case result::kOutcomeUnknown:
      return {error::kConnectionLost, "no complete reply to the request has arrived"};
    default:
      return {error::kBadReply, "the reply, or the file with it, cannot be used"};
  }
}

}  // namespace

void SetTransportsCancel(const call::CancelFlag* flag) {
  for (const Transport transport : {Transport::kSocket, Transport::kHttp}) {
    const SetCancelFunction set = ExtensionsOf(transport).set_cancel;
    // The transport passes back what it got, and AskFlag only reads it.
    if (set != nullptr)
      set(flag != nullptr ? &AskFlag : nullptr, const_cast<call::CancelFlag*>(flag));
  }
}

int SendMany(int count, const NetworkCalls& calls) {
  const ManyFunction many = ExtensionsOf(Transport::kSocket).many;
  const ModuleState& state = ModuleState::Get();
  return many != nullptr ? many(state.server_name.c_str(), state.server_port, count, &calls) : 0;
}

void KeepTransportError(Transport transport, int result) {
  const LastErrorFunction last_error = ExtensionsOf(transport).last_error;
  std::array<char, call::kLongestError + 1> text{};
  const int said =
      last_error != nullptr ? last_error(text.data(), static_cast<int>(text.size())) : 0;
  if (said > 0) {
    call::SetError(static_cast<error::Class>(said), text.data());
  } else {
    const call::Error meaning = MeaningOf(result);
    call::SetError(meaning.error_class, meaning.text);
  }
}

}  // namespace qv
