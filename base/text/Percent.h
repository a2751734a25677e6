// Percent-encoded text, as addresses have it.
#pragma once

#include <string>
#include <string_view>

namespace qv::text {

// Returns `text` with every byte as "%" and two upper-case hexadecimal digits, except for letters,
// digits, "-", ".", "_", "~" and the characters of `kept`.
[[nodiscard]] std::string PercentEncoded(std::string_view text, std::string_view kept = {});

// Returns the text that `encoded` stands for. A "+" stands for a blank, as it does in forms; a "%"
// without two hexadecimal digits after it stands for itself.
[[nodiscard]] std::string PercentDecoded(std::string_view encoded);

}  // namespace qv::text
