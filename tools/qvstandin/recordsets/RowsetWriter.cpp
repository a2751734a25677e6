#include "RecordsetWriter.h"

#include <string_view>

namespace qv::standin {

namespace {

constexpr std::string_view kHead =
    "<xml xmlns:s='urn:schemas:recordset' xmlns:dt='urn:schemas:datatypes'"
    " xmlns:rs='urn:schemas:rowset' xmlns:z='#RowsetSchema'>\n"
    "<s:Schema id='RowsetSchema'>\n"
    "<s:ElementType name='row' content='eltOnly'>\n";
constexpr std::string_view kSchemaEnd = "</s:ElementType>\n</s:Schema>\n<rs:data>\n";
constexpr std::string_view kTail = "</rs:data>\n</xml>\n";

// The attributes of a kind's data type. A length of 0 stands for the column's declared length.
struct TypeAttributes {
  std::string_view type;
  std::uint32_t length;
  std::string_view further;
};

TypeAttributes AttributesOf(ColumnKind kind) {
  switch (kind) {
    case ColumnKind::kInt32:
      return {"int", 4, " rs:precision='10' rs:fixedlength='true'"};
    case ColumnKind::kInt64:
      return {"i8", 8, " rs:precision='19' rs:fixedlength='true'"};
    case ColumnKind::kInt16:
      return {"i2", 2, " rs:precision='5' rs:fixedlength='true'"};
    case ColumnKind::kUint8:
      return {"ui1", 1, " rs:precision='3' rs:fixedlength='true'"};
    case ColumnKind::kBoolean:
      return {"boolean", 2, " rs:fixedlength='true'"};
    case ColumnKind::kDouble:
      return {"float", 8, " rs:precision='15' rs:fixedlength='true'"};
    case ColumnKind::kSingle:
      return {"r4", 4, " rs:precision='7' rs:fixedlength='true'"};
    case ColumnKind::kDecimal:
      return {"number", 0, ""};
    case ColumnKind::kDate:  // no precision: by it clients tell dates from dates with a time
      return {"dateTime", 16, " rs:fixedlength='true'"};
    case ColumnKind::kDateTime:
      return {"dateTime", 16, " rs:precision='23' rs:fixedlength='true'"};
    case ColumnKind::kFixedText:
      return {"string", 0, " rs:fixedlength='true'"};
    case ColumnKind::kText:
      return {"string", 0, ""};
    case ColumnKind::kLongText:
      return {"string", 0, " rs:long='true'"};
    case ColumnKind::kBinary:
      return {"bin.hex", 0, " rs:long='true'"};
  }
  return {"string", 0, ""};
}

std::string Declaration(const Column& column, const std::string& name, std::size_t number) {
  const TypeAttributes attributes = AttributesOf(column.kind);
  const std::uint32_t length = attributes.length != 0 ? attributes.length : column.length;
  std::string text = "<s:AttributeType name='" + name + "' rs:number='" + std::to_string(number) +
                     "' rs:nullable='true'><s:datatype dt:type='";
  text += attributes.type;
  text += "'";
  if (length != 0) text += " dt:maxLength='" + std::to_string(length) + "'";
  text += attributes.further;
  text += "/></s:AttributeType>\n";
  return text;
}

}  // namespace

RecordsetWriter::Layout RowsetWriter::LayoutOf(const std::vector<Column>& columns,
                                               const std::vector<std::string>& names) const {
  Layout layout{.head = std::string(kHead),
                .row_opening = "<z:row",
                .row_closing = "/>\n",
                .tail = std::string(kTail),
                .binary = BinaryForm::kHex,
                .cell_openings = {},
                .cell_closings = {}};
  for (std::size_t i = 0; i < columns.size(); ++i) {
    layout.head += Declaration(columns[i], names[i], i + 1);
    layout.cell_openings.push_back(" " + names[i] + "='");
    layout.cell_closings.emplace_back("'");
  }
  layout.head += kSchemaEnd;
  return layout;
}

}  // namespace qv::standin
