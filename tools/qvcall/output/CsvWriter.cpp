#include "ResultWriter.h"

#include <ostream>
#include <string>
#include <string_view>

namespace qv::tool {
namespace {

bool NeedsQuotes(std::string_view text) {
  return text.find_first_of(",\"\r\n") != std::string_view::npos;
}

void AppendCell(std::string_view text, bool quoted, std::string& line) {
  if (!quoted) {
    line += text;
    return;
  }
  line += '"';
  for (const char ch : text) {
    line.append(ch == '"' ? 2 : 1, ch);
  }
  line += '"';
}

class CsvWriter {
 public:
  CsvWriter(const CRvoDbRes& rows, const std::string& null_text, std::ostream& out)
      : rows_(rows), columns_(rows.GetFieldCount()), null_text_(null_text), out_(out) {}

  bool Write() {
    for (int column = 0; column < columns_; ++column) {
      Append(column, rows_.GetFiledName(column).View(), false);
    }
    if (!EndLine()) return false;
    for (int row = 0; row < rows_.GetRecordCount(); ++row) {
      for (int column = 0; column < columns_; ++column) {
        const bool is_null = rows_.IsNull(row, column);
        const CString text =
            is_null ? CString(std::string_view(null_text_)) : rows_._text(row, column);
        Append(column, text.View(), is_null);
      }
      if (!EndLine()) return false;
    }
    return true;
  }

 private:
  void Append(int column, std::string_view text, bool is_null) {
    if (column != 0) line_ += ',';
    // An empty cell that is alone would leave an empty line.
    const bool is_lone = columns_ == 1 && text.empty();
    const bool looks_null = !is_null && text == null_text_;
    AppendCell(text, is_lone || looks_null || NeedsQuotes(text), line_);
  }

  bool EndLine() {
    line_ += '\n';
    out_ << line_;
    line_.clear();
    return out_.good();
  }

  const CRvoDbRes& rows_;
  const int columns_;
  const std::string& null_text_;
  std::ostream& out_;
  std::string line_;
};

}  // namespace

bool WriteCsv(const CRvoDbRes& rows, const std::string& null_text, std::ostream& out) {
  if (rows.GetFieldCount() == 0) return out.good();
  return CsvWriter(rows, null_text, out).Write();
}

}  // namespace qv::tool
