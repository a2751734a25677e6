#include "AnswerFile.h"

#include <cstdio>

#include "base/platform/Platform.h"
#include "cache/GzipFile.h"
#include "qvnetcall/RvoDatabase.h"
#include "qvnetcall/framework/FileException.h"
#include "resultset/readers/RecordsetReaders.h"
#include "server/ModuleState.h"

namespace qv {

namespace {

// The unpacked file is named after the last characters of the answer's own name.
constexpr std::size_t kUnpackedNameLength = 16;

std::string UnpackedPath(const std::string& path) {
  const std::size_t name = platform::FolderLength(path);
  const std::size_t length = path.size() - name;
  const std::size_t cut = length > kUnpackedNameLength ? length - kUnpackedNameLength : 0;
  return path.substr(0, name) + path.substr(name + cut);
}

// Writes the next field to a new file at `path`. Returns false if the file is incomplete.
bool WriteField(CMsgContent& reply, const std::string& path) {
  std::FILE* const stream = platform::CreatePrivateFile(path, platform::Create::kAlways);
  if (stream == nullptr) return false;
  CFile file(stream);
  if (reply.GetFile(file, nullptr) != 0) return false;
  try {
    file.Close();
  } catch (const CFileException&) {
    return false;
  }
  return true;
}

}  // namespace

AnswerFile AnswerFile::New() {
  std::string path = static_cast<const char*>(CRvoDatabase::GetTempFilePath());
  return AnswerFile(path.append(CRvoDatabase::GetTempFileNameA().View()));
}

void AnswerFile::TakeFrom(CMsgContent& reply) {
  came_in_reply_ = WriteField(reply, path_);
  if (!came_in_reply_) platform::RemoveFile(path_);
}

bool AnswerFile::StayIn(CMsgContent& reply) {
  CFIFOClass::Field field;
  if (!reply.Queue().Peek(field)) return false;
  stays_in_reply_ = platform::MayCreateFile(platform::FolderOf(path_), field.length);
  if (stays_in_reply_) bytes_ = {reinterpret_cast<const char*>(field.body), field.length};
  return stays_in_reply_;
}

bool AnswerFile::Unpack() {
  compressed_path_ = path_;
  path_ = UnpackedPath(compressed_path_);
  return GunzipFile(compressed_path_, path_) == 0;
}

bool AnswerFile::ReadInto(CRvoDbRes& result, bool web) const {
  const tagTEMPFILEINFO& files = ModuleState::Get().temp_files;
  if (stays_in_reply_) {
    return web ? ReadSchema(bytes_, result, files) : ReadRowset(bytes_, result, files);
  }
  return web ? ReadSchemaFile(path_.c_str(), result, files)
             : ReadRowsetFile(path_.c_str(), result, files);
}

void AnswerFile::Delete() const {
  if (!compressed_path_.empty()) platform::RemoveFile(compressed_path_);
  platform::RemoveFile(path_);
}

}  // namespace qv
