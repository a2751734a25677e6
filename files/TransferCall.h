// Whether the calls for files and folders work at all; and the calls that move, remove and probe
// single files, and answer with a status word.
#pragma once

#include <cstdint>

#include "server/Exchange.h"
#include "server/ModuleState.h"

namespace qv {

// True while the client is offline because the network is bad. Only the stored word counts: neither
// the network nor the server's kind is asked for, and work that is offline by choice goes on.
[[nodiscard]] inline bool NetworkIsHeldForBad() {
  return ModuleState::Get().cache.State() == cache_state::kNetworkBad;
}

constexpr std::uint32_t kTransferBlock = 1024;

// One call, over the socket transport. The caller puts the name, or fields, into the request first.
class TransferCall {
 public:
  explicit TransferCall(std::uint32_t command)
      : exchange_(command, kTransferBlock, kTransferBlock) {}

  CMsgContent& Request() { return exchange_.Request(); }
  void AddNumber(std::int32_t number) { exchange_.AddNumber(number); }

  // Sends the request as it stands. Returns kSuccess, kTransferRefused, or the transport's result.
  [[nodiscard]] int Send();
  // Sends the request with the contents of `local_file`.
  [[nodiscard]] int Upload(const char* local_file);
  // Sends the request and has the file of the reply written to `local_file`, which is removed when
  // the server refuses, were it one from before: hosts take its absence for the refusal. After a
  // failure of the transport it is as the transport left it.
  [[nodiscard]] int Download(const char* local_file);

 private:
  Exchange exchange_;
};

}  // namespace qv
