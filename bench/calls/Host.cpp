#include "Host.h"

#include <fmt/format.h>
#include <qvnetcall/QvNetCall4.h>

#include <stdexcept>
#include <vector>

namespace qv::bench {

namespace {

constexpr const char* kServer = "127.0.0.1";

void UseServer(std::uint16_t port, const char* type) {
  CRvoServer::UseLocalDB(0);
  CRvoServer::SetConinfo(kServer, port);
  // Otherwise the library would probe the server whenever it changes.
  CRvoServer::SetServerType(type, kServer, port);
}

void CheckRows(const CRvoDbRes& result, int rows) {
  if (result.GetRecordCount() == rows) return;
  throw std::runtime_error(fmt::format("{} rows instead of {}", result.GetRecordCount(), rows));
}

}  // namespace

Host::Host(const Setting& setting) : setting_(setting) {
  CRvoServer::InitNet();
  CheckResult("OpenLocalDB", CRvoServer::OpenLocalDB(kSqlite, setting.sqlite_odbc.c_str()) == 1);
  CheckResult("OpenLocalDB",
              CRvoServer::OpenLocalDB(kPostgres, setting.postgres_odbc.c_str()) == 1);
}

Host::~Host() { CRvoServer::FinitNet(); }

void Host::Use(Way way) const {
  switch (way) {
    case Way::kSocket:
      return UsePort(setting_.port);
    case Way::kWeb:
      return UseServer(setting_.http_port, qv::server_type::kWeb);
    case Way::kDirect:
      CRvoServer::UseLocalDB(1);
  }
}

void Host::UsePort(std::uint16_t port) {
  UseServer(port, qv::server_type::kSocket);
  CRvoServer::SetCacheState(qv::cache_state::kOnline);
}

void Select(const char* database, const std::string& sql, int rows, Cache cache) {
  CRvoDbRes result;
  const CString text(sql.c_str());
  CheckResult("SelectSQL",
              CRvoDatabase::SelectSQL(&text, &result, database, cache == Cache::kYes ? 1 : 0) == 0);
  CheckRows(result, rows);
}

void SelectMany(const char* database, const std::string& sql, int rows, int calls) {
  const CString text(sql.c_str());
  std::vector<CRvoDbRes> answers(static_cast<std::size_t>(calls));
  std::vector<CRvoOutcome> outcomes(answers.size());
  for (std::size_t i = 0; i < answers.size(); ++i) outcomes[i].rows = &answers[i];
  const std::vector<CRvoQuery> queries(answers.size(), {&text, database, 0});
  CheckResult("SelectMany", CRvoDatabase::SelectMany(queries.data(), outcomes.data(), calls) == 0);
  for (const CRvoDbRes& one : answers) {
    CheckResult("the number of rows", one.GetRecordCount() == rows);
  }
}

void CallProcedure(const char* database, const std::string& sql, int rows) {
  CRvoDbRes result;
  const CString text(sql.c_str());
  CheckResult("ExecuteSP", CRvoDatabase::ExecuteSP(&text, &result, database, 0) == 0);
  CheckRows(result, rows);
}

void Execute(const char* database, const std::string& sql) {
  const CString text(sql.c_str());
  CheckResult("ExecuteSQL", CRvoDatabase::ExecuteSQL(&text, database) == 0);
}

void Upload(const std::string& local_file, const std::string& server_file) {
  CheckResult("UpLoadFileToServer",
              CRvoFile::UpLoadFileToServer(local_file.c_str(), server_file.c_str()) == 0);
}

void Download(const std::string& local_file, const std::string& server_file) {
  CheckResult("DownLoadServerFile",
              CRvoFile::DownLoadServerFile(local_file.c_str(), server_file.c_str()) == 0);
}

void CheckResult(const char* call, bool succeeded) {
  if (succeeded) return;
  const CString reason = CRvoServer::GetLastErrorText();
  throw std::runtime_error(fmt::format("{}: {}", call, reason.GetString()));
}

}  // namespace qv::bench
