// The reader of the schema dialect: what web servers answer queries with.
#pragma once

#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/TempFileInfo.h"

namespace qv {

// As ReadRowsetFile, for a data set with an inline schema. False when the file cannot be loaded,
// when an anchor of its schema or the name of its rows is missing, or when the first row is never
// closed; columns defined until then stay.
[[nodiscard]] bool ReadSchemaFile(const char* path, CRvoDbRes& result,
                                  const tagTEMPFILEINFO& files);

}  // namespace qv
