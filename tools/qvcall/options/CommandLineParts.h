// The parts of the command-line parser: groups of subcommands, checks of single options, and rules
// on their combination.
#pragma once

#include <CLI/App.hpp>
#include <CLI/Validators.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "CommandLine.h"
#include "QueueOptions.h"
#include "StoreCommands.h"
#include "tools/qvcall/system/LocalFiles.h"

namespace qv::tool {

// Adds the commands for files, folders, identifiers, the directory and the server itself to `app`.
// Parsing stores the command that was given in `taken`, which must outlive `app`.
void AddStoreCommands(CLI::App& app, std::optional<StoreCommand>& taken);

// Adds the commands for file servers and cloud stores to `app`. Parsing stores the command that was
// given in `taken`, which must outlive `app`.
void AddQueueCommands(CLI::App& app, std::optional<QueueCommand>& taken);

// Checks the combination of options that are each valid. Returns an error text, empty if there is
// no conflict.
[[nodiscard]] std::string_view BrokenRule(const CommandLine& command);

inline CLI::Validator NotEmpty() {
  return {[](const std::string& text) {
            return text.empty() ? std::string("must not be empty") : std::string();
          },
          ""};
}

// Used instead of the parser's own check, which assumes another encoding of narrow text on some
// systems.
inline CLI::Validator ReadableFile() {
  return {[](const std::string& path) {
            return KindOf(path) == LocalKind::kNone || KindOf(path) == LocalKind::kFolder
                       ? "File does not exist: " + path
                       : std::string();
          },
          "FILE"};
}

}  // namespace qv::tool
