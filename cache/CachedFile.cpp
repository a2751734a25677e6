#include "CachedFile.h"

#include <array>
#include <cstdio>

#include "base/call/CancelFlag.h"
#include "base/platform/Folder.h"
#include "base/platform/Platform.h"
#include "base/storage/Checksum.h"

namespace qv {

namespace {

constexpr std::string_view kPrefix = "QvCache_";
constexpr std::string_view kAnswer = ".dat";
constexpr std::string_view kTemporary = ".tmp";
static_assert(kPrefix.size() + platform::kGuidLength + kAnswer.size() == kCachedNameLength);

// An identifier of version 8, whose bits its maker defines: "{CCCCCCCC-LLLL-8...". C is the
// checksum, L the end of the length; the rest is random.
constexpr std::size_t kSumAt = kPrefix.size() + 1;
constexpr std::size_t kSumLength = 13;
constexpr std::size_t kVersionAt = kSumAt + kSumLength + 1;
constexpr char kVersion = '8';

std::string SumText(const ContentSum& content) {
  std::array<char, kSumLength + 1> text;
  std::snprintf(text.data(), text.size(), "%08X-%04X", content.Checksum(),
                static_cast<unsigned>(content.Length() & 0xFFFFu));
  return text.data();
}

std::string NewName(std::string_view extension) {
  return std::string(kPrefix).append(platform::NewGuid()).append(extension);
}

bool IsName(std::string_view name, std::string_view extension) {
  return name.size() == kCachedNameLength && name.starts_with(kPrefix) &&
         name.ends_with(extension) &&
         platform::IsGuid(name.substr(kPrefix.size(), platform::kGuidLength));
}

}  // namespace

void ContentSum::Add(std::string_view bytes) {
  const auto* const start = reinterpret_cast<const unsigned char*>(bytes.data());
  checksum_ = storage::Crc32(checksum_, {start, bytes.size()});
  length_ += bytes.size();
}

bool ContentSum::AddFile(const std::string& path) {
  const platform::FilePtr file(platform::OpenFile(path, platform::Opening::kRead));
  if (file == nullptr) return false;
  std::array<char, 32768> buffer;
  std::size_t got = 0;
  do {
    if (call::IsCancelled()) return false;
    got = std::fread(buffer.data(), 1, buffer.size(), file.get());
    Add(std::string_view(buffer.data(), got));
  } while (got == buffer.size());
  return std::ferror(file.get()) == 0;
}

std::string NewCachedName(const ContentSum& content) {
  std::string name = NewName(kAnswer);
  name.replace(kSumAt, kSumLength, SumText(content));
  name[kVersionAt] = kVersion;
  return name;
}

bool IsCachedName(std::string_view name) { return IsName(name, kAnswer); }

bool Fits(std::string_view name, const ContentSum& content) {
  return name[kVersionAt] != kVersion || name.substr(kSumAt, kSumLength) == SumText(content);
}

std::string NewTemporaryName() { return NewName(kTemporary); }

bool IsTemporaryName(std::string_view name) { return IsName(name, kTemporary); }

}  // namespace qv
