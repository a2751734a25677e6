#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "SqlSplitter.h"

namespace qv::tool {

// How the bytes of a batch stand to what one request takes.
struct RequestSize {
  std::size_t bytes;    // of the whole batch as it would be sent
  std::size_t fitting;  // how many of the statements, from the first, go into one request
};

// How many bytes of fields a request has room for.
constexpr std::size_t kRequestRoom = 0x100000 - 269 - 1;

[[nodiscard]] RequestSize MeasureBatch(std::string_view database,
                                       const std::vector<ScriptStatement>& statements);

}  // namespace qv::tool
