#include "BinaryCells.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>

#include "ResultTable.h"
#include "base/platform/Platform.h"
#include "base/storage/OutputFile.h"
#include "base/text/Letters.h"

namespace qv {

namespace {

// Numbers the files of hexadecimal values, across all threads of the process.
std::atomic<std::uint32_t> file_counter = 0;

std::string Text(const char (&field)[260]) {
  const std::string_view whole(field, sizeof field);
  return std::string(whole.substr(0, whole.find('\0')));
}

bool WriteAndClose(storage::OutputFile& file, std::span<const unsigned char> bytes) {
  file.Write(bytes);
  return file.Close();
}

// What the platform's writers and readers agree on: a character up to '9' counts from '0', any
// other from where 'a' is ten. Upper-case digits fall outside 0 to 15, and so does all but a few
// characters that nobody writes.
int HexDigit(char c) {
  const int code = static_cast<unsigned char>(c);
  return code <= '9' ? code - '0' : code - 0x57;
}

bool IsHexDigit(int digit) { return digit >= 0 && digit <= 15; }

constexpr std::array<std::uint8_t, 256> MakeBase64Digits() {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::array<std::uint8_t, 256> values{};
  values.fill(64);
  for (std::size_t i = 0; i < kDigits.size(); ++i) {
    values[static_cast<unsigned char>(kDigits[i])] = static_cast<std::uint8_t>(i);
  }
  return values;
}

constexpr std::array<std::uint8_t, 256> kBase64Digits = MakeBase64Digits();

}  // namespace

BinaryCells::BinaryCells(const tagTEMPFILEINFO& files)
    : base_(platform::WithSeparator(Text(files.path)) + Text(files.prefix)),
      extension_('.' + Text(files.ext)) {}

std::string HexCells::Write(std::string_view text) {
  return text.empty() ? std::string() : WriteBytes(DecodeHex(text));
}

std::string HexCells::WriteBytes(std::span<const unsigned char> bytes) {
  const std::string timed = base_ + "_" + std::to_string(platform::UnixTime()) + "_";
  // Another program may use the same names; it keeps its files, and this one continues counting.
  constexpr int kAttempts = 10000;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const auto number = static_cast<std::int32_t>(file_counter++);
    std::string path = timed + std::to_string(number) + extension_;
    storage::OutputFile file(path, platform::Create::kNew);
    const bool is_new = file.IsOpen();
    if (!is_new && errno == EEXIST) continue;
    if (is_new && WriteAndClose(file, bytes)) return path;
    if (is_new) platform::RemoveFile(path);
    --file_counter;
    break;
  }
  return {};
}

std::string Base64Cells::Write(std::string_view text) {
  if (text.empty()) return {};
  std::string path = base_ + extension_;
  storage::OutputFile file(path, platform::Create::kAlways);
  if (!file.IsOpen()) return {};
  if (WriteAndClose(file, DecodeBase64(text))) return path;
  platform::RemoveFile(path);
  return {};
}

void RemoveBinaryFiles(const ResultTable& table) {
  for (const Column& column : table.Columns()) RemoveBinaryFiles(column);
}

void RemoveBinaryFiles(const Column& column) {
  if (column.type != kTypeLongVarBinary) return;
  for (std::size_t row = 0; row < column.Rows(); ++row) {
    const CString path = column.Text(row);
    if (!path.IsEmpty()) platform::RemoveFile(path.GetString());
  }
}

void DropRows(ResultTable& table) {
  RemoveBinaryFiles(table);
  table.RebuildCells();
}

std::vector<unsigned char> DecodeHex(std::string_view text) {
  std::vector<unsigned char> bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    const int high = HexDigit(text[i]);
    const int low = HexDigit(text[i + 1]);
    if (!IsHexDigit(high) || !IsHexDigit(low)) continue;
    bytes.push_back(static_cast<unsigned char>(high * 16 + low));
  }
  return bytes;
}

std::vector<unsigned char> DecodeBase64(std::string_view text) {
  std::vector<unsigned char> bytes;
  bytes.reserve(text.size() / 4 * 3 + 3);
  std::uint32_t bits = 0;
  unsigned held = 0;
  for (const char c : text) {
    if (text::IsSpace(c)) continue;
    const std::uint32_t digit = kBase64Digits[static_cast<unsigned char>(c)];
    if (digit >= 64) break;
    bits = bits << 6 | digit;
    held += 6;
    if (held < 8) continue;
    held -= 8;
    bytes.push_back(static_cast<unsigned char>(bits >> held & 0xFF));
  }
  return bytes;
}

}  // namespace qv
