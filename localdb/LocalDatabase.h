// Direct access to databases, as the database calls use it in local mode.
#pragma once

#include <string>

class CRvoDbRes;
class CString;

namespace qv {

// Connections are registered under the name of their database. Results are those of the exported
// calls. Texts stay their caller's.
class LocalDatabase {
 public:
  virtual ~LocalDatabase() = default;

  // Opens `database` with a connection text; opening a name again replaces it. 1, or 0.
  virtual int Open(const char* database, const char* connection) = 0;
  // 1 when there was such a connection to close, else 0.
  virtual int Close(const char* database) = 0;
  // Runs a query and fills `result`. 0; 1 for an empty text, an unknown database, and a query that
  // failed.
  virtual int Select(const CString& sql, CRvoDbRes& result, const char* database) = 0;
  // Runs a statement that gives no rows. As above.
  virtual int Execute(const CString& sql, const char* database) = 0;

  // Why the last call of this thread failed, for a log; empty when nobody said.
  [[nodiscard]] virtual std::string LastError() const { return {}; }
};

}  // namespace qv
