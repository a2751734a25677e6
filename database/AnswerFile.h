// The temporary file of an answer: its name, its contents, and its end.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "message/MsgContent.h"

class CRvoDbRes;

namespace qv {

// The file of one answer, and the gzip file that it was unpacked from. Both are in the folder of
// temporary files and stay there until Delete: on some paths of a call, what a transport wrote must
// remain.
class AnswerFile {
 public:
  AnswerFile() = default;
  // Returns a new name for a file that does not exist yet.
  static AnswerFile New();
  // Takes an existing file.
  explicit AnswerFile(std::string path) : path_(std::move(path)) {}

  // The path that a reader reads, and that a transport writes.
  [[nodiscard]] const std::string& Path() const { return path_; }
  // The gzip file of a compressed answer; empty if the answer came plain.
  [[nodiscard]] const std::string& CompressedPath() const { return compressed_path_; }

  // Writes the reply's next field to the file. An incomplete file is removed, so that nothing takes
  // it for an answer.
  void TakeFrom(CMsgContent& reply);
  // Makes ReadInto read the reply's next field where it is, without a file, as long as the reply
  // exists. Returns false, and does nothing, if there is no such field or no file could be created
  // in its place: then TakeFrom fails as well, and so does the call.
  [[nodiscard]] bool StayIn(CMsgContent& reply);
  // Whether TakeFrom wrote the file that came, so that no transport can know it.
  [[nodiscard]] bool CameInReply() const { return came_in_reply_; }
  [[nodiscard]] bool StaysInReply() const { return stays_in_reply_; }
  // Unpacks the file beside itself; Path then returns the result. Returns false on failure; Delete
  // removes both files.
  [[nodiscard]] bool Unpack();
  // Reads the answer in the dialect of the server's type. Returns false if it is not a recordset.
  [[nodiscard]] bool ReadInto(CRvoDbRes& result, bool web) const;
  void Delete() const;

 private:
  std::string path_;
  std::string compressed_path_;
  bool came_in_reply_ = false;
  bool stays_in_reply_ = false;
  std::string_view bytes_;  // in the reply
};

// Deletes an answer's files at the end of a block, also after an exception.
struct DeleteAtExit {
  const AnswerFile& file;
  ~DeleteAtExit() { file.Delete(); }
};

}  // namespace qv
