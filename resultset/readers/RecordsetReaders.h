// The readers of the two dialects that servers answer queries in.
#pragma once

#include <string_view>

#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/TempFileInfo.h"

namespace qv {

// Reads the rowset dialect, which socket servers answer with. Appends the file's columns to
// `result` and fills every column with the file's rows; binary cells become files named by `files`.
// Returns false if the file cannot be loaded, one of its three anchors is missing, or its cells
// would take more memory than ResultLimit(), or if the call is cancelled; the reason becomes the
// thread's error. Columns defined until then remain, without rows. Any number of threads may read
// at once.
[[nodiscard]] bool ReadRowsetFile(const char* path, CRvoDbRes& result,
                                  const tagTEMPFILEINFO& files);

// Reads the schema dialect, a data set with an inline schema, which web servers answer with;
// otherwise as ReadRowsetFile. Returns false also if an anchor of the schema or the name of the
// rows is missing, that name is absurdly long, or the first row is never closed.
[[nodiscard]] bool ReadSchemaFile(const char* path, CRvoDbRes& result,
                                  const tagTEMPFILEINFO& files);

// These read what a file with these bytes would give.
[[nodiscard]] bool ReadRowset(std::string_view bytes, CRvoDbRes& result,
                              const tagTEMPFILEINFO& files);
[[nodiscard]] bool ReadSchema(std::string_view bytes, CRvoDbRes& result,
                              const tagTEMPFILEINFO& files);

}  // namespace qv
