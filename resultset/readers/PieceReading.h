// Reads all rows of a text, on several threads if there are many.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>

#include "RowScanner.h"
#include "resultset/BinaryCells.h"
#include "resultset/Reading.h"
#include "resultset/ResultTable.h"

namespace qv {

// Makes a scanner of the text that a window moves over.
using MakeRowScanner = std::function<std::unique_ptr<RowScanner>(TextWindow& window)>;

// Fills the columns of `table`, which have no cells yet, with the rows that start at or after
// `from`, an index in the window's view. They remain without cells, and no files of binary cells,
// unless all is read.
//
// A large text is cut into pieces of equal size, and threads read ahead, each with a window of its
// own and into columns of its own, the rows that seem to start in a piece. Piece by piece, in
// order, these are appended to the table, but only if the rows before the piece end exactly where
// its first one starts. Otherwise that was no start of a row, and the rest of the text is read from
// the end of those rows. So the result is that of one thread.
[[nodiscard]] Reading ReadAllRows(TextWindow& window, std::size_t from, const MakeRowScanner& make,
                                  ResultTable& table, BinaryCells& binary);

}  // namespace qv
