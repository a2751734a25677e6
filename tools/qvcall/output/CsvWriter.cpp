#include "ResultWriter.h"

#include <ostream>
#include <string>
#include <string_view>

#include "DisplayText.h"

namespace qv::tool {
namespace {

bool NeedsQuotes(std::string_view text) {
  return text.find_first_of(",\"\r\n") != std::string_view::npos;
}

// Whether a spreadsheet would take `text` for a formula.
bool LooksLikeFormula(std::string_view text) { return text.find_first_of("=+-@\t\r") == 0; }

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
  CsvWriter(const CRvoDbRes& rows, const Style& style, std::ostream& out)
      : rows_(rows),
        columns_(rows.GetFieldCount()),
        style_(style),
        null_text_(style.null_text.value_or("")),
        out_(out) {}

  bool Write() {
    for (int column = 0; column < columns_; ++column) {
      Append(column, Safe(rows_.GetFiledName(column).View(), false), false);
    }
    if (!EndLine()) return false;
    for (int row = 0; row < rows_.GetRecordCount(); ++row) {
      for (int column = 0; column < columns_; ++column) AppendValue(row, column);
      if (!EndLine()) return false;
    }
    return true;
  }

 private:
  void AppendValue(int row, int column) {
    if (rows_.IsNull(row, column)) return Append(column, null_text_, true);
    const CString text = rows_._text(row, column);
    Append(column, Safe(text.View(), IsNumber(rows_.GetFieldType(column))), false);
  }

  // Returns the text as it may stand in the file; valid until the next call.
  std::string_view Safe(std::string_view text, bool is_number) {
    if (!style_.keeps_controls) {
      safe_.clear();
      AppendPrintable(text, safe_);
      text = safe_;
    }
    // A negative number is none.
    if (!style_.is_for_spreadsheets || is_number || !LooksLikeFormula(text)) return text;
    return safe_ = std::string("'").append(text);
  }

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
  const Style& style_;
  const std::string null_text_;
  std::ostream& out_;
  std::string line_;
  std::string safe_;
};

}  // namespace

bool WriteCsv(const CRvoDbRes& rows, const Style& style, std::ostream& out) {
  if (rows.GetFieldCount() == 0) return out.good();
  return CsvWriter(rows, style, out).Write();
}

}  // namespace qv::tool
