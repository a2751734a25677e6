#include "ColumnNames.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "base/text/Letters.h"

namespace qv::standin {

namespace {

constexpr std::string_view kHarmful = " '\"=/<>&";

bool IsHarmful(char ch) {
  return text::IsControl(ch) || kHarmful.find(ch) != std::string_view::npos;
}

}  // namespace

std::vector<std::string> HarmlessNames(const std::vector<Column>& columns) {
  std::vector<std::string> names;
  std::set<std::string> taken;
  for (const Column& column : columns) {
    std::string name = column.name;
    std::ranges::replace_if(name, IsHarmful, '_');
    if (name.empty()) name = "column" + std::to_string(names.size() + 1);
    std::string candidate = name;
    for (int copy = 2; !taken.insert(candidate).second; ++copy) {
      candidate = name + "_" + std::to_string(copy);
    }
    names.push_back(candidate);
  }
  return names;
}

}  // namespace qv::standin
