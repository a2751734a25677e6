#include "DatabaseSettings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <optional>

#include "base/platform/Folder.h"
#include "base/platform/Platform.h"
#include "base/text/Letters.h"
#include "tools/qvstandin/common/ServerLog.h"

namespace qv::standin {

namespace {

using nlohmann::json;

constexpr std::size_t kLargestFile = 1 << 20;
constexpr std::size_t kLongestText = 4096;
constexpr std::size_t kLongestName = 64;
constexpr const char* kOdbc = "odbc";
constexpr const char* kConnectionText = "connection_text";

bool IsDatabaseNameByte(char ch) { return text::IsLetterOrDigit(ch) || ch == '_' || ch == '-'; }

// Why the file cannot be used, as a text that follows its name; nothing if it can.
using Complaint = std::optional<std::string>;

Complaint ReadAll(std::FILE* file, std::string& text) {
  if (!platform::IsPrivate(file)) {
    return "it may hold passwords, so only its owner may have the right to read and change it";
  }
  text.resize(kLargestFile + 1);
  text.resize(std::fread(text.data(), 1, text.size(), file));
  if (std::ferror(file) != 0) return "it cannot be read";
  if (text.size() > kLargestFile) return "it is too large";
  return std::nullopt;
}

Complaint ReadText(const std::string& name, const std::string& key, const json& value,
                   std::string& text) {
  const std::string place = name + ": " + key;
  if (!value.is_string()) return place + " is not a text";
  text = value.get<std::string>();
  const bool fits = !text.empty() && text.size() <= kLongestText;
  if (!fits) return fmt::format("{} must have 1 to {} bytes", place, kLongestText);
  if (text.find('\0') != std::string::npos) return place + " contains a NUL";
  return std::nullopt;
}

Complaint ReadEntry(const std::string& name, const json& entry, DatabaseSettings& settings) {
  if (!IsDatabaseName(name)) return "\"" + OnOneLine(name) + "\" is not a valid name of a database";
  if (!entry.is_object()) return name + " is not an object";
  for (const auto& [key, value] : entry.items()) {
    const bool is_odbc = key == kOdbc;
    if (!is_odbc && key != kConnectionText) {
      return name + ": there is no setting \"" + OnOneLine(key) + "\"";
    }
    std::string& text = is_odbc ? settings.odbc : settings.connection_text;
    if (auto complaint = ReadText(name, key, value, text)) return complaint;
  }
  return std::nullopt;
}

Complaint Parse(const std::string& text, DatabaseSettingsByName& settings) {
  json root;
  try {
    root = json::parse(text);
  } catch (const json::parse_error& error) {
    // The parser's own message would quote the text, including passwords.
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
    return fmt::format("line {} is not valid JSON", std::count(text.begin(), end, '\n') + 1);
  } catch (const json::exception&) {
    return "it contains a number that is out of range";
  }
  if (!root.is_object()) return "it is not a JSON object";
  for (const auto& [name, entry] : root.items()) {
    if (auto complaint = ReadEntry(name, entry, settings[name])) return complaint;
  }
  return std::nullopt;
}

}  // namespace

bool IsDatabaseName(std::string_view name) {
  return !name.empty() && name.size() <= kLongestName &&
         std::ranges::all_of(name, IsDatabaseNameByte);
}

Outcome ReadDatabaseSettings(const std::string& path, DatabaseSettingsByName& settings) {
  const platform::FilePtr file(std::fopen(path.c_str(), "rb"));
  if (file == nullptr && errno == ENOENT) return {};
  settings.clear();
  std::string text;
  Complaint complaint;
  if (file == nullptr) {
    complaint = std::strerror(errno);
  } else {
    complaint = ReadAll(file.get(), text);
  }
  if (!complaint) complaint = Parse(text, settings);
  if (complaint) return {ErrorCode::kNoDatabase, path + ": " + *complaint};
  return {};
}

}  // namespace qv::standin
