// The calls of CRvoDatabase that return no rows: one statement, and a batch.
#include <cstdint>
#include <string>
#include <string_view>

#include "ManyCalls.h"
#include "RunQuery.h"
#include "base/call/LastError.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/RvoDatabase.h"
#include "server/ModuleState.h"
#include "server/ServerType.h"

using qv::ModuleState;
namespace result = qv::result;

namespace {

// Fields: string database, 4-byte count, that many strings. Reply: string status and, unless it is
// "SUCCESS", an unused 4-byte number and the 4-byte position of the refused statement.
constexpr std::uint32_t kCommandBatch = 310;

int ReadStatementReply(CMsgContent& reply) {
  if (reply.GetString(nullptr) == qv::kStatusSuccess) return result::kSuccess;
  qv::call::SetErrorIfNone(qv::error::kInternal,
                           "the server refused the statement without a reason");
  return result::kFailed;
}

int ExecuteAlone(const CRvoQuery& query, CRvoOutcome&) {
  return CRvoDatabase::ExecuteSQL(query.sql, query.database);
}

}  // namespace

int CRvoDatabase::ExecuteSQL(const CString* sql, const char* database) {
  if (ModuleState::Get().use_local_database != 0) return qv::ExecuteLocally(*sql, database);
  if (sql->IsEmpty()) return qv::FailForEmptyText();
  // Offline, a statement is refused, not queued for later.
  if (IsCanUseOffCache(1) != 0) {
    qv::call::SetError(qv::error::kOffline, "offline: the statement was not sent");
    return result::kFailed;
  }
  qv::QueryExchange exchange(qv::kCommandStatement, database, *sql);
  if (const int result = exchange.SendBy(qv::IsWebServer(), /*compress=*/0); result != 0) {
    return result;
  }
  return ReadStatementReply(exchange.Reply());
}

int CRvoDatabase::ExecuteMany(const CRvoQuery* queries, CRvoOutcome* results, int count) {
  if (count <= 0) return qv::RunMany({}, queries, results, 0);
  const bool is_local = ModuleState::Get().use_local_database != 0;
  const auto read = [](const CRvoQuery&, CMsgContent& reply, qv::AnswerFile&, CRvoOutcome&) {
    return ReadStatementReply(reply);
  };
  return qv::RunMany({.together = !is_local && !qv::IsWebServer() && IsCanUseOffCache(1) == 0,
                      .command = qv::kCommandStatement,
                      .has_answer_file = false,
                      .alone = ExecuteAlone,
                      .read = read,
                      .is_offline = [] { return IsCanUseOffCache(1) != 0; }},
                     queries, results, count);
}

// Unlike the calls for one text, a batch always goes over the socket, whatever the server's type,
// empty or not, offline or not: hosts rely on its reaching the server.
int CRvoDatabase::ExecuteMultiSQL(const CStringArray* sqls, const char* database) {
  if (ModuleState::Get().use_local_database != 0) {
    constexpr std::string_view kWhy = "local mode does not support batches";
    qv::NoteLocalFailure(database, kWhy);
    qv::call::SetError(qv::error::kLocal, kWhy);
    return result::kNoLocalBatch;
  }
  qv::Exchange exchange(kCommandBatch, qv::kDatabaseBlock, qv::kDatabaseBlock);
  CMsgContent& request = exchange.Request();
  const std::int32_t count = sqls->GetSize();
  int err = 0;
  request.AddString(database, nullptr);
  exchange.AddNumber(count);
  for (std::int32_t i = 0; i < count; ++i) request.AddString(sqls->GetAt(i), &err);
  request.SetMsgFlag(0);
  if (const int result = exchange.Send(); result != 0) return result;

  err = 0;
  if (exchange.Reply().GetString(&err) == qv::kStatusSuccess) return result::kSuccess;
  std::int32_t code = 0;
  std::uint32_t position = 0;
  exchange.Reply().GetData(&code, sizeof code, &err);
  exchange.Reply().GetData(&position, sizeof position, &err);
  if (err != 0) {
    qv::call::SetErrorIfNone(qv::error::kBadReply, "the reply lacks fields that belong to it");
    return result::kReplyUnreadable;
  }
  qv::call::SetErrorIfNone(qv::error::kInternal, "the server refused statement " +
                                                     std::to_string(position) +
                                                     " of the batch without a reason");
  // Not clamped: the sum wraps around as the server's number does.
  return static_cast<std::int32_t>(result::kBatchRefused + position);
}
