// One text sent to one database, and its answer on the way from the reply to a result set.
#pragma once

#include <cstdint>
#include <string>

#include "AnswerFile.h"
#include "message/MsgContent.h"
#include "server/Exchange.h"

namespace qv {

// Commands, all with the fields: string database, string text.
constexpr std::uint32_t kCommandQuery = 200;
constexpr std::uint32_t kCommandQueryCompressed = 210;
constexpr std::uint32_t kCommandStatement = 300;  // reply: string status
constexpr std::uint32_t kCommandProcedure = 900;

// The size of the request and reply blocks of every database call, in bytes.
constexpr std::uint32_t kDatabaseBlock = 0x100000;

class QueryExchange : public Exchange {
 public:
  // A text that does not fit the message is missing from the request, which is sent all the same.
  QueryExchange(std::uint32_t command, const char* database, const CString& text);

  // Sends over the transport of the server's type; `compress` is passed to the HTTP transport.
  [[nodiscard]] int SendBy(bool web, int compress) { return web ? SendOverWeb(compress) : Send(); }
};

// Returns the query cache's key for an answer: the server, the database and the text.
[[nodiscard]] std::string CacheKey(const char* database, const CString& sql);

// Which answers a call accepts.
enum class Accept { kPlain, kPlainOrCompressed };

// Reads the reply of a query and makes `file` its answer: status, number, storage kind, and the
// file itself if it travels in the reply, where it stays if it may and needs no unpacking; then the
// reply must outlive `file`. Returns kSuccess or the result of the call.
[[nodiscard]] int ReceiveAnswer(CMsgContent& reply, Accept accept, bool may_stay_in_reply,
                                AnswerFile& file);

}  // namespace qv
