// The connections to databases that are kept open from one request of a client to the next.
#pragma once

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "KeptSession.h"
#include "OdbcSession.h"
#include "SqliteSession.h"
#include "StatementWatch.h"

namespace qv::standin {

// Sessions that wait for their next request, each with the key by which it is found. The one that
// was used longest ago is closed if there are too many.
template <class Session, std::size_t kMost>
class KeptSessions {
 public:
  KeptSessions() { kept_.reserve(kMost); }

  // Returns a session that can be used, or null.
  [[nodiscard]] std::unique_ptr<Session> Take(std::string_view key) {
    const auto key_of = [](const auto& kept) -> std::string_view { return kept->Key(); };
    const auto found = std::ranges::find(kept_, key, key_of);
    if (found == kept_.end()) return nullptr;
    std::unique_ptr<Session> session = std::move(*found);
    kept_.erase(found);
    return session->IsFresh() ? std::move(session) : nullptr;
  }
  // Allocates nothing.
  void Keep(std::unique_ptr<Session> session) {
    if (kept_.size() == kMost) kept_.erase(kept_.begin());
    kept_.push_back(std::move(session));
  }
  void Refresh() {
    std::erase_if(kept_, [](const auto& session) { return !session->Refresh(); });
  }
  void Clear() { kept_.clear(); }

 private:
  std::vector<std::unique_ptr<Session>> kept_;
};

// Belongs to one client, so that what an engine remembers of a connection is never another
// client's. One thread.
struct KeptDatabases {
  // Prepares what is open for the next request. Call it when the client has its answer.
  void Refresh() {
    sqlite.Refresh();
    odbc.Refresh();
    postgres.Refresh();
  }
  // Closes everything.
  void Clear() {
    sqlite.Clear();
    odbc.Clear();
    postgres.Clear();
    watch.reset();
  }

  KeptSessions<SqliteSession, 2> sqlite;  // each has three open files
  KeptSessions<OdbcSession, 4> odbc;
  KeptSessions<KeptSession, 4> postgres;  // without a driver; PostgresRequest makes them
  std::unique_ptr<StatementWatch> watch;  // for the next request to an engine; may be null
};

}  // namespace qv::standin
