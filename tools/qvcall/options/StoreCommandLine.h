#pragma once

#include <CLI/App.hpp>
#include <optional>

#include "StoreCommands.h"

namespace qv::tool {

// Has `app` know the commands for files, folders, identifiers, the directory and the server itself;
// parsing puts the one that was given into `taken`, which outlives it.
void AddStoreCommands(CLI::App& app, std::optional<StoreCommand>& taken);

}  // namespace qv::tool
