// The members of CRvoDatabase about the server's settings.
#include <atomic>
#include <string>

#include "RunQuery.h"
#include "base/call/LastError.h"
#include "base/platform/Platform.h"
#include "base/text/Numbers.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/RvoDatabase.h"
#include "qvnetcall/transport/QvNetClient4.h"
#include "resultset/BinaryCells.h"
#include "resultset/ResultTable.h"
#include "server/ModuleState.h"
#include "server/ServerType.h"

using qv::ModuleState;
using qv::ServerSettings;

namespace {

ServerSettings& Settings() { return ModuleState::Get().settings; }

constexpr const char kDatabase[] = "PLATDB";
constexpr const char kQuery[] =
    "select CI_ServerSetCache,CI_ServerCompress,CI_DefaultSelectCompress,"
    "CI_DefaultDisplayCompress,CI_DefaultDisplayDomain from QvCoMis.dbo.Mxd_sys_BaseInfo";

// Removes files of binary cells. A row of settings should have none, and nobody else would remove
// them.
void RemoveBinaryFiles(CRvoDbRes& rows) { qv::RemoveBinaryFiles(qv::ResultTable::Of(rows)); }

// Takes the settings from the first row. An empty value leaves its setting unchanged.
void TakeRow(const CRvoDbRes& row) {
  ServerSettings& settings = Settings();
  const struct {
    const char* column;
    std::atomic<int>& flag;
    bool can_be_cleared;  // the others are already 0, and another thread may have set them since
  } columns[] = {{"CI_ServerSetCache", settings.server_set_cache, true},
                 {"CI_ServerCompress", settings.server_compress, false},
                 {"CI_DefaultSelectCompress", settings.default_select_compress, false},
                 {"CI_DefaultDisplayCompress", settings.default_display_compress, false},
                 {"CI_DefaultDisplayDomain", settings.default_display_domain, false}};
  for (const auto& [column, flag, can_be_cleared] : columns) {
    const CString value = row[column];
    if (value.IsEmpty()) continue;
    const bool is_set = qv::text::DecimalToInt32(value.View()) == 1;
    if (is_set || can_be_cleared) flag = is_set ? 1 : 0;
  }
}

}  // namespace

std::atomic<int>& CRvoDatabase::m_NeedUpdateCompressState = Settings().need_update;
std::atomic<int>& CRvoDatabase::m_bServerSetCache = Settings().server_set_cache;
std::atomic<int>& CRvoDatabase::m_ServerIsCompress = Settings().server_compress;
std::atomic<int>& CRvoDatabase::m_DefaultSelectCompress = Settings().default_select_compress;
std::atomic<int>& CRvoDatabase::m_DefaultDisplayCompress = Settings().default_display_compress;
std::atomic<int>& CRvoDatabase::m_DefaultDisplayDomain = Settings().default_display_domain;

int CRvoDatabase::UpdateServerIsCompressInfo() {
  ServerSettings& settings = Settings();
  if (settings.need_update.exchange(0) == 0) return 0;
  // Whether the server allows caching stays known until a row changes it; the other settings do
  // not.
  settings.server_compress = 0;
  settings.default_select_compress = 0;
  settings.default_display_compress = 0;
  settings.default_display_domain = 0;

  CRvoDbRes row;
  const CString sql(kQuery);
  if (ModuleState::Get().use_local_database != 0) {
    // In local mode the query runs, and its row is ignored.
    const int failed = qv::SelectLocally(sql, row, kDatabase);
    RemoveBinaryFiles(row);
    return failed;
  }
  const bool web = qv::IsWebServer();
  const bool offline = IsCanUseOffCache(0) != 0;
  // The answer is stored whether or not the server allows caching: offline, the client learns from
  // it that the server does.
  const int result = qv::RunQuery({.command = qv::kCommandQuery,
                                   .sql = sql,
                                   .database = kDatabase,
                                   .web = web,
                                   .compress = 0,
                                   .accept = qv::Accept::kPlain,
                                   .from_cache = offline,
                                   .may_keep = true,
                                   .ask_server_to_keep = false,
                                   .keep = qv::Keep::kUnpacked},
                                  row);
  RemoveBinaryFiles(row);
  const qv::error::Class failure = qv::call::LastError().error_class;
  if (failure == qv::error::kCancelled || failure == qv::error::kBusy) settings.need_update = 1;
  if (result == qv::result::kSuccess && row.GetRecordCount() > 0) TakeRow(row);
  return result;
}

void CRvoDatabase::SetNeedUpdateCompressState() { m_NeedUpdateCompressState = 1; }

int CRvoDatabase::GetServerIsCompressMode() { return m_ServerIsCompress; }

int CRvoDatabase::GetDefaultSelectCompress() { return m_DefaultSelectCompress; }

int CRvoDatabase::GetDefaultDisplayCompress() { return m_DefaultDisplayCompress; }

int CRvoDatabase::GetServerIsSetCatche() { return m_bServerSetCache; }

int CRvoDatabase::GetDefaultDisplayDomain() {
  const ModuleState& state = ModuleState::Get();
  if (!state.server_name.empty() && state.server_port != 0) return m_DefaultDisplayDomain;
  // Only the presence of the key counts, so that even 0 means yes; -1 stands for a missing key.
  const std::string file = qv::ModuleFolder() + "QvLogIn.ini";
  return qv::platform::ReadIniValue(file, "ServerInfo", "UseAD").value_or("-1") != "-1" ? 1 : 0;
}

int CRvoDatabase::IsCanUseCompressMode() {
  const bool asked = m_DefaultDisplayCompress != 0 || m_DefaultSelectCompress != 0;
  return m_ServerIsCompress != 0 && asked ? 1 : 0;
}

int CRvoDatabase::IsCanUseOffCache(int need_server_cache) {
  if (qv::IsWebServer()) return 0;
  if (need_server_cache != 0 && m_bServerSetCache == 0) return 0;
  qv::QueryCache& cache = ModuleState::Get().cache;
  if (cache.State() == qv::cache_state::kOfflineByChoice) return 1;
  if (NetworkIsBadState(0) != 1) return 0;
  cache.SetState(qv::cache_state::kNetworkBad);
  return 1;
}
