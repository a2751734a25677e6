#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "tools/qvcall/options/QueueOptions.h"

namespace qv::tool {

// The password of a login: the first line of the file that the options name, or of `in`, or what
// the user types on the terminal; empty without a login. Nothing, with the reason on `err`, when it
// cannot be had. Where the terminal is asked, no other thread may be there yet.
[[nodiscard]] std::optional<std::string> PasswordFor(const QueueHost& host, std::istream& in,
                                                     std::ostream& err);

}  // namespace qv::tool
