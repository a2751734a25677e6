// Measures the recordset readers beside general XML parsers; run by the script next to it.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "Cells.h"
#include "RecordsetFiles.h"
#include "Subjects.h"

namespace qv {

namespace {

struct Options {
  bool generate = false;
  bool peak = false;
  std::string subject = "ours";
  Dialect dialect = Dialect::kRowset;
  std::string file;
  std::uint64_t mebibytes = 1;
  std::vector<std::string> rowset_files;
  std::vector<std::string> schema_files;
};

void Define(CLI::App& app, Options& options) {
  static const std::map<std::string, Dialect> kDialects = {{"rowset", Dialect::kRowset},
                                                           {"schema", Dialect::kSchema}};
  app.add_flag("--generate", options.generate, "Write a recordset file and end");
  app.add_flag("--peak", options.peak, "Read a file once and print the most memory held, in bytes");
  app.add_option("--subject", options.subject, "Who reads, for --peak");
  app.add_option("--dialect", options.dialect, "rowset or schema, for --generate and --peak")
      ->transform(CLI::CheckedTransformer(kDialects));
  app.add_option("--file", options.file, "The file, for --generate and --peak");
  app.add_option("--mib", options.mebibytes, "The size in MiB, for --generate");
  app.add_option("--rowset", options.rowset_files, "Files of the rowset dialect to measure with");
  app.add_option("--schema", options.schema_files, "Files of the schema dialect to measure with");
}

const Subject& FindSubject(const std::string& name) {
  for (const Subject& subject : AllSubjects()) {
    if (subject.name == name) return subject;
  }
  throw std::runtime_error("no subject " + name);
}

void PrintPeak(const Options& options) {
  FindSubject(options.subject).read(options.dialect, options.file, Purpose::kMeasure);
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  std::cout << usage.ru_maxrss * 1024 << '\n';
}

// Throws if a subject reads other values than the first, because it cannot be compared then.
void CheckAgreement(Dialect dialect, const std::string& path) {
  const Subject& ours = AllSubjects().front();
  const Summary expected = ours.read(dialect, path, Purpose::kCompare);
  if (expected.rows == 0) throw std::runtime_error("no rows in " + path);
  for (const Subject& subject : AllSubjects()) {
    if (!subject.fills_columns) continue;
    if (subject.read(dialect, path, Purpose::kCompare) != expected) {
      throw std::runtime_error(std::string(subject.name) + " reads other cells from " + path);
    }
  }
}

void Register(Dialect dialect, const std::string& path) {
  const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(path));
  const std::string group = std::string(dialect == Dialect::kRowset ? "rowset" : "schema") + "/" +
                            std::to_string(bytes >> 20) + "/";
  for (const Subject& subject : AllSubjects()) {
    const auto run = [&subject, dialect, path, bytes](benchmark::State& state) {
      for (auto _ : state) {
        benchmark::DoNotOptimize(subject.read(dialect, path, Purpose::kMeasure));
      }
      state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * bytes);
    };
    benchmark::RegisterBenchmark((group + std::string(subject.name)).c_str(), run)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();  // processor time would leave out the second thread
  }
}

void Measure(const Options& options) {
  const auto prepare = [](Dialect dialect, const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
      CheckAgreement(dialect, path);
      Register(dialect, path);
    }
  };
  prepare(Dialect::kRowset, options.rowset_files);
  prepare(Dialect::kSchema, options.schema_files);
  RegisterCells();
  benchmark::RunSpecifiedBenchmarks();
}

int Run(int argc, char** argv) {
  // Removes its own options.
  benchmark::Initialize(&argc, argv);
  CLI::App app("Measures the recordset readers beside general XML parsers");
  Options options;
  Define(app, options);
  CLI11_PARSE(app, argc, argv);
  if (options.generate) {
    WriteRecordsetFile(options.dialect, options.file, options.mebibytes << 20);
  } else if (options.peak) {
    PrintPeak(options);
  } else {
    Measure(options);
  }
  return 0;
}

}  // namespace

}  // namespace qv

int main(int argc, char** argv) try {
  return qv::Run(argc, argv);
} catch (const std::exception& error) {
  std::cerr << "recordset_bench: " << error.what() << '\n';
  return 1;
}
