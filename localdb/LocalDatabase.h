// Direct access to databases, as the database calls use it in local mode: through ODBC drivers.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "base/odbc/Statement.h"
#include "qvnetcall/TempFileInfo.h"

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

// Sets what OdbcLocalDatabase::LastError says on this thread, for a call that did not reach its
// database; an empty `text` stands for success.
void NoteLocalFailure(const char* database, std::string_view text);

// Names are compared byte by byte. Any number of threads may call; only those that use the same
// database wait for each other. A connection that is closed or replaced while another thread uses
// it is closed when that thread is done. Nothing throws, except std::bad_alloc.
class OdbcLocalDatabase : public LocalDatabase {
 public:
  // Binary cells become files named by `files` at the time of the query; it must outlive this
  // object.
  explicit OdbcLocalDatabase(const tagTEMPFILEINFO& files) : files_(files) {}

  // The text is an ODBC connection text. If connecting fails, an existing connection of that name
  // stays.
  int Open(const char* database, const char* connection) override;
  int Close(const char* database) override;
  void CloseAll();

  // Appends the text's first result that has columns to the columns of `result`. If no result has
  // columns, the call succeeds, since the text has done its work. If the query fails, `result` is
  // unchanged.
  int Select(const CString& sql, CRvoDbRes& result, const char* database) override;
  // Rows of the result are discarded.
  int Execute(const CString& sql, const char* database) override;

  // The database's name and the driver's message. A call with the unknown name of a database that
  // could not be opened keeps the message of that failure.
  [[nodiscard]] std::string LastError() const override;

 private:
  struct Entry {
    std::mutex mutex;
    std::unique_ptr<odbc::Connection> connection;
  };
  using Work = std::function<bool(odbc::Statement& statement, odbc::Diagnostics& diagnostics)>;

  [[nodiscard]] std::shared_ptr<Entry> Find(std::string_view database);
  // Runs `sql` on a database and then calls `work`, with exclusive use of the database.
  int Run(const CString& sql, const char* database, const Work& work);

  const tagTEMPFILEINFO& files_;
  std::mutex mutex_;  // guards the map; never held while a database works
  std::map<std::string, std::shared_ptr<Entry>, std::less<>> entries_;
};

}  // namespace qv
