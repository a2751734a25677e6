#include "Commands.h"

#include <fmt/ostream.h>

#include <istream>
#include <optional>
#include <string>
#include <string_view>

#include "SqlInput.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/session/Session.h"
#include "tools/qvcall/system/LocalFiles.h"
#include "tools/qvcall/system/SystemPlaces.h"

namespace qv::tool {
namespace {

// Returns the user's own folder for stored answers, and creates its parents. Returns nullopt if the
// environment names no place for caches.
std::optional<std::string> DefaultCacheFolder() {
  const std::string caches = CachesOfUser();
  if (caches.empty()) return std::nullopt;
  MakeLocalFolders(caches);  // the cache reports if it cannot use the folder
  return JoinLocal(caches, "qvcall");
}

// Runs the text by the call of the command.
int RunText(const QueryOptions& options, const char* database, const CString& text,
            CRvoDbRes& rows) {
  const auto call =
      options.call == Call::kProcedure ? CRvoDatabase::ExecuteSP : CRvoDatabase::SelectSQL;
  return call(&text, &rows, database, options.use_cache ? 1 : 0);
}

// Makes the library load the server's settings, or the stored ones while it is offline: an empty
// query does so and sends nothing else. A procedure call does not load them, and without them no
// answer is stored.
void LoadSettings(const Session& session) {
  const CString nothing;
  CRvoDbRes no_rows;
  (void)CRvoDatabase::SelectSQL(&nothing, &no_rows, session.Database(), 1);
}

// Goes offline by choice. The stored settings of the server must allow storing answers; otherwise
// the library would send the text to the server.
bool GoOffline(const Session& session, std::ostream& err) {
  if (CRvoServer::SetCacheState(cache_state::kOfflineByChoice) != 1) {
    fmt::print(
        err,
        "qvcall: {} counts as a web server, by ServerType in the QvNetClient.ini beside the "
        "library or because nobody answered there, and web servers do not support offline work\n",
        session.Address());
    return false;
  }
  LoadSettings(session);
  if (CRvoDatabase::GetServerIsSetCatche() != 1) {
    fmt::print(err,
               "qvcall: the cache folder holds no answers of this server, or the server does "
               "not allow storing them; run this with --cache while it can be reached\n");
    return false;
  }
  return true;
}

bool PrepareCache(const Session& session, const QueryOptions& options, std::ostream& err) {
  if (session.Way() == Route::kWeb && !options.offline) {
    fmt::print(err, "--cache is not used: a web server does not support offline work\n");
    return true;
  }
  std::optional<std::string> folder = options.cache_folder;
  if (folder->empty()) folder = DefaultCacheFolder();
  if (!folder) {
    fmt::print(err, "qvcall: {} a place for the cache; give --cache a folder\n", NoCachesOfUser());
    return false;
  }
  if (CRvoServer::SetCachePath(folder->c_str()) != 1) {
    fmt::print(err, "qvcall: the cache folder {} cannot be used; check that it can be written\n",
               *folder);
    // Without the cache, the server can still answer.
    return !options.offline;
  }
  if (options.offline) return GoOffline(session, err);
  // The library answers from the cache only after an attempt to reach the server has failed.
  (void)session.Probe();
  LoadSettings(session);
  return true;
}

// Fills `rows`. The connection is closed before the rows are printed, which may take long.
bool Fetch(const ConnectionOptions& connection, const QueryOptions& options, const std::string& sql,
           CRvoDbRes& rows, std::ostream& err) {
  Session session(connection, options.database);
  if (!session.Start(err)) return false;
  if (options.use_cache && !PrepareCache(session, options, err)) return false;

  const int code = RunText(options, session.Database(), CString(std::string_view(sql)), rows);
  if (code != result::kSuccess) {
    session.PrintFailure(options.call, code, err);
    return false;
  }
  // After an answer from the server, the client would be online.
  if (options.use_cache && CRvoServer::GetCacheState(1) != cache_state::kOnline) {
    fmt::print(err, "answered from the cache: {}\n",
               options.offline ? "working offline" : "the server cannot be reached");
  }
  return true;
}

}  // namespace

int Run(const ConnectionOptions& connection, const QueryOptions& options, std::istream& in,
        std::ostream& out, std::ostream& err) {
  std::string sql;
  if (const int status = ReadStatement(options.sql, in, sql, err); status != kDone) return status;
  CRvoDbRes rows;
  if (!Fetch(connection, options, sql, rows, err)) return kFailed;
  if (!WriteResult(rows, options.format, out)) return kFailed;
  if (!out.flush()) return kFailed;
  if (options.format == Format::kTable) {
    const int count = rows.GetRecordCount();
    fmt::print(err, "({} {})\n", count, count == 1 ? "row" : "rows");
  }
  return kDone;
}

int Run(const ConnectionOptions& connection, const ExecOptions& options, std::istream& in,
        std::ostream& err) {
  std::string sql;
  if (const int status = ReadStatement(options.sql, in, sql, err); status != kDone) return status;
  Session session(connection, options.database);
  if (!session.Start(err)) return kFailed;
  const CString text{std::string_view(sql)};
  const int code = CRvoDatabase::ExecuteSQL(&text, session.Database());
  if (code != result::kSuccess) {
    session.PrintFailure(Call::kExec, code, err);
    return kFailed;
  }
  fmt::print(err, "done\n");
  return kDone;
}

}  // namespace qv::tool
