#include "ResultWriter.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "DisplayText.h"

namespace qv::tool {
namespace {

// Without a limit, one cell of a megabyte would make every row a megabyte long.
constexpr std::size_t kWidestColumn = 256;

class TableWriter {
 public:
  TableWriter(const CRvoDbRes& rows, const std::string& null_text, std::ostream& out)
      : rows_(rows), null_text_(null_text), out_(out) {
    for (int column = 0; column < rows.GetFieldCount(); ++column) {
      columns_.push_back(Measured(column));
    }
  }

  bool Write() { return WriteHeader() && WriteRule() && WriteRows(); }

 private:
  struct Column {
    std::size_t width = 0;
    bool is_number = false;
  };

  Column Measured(int column) {
    Column measured;
    Widen(measured, rows_.GetFiledName(column).View());
    measured.is_number = IsNumber(rows_.GetFieldType(column));
    for (int row = 0; row < rows_.GetRecordCount(); ++row) {
      Widen(measured, CellText(row, column).View());
    }
    return measured;
  }

  CString CellText(int row, int column) const {
    return rows_.IsNull(row, column) ? CString(null_text_.c_str()) : rows_._text(row, column);
  }

  void Widen(Column& column, std::string_view text) {
    cell_.clear();
    column.width = std::min(std::max(column.width, AppendVisible(text, cell_)), kWidestColumn);
  }

  bool WriteHeader() {
    for (std::size_t column = 0; column < columns_.size(); ++column) {
      AppendCell(column, rows_.GetFiledName(static_cast<int>(column)).View());
    }
    return EndLine();
  }

  bool WriteRule() {
    for (std::size_t column = 0; column < columns_.size(); ++column) {
      line_ += column == 0 ? "" : "-+-";
      line_.append(columns_[column].width, '-');
    }
    return EndLine();
  }

  bool WriteRows() {
    for (int row = 0; row < rows_.GetRecordCount(); ++row) {
      for (std::size_t column = 0; column < columns_.size(); ++column) {
        AppendCell(column, CellText(row, static_cast<int>(column)).View());
      }
      if (!EndLine()) return false;
    }
    return true;
  }

  void AppendCell(std::size_t column, std::string_view text) {
    cell_.clear();
    const std::size_t cells = AppendVisible(text, cell_);
    const std::size_t width = columns_[column].width;
    const std::size_t padding = cells < width ? width - cells : 0;
    line_ += column == 0 ? "" : " | ";
    if (columns_[column].is_number) {
      line_.append(padding, ' ').append(cell_);
    } else {
      line_.append(cell_).append(padding, ' ');
    }
  }

  bool EndLine() {
    line_.erase(line_.find_last_not_of(' ') + 1);
    line_ += '\n';
    out_ << line_;
    line_.clear();
    return out_.good();
  }

  const CRvoDbRes& rows_;
  const std::string& null_text_;
  std::ostream& out_;
  std::vector<Column> columns_;
  std::string line_;
  std::string cell_;
};

}  // namespace

bool WriteTable(const CRvoDbRes& rows, const std::string& null_text, std::ostream& out) {
  if (rows.GetFieldCount() == 0) return out.good();
  return TableWriter(rows, null_text, out).Write();
}

}  // namespace qv::tool
