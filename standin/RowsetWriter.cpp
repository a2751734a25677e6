#include "RowsetWriter.h"

#include <limits>

#include "CellText.h"
#include "ColumnNames.h"

namespace qv {

namespace {

constexpr std::size_t kFlushAt = 64 * 1024;

constexpr std::string_view kHead =
    "<xml xmlns:s='urn:schemas:recordset' xmlns:dt='urn:schemas:datatypes'"
    " xmlns:rs='urn:schemas:rowset' xmlns:z='#RowsetSchema'>\n"
    "<s:Schema id='RowsetSchema'>\n"
    "<s:ElementType name='row' content='eltOnly'>\n";
constexpr std::string_view kSchemaEnd = "</s:ElementType>\n</s:Schema>\n<rs:data>\n";
constexpr std::string_view kTail = "</rs:data>\n</xml>\n";

// The attributes of a kind's data type; a length of 0 is the declared one of the column.
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
    case ColumnKind::kDate:  // without a precision: clients tell the two kinds of dates by it
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

}  // namespace

bool RowsetWriter::Begin(const std::vector<Column>& columns) {
  buffer_ = kHead;
  const std::vector<std::string> names = HarmlessNames(columns);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    AppendColumn(columns[i], names[i], i + 1);
    kinds_.push_back(columns[i].kind);
    openings_.push_back(" " + names[i] + "='");
  }
  buffer_ += kSchemaEnd;
  return Flush();
}

void RowsetWriter::AppendColumn(const Column& column, const std::string& name, std::size_t number) {
  const TypeAttributes attributes = AttributesOf(column.kind);
  const std::uint32_t length = attributes.length != 0 ? attributes.length : column.length;
  buffer_ += "<s:AttributeType name='" + name + "' rs:number='" + std::to_string(number) +
             "' rs:nullable='true'><s:datatype dt:type='";
  buffer_ += attributes.type;
  buffer_ += "'";
  if (length != 0) buffer_ += " dt:maxLength='" + std::to_string(length) + "'";
  buffer_ += attributes.further;
  buffer_ += "/></s:AttributeType>\n";
}

bool RowsetWriter::Row(const std::vector<Cell>& cells) {
  buffer_ += "<z:row";
  for (std::size_t i = 0; i < cells.size() && i < kinds_.size(); ++i) {
    const std::size_t before = buffer_.size();
    buffer_ += openings_[i];
    if (AppendCellText(kinds_[i], cells[i], buffer_)) {
      buffer_ += '\'';
    } else {
      buffer_.resize(before);
    }
    if (buffer_.size() >= kFlushAt && !Flush()) return false;  // one row may be large
  }
  buffer_ += "/>\n";
  if (row_count_ < std::numeric_limits<std::int32_t>::max()) ++row_count_;
  return true;
}

bool RowsetWriter::Finish() {
  buffer_ += kTail;
  return Flush() && target_.Finish();
}

bool RowsetWriter::Flush() {
  const bool kept = target_.Write(buffer_);
  buffer_.clear();
  return kept;
}

}  // namespace qv
