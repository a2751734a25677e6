// Holds what a reader made of a file against what the reference made of it.
#pragma once

#include <string>

#include "ReferenceReader.h"
#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/TempFileInfo.h"

namespace qv {

// One of the two recordset dialects: its reader, and its reference.
struct ComparedDialect {
  bool (*read)(const char*, CRvoDbRes&, const tagTEMPFILEINFO&);
  bool (*reference)(const std::string&, ReferenceTable&);
  // Whether all binary cells of a file share one file.
  bool shared_file;
};

extern const ComparedDialect kRowsetDialect;
extern const ComparedDialect kSchemaDialect;

// Has both read `file`, which is written to `path` for the reader, into what they hold already.
// Gives the first difference; empty when they agree.
[[nodiscard]] std::string Compare(const ComparedDialect& dialect, const std::string& file,
                                  const std::string& path, const tagTEMPFILEINFO& temp_files,
                                  CRvoDbRes& result, ReferenceTable& reference);

}  // namespace qv
