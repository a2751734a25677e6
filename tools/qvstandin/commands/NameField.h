// What the name field of a request's header block says.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tools/qvstandin/stores/IdStore.h"

namespace qv::standin {

inline constexpr std::size_t kNameFieldAt = 13;
inline constexpr std::size_t kNameFieldSize = 256;
using NameField = std::span<const unsigned char>;

// A path. Nothing when there is none, and when it fills the field: clients cut what does not fit,
// and the file that is left of a path may be another one.
[[nodiscard]] std::optional<std::string> PathIn(NameField field);

// A name, and an identifier behind it.
[[nodiscard]] std::optional<IdName> IdNameIn(NameField field);

}  // namespace qv::standin
