// The parameters of the components; qvnetcall/transfer/Extensions.h says what they mean.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace qv::components {

struct TransferSettings {
  std::string ca_file;
  std::chrono::milliseconds connect_timeout{5000};
  std::chrono::milliseconds io_timeout{30000};
  // Cloud only.
  std::string region = "us-east-1";
  std::uint64_t part_bytes = std::uint64_t{16} << 20;
};

}  // namespace qv::components
