#pragma once

#include <CLI/Validators.hpp>
#include <string>

#include "tools/qvcall/system/LocalFiles.h"

namespace qv::tool {

inline CLI::Validator NotEmpty() {
  return {[](const std::string& text) {
            return text.empty() ? std::string("must not be empty") : std::string();
          },
          ""};
}

// Not the parser's own check, which takes narrow text for another encoding on some systems.
inline CLI::Validator ReadableFile() {
  return {[](const std::string& path) {
            return KindOf(path) == LocalKind::kNone || KindOf(path) == LocalKind::kFolder
                       ? "File does not exist: " + path
                       : std::string();
          },
          "FILE"};
}

}  // namespace qv::tool
