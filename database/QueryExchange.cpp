#include "QueryExchange.h"

namespace qv {

namespace {

constexpr std::uint32_t kBlock = 0x100000;

}  // namespace

QueryExchange::QueryExchange(std::uint32_t command, const char* database, const CString& text)
    : Exchange(command, kBlock, kBlock) {
  Request().AddString(database, nullptr);
  Request().AddString(text, nullptr);
  Request().SetMsgFlag(0);
}

}  // namespace qv
