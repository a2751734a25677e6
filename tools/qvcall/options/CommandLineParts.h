// The parts that the reader of the command line is made of.
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

// Has `app` know the commands for files, folders, identifiers, the directory and the server itself;
// parsing puts the one that was given into `taken`, which outlives it.
void AddStoreCommands(CLI::App& app, std::optional<StoreCommand>& taken);

// Has `app` know the commands for file servers and cloud stores; parsing puts the one that was
// given into `taken`, which outlives it.
void AddQueueCommands(CLI::App& app, std::optional<QueueCommand>& taken);

// What is wrong with options that are right each by itself, in one sentence; empty when they go
// together.
[[nodiscard]] std::string_view BrokenRule(const CommandLine& command);

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
