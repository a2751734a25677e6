// The fields of a message's payload.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "message/LittleEndian.h"

namespace qv {

// Returns a field as it is stored in a payload.
inline std::string Field(std::string_view body) {
  std::string field(4, '\0');
  StoreU32(field.data(), static_cast<std::uint32_t>(body.size()));
  return field.append(body).append(1, '\0');
}

// Returns the bodies of the fields of a valid payload.
inline std::vector<std::string> FieldsOf(const std::string& payload) {
  std::vector<std::string> fields;
  for (std::size_t at = 0; at + 4 < payload.size(); at += 4 + fields.back().size() + 1) {
    fields.push_back(payload.substr(at + 4, LoadU32(payload.data() + at)));
  }
  return fields;
}

}  // namespace qv
