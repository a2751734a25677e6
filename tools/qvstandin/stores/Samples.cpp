#include "Samples.h"

#include <zip.h>

#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "base/platform/Platform.h"
#include "base/storage/PartFile.h"
#include "tools/qvstandin/databases/Sqlite.h"

namespace qv::standin {

namespace {

// Lets readers work beside a writer. The file keeps the mode.
constexpr const char* kAfterwards = "PRAGMA journal_mode = WAL";

Outcome RunScript(const std::string& file, const std::string& script) {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open(file.c_str(), &opened);
  const SqliteConnection connection(opened);
  if (code != SQLITE_OK) return {ErrorCode::kNoDatabase, "cannot create " + file};
  for (const std::string& part : {"BEGIN;" + script + ";COMMIT", std::string(kAfterwards)}) {
    if (sqlite3_exec(connection.get(), part.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
      return {ErrorCode::kSqlFailed, sqlite3_errmsg(connection.get())};
    }
  }
  return {};
}

struct SampleFile {
  const char* path;
  std::string_view text;
};

constexpr std::array kFiles{
    SampleFile{"readme.txt", "The files of the sample projects.\n"},
    SampleFile{"drawings/structural/ST-001.txt", "Foundation plan, revision 3\n"},
    SampleFile{"drawings/structural/ST-002.txt", "Beams of the first floor, revision 1\n"},
    SampleFile{"drawings/structural/梁配筋图.txt", "城南地铁站2期 梁配筋图\n"},
    SampleFile{"drawings/建筑/一层平面图.txt", "城南地铁站2期 一层平面图\n"},
    SampleFile{"reports/2026/周报 第1周.txt", "本周完成: 一层平面图\n"},
};

constexpr const char* kPack = "packs/standard parts.zip";
constexpr std::array kPacked{
    SampleFile{"contents.txt", "Parts that every project may use.\n"},
    SampleFile{"7/bolt.txt", "Bolt M20 x 80\n"},
    SampleFile{"7/螺母.txt", "螺母 M20\n"},
};

std::string Below(const std::string& folder, const char* path) {
  return platform::NarrowFromPath(platform::PathFromNarrow(folder) /
                                  platform::PathFromNarrow(path));
}

bool MakeFolderOf(const std::string& path) {
  const std::filesystem::path above = platform::PathFromNarrow(path).parent_path();
  return platform::CreatePrivateFolder(platform::NarrowFromPath(above));
}

bool WriteFile(const std::string& path, std::string_view text) {
  if (!MakeFolderOf(path)) return false;
  storage::OutputFile file(path, platform::Create::kNew);
  return file.Write(text) && file.Close();
}

bool WritePack(const std::string& path) {
  if (!MakeFolderOf(path)) return false;
  zip_t* const pack = zip_open(path.c_str(), ZIP_CREATE | ZIP_EXCL, nullptr);
  if (pack == nullptr) return false;
  for (const SampleFile& packed : kPacked) {
    zip_source_t* const text = zip_source_buffer(pack, packed.text.data(), packed.text.size(), 0);
    if (zip_file_add(pack, packed.path, text, ZIP_FL_ENC_UTF_8) >= 0) continue;
    zip_source_free(text);
    zip_discard(pack);
    return false;
  }
  if (zip_close(pack) == 0) return true;
  zip_discard(pack);
  return false;
}

bool WriteAll(const std::string& folder) {
  for (const SampleFile& file : kFiles) {
    if (!WriteFile(Below(folder, file.path), file.text)) return false;
  }
  return WritePack(Below(folder, kPack));
}

}  // namespace

Outcome CreateSample(const SampleDatabase& sample, const std::string& file) {
  // Created before SQLite opens it, so that only its owner can read it.
  storage::PartFile part(file + ".new", platform::Create::kAlways);
  if (!part.Finish(storage::Flush::kNo)) {
    return {ErrorCode::kNoDatabase, "cannot create " + part.Path()};
  }
  Outcome outcome = RunScript(part.Path(), sample.script);
  if (outcome.Ok() && !part.MoveTo(file)) {
    outcome = {ErrorCode::kNoDatabase, "cannot rename a file to " + file};
  }
  return outcome;
}

Outcome CreateSampleFiles(const std::string& folder) {
  const std::string unfinished = folder + ".new";
  std::error_code error;
  std::filesystem::remove_all(platform::PathFromNarrow(unfinished), error);
  if (!WriteAll(unfinished))
    return {ErrorCode::kStoreFailed, "cannot create files in " + unfinished};
  std::filesystem::rename(platform::PathFromNarrow(unfinished), platform::PathFromNarrow(folder),
                          error);
  if (error) return {ErrorCode::kStoreFailed, "cannot rename a folder to " + folder};
  return {};
}

}  // namespace qv::standin
