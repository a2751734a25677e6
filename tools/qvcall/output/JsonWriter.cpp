#include "ResultWriter.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/qvcall/system/NarrowText.h"

namespace qv::tool {
namespace {

std::string Quoted(std::string_view text) {
  return nlohmann::json(Utf8FromNarrow(text))
      .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

// The quoted keys of every object. Names are made unique after invalid bytes were replaced, because
// names that differ only in invalid bytes become equal then.
std::vector<std::string> Keys(const CRvoDbRes& rows) {
  std::vector<std::string> keys;
  std::set<std::string> taken;
  for (int column = 0; column < rows.GetFieldCount(); ++column) {
    const std::string first = Quoted(rows.GetFiledName(column).View());
    std::string key = first;
    for (int copy = 2; !taken.insert(key).second; ++copy) {
      key = first.substr(0, first.size() - 1) + "_" + std::to_string(copy) + '"';
    }
    keys.push_back(key);
  }
  return keys;
}

}  // namespace

bool WriteJson(const CRvoDbRes& rows, std::ostream& out) {
  const std::vector<std::string> keys = Keys(rows);
  std::string line = "[";
  for (int row = 0; row < rows.GetRecordCount(); ++row) {
    line += row == 0 ? "\n{" : ",\n{";
    for (std::size_t column = 0; column < keys.size(); ++column) {
      if (column != 0) line += ',';
      line += keys[column];
      line += ':';
      line += Quoted(rows._str(row, static_cast<int>(column)).View());
    }
    line += '}';
    out << line;
    if (!out.good()) return false;
    line.clear();
  }
  out << line << "\n]\n";
  return out.good();
}

}  // namespace qv::tool
