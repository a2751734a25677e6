#include "AnswerCache.h"

#include <fmt/ostream.h>

#include <algorithm>
#include <ctime>
#include <optional>

#include "base/text/Letters.h"
#include "qvnetcall/QvNetCall4.h"
#include "tools/qvcall/output/DisplayText.h"
#include "tools/qvcall/system/LocalFiles.h"
#include "tools/qvcall/system/SystemPlaces.h"

namespace qv::tool {
namespace {

// Returns the folder with the folders of all servers, and creates its parents if it is the user's
// own. Returns nullopt if the environment names no place for caches.
std::optional<std::string> FolderOfAllServers(const QueryOptions& options) {
  if (!options.cache_folder.empty()) return options.cache_folder;
  const std::string caches = CachesOfUser();
  if (caches.empty()) return std::nullopt;
  MakeLocalFolders(caches);  // the cache reports if it cannot use the folder
  return JoinLocal(caches, "qvcall");
}

// Makes the library load the server's settings, or the stored ones while it is offline: an empty
// query does so and sends nothing else. A procedure call does not load them, and without them no
// answer is stored.
void LoadSettings(const Session& session) {
  const CString nothing;
  CRvoDbRes no_rows;
  (void)CRvoDatabase::SelectSQL(&nothing, &no_rows, session.Database(), 1);
}

void PrintNothingStored(const Session& session, const std::string& folder, std::ostream& err) {
  fmt::print(err,
             "qvcall: {} holds no answers of {}, or the server does not allow storing them; run "
             "this with --cache while it can be reached\n",
             folder, session.Address());
}

// Goes offline by choice. The stored settings of the server must allow storing answers; otherwise
// the library would send the text to the server.
bool GoOffline(const Session& session, const std::string& folder, std::ostream& err) {
  if (CRvoServer::SetCacheState(cache_state::kOfflineByChoice) != 1) {
    fmt::print(
        err,
        "qvcall: {} counts as a web server, by ServerType in the QvNetClient.ini beside the "
        "library or because nobody answered there, and web servers do not support offline work\n",
        session.Address());
    return false;
  }
  LoadSettings(session);
  if (CRvoDatabase::GetServerIsSetCatche() == 1) return true;
  PrintNothingStored(session, folder, err);
  return false;
}

// Whether queries are answered from the cache. After an answer from the server, the client would be
// online.
bool IsOffline(const QueryOptions& options) {
  return options.use_cache && CRvoServer::GetCacheState(1) != cache_state::kOnline;
}

}  // namespace

std::string CacheFolderName(std::string_view server, int port) {
  // The port comes first, because some systems reserve certain words at the start of a name.
  std::string name = fmt::format("{}@", port);
  for (const char ch : text::ToLower(server)) {
    const bool is_safe = text::IsLetterOrDigit(ch) || ch == '-' || ch == '.';
    if (is_safe) {
      name += ch;
    } else {
      name += fmt::format("%{:02x}", static_cast<unsigned char>(ch));
    }
  }
  return name;
}

std::string AgeText(std::int64_t seconds) {
  constexpr struct {
    std::int64_t seconds;
    const char* name;
  } kUnits[] = {{86400, "day"}, {3600, "hour"}, {60, "minute"}, {1, "second"}};
  const auto* unit = kUnits;
  while (unit->seconds > 1 && seconds < unit->seconds) ++unit;
  const std::int64_t count = std::max<std::int64_t>(seconds, 0) / unit->seconds;
  return fmt::format("{} {}{}", count, unit->name, count == 1 ? "" : "s");
}

bool PrepareCache(const Session& session, const QueryOptions& options, std::ostream& err) {
  if (session.Way() == Route::kWeb && !options.offline) {
    fmt::print(err, "--cache is not used: a web server does not support offline work\n");
    return true;
  }
  const std::optional<std::string> all = FolderOfAllServers(options);
  if (!all) {
    fmt::print(err, "qvcall: {} a place for the cache; give --cache a folder\n", NoCachesOfUser());
    return false;
  }
  const std::string folder = JoinLocal(*all, CacheFolderName(session.Server(), session.Port()));
  if (options.offline && KindOf(folder) == LocalKind::kNone) {
    PrintNothingStored(session, *all, err);
    return false;
  }
  if (CRvoServer::SetCachePath(folder.c_str()) != 1) {
    fmt::print(err, "qvcall: the cache folder {} cannot be used; check that it can be written\n",
               folder);
    // Without the cache, the server can still answer.
    return !options.offline;
  }
  if (options.offline) return GoOffline(session, folder, err);
  // The library answers from the cache only after an attempt to reach the server has failed.
  (void)session.Probe();
  LoadSettings(session);
  return true;
}

void PrintAge(const Session& session, const QueryOptions& options, const CString& text,
              std::ostream& err) {
  if (!IsOffline(options)) return;
  const std::int64_t stored = CRvoDatabase::GetStoredAnswerTime(&text, session.Database());
  if (stored == 0) return;  // another program has cleared the cache meanwhile
  fmt::print(err, "answered from the cache: {}; the answer was stored {} ago, at {}\n",
             options.offline ? "working offline" : "the server cannot be reached",
             AgeText(std::time(nullptr) - stored), TimeText(stored));
}

bool PrintMissingAnswer(const Session& session, const QueryOptions& options, const CString& text,
                        int code, std::ostream& err) {
  const bool is_missing = code == result::kFailed && IsOffline(options) &&
                          CRvoDatabase::GetStoredAnswerTime(&text, session.Database()) == 0;
  if (!is_missing) return false;
  fmt::print(
      err,
      "qvcall: {}the cache has no answer of {} to this text (result {})\n"
      "  run it with --cache while the server can be reached, so that its answer is stored\n",
      options.offline ? "" : "the server cannot be reached, and ", session.Address(), code);
  return true;
}

}  // namespace qv::tool
