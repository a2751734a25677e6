#include "Cells.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <utility>

#include "resultset/ResultTable.h"

namespace qv {

namespace {

// Every column has the same cell: an integer, or a text like the codes of the recordset files.
Cells OneCell(std::uint8_t type) {
  Cells cells = CellsFor(type);
  if (auto* const integers = std::get_if<IntCells>(&cells)) integers->push_back(1234567);
  if (auto* const texts = std::get_if<TextCells>(&cells)) texts->push_back("DWG-0001234.A");
  return cells;
}

std::shared_ptr<const CRvoDbRes> MakeResult(std::uint8_t type, int columns) {
  auto result = std::make_shared<CRvoDbRes>();
  for (int i = 1; i <= columns; ++i) {
    ResultTable::Of(*result).AddColumn(
        {.name = "PART_CODE_" + std::to_string(i), .type = type, .cells = OneCell(type)});
  }
  return result;
}

template <class Column>
void Register(const std::string& name, std::shared_ptr<const CRvoDbRes> result, Column column) {
  const auto run = [result = std::move(result), column](benchmark::State& state) {
    auto asked = column;
    for (auto _ : state) {
      benchmark::DoNotOptimize(asked);
      benchmark::DoNotOptimize((*result)[asked]);
    }
  };
  benchmark::RegisterBenchmark(name.c_str(), run);
}

}  // namespace

void RegisterCells() {
  static const std::pair<int, const char*> kSizes[] = {{20, "part_code_20"}, {60, "part_code_60"}};
  for (const auto& [kind, type] :
       {std::pair("integer", kTypeInteger), std::pair("text", kTypeVarChar)}) {
    for (const auto& [columns, name] : kSizes) {
      const std::string group = std::string("cells/") + kind + "/" + std::to_string(columns) + "/";
      const auto result = MakeResult(type, columns);
      Register(group + "number", result, columns - 1);
      Register(group + "name", result, name);
    }
  }
}

}  // namespace qv
