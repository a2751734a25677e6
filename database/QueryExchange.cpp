#include "QueryExchange.h"

#include <cstdint>

#include "base/call/CancelFlag.h"
#include "base/call/LastError.h"
#include "qvnetcall/ResultCodes.h"
#include "server/Exchange.h"
#include "server/ModuleState.h"

namespace qv {

QueryExchange::QueryExchange(std::uint32_t command, const char* database, const CString& text)
    : Exchange(command, kDatabaseBlock, kDatabaseBlock) {
  Request().AddString(database, nullptr);
  Request().AddString(text, nullptr);
  Request().SetMsgFlag(0);
}

namespace {

constexpr const char kInReply[] = "MEMORY";

}  // namespace

std::string CacheKey(const char* database, const CString& sql) {
  std::string key = ModuleState::Get().server_name;
  return key.append(">").append(database).append(":").append(sql.View());
}

int ReceiveAnswer(CMsgContent& reply, Accept accept, bool may_stay_in_reply, AnswerFile& file) {
  const CString status = reply.GetString(nullptr);
  const bool compressed = accept == Accept::kPlainOrCompressed && status == kStatusSuccessCompress;
  std::int32_t number = 0;  // an error code, or a number of the server; unused
  if (!compressed && status != kStatusSuccess) {
    reply.GetData(&number, sizeof number, nullptr);
    call::SetErrorIfNone(error::kInternal, "the server refused the query without a reason (" +
                                               std::to_string(number) + ")");
    return result::kQueryRefused;
  }
  int err = 0;
  reply.GetData(&number, sizeof number, &err);
  const CString storage = reply.GetString(&err);
  if (err != 0) {
    call::SetErrorIfNone(error::kBadReply, "the reply lacks fields that belong to it");
    return result::kReplyUnreadable;
  }
  if (storage == kInReply) {
    const bool stays = may_stay_in_reply && !compressed && file.StayIn(reply);
    if (!stays) file.TakeFrom(reply);
  }
  if (!compressed || file.Unpack()) return result::kSuccess;
  file.Delete();
  if (call::IsCancelled()) {
    call::SetCancelled();
    return result::kOutcomeUnknown;
  }
  call::SetErrorIfNone(error::kBadReply, "the compressed answer cannot be unpacked");
  return result::kUnpackFailed;
}

}  // namespace qv
