// Recordset files made by hand, and what the readers make of them.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "qvnetcall/RvoDbRes.h"
#include "resultset/readers/RecordsetReaders.h"
#include "tests/support/TempFolder.h"

namespace qv {

using Rows = std::vector<std::string>;

class ReadersTest : public testing::Test {
 protected:
  ReadersTest() {
    std::snprintf(temp_files_.path, sizeof temp_files_.path, "%s", folder_.At().c_str());
  }

  bool Rowset(const std::string& file, CRvoDbRes& result) const {
    return ReadRowsetFile(folder_.Write("reply.xml", file).c_str(), result, temp_files_);
  }
  bool Schema(const std::string& file, CRvoDbRes& result) const {
    return ReadSchemaFile(folder_.Write("reply.xml", file).c_str(), result, temp_files_);
  }

  TempFolder folder_;
  tagTEMPFILEINFO temp_files_ = {"", "cell", "bin"};
};

// A row's cells, parted by bars.
inline Rows RowsOf(const CRvoDbRes& result) {
  Rows rows(static_cast<std::size_t>(result.GetRecordCount()));
  for (int row = 0; row < result.GetRecordCount(); ++row) {
    std::string& text = rows[static_cast<std::size_t>(row)];
    for (int column = 0; column < result.GetFieldCount(); ++column) {
      text += std::string(column > 0 ? "|" : "") + result._str(row, column).GetString();
    }
  }
  return rows;
}

// The exact texts of a row's cells, parted by bars.
inline std::string ExactRow(const CRvoDbRes& result, int row) {
  std::string text;
  for (int column = 0; column < result.GetFieldCount(); ++column) {
    text += column > 0 ? "|" : "";
    text += result.IsNull(row, column) ? "null" : result._text(row, column).GetString();
  }
  return text;
}

inline std::string Repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (; count > 0; --count) all += text;
  return all;
}

// The schema part of a rowset file: AttributeType elements with these attributes, and the start of
// the data.
inline std::string RowsetHead(const Rows& types) {
  std::string text = "<s:ElementType name='row'>";
  for (const std::string& type : types) {
    text += "<s:AttributeType " + type + "/></s:AttributeType>";
  }
  return text + "</s:ElementType><rs:data>";
}

inline std::string SchemaHead(const std::string& columns) {
  return "<xs:schema><xs:element name='T' msdata:MainDataTable='M'><xs:sequence>" + columns +
         "</xs:sequence></xs:element></xs:schema>";
}

inline const std::string kIntColumn = "<xs:element name='a' type='xs:int'/>";

}  // namespace qv
