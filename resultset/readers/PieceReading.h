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

using MakeRowScanner = std::function<std::unique_ptr<RowScanner>()>;

// Fills the columns of `table`, which have no cells yet, with the rows from the one at `first_row`
// on; kNone for none. They remain without cells, and no files of binary cells, unless all is read.
// `make` gives each thread a scanner of the same text.
//
// A large text is cut into pieces where a row seems to start, and threads read them ahead into
// columns of their own. Piece by piece, in order, these are appended to the table, but only if the
// rows before the piece end exactly where it starts. Otherwise the cut was no start of a row, and
// the rest of the text is read from the end of those rows. So the result is that of one thread.
[[nodiscard]] Reading ReadAllRows(std::size_t first_row, const MakeRowScanner& make,
                                  ResultTable& table, BinaryCells& binary);

// Sets the size of the pieces in bytes of text; 0 goes back to the usual. For tests, in which small
// texts shall have many pieces.
void SetPieceBytes(std::size_t bytes);

}  // namespace qv
