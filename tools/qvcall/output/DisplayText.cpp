#include "DisplayText.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <utf8proc.h>

#include <algorithm>
#include <ctime>

#include "base/text/Utf8.h"
#include "tools/qvcall/system/NarrowText.h"

namespace qv::tool {
namespace {

bool IsPlain(char ch) { return ch >= 0x20 && ch < 0x7f; }

std::size_t AppendSpeltOut(char32_t character, std::string& line) {
  const std::size_t before = line.size();
  const auto value = static_cast<unsigned>(character);
  switch (value) {
    case '\t':
      line += "\\t";
      break;
    case '\n':
      line += "\\n";
      break;
    case '\r':
      line += "\\r";
      break;
    default:
      line += value < 0x7f ? fmt::format("\\x{:02x}", value) : fmt::format("\\u{:04x}", value);
  }
  return line.size() - before;
}

}  // namespace

std::size_t AppendVisible(std::string_view text, std::string& line) {
  std::size_t cells = 0;
  while (!text.empty()) {
    const auto plain_end = std::find_if_not(text.begin(), text.end(), IsPlain);
    const auto plain = static_cast<std::size_t>(plain_end - text.begin());
    line += text.substr(0, plain);
    cells += plain;
    text.remove_prefix(plain);
    if (text.empty()) break;

    const text::DecodedChar next = DecodeNarrow(text);
    if (!next.valid) {
      line += NoCharacter();
      cells += 1;
    } else if (text::IsControlCharacter(next.value)) {
      cells += AppendSpeltOut(next.value, line);
    } else {
      line += text.substr(0, next.bytes);
      // 0 for marks that combine with the character before them, and 2 for wide characters
      cells +=
          static_cast<std::size_t>(utf8proc_charwidth(static_cast<utf8proc_int32_t>(next.value)));
    }
    text.remove_prefix(next.bytes);
  }
  return cells;
}

void AppendPrintable(std::string_view text, std::string& line) {
  const auto stays = [](char ch) { return IsPlain(ch) || ch == '\t' || ch == '\n' || ch == '\r'; };
  while (!text.empty()) {
    const auto end = std::find_if_not(text.begin(), text.end(), stays);
    const auto length = static_cast<std::size_t>(end - text.begin());
    line += text.substr(0, length);
    text.remove_prefix(length);
    if (text.empty()) break;
    const text::DecodedChar next = DecodeNarrow(text);
    if (next.valid && next.value < 0xA0) {
      AppendSpeltOut(next.value, line);
    } else {
      line += text.substr(0, next.bytes);
    }
    text.remove_prefix(next.bytes);
  }
}

std::string Visible(std::string_view text) {
  std::string shown;
  AppendVisible(text, shown);
  return shown;
}

std::streamsize VisibleOutput::xsputn(const char* text, std::streamsize length) {
  std::string shown;
  std::string_view rest(text, static_cast<std::size_t>(length));
  while (!rest.empty()) {
    const std::size_t line = std::min(rest.find('\n'), rest.size());
    AppendVisible(rest.substr(0, line), shown);
    if (line != rest.size()) shown += '\n';
    rest.remove_prefix(std::min(line + 1, rest.size()));
  }
  return out_ << shown ? length : 0;
}

std::streambuf::int_type VisibleOutput::overflow(std::streambuf::int_type character) {
  const char text = std::streambuf::traits_type::to_char_type(character);
  return xsputn(&text, 1) == 1 ? character : std::streambuf::traits_type::eof();
}

std::string VisibleStart(std::string_view text, std::size_t cells) {
  constexpr std::string_view kCut = "...";
  std::string whole;
  if (AppendVisible(text, whole) <= cells) return whole;
  std::string start;
  for (std::size_t left = cells - kCut.size();;) {
    const std::string_view next = text.substr(0, DecodeNarrow(text).bytes);
    std::string shown;
    const std::size_t taken = AppendVisible(next, shown);
    if (taken > left) return start.append(kCut);
    start += shown;
    left -= taken;
    text.remove_prefix(next.size());
  }
}

void WriteColumns(const std::vector<std::vector<std::string>>& rows, std::ostream& out) {
  std::vector<std::size_t> widths;
  std::string ignored;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], AppendVisible(row[i], ignored));
      ignored.clear();
    }
  }
  for (const auto& row : rows) {
    std::string line;
    std::size_t padding = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
      line.append(padding, ' ');
      padding = widths[i] - AppendVisible(row[i], line) + 2;
    }
    out << line << '\n';
  }
}

std::string TimeText(std::int64_t seconds) {
  constexpr std::int64_t kEndOf9998 = 253370764800;
  if (seconds < 0 || seconds >= kEndOf9998) return fmt::format("{:<19}", '?');
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", fmt::localtime(static_cast<std::time_t>(seconds)));
}

}  // namespace qv::tool
