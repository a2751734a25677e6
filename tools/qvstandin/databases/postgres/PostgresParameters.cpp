#include "PostgresParameters.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "base/text/Letters.h"
#include "tools/qvstandin/databases/OdbcDriver.h"

namespace qv::standin {

namespace {

struct Key {
  std::string_view odbc;
  const char* libpq;
};

constexpr std::array kKeys{Key{"server", "host"},     Key{"servername", "host"},
                           Key{"port", "port"},       Key{"database", "dbname"},
                           Key{"uid", "user"},        Key{"username", "user"},
                           Key{"pwd", "password"},    Key{"password", "password"},
                           Key{"sslmode", "sslmode"}, Key{"driver", nullptr}};

bool IsUnicodeDriver(std::string_view driver) {
  const auto is_named = [driver](std::string_view name) {
    return text::FindIgnoringCase(driver, name) != std::string_view::npos;
  };
  return is_named("unicode") || is_named("psqlodbcw");
}

// The driver reads percent signs, plus signs and doubled braces in its own way.
bool IsPlain(const text::ConnectionText::Setting& setting) {
  const bool is_in_braces = setting.written.starts_with('{');
  return setting.value.find(is_in_braces ? "}" : "%") == std::string::npos &&
         (is_in_braces || setting.value.find('+') == std::string::npos);
}

// Adds a setting. Returns false if it is not known, or is there twice.
bool Add(const text::ConnectionText::Setting& setting, PostgresConnection::Parameters& parameters) {
  const auto* const key = std::ranges::find_if(kKeys, [&setting](const Key& known) {
    return text::EqualIgnoringCase(known.odbc, setting.key);
  });
  if (key == kKeys.end() || setting.value.empty() || !IsPlain(setting)) return false;
  const std::string name = key->libpq != nullptr ? key->libpq : "";
  const bool is_mode = name == "sslmode";
  return parameters.emplace(name, is_mode ? text::ToLower(setting.value) : setting.value).second;
}

}  // namespace

std::optional<PostgresConnection::Parameters> ParametersOf(const text::ConnectionText& text) {
  const std::string* const driver = text.ValueOf("driver");
  if (driver == nullptr || !HasPostgresDriver(text) || !IsUnicodeDriver(*driver)) {
    return std::nullopt;
  }
  PostgresConnection::Parameters parameters;
  const bool is_known = std::ranges::all_of(
      text.Settings(), [&](const auto& setting) { return Add(setting, parameters); });
  const auto is_there = [&](const char* name) { return parameters.contains(name); };
  if (!is_known || !is_there("host") || !is_there("dbname") || !is_there("user")) {
    return std::nullopt;
  }
  parameters.erase("");  // the driver
  parameters.try_emplace("port", "5432");
  parameters.try_emplace("sslmode", "disable");
  return parameters;
}

}  // namespace qv::standin
