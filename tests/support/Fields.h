// The fields of a message's payload.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qv {

// A field as it stands in a payload.
std::string Field(std::string_view body);

// The bodies of the fields of a payload that is in order.
std::vector<std::string> FieldsOf(const std::string& payload);

}  // namespace qv
