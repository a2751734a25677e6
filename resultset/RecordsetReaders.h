// The readers of the two dialects that servers answer queries in.
#pragma once

#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/TempFileInfo.h"

namespace qv {

// Reads the rowset dialect, which socket servers answer with. Appends the file's columns to
// `result` and fills every column with its rows; binary cells become files as `files` names them.
// False when the file cannot be loaded or one of its three anchors is missing, and when its cells
// would take memory out of all proportion to it; columns defined until then stay, without rows. Any
// number of threads may read at once.
[[nodiscard]] bool ReadRowsetFile(const char* path, CRvoDbRes& result,
                                  const tagTEMPFILEINFO& files);

// Reads the schema dialect, which web servers answer with: as ReadRowsetFile, for a data set with
// an inline schema. False also when an anchor of its schema or the name of its rows is missing or
// that name is absurdly long, and when the first row is never closed.
[[nodiscard]] bool ReadSchemaFile(const char* path, CRvoDbRes& result,
                                  const tagTEMPFILEINFO& files);

}  // namespace qv
