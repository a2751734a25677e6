// Recordset files of a given size, with the same bytes in every run.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace qv {

enum class Dialect { kRowset, kSchema };

enum class ColumnKind { kInteger, kBoolean, kDouble, kDate, kText };

struct FileColumn {
  std::string_view name;
  ColumnKind kind;
  std::string_view rowset_type;  // the attributes of its s:datatype
  std::string_view schema_type;  // its xs:element's type
};

inline constexpr std::array<FileColumn, 8> kFileColumns = {{
    {"ID", ColumnKind::kInteger, "dt:type='int' dt:maxLength='4' rs:precision='10'", "xs:int"},
    {"PARENT_ID", ColumnKind::kInteger, "dt:type='i8' dt:maxLength='8' rs:precision='19'",
     "xs:long"},
    {"WEIGHT", ColumnKind::kDouble, "dt:type='float' dt:maxLength='8' rs:precision='15'",
     "xs:double"},
    {"CHECKED_OUT", ColumnKind::kBoolean, "dt:type='boolean' dt:maxLength='2'", "xs:boolean"},
    {"CHANGED_AT", ColumnKind::kDate, "dt:type='dateTime' dt:maxLength='16' rs:precision='23'",
     "xs:dateTime"},
    {"CODE", ColumnKind::kText, "dt:type='string' dt:maxLength='32'", "xs:string"},
    {"TITLE", ColumnKind::kText, "dt:type='string' dt:maxLength='255'", "xs:string"},
    {"REMARK", ColumnKind::kText, "dt:type='string' dt:maxLength='2147483647' rs:long='true'",
     "xs:string"},
}};

// The elements that hold the rows.
inline constexpr std::string_view kRowsetRow = "z:row";
inline constexpr std::string_view kSchemaRow = "Item";

// Writes a file of at least `bytes` bytes, ending with the row that reaches them. It is well-formed
// XML and has its rows' values in the columns' order, some missing, none empty. Throws
// std::runtime_error when it cannot be written.
void WriteRecordsetFile(Dialect dialect, const std::string& path, std::uint64_t bytes);

}  // namespace qv
