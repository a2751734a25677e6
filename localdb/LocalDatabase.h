// Direct access to databases, as the database calls use it in local mode.
#pragma once

#include <string>

class CRvoDbRes;
class CString;

namespace qv {

// Connections are registered under the name of their database. Results are those of the exported
// calls. Arguments are not kept.
class LocalDatabase {
 public:
  virtual ~LocalDatabase() = default;

  // Opens `database` with a connection text; opening a name again replaces its connection. Returns
  // 1, or 0 on failure.
  virtual int Open(const char* database, const char* connection) = 0;
  // Returns 1 if there was such a connection to close, else 0.
  virtual int Close(const char* database) = 0;
  // Runs a query and fills `result`. Returns 0, or 1 for an empty text, an unknown database, or a
  // query that failed.
  virtual int Select(const CString& sql, CRvoDbRes& result, const char* database) = 0;
  // Runs a statement without rows, with the same results.
  virtual int Execute(const CString& sql, const char* database) = 0;

  // Returns why the last call of this thread failed, for a log; empty if the reason is unknown.
  [[nodiscard]] virtual std::string LastError() const { return {}; }
};

}  // namespace qv
