#include "RecordsetWriter.h"

#include <algorithm>
#include <string_view>

namespace qv::standin {

namespace {

std::string_view TypeOf(ColumnKind kind) {
  switch (kind) {
    case ColumnKind::kInt32:
      return "xs:int";
    case ColumnKind::kInt64:
      return "xs:long";
    case ColumnKind::kInt16:
      return "xs:short";
    case ColumnKind::kUint8:
      return "xs:unsignedByte";
    case ColumnKind::kBoolean:
      return "xs:boolean";
    case ColumnKind::kDouble:
      return "xs:double";
    case ColumnKind::kSingle:
      return "xs:float";
    case ColumnKind::kDecimal:
      return "xs:decimal";
    case ColumnKind::kDate:
    case ColumnKind::kDateTime:
      return "xs:dateTime";
    case ColumnKind::kBinary:
      return "xs:base64Binary";
    default:
      return "xs:string";
  }
}

// Clients find the end of a row by the text of its tag alone, so no column name may begin with it.
std::string RowTag(const std::vector<std::string>& names) {
  std::string tag = "Table";
  while (std::ranges::any_of(names, [&](const auto& name) { return name.starts_with(tag); })) {
    tag += '_';
  }
  return tag;
}

}  // namespace

RecordsetWriter::Layout SchemaWriter::LayoutOf(const std::vector<Column>& columns,
                                               const std::vector<std::string>& names) const {
  const std::string tag = RowTag(names);
  Layout layout{.head =
                    "<DataSet>\n<xs:schema id='DataSet' xmlns:xs='urn:schemas:columns'"
                    " xmlns:msdata='urn:schemas:data'>\n<xs:element name='" +
                    tag + "' msdata:MainDataTable='" + tag +
                    "'>\n<xs:complexType>\n<xs:sequence>\n",
                .row_opening = "<" + tag + ">",
                .row_closing = "</" + tag + ">\n",
                .tail = "</DataSet>\n",
                .binary = BinaryForm::kBase64,
                .cell_openings = {},
                .cell_closings = {}};
  for (std::size_t i = 0; i < columns.size(); ++i) {
    layout.head += "<xs:element name='" + names[i] + "' type='";
    layout.head += TypeOf(columns[i].kind);
    layout.head += "' minOccurs='0'/>\n";
    layout.cell_openings.push_back("<" + names[i] + ">");
    layout.cell_closings.push_back("</" + names[i] + ">");
  }
  layout.head += "</xs:sequence>\n</xs:complexType>\n</xs:element>\n</xs:schema>\n";
  return layout;
}

}  // namespace qv::standin
