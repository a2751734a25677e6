#include "ResultWriter.h"

#include <ostream>
#include <string>
#include <string_view>

namespace qv::tool {
namespace {

void AppendCell(std::string_view text, bool quoted, std::string& line) {
  if (!quoted && text.find_first_of(",\"\r\n") == std::string_view::npos) {
    line += text;
    return;
  }
  line += '"';
  for (const char ch : text) {
    line.append(ch == '"' ? 2 : 1, ch);
  }
  line += '"';
}

template <typename TextOfColumn>
bool WriteLine(int columns, TextOfColumn text_of, std::string& line, std::ostream& out) {
  line.clear();
  for (int column = 0; column < columns; ++column) {
    const CString text = text_of(column);
    if (column != 0) line += ',';
    // An empty cell that is alone would leave an empty line, which readers skip.
    AppendCell(text.View(), columns == 1 && text.IsEmpty(), line);
  }
  line += '\n';
  out << line;
  return out.good();
}

}  // namespace

bool WriteCsv(const CRvoDbRes& rows, std::ostream& out) {
  const int columns = rows.GetFieldCount();
  if (columns == 0) return out.good();
  std::string line;
  const auto name_of = [&rows](int column) { return rows.GetFiledName(column); };
  if (!WriteLine(columns, name_of, line, out)) return false;
  for (int row = 0; row < rows.GetRecordCount(); ++row) {
    const auto cell_of = [&rows, row](int column) { return rows._str(row, column); };
    if (!WriteLine(columns, cell_of, line, out)) return false;
  }
  return true;
}

}  // namespace qv::tool
