// How a loaded text is read in each of the two dialects.
#pragma once

#include "TextWindow.h"
#include "qvnetcall/TempFileInfo.h"
#include "resultset/Reading.h"
#include "resultset/ResultTable.h"

namespace qv {

// These add the columns of a text to `table` and read its rows, as RecordsetReaders.h says. The
// window is at the start of the text.
[[nodiscard]] Reading ReadRowsetText(TextWindow& text, ResultTable& table,
                                     const tagTEMPFILEINFO& files);
[[nodiscard]] Reading ReadSchemaText(TextWindow& text, ResultTable& table,
                                     const tagTEMPFILEINFO& files);

// Returns why a marker that a recordset must have was not found in `text`.
[[nodiscard]] inline Reading NotFound(const TextWindow& text) {
  return text.Status() != Reading::kDone ? text.Status() : Reading::kUnreadable;
}

}  // namespace qv
