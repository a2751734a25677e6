// One text sent to one database, and its answer on the way from the reply to a result set.
#pragma once

#include <cstdint>
#include <string>

#include "message/MsgContent.h"
#include "server/Exchange.h"

namespace qv {

// Commands, all with the fields: string database, string text.
constexpr std::uint32_t kCommandQuery = 200;
constexpr std::uint32_t kCommandQueryCompressed = 210;
constexpr std::uint32_t kCommandStatement = 300;  // reply: string status
constexpr std::uint32_t kCommandProcedure = 900;

// The size of the request and reply blocks of every database call, in bytes.
constexpr std::uint32_t kDatabaseBlock = 0x100000;

class QueryExchange : public Exchange {
 public:
  // A text that does not fit the message is missing from the request, which is sent all the same.
  QueryExchange(std::uint32_t command, const char* database, const CString& text);

  // Sends over the transport of the server's type; `compress` is passed to the HTTP transport.
  [[nodiscard]] int SendBy(bool web, int compress) { return web ? SendOverWeb(compress) : Send(); }
};

}  // namespace qv

class CRvoDbRes;

namespace qv {

// Returns the query cache's key for an answer: the server, the database and the text.
[[nodiscard]] std::string CacheKey(const char* database, const CString& sql);

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
  void TakeFrom(CMsgContent& reply) const;
  // Unpacks the file beside itself; Path then returns the result. Returns false on failure; Delete
  // removes both files.
  [[nodiscard]] bool Unpack();
  // Reads the file in the dialect of the server's type. Returns false if it is not a recordset.
  [[nodiscard]] bool ReadInto(CRvoDbRes& result, bool web) const;
  void Delete() const;

 private:
  std::string path_;
  std::string compressed_path_;
};

// Deletes an answer's files at the end of a block, also after an exception.
struct DeleteAtExit {
  const AnswerFile& file;
  ~DeleteAtExit() { file.Delete(); }
};

// Which answers a call accepts.
enum class Accept { kPlain, kPlainOrCompressed };

// Reads the reply of a query and stores its answer in `file`: status, number, storage kind, and the
// file itself if it travels in the reply. Returns kSuccess or the result of the call.
[[nodiscard]] int ReceiveAnswer(CMsgContent& reply, Accept accept, AnswerFile& file);

}  // namespace qv
