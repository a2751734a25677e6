#include "RequestLog.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

#include "base/platform/Platform.h"
#include "base/text/Letters.h"
#include "base/text/SqlText.h"
#include "base/text/Utf8.h"

namespace qv::standin {

namespace {

// What a pipe takes at once. A statement that would make a line longer is left out.
constexpr std::size_t kLongestLine = 4096;

constexpr std::string_view kHidden = "'***'";

bool IsBeforePassword(std::string_view word) {
  return text::EqualIgnoringCase(word, "password") || text::EqualIgnoringCase(word, "by");
}

bool HoldsPassword(std::string_view text) {
  for (const std::string_view key : {"password", "pwd", "token", "secret"}) {
    if (text::FindIgnoringCase(text, key) != std::string_view::npos) return true;
  }
  return false;
}

std::string TimeOf(const ServedCommand& served) {
  const auto ms = std::chrono::time_point_cast<std::chrono::milliseconds>(served.at);
  return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z",
                     fmt::gmtime(std::chrono::system_clock::to_time_t(served.at)),
                     (ms.time_since_epoch().count() % 1000 + 1000) % 1000);
}

// Besides controls, what is not seen although it is there.
bool IsHidden(char32_t character) {
  constexpr std::pair<char32_t, char32_t> kRanges[] = {
      {0xAD, 0xAD},     {0x34F, 0x34F},   {0x180E, 0x180E}, {0x200B, 0x200D},
      {0x2060, 0x2065}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F}};
  return text::IsControlCharacter(character) ||
         std::ranges::any_of(kRanges, [=](const auto& range) {
           return character >= range.first && character <= range.second;
         });
}

// Appends the escape of a character as JSON has it, which has two for one beyond 16 bits.
void AppendEscape(char32_t character, std::string& line) {
  auto value = static_cast<std::uint32_t>(character);
  if (value > 0xFFFF) {
    line += fmt::format("\\u{:04x}", 0xD7C0 + (value >> 10));
    value = 0xDC00 + (value & 0x3FF);
  }
  line += fmt::format("\\u{:04x}", value);
}

// Returns the text with hidden characters, and bytes that are not UTF-8, as escapes.
std::string WithoutHidden(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const text::DecodedChar next = text::DecodeUtf8(text);
    if (!next.valid) {
      shown += fmt::format("\\x{:02x}", static_cast<std::uint32_t>(next.value));
    } else if (IsHidden(next.value)) {
      AppendEscape(next.value, shown);
    } else {
      shown += text.substr(0, next.bytes);
    }
    text.remove_prefix(next.bytes);
  }
  return shown;
}

// Returns a text in quotes that ends at the next quote.
std::string Quoted(std::string_view text) {
  std::string quoted;
  for (const char ch : text) {
    quoted.append(ch == '\\' ? 2 : 1, ch == '"' ? '\'' : ch);
  }
  return '"' + WithoutHidden(quoted) + '"';
}

void Put(std::string_view line, std::FILE* target) {
  std::fwrite(line.data(), 1, line.size(), target);
  std::fflush(target);
}

}  // namespace

std::string WithoutPasswords(std::string_view statement) {
  std::string shown;
  bool hides_next = false;
  while (!statement.empty()) {
    const text::SqlPiece piece = text::NextSqlPiece(statement, text::kAnyEngine);
    const std::string_view part = statement.substr(0, piece.length);
    const bool is_text = piece.part == text::SqlPart::kText || piece.part == text::SqlPart::kName;
    shown += is_text && (hides_next || HoldsPassword(part)) ? kHidden : part;
    const bool is_space =
        piece.part == text::SqlPart::kBlanks || piece.part == text::SqlPart::kComment;
    const bool is_prefix = part == "=" || text::EqualIgnoringCase(part, "n");
    if (!is_space && !is_prefix) {
      hides_next = piece.part == text::SqlPart::kWord && IsBeforePassword(part);
    }
    statement.remove_prefix(piece.length);
  }
  return shown;
}

std::string LogLine(const ServedCommand& served, bool with_statement) {
  std::string line =
      fmt::format("{} {} {} {} rows={} bytes={} ms={} class={}", TimeOf(served), served.peer,
                  served.command, served.database.empty() ? "-" : Quoted(served.database),
                  served.rows ? fmt::to_string(*served.rows) : "-", served.bytes,
                  served.time.count(), NameOf(served.error_class));
  if (served.error_class != error::kNone) line += " reason=" + Quoted(served.outcome);
  if (with_statement && !served.statement.empty()) {
    line += " statement=" + Quoted(WithoutPasswords(served.statement));
  }
  return line;
}

std::string JsonLine(const ServedCommand& served, bool with_statement) {
  nlohmann::ordered_json line{
      {"time", TimeOf(served)}, {"peer", served.peer}, {"command", served.command}};
  const bool has_database = !served.database.empty();
  line["database"] = has_database ? nlohmann::ordered_json(served.database) : nullptr;
  line["rows"] = served.rows ? nlohmann::ordered_json(*served.rows) : nullptr;
  line["bytes"] = served.bytes;
  line["ms"] = served.time.count();
  line["class"] = NameOf(served.error_class);
  if (served.error_class != error::kNone) line["reason"] = served.outcome;
  if (with_statement && !served.statement.empty()) {
    line["statement"] = WithoutPasswords(served.statement);
  }
  // Hidden characters are only in texts, where an escape means the same.
  return WithoutHidden(line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

bool RequestLog::Open() {
  if (options_.file.empty()) return true;
  file_.reset(platform::OpenFile(options_.file, platform::Opening::kChange));
  if (file_ == nullptr) return Append(platform::Create::kNew);
  if (std::fseek(file_.get(), 0, SEEK_END) != 0) return false;
  const long end = std::ftell(file_.get());
  size_ = end > 0 ? static_cast<std::uint64_t>(end) : 0;
  return end >= 0;
}

bool RequestLog::Append(platform::Create how) {
  file_.reset(platform::CreatePrivateFile(options_.file, how));
  size_ = 0;
  return file_ != nullptr;
}

void RequestLog::Add(const ServedCommand& served) {
  const auto line_of = options_.as_json ? JsonLine : LogLine;
  std::string line = line_of(served, options_.with_statements);
  if (line.size() >= kLongestLine) line = line_of(served, false);
  const std::lock_guard lock(mutex_);
  Write(line + "\n");
}

void RequestLog::Write(std::string_view line) {
  const bool is_shown = options_.is_shown || options_.file.empty();
  if (is_shown && platform::StandardErrorHasRoom()) Put(line, stderr);
  if (options_.file.empty()) return;
  const bool is_full = size_ != 0 && size_ + line.size() > options_.size;
  if (is_full) Rotate();
  if (file_ == nullptr) return;
  size_ += line.size();
  Put(line, file_.get());
}

// A file that cannot be renamed is emptied, so that the disk does not fill up.
void RequestLog::Rotate() {
  file_.reset();
  const auto older = [this](int number) { return options_.file + "." + std::to_string(number); };
  for (int number = kOlderFiles; number > 1; --number) {
    static_cast<void>(platform::ReplaceByRename(older(number - 1), older(number)));
  }
  static_cast<void>(platform::ReplaceByRename(options_.file, older(1)));
  static_cast<void>(Append(platform::Create::kAlways));
}

}  // namespace qv::standin
