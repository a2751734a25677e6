// Compares what a reader read from a file with what the reference read.
#pragma once

#include <string>
#include <string_view>

#include "ReferenceReader.h"
#include "qvnetcall/RvoDbRes.h"
#include "qvnetcall/TempFileInfo.h"

namespace qv {

// One of the two recordset dialects: its reader of files and of bytes, and its reference.
struct ComparedDialect {
  bool (*read)(const char*, CRvoDbRes&, const tagTEMPFILEINFO&);
  bool (*read_bytes)(std::string_view, CRvoDbRes&, const tagTEMPFILEINFO&);
  bool (*reference)(const std::string&, ReferenceTable&);
  // Whether all binary cells of a file share one file.
  bool shared_file;
};

extern const ComparedDialect kRowsetDialect;
extern const ComparedDialect kSchemaDialect;

// Lets both read `file`, which is written to `path` for the reader unless it reads the bytes (as it
// does every third length), and append it to what they hold. Returns the first difference; empty if
// they agree.
[[nodiscard]] std::string Compare(const ComparedDialect& dialect, const std::string& file,
                                  const std::string& path, const tagTEMPFILEINFO& temp_files,
                                  CRvoDbRes& result, ReferenceTable& reference);

}  // namespace qv
