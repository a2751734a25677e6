// What the server needs of the drivers that it knows.
#pragma once

#include <string>

#include "base/text/ConnectionText.h"

namespace qv::standin {

enum class Rows {
  kInPieces,  // so that no answer stands in memory whole
  kAtOnce,
};

// Returns the connection text, with the settings after it that the server needs of its driver and
// that the text does not make itself.
[[nodiscard]] std::string WithDriverSettings(const text::ConnectionText& text, Rows rows);

}  // namespace qv::standin
