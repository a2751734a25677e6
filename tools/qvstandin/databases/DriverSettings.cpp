#include "DriverSettings.h"

#include <algorithm>
#include <array>

#include "base/text/Letters.h"

namespace qv::standin {

namespace {

struct Setting {
  const char* key;
  const char* value;
};

// Without these the driver returns truth values as text, and can undo statement by statement, which
// costs a savepoint for each.
constexpr std::array kForPostgres{Setting{"BoolsAsChar", "0"}, Setting{"Protocol", "7.4-1"}};
// The driver fetches in pieces by means of cursors, and takes every WITH for a query that it can
// open a cursor on.
constexpr std::array kInPieces{Setting{"UseDeclareFetch", "1"}, Setting{"Fetch", "100"}};

bool IsPostgres(const text::ConnectionText& text) {
  const std::string* const driver = text.ValueOf("driver");
  if (driver == nullptr) return false;
  const auto is_named = [driver](std::string_view name) {
    return text::FindIgnoringCase(*driver, name) != std::string_view::npos;
  };
  return is_named("postgresql") || is_named("psqlodbc");
}

}  // namespace

std::string WithDriverSettings(const text::ConnectionText& text, Rows rows) {
  std::string whole = text.Text();
  if (!IsPostgres(text)) return whole;
  const auto add = [&](const Setting& setting) {
    if (text.ValueOf(setting.key) != nullptr) return;
    whole += std::string(";") + setting.key + "=" + setting.value;
  };
  std::ranges::for_each(kForPostgres, add);
  if (rows == Rows::kInPieces) std::ranges::for_each(kInPieces, add);
  return whole;
}

}  // namespace qv::standin
