// The exchange of every call that sends one text to one database.
#pragma once

#include <cstdint>

#include "server/Exchange.h"

namespace qv {

// Commands, all with the fields: string database, string text.
constexpr std::uint32_t kCommandQuery = 200;
constexpr std::uint32_t kCommandQueryCompressed = 210;
constexpr std::uint32_t kCommandStatement = 300;  // reply: string status
constexpr std::uint32_t kCommandProcedure = 900;

// The blocks of every database call's request and reply, in bytes.
constexpr std::uint32_t kDatabaseBlock = 0x100000;

class QueryExchange : public Exchange {
 public:
  // A text that does not fit the message is missing from the request; the request is sent all the
  // same.
  QueryExchange(std::uint32_t command, const char* database, const CString& text);

  // Sends over the transport of the server's kind; `compress` goes to the HTTP transport.
  [[nodiscard]] int SendBy(bool web, int compress) { return web ? SendOverWeb(compress) : Send(); }
};

}  // namespace qv
