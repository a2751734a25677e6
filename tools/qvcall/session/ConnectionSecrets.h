#pragma once

#include <string>
#include <string_view>

namespace qv::tool {

// `text` with "***" wherever it quotes an ODBC connection text, or a password of it.
[[nodiscard]] std::string WithoutSecrets(std::string text, std::string_view connection_text);

}  // namespace qv::tool
