// The reader of the schema dialect: what web servers answer queries with.
#pragma once

#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/TempFileInfo.h"

namespace qv {

// As ReadRowsetFile, for a data set with an inline schema. False also when an anchor of its schema
// or the name of its rows is missing or that name is absurdly long, and when the first row is never
// closed.
[[nodiscard]] bool ReadSchemaFile(const char* path, CRvoDbRes& result,
                                  const tagTEMPFILEINFO& files);

}  // namespace qv
