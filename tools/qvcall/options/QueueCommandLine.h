#pragma once

#include <CLI/App.hpp>
#include <optional>

#include "QueueOptions.h"

namespace qv::tool {

// Has `app` know the commands for file servers and cloud stores; parsing puts the one that was
// given into `taken`, which outlives it.
void AddQueueCommands(CLI::App& app, std::optional<QueueCommand>& taken);

}  // namespace qv::tool
