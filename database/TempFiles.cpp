// The members of CRvoDatabase about temporary files.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "base/platform/Platform.h"
#include "base/storage/FileNames.h"
#include "qvnetcall/RvoDatabase.h"
#include "server/ModuleState.h"

namespace {

tagTEMPFILEINFO& TempFiles() { return qv::ModuleState::Get().temp_files; }

template <std::size_t kSize>
void Assign(char (&field)[kSize], std::string_view text) {
  const std::size_t length = std::min(text.size(), kSize - 1);
  std::memmove(field, text.data(), length);
  std::memset(field + length, 0, kSize - length);
}

void Assign(char (&field)[260], const char* text) {
  Assign(field, text != nullptr ? std::string_view(text) : std::string_view());
}

// Runs when the library is loaded. The module's state, which is first used here, records the
// module's file before that.
[[maybe_unused]] const bool kStarted = [] {
  CRvoDatabase::Ini();
  return true;
}();

}  // namespace

void CRvoDatabase::Ini() {
  Assign(TempFiles().path, qv::platform::TempFolder());
  Assign(TempFiles().prefix, "qvcd");
  Assign(TempFiles().ext, "tmp");
}

CString CRvoDatabase::GetTempFilePath() { return TempFiles().path; }

void CRvoDatabase::SetFileTempInfo(const char* path, const char* prefix, const char* ext) {
  Assign(TempFiles().path, path);
  Assign(TempFiles().prefix, prefix);
  Assign(TempFiles().ext, ext);
}

void CRvoDatabase::SetFileTempInfo(const char* path) { Assign(TempFiles().path, path); }

CString CRvoDatabase::GetTempFileNameA() {
  const std::string name = qv::storage::NewAnswerName();
  return CString(std::string_view(name));
}
