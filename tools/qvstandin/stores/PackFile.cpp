#include "StoredFiles.h"

#include <zip.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

#include "message/LittleEndian.h"

namespace qv::standin {

namespace {

constexpr std::size_t kAtOnce = 256U << 10;
// Bounds the pack's table of contents, of which the library keeps several copies in memory.
constexpr std::uint32_t kLargestContents = 4U << 20;
// Larger than the part of the file in which the library looks for the end record.
constexpr std::uint64_t kTail = 128U << 10;
constexpr std::string_view kEndRecord("PK\x05\x06");
constexpr std::size_t kEndRecordSize = 22;
constexpr std::size_t kContentsSizeAt = 12;
constexpr std::string_view kLongEndLocator("PK\x06\x07");

struct PackCloser {
  void operator()(zip_t* pack) const { zip_discard(pack); }
};
using PackPtr = std::unique_ptr<zip_t, PackCloser>;
struct MemberCloser {
  void operator()(zip_file_t* member) const { zip_fclose(member); }
};

Outcome Damaged(const char* text) { return {ErrorCode::kBadPack, text}; }

std::string TailOf(platform::OpenedFile& pack) {
  const std::uint64_t length = std::min(pack.size, kTail);
  std::string tail(static_cast<std::size_t>(length), '\0');
  std::FILE* const file = pack.file.get();
  if (std::fseek(file, -static_cast<long>(length), SEEK_END) != 0 ||
      std::fread(tail.data(), 1, tail.size(), file) != tail.size()) {
    tail.clear();
  }
  std::rewind(file);
  return tail;
}

// Returns whether the table of contents is small enough, whichever end record the library uses if
// there are several. Packs in the ZIP64 form, which have millions of members, are refused.
bool HasSmallContents(std::string_view tail) {
  if (tail.find(kLongEndLocator) != std::string_view::npos) return false;
  std::size_t records = 0;
  for (std::size_t at = tail.find(kEndRecord); at != std::string_view::npos;
       at = tail.find(kEndRecord, at + 1)) {
    if (tail.size() - at < kEndRecordSize) break;
    if (LoadU32(tail.data() + at + kContentsSizeAt) > kLargestContents) return false;
    ++records;
  }
  return records != 0;
}

PackPtr Open(platform::OpenedFile pack) {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* const source = zip_source_filep_create(pack.file.get(), 0, -1, &error);
  zip_t* opened = nullptr;
  if (source != nullptr) {
    static_cast<void>(pack.file.release());  // the source owns it now
    opened = zip_open_from_source(source, ZIP_RDONLY, &error);
    if (opened == nullptr) zip_source_free(source);
  }
  zip_error_fini(&error);
  return PackPtr(opened);
}

// Refuses longer files and compression methods that can demand any amount of memory.
bool MayUnpack(const zip_stat_t& about, std::uint64_t longest) {
  constexpr zip_uint64_t kWanted = ZIP_STAT_SIZE | ZIP_STAT_COMP_METHOD;
  return (about.valid & kWanted) == kWanted && about.size <= longest &&
         (about.comp_method == ZIP_CM_STORE || about.comp_method == ZIP_CM_DEFLATE);
}

Outcome Unpack(zip_file_t* member, std::uint64_t left, ByteSink& target, WorkLimit& limit) {
  std::vector<char> buffer(kAtOnce);
  for (;;) {
    if (limit.IsOver()) return limit.Failure("the call");
    const zip_int64_t got = zip_fread(member, buffer.data(), buffer.size());
    if (got == 0) break;
    const auto length = static_cast<std::uint64_t>(got);
    if (got < 0 || length > left) return Damaged("a damaged pack file");
    left -= length;
    if (!target.Write({buffer.data(), static_cast<std::size_t>(length)})) {
      return {ErrorCode::kStoreFailed, "no room for the file", error::kInternal};
    }
  }
  if (left != 0) return Damaged("a damaged pack file");
  if (!target.Finish()) return {ErrorCode::kStoreFailed, "no room for the file", error::kInternal};
  return {};
}

}  // namespace

Outcome ReadMember(platform::OpenedFile pack, const std::string& member, std::uint64_t longest,
                   ByteSink& target, WorkLimit& limit) {
  if (!HasSmallContents(TailOf(pack))) return Damaged("not a pack file, or one that is too large");
  const PackPtr opened = Open(std::move(pack));
  if (opened == nullptr) return Damaged("not a pack file");
  // Names are compared byte by byte.
  const zip_int64_t index = zip_name_locate(opened.get(), member.c_str(), ZIP_FL_ENC_RAW);
  if (index < 0) return {ErrorCode::kNoFile, "no such file in the pack"};
  const auto at = static_cast<zip_uint64_t>(index);
  zip_stat_t about;
  zip_stat_init(&about);
  if (zip_stat_index(opened.get(), at, 0, &about) != 0 || !MayUnpack(about, longest)) {
    return Damaged("a file that cannot be unpacked");
  }
  const std::unique_ptr<zip_file_t, MemberCloser> file(zip_fopen_index(opened.get(), at, 0));
  if (file == nullptr) return Damaged("a file that cannot be unpacked");
  return Unpack(file.get(), about.size, target, limit);
}

}  // namespace qv::standin
