#include "QueryExchange.h"

namespace qv {

QueryExchange::QueryExchange(std::uint32_t command, const char* database, const CString& text)
    : Exchange(command, kDatabaseBlock, kDatabaseBlock) {
  Request().AddString(database, nullptr);
  Request().AddString(text, nullptr);
  Request().SetMsgFlag(0);
}

}  // namespace qv
