// A connection to PostgreSQL through libpq, which sends several statements at a time.
#pragma once

#include <libpq-fe.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/odbc/Diagnostics.h"

namespace qv::standin {

// One thread, except Cancel.
class PostgresConnection {
 public:
  using Parameters = std::map<std::string, std::string>;  // by libpq's keywords
  using Argument = std::optional<std::string>;

  enum class Reply {
    kRow,
    kEnd,       // of a statement that succeeded
    kFailed,    // the statement; the rest of its group is skipped
    kSkipped,   // the statement, since an earlier one of its group failed
    kGroupEnd,  // all replies to a group were read, or the connection is lost
  };

  // Returns null and adds to `said` if the server cannot be reached within `seconds`.
  [[nodiscard]] static std::unique_ptr<PostgresConnection> Open(Parameters parameters,
                                                                std::uint32_t seconds,
                                                                odbc::Diagnostics& said);

  // Adds a statement to the current group. Its arguments are texts or nulls that the engine
  // converts. Fails without an effect if the text contains a NUL or the connection is lost.
  [[nodiscard]] bool Add(std::string_view sql, std::span<const Argument> arguments,
                         odbc::Diagnostics& said);
  [[nodiscard]] bool Add(std::string_view sql, odbc::Diagnostics& said) {
    return Add(sql, {}, said);
  }
  // Makes the server send the answers to what was added before it answers the rest of the group.
  [[nodiscard]] bool AskForAnswers(odbc::Diagnostics& said);
  // Ends the current group and sends it. Groups are independent of each other: the next one runs
  // whatever came of this one.
  [[nodiscard]] bool Send(odbc::Diagnostics& said);
  // Returns the next reply to what was sent. Adds to `said` for kFailed.
  [[nodiscard]] Reply Read(odbc::Diagnostics& said);
  // The result that the last reply came with: a row, or the columns of an end.
  [[nodiscard]] const PGresult* Result() const { return result_.get(); }
  // Reads the replies to a group to their end. Returns whether all of its statements succeeded.
  [[nodiscard]] bool ReadGroup(odbc::Diagnostics& said);
  // Sends a text of several statements of the server's own, which succeed or fail together.
  // ReadText() waits for them. There must be nothing else to read.
  [[nodiscard]] bool SendText(const std::string& sql, odbc::Diagnostics& said);
  [[nodiscard]] bool ReadText(odbc::Diagnostics& said);

  // Returns whether the server has said nothing on its own, as it does when it ends a connection.
  [[nodiscard]] bool IsQuiet() const;
  // Returns whether texts are sent as UTF-8 whatever the database contains.
  [[nodiscard]] bool ConvertsText() const;
  // May be called from any thread. Asks the server to end the running statement; it ignores that
  // while there is none.
  void Cancel() const;

 private:
  struct Free {
    void operator()(PGconn* connection) const { PQfinish(connection); }
    void operator()(PGresult* result) const { PQclear(result); }
    void operator()(PGcancel* cancel) const { PQfreeCancel(cancel); }
  };

  explicit PostgresConnection(PGconn* connection) : connection_(connection) {}

  // Adds what the connection or a result says. Returns false.
  bool Failed(odbc::Diagnostics& said) const;
  bool Failed(const PGresult* result, odbc::Diagnostics& said) const;

  const std::unique_ptr<PGconn, Free> connection_;
  std::unique_ptr<PGcancel, Free> cancel_;
  std::unique_ptr<PGresult, Free> result_;
  bool is_first_ = false;  // the next reply is the first to a group
};

}  // namespace qv::standin
