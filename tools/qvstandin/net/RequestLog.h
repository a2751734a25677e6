// The log of the requests that the server has answered.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "FrameSession.h"
#include "base/platform/Folder.h"

namespace qv::standin {

struct RequestLogOptions {
  std::string file;                  // empty: standard error
  bool is_shown = false;             // lines of a file are written to standard error as well
  std::uint64_t size = 10ULL << 20;  // a file is replaced before it grows larger, in bytes
  bool as_json = false;              // one JSON object in each line
  bool with_statements = false;      // the beginning of each statement, without passwords
};

// Returns the statement with "***" in place of every text that follows the word "password" or "by",
// or that contains a password in the way of connection texts.
[[nodiscard]] std::string WithoutPasswords(std::string_view statement);

// Returns one line without its end. docs/errors.md describes the fields.
[[nodiscard]] std::string LogLine(const ServedCommand& served, bool with_statement);
[[nodiscard]] std::string JsonLine(const ServedCommand& served, bool with_statement);

// Any thread may add lines. What cannot be written at once is lost: a full disk, or a pipe that
// nobody reads, must not cost a client its answer.
class RequestLog {
 public:
  // How many older files are kept, as FILE.1, the newest, to FILE.3.
  static constexpr int kOlderFiles = 3;

  explicit RequestLog(RequestLogOptions options) : options_(std::move(options)) {}

  // Opens the file, to which only its owner has access. Returns false if that fails. Call it once,
  // before Add().
  [[nodiscard]] bool Open();
  void Add(const ServedCommand& served);

 private:
  [[nodiscard]] bool Append(platform::Create how);
  void Rotate();
  void Write(std::string_view line);

  const RequestLogOptions options_;
  std::mutex mutex_;
  platform::FilePtr file_;
  std::uint64_t size_ = 0;
};

}  // namespace qv::standin
