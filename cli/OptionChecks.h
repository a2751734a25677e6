#pragma once

#include <CLI/Validators.hpp>
#include <string>

namespace qv {

inline CLI::Validator NotEmpty() {
  return {[](const std::string& text) {
            return text.empty() ? std::string("must not be empty") : std::string();
          },
          ""};
}

}  // namespace qv
