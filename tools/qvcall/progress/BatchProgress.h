#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string_view>

namespace qv::tool {

// Shows, while it lives, how far a batch is that this thread sends over the socket transport: on
// its way, then in the server's hands. Who interrupts it hears what that leaves open. Shows nothing
// when standard error is no terminal.
class BatchProgress {
 public:
  // `sending` says what is sent, in `bytes`, and outlives this; `err` is standard error.
  BatchProgress(std::string_view sending, std::uint64_t bytes, std::ostream& err);
  ~BatchProgress();
  BatchProgress(const BatchProgress&) = delete;
  BatchProgress& operator=(const BatchProgress&) = delete;

 private:
  struct Shown;
  std::unique_ptr<Shown> shown_;  // null without a terminal
};

}  // namespace qv::tool
