#include "ResultWriter.h"

#include "CsvWriter.h"
#include "JsonWriter.h"
#include "TableWriter.h"

namespace qv::tool {

bool WriteResult(const CRvoDbRes& rows, Format format, std::ostream& out) {
  switch (format) {
    case Format::kCsv:
      return WriteCsv(rows, out);
    case Format::kJson:
      return WriteJson(rows, out);
    case Format::kTable:
      break;
  }
  return WriteTable(rows, out);
}

}  // namespace qv::tool
