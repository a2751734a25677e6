// The reader of the rowset dialect: what socket servers answer queries with.
#pragma once

#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/TempFileInfo.h"

namespace qv {

// Appends the file's columns to `result` and fills every column with its rows; binary cells become
// files as `files` names them. False when the file cannot be loaded or one of its three anchors is
// missing, and when its cells would take memory out of all proportion to it; columns defined until
// then stay, without rows. Any number of threads may read at once.
[[nodiscard]] bool ReadRowsetFile(const char* path, CRvoDbRes& result,
                                  const tagTEMPFILEINFO& files);

}  // namespace qv
