#include "NameField.h"

#include <algorithm>

#include "message/LittleEndian.h"

namespace qv::standin {

namespace {

constexpr std::size_t kIdAt = 252;

// The text in front of the first NUL, which must come before the last byte.
std::optional<std::string> TextIn(NameField field) {
  const auto end = std::ranges::find(field, 0);
  if (end == field.begin() || field.end() - end < 2) return std::nullopt;
  return std::string(field.begin(), end);
}

}  // namespace

std::optional<std::string> PathIn(NameField field) {
  if (field.size() != kNameFieldSize) return std::nullopt;
  return TextIn(field);
}

std::optional<IdName> IdNameIn(NameField field) {
  if (field.size() != kNameFieldSize) return std::nullopt;
  auto name = TextIn(field.first(kIdAt));
  if (!name) return std::nullopt;
  return IdName{static_cast<std::int32_t>(LoadU32(field.data() + kIdAt)), std::move(*name)};
}

}  // namespace qv::standin
