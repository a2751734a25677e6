// How a loaded text is read in each of the two dialects.
#pragma once

#include <string_view>

#include "qvnetcall/TempFileInfo.h"
#include "resultset/Reading.h"
#include "resultset/ResultTable.h"

namespace qv {

// These add the text's columns to `table` and read its rows, as RecordsetReaders.h says. The text
// is a FileText's.
[[nodiscard]] Reading ReadRowsetText(std::string_view text, ResultTable& table,
                                     const tagTEMPFILEINFO& files);
[[nodiscard]] Reading ReadSchemaText(std::string_view text, ResultTable& table,
                                     const tagTEMPFILEINFO& files);

}  // namespace qv
