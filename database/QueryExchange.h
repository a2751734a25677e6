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

// The blocks of every database call's request and reply, in bytes.
constexpr std::uint32_t kDatabaseBlock = 0x100000;

class QueryExchange : public Exchange {
 public:
  // A text that does not fit the message is missing from the request; the request is sent all the
  // same.
  QueryExchange(std::uint32_t command, const char* database, const CString& text);

  // Sends over the transport of the server's kind; `compress` goes to the HTTP transport.
  [[nodiscard]] int SendBy(bool web, int compress) { return web ? SendOverWeb(compress) : Send(); }
};

}  // namespace qv

class CRvoDbRes;

namespace qv {

// The key that the query cache knows an answer by: the server, the database and the text.
[[nodiscard]] std::string CacheKey(const char* database, const CString& sql);

// The file of one answer, and the file that it was unpacked from. They are in the folder of
// temporary files, and stay there until Delete: not every path of a call may remove what a
// transport wrote.
class AnswerFile {
 public:
  AnswerFile() = default;
  // A new name for a file that is still to be written.
  static AnswerFile New();
  // A file that is there.
  explicit AnswerFile(std::string path) : path_(std::move(path)) {}

  // What a reader reads, and what a transport writes.
  [[nodiscard]] const std::string& Path() const { return path_; }
  // The gzip file that the answer came as; empty when it came plain.
  [[nodiscard]] const std::string& CompressedPath() const { return compressed_path_; }

  // Writes the reply's next field to the file. A file that was not written whole is removed, so
  // that nothing takes it for an answer.
  void TakeFrom(CMsgContent& reply) const;
  // Unpacks the file beside itself; Path then names the result. False when that fails; Delete
  // removes both.
  [[nodiscard]] bool Unpack();
  // Reads the file in the dialect of the server's kind. False when it is no recordset.
  [[nodiscard]] bool ReadInto(CRvoDbRes& result, bool web) const;
  void Delete() const;

 private:
  std::string path_;
  std::string compressed_path_;
};

// Deletes an answer's files when a block is left, by an exception too.
struct DeleteAtExit {
  const AnswerFile& file;
  ~DeleteAtExit() { file.Delete(); }
};

// Which answers a call understands.
enum class Accept { kPlain, kPlainOrCompressed };

// Reads the reply of a query and brings its answer to `file`: status, number, storage kind, and the
// file itself when it travels in the reply. Returns kSuccess, or the result that the call returns.
[[nodiscard]] int ReceiveAnswer(CMsgContent& reply, Accept accept, AnswerFile& file);

}  // namespace qv
