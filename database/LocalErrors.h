// Errors of direct access, in the classes that hosts know.
#pragma once

#include <string_view>

#include "qvnetcall/ResultCodes.h"

namespace qv {

// Returns the class for what drivers said: "name: [state] text [state] text". The first known state
// counts. Drivers that have the same state for everything are told apart by their words.
[[nodiscard]] error::Class ClassOfLocalError(std::string_view said);

}  // namespace qv
