// Direct access to databases through their ODBC drivers.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "LocalDatabase.h"
#include "base/odbc/Statement.h"
#include "qvnetcall/TempFileInfo.h"

namespace qv {

// Names are compared byte by byte. Any number of threads may call; those that use one database wait
// for each other, and nobody else does. A connection that is closed or replaced while another
// thread works on it goes when that thread is done. Nothing throws but a lack of memory.
class OdbcLocalDatabase : public LocalDatabase {
 public:
  // Binary cells become files as `files` names them at the time of the query; it outlives the
  // object.
  explicit OdbcLocalDatabase(const tagTEMPFILEINFO& files) : files_(files) {}

  // The text is an ODBC connection text. When it does not lead to a connection, the one that has
  // the name stays.
  int Open(const char* database, const char* connection) override;
  int Close(const char* database) override;
  void CloseAll();

  // The first of a text's results that has columns is what `result` gets, behind the columns that
  // it has; none of them is no failure, since the text has then done its work. When a query fails,
  // `result` is as it was.
  int Select(const CString& sql, CRvoDbRes& result, const char* database) override;
  // Rows that the text gives are dropped.
  int Execute(const CString& sql, const char* database) override;

  // What the driver said, behind the database's name. The unknown name of a database that could not
  // be opened leaves what was said then.
  [[nodiscard]] std::string LastError() const override;

 private:
  struct Entry {
    std::mutex mutex;
    std::unique_ptr<odbc::Connection> connection;
  };
  using Work = std::function<bool(odbc::Statement& statement, odbc::Diagnostics& diagnostics)>;

  [[nodiscard]] std::shared_ptr<Entry> Find(std::string_view database);
  // Runs `sql` on a database, and then `work`, with the database to itself.
  int Run(const CString& sql, const char* database, const Work& work);

  const tagTEMPFILEINFO& files_;
  std::mutex mutex_;  // over the map, never while a database works
  std::map<std::string, std::shared_ptr<Entry>, std::less<>> entries_;
};

}  // namespace qv
