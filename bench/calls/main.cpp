// Measures calls of the library beside what others need for the same work, and prints a table. The
// script bench/calls/servers starts the servers for it.
#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "Groups.h"

namespace qv::bench {

namespace {

struct NamedGroup {
  const char* name;
  void (*add)(Group& group, const Bench& bench);
};

constexpr std::array kGroups{
    NamedGroup{"small", AddSmallCalls}, NamedGroup{"threads", AddThreads},
    NamedGroup{"far", AddFarCalls},     NamedGroup{"cache", AddCachedCalls},
    NamedGroup{"rows", AddManyRows},    NamedGroup{"files", AddFiles},
    NamedGroup{"tree", AddSmallFiles}};

std::vector<std::string> GroupNames() {
  std::vector<std::string> names;
  for (const NamedGroup& group : kGroups) names.emplace_back(group.name);
  return names;
}

Pace PaceOf(bool quick) {
  if (!quick) return {};
  return {.rounds = 2, .long_rounds = 1, .slice = std::chrono::milliseconds(20), .warm_up = 2};
}

// Prints what was measured even if a later group fails.
void Measure(const std::vector<std::string>& names, const Bench& bench) {
  Table table;
  std::exception_ptr failure;
  for (const NamedGroup& named : kGroups) {
    if (std::ranges::find(names, named.name) == names.end()) continue;
    fmt::print(stderr, "measuring {}\n", named.name);
    try {
      Group group(PaceOf(bench.quick));
      named.add(group, bench);
      group.Run(table);
    } catch (const std::exception& error) {
      fmt::print(stderr, "call_bench: {}: {}\n", named.name, error.what());
      failure = std::current_exception();
    }
  }
  table.Print(std::cout);
  if (failure != nullptr) std::rethrow_exception(failure);
}

int Run(int argc, char** argv) {
  CLI::App app("Measures calls of the library beside what others need for the same work");
  std::vector<std::string> names = GroupNames();
  bool quick = false;
  app.add_option("groups", names, "What to measure; everything if not given")
      ->check(CLI::IsMember(GroupNames()));
  app.add_flag("--quick", quick, "Less of everything, to see that it works");
  bool heading = false;
  app.add_flag("--heading", heading, "Print a table without rows, and measure nothing");
  CLI11_PARSE(app, argc, argv);
  if (heading) return Table().Print(std::cout), 0;
  const Setting setting = Setting::FromEnvironment();
  const Bench bench{setting, Host(setting), quick};
  Measure(names, bench);
  return 0;
}

}  // namespace

}  // namespace qv::bench

int main(int argc, char** argv) try {
  return qv::bench::Run(argc, argv);
} catch (const std::exception& error) {
  fmt::print(stderr, "call_bench: {}\n", error.what());
  return 1;
}
