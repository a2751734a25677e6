// Where a transfer says how far it has come.
#pragma once

#include <cstdint>

namespace qv::components {

// Hears how far the file that is being moved has come; false stops the transfer.
class TransferMeter {
 public:
  // In bytes; `total` is 0 while unknown. As often as the transfer likes.
  virtual bool Moved(std::uint64_t done, std::uint64_t total) = 0;

 protected:
  ~TransferMeter() = default;
};

}  // namespace qv::components
