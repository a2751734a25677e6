// What it costs to read a cell of a result set by the name of its column instead of its number.
#pragma once

namespace qv {

// Registers "cells/KIND/COLUMNS/number" and ".../name" with the benchmark library. Both read the
// cell in the last column; the name is not in the letter case in which the column declares it.
void RegisterCells();

}  // namespace qv
