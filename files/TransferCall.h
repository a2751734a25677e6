// What the calls for files share: whether they work at all, and the calls that move, remove and
// probe single files and are answered with a status word.
#pragma once

#include <cstdint>

#include "server/Exchange.h"
#include "server/ModuleState.h"

namespace qv {

// Returns true while the client is offline because the network is bad. Only the stored state
// counts: neither the network nor the server's type is checked, and calls go on while the client is
// offline by choice.
// Sets the error of this thread if so, because the results of the calls do not tell.
[[nodiscard]] bool NetworkIsHeldForBad();

constexpr std::uint32_t kTransferBlock = 1024;

// One call over the socket transport. The caller first puts the name or fields into the request.
class TransferCall {
 public:
  explicit TransferCall(std::uint32_t command)
      : exchange_(command, kTransferBlock, kTransferBlock) {}

  CMsgContent& Request() { return exchange_.Request(); }
  void AddNumber(std::int32_t number) { exchange_.AddNumber(number); }

  // Sends the request. Returns kSuccess, kTransferRefused, or the transport's result.
  [[nodiscard]] int Send();
  // Sends the request with the content of `local_file`.
  [[nodiscard]] int Upload(const char* local_file);
  // Sends the request and stores the reply's file as `local_file`. If the server refuses, that file
  // is removed even if it existed before: hosts take its absence for the refusal. After a failure
  // of the transport it is as the transport left it.
  [[nodiscard]] int Download(const char* local_file);

 private:
  Exchange exchange_;
};

}  // namespace qv
