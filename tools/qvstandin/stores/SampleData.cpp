#include "SampleData.h"

#include <cstdio>

#include "base/platform/Platform.h"
#include "tools/qvstandin/databases/SqliteConnection.h"

namespace qv::standin {

namespace {

// Readers and a writer at once; the mode stays with the file.
constexpr const char* kAfterwards = "PRAGMA journal_mode = WAL";

Outcome RunScript(const std::string& file, const std::string& script) {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open(file.c_str(), &opened);
  const SqliteConnection connection(opened);
  if (code != SQLITE_OK) return {ErrorCode::kNoDatabase, "cannot make " + file};
  for (const std::string& part : {"BEGIN;" + script + ";COMMIT", std::string(kAfterwards)}) {
    if (sqlite3_exec(connection.get(), part.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
      return {ErrorCode::kSqlFailed, sqlite3_errmsg(connection.get())};
    }
  }
  return {};
}

}  // namespace

Outcome CreateSample(const SampleDatabase& sample, const std::string& file) {
  const std::string unfinished = file + ".new";
  // Made here, so that only its owner can read it.
  std::FILE* const empty = platform::CreatePrivateFile(unfinished, platform::Create::kAlways);
  if (empty == nullptr) return {ErrorCode::kNoDatabase, "cannot make " + unfinished};
  std::fclose(empty);
  Outcome outcome = RunScript(unfinished, sample.script);
  if (outcome.Ok() && !platform::ReplaceByRename(unfinished, file)) {
    outcome = {ErrorCode::kNoDatabase, "cannot name " + file};
  }
  if (!outcome.Ok()) platform::RemoveFile(unfinished);
  return outcome;
}

}  // namespace qv::standin
