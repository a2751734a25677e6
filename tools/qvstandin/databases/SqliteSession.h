// An open SQLite file that serves one request after the other.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Sqlite.h"
#include "tools/qvstandin/common/Work.h"

namespace qv::standin {

// One thread at a time. Clients' statements cannot attach files, change settings of the database,
// load extensions or end their transaction, and no request finds anything that an earlier one left
// in the connection.
class SqliteSession {
 public:
  // Opens an existing file. Returns null if that fails. Values are not longer than `cell_limit`.
  [[nodiscard]] static std::unique_ptr<SqliteSession> Open(const std::string& path,
                                                           std::size_t cell_limit);
  SqliteSession(const SqliteSession&) = delete;
  SqliteSession& operator=(const SqliteSession&) = delete;

  // The path of the file.
  [[nodiscard]] const std::string& Key() const { return path_; }
  [[nodiscard]] sqlite3* Connection() const { return connection_.get(); }

  // Begins a request. Once `limit`, which outlives the request, is over, statements and waits for
  // locks are interrupted.
  void Begin(WorkLimit& limit);
  // Ends a request, whose statements are gone. Returns whether the session can serve another one.
  [[nodiscard]] bool End();
  // Makes End() return false.
  void Spoil() { is_spoiled_ = true; }
  // Moves what the request has written into the file itself, so that copies of it are whole. Call
  // it between requests. Returns false if the session cannot serve another one.
  [[nodiscard]] bool Refresh();
  // Returns false if the file was removed, or replaced by another one. Call it between requests.
  [[nodiscard]] bool IsFresh() const;

  // Prepares the first statement of a text, and sets `rest` to what follows it. `length` counts the
  // NUL at the end. Returns SQLite's result code.
  [[nodiscard]] int Prepare(const char* text, int length, SqliteStatement& statement,
                            const char*& rest);
  // Runs one of the server's own statements. Returns SQLite's result code.
  [[nodiscard]] int RunTrusted(const char* sql);

  // Returns the statement that was kept for exactly this text, or null.
  [[nodiscard]] SqliteStatement Take(std::string_view text);
  // Keeps the statement, which is all of the text, for later requests.
  void Keep(std::string_view text, SqliteStatement statement);

 private:
  struct KeptStatement {
    std::string text;
    bool is_trusted;  // nobody else may run it
    SqliteStatement statement;
  };

  explicit SqliteSession(std::string path) : path_(std::move(path)) {}

  [[nodiscard]] bool Confine(std::size_t cell_limit);
  // Lets the functions that tell of changes tell of those of this request.
  [[nodiscard]] bool ReplaceCounters();
  [[nodiscard]] int Authorize(int action, const char* function);

  const std::string path_;
  SqliteConnection connection_;
  WorkLimit* limit_ = nullptr;  // of the request, if there is one
  bool is_trusted_ = false;     // the statement being prepared is the server's own
  bool is_spoiled_ = false;
  bool has_written_ = false;          // to SQLite's log
  sqlite3_int64 changes_before_ = 0;  // of all earlier requests
  std::vector<KeptStatement> kept_;   // the one used last is at the end
};

}  // namespace qv::standin
