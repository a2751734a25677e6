#include "AnswerSpool.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>
#include <vector>

#include "base/platform/Platform.h"

namespace qv::standin {

namespace {

// The largest window; a negative one selects deflate without a header.
constexpr int kRawWindow = -MAX_WBITS;
// Deflate, neither name nor time, Unix.
constexpr std::string_view kGzipHeader("\x1f\x8b\x08\0\0\0\0\0\0\x03", 10);
constexpr int kMemoryLevel = 8;
// Fast compression, since most clients are local.
constexpr int kLevel = 3;
constexpr std::size_t kLargestPiece = std::size_t{1} << 30;  // zlib counts in 32 bits
constexpr std::size_t kCopiedAtOnce = std::size_t{64} << 10;

// Returns the low 32 bits of a number, lowest byte first.
std::string LittleEndian(std::uint64_t number) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift & 0xff);
  return bytes;
}

}  // namespace

AnswerSpool::AnswerSpool(std::string folder, std::uint64_t memory_limit, std::uint64_t size_limit,
                         std::function<bool()> is_over)
    : folder_(std::move(folder)),
      memory_limit_(memory_limit),
      size_limit_(size_limit),
      is_over_(std::move(is_over)) {}

AnswerSpool::~AnswerSpool() {
  file_ = {};  // some systems remove no file that is open
  if (!path_.empty()) platform::RemoveFile(path_);
}

bool AnswerSpool::Write(std::string_view bytes) {
  is_too_large_ = bytes.size() > size_limit_ - size_;
  if (is_too_large_) return false;
  size_ += bytes.size();
  if (path_.empty() && size_ <= memory_limit_) {
    bytes_ += bytes;
    return true;
  }
  if (path_.empty() && !MoveToDisk()) return false;
  return file_.Write(bytes);
}

bool AnswerSpool::WriteHead(std::string_view head) {
  head_size_ = head.size();
  return Write(head);
}

bool AnswerSpool::MoveToDisk() { return CreateFile() && file_.Write(std::exchange(bytes_, {})); }

bool AnswerSpool::CreateFile() {
  const std::string path = folder_ + platform::NewGuid() + kExtension;
  file_ = storage::OutputFile(path, platform::Create::kNew);
  if (!file_.IsOpen()) return false;
  path_ = path;
  return true;
}

bool AnswerSpool::ReplaceHead(std::string_view head) {
  const std::uint64_t body = size_ - head_size_;
  is_too_large_ = head.size() > size_limit_ || body > size_limit_ - head.size();
  if (is_too_large_) return false;
  size_ = body + head.size();
  if (InMemory()) {
    bytes_.replace(0, head_size_, head);
    return true;
  }
  const bool is_written = file_.Close();
  const std::string old = path_;
  const bool is_copied = is_written && CreateFile() && file_.Write(head) && CopyBody(old);
  if (old != path_) platform::RemoveFile(old);
  return is_copied;
}

bool AnswerSpool::CopyBody(const std::string& path) {
  const platform::FilePtr from(platform::OpenFile(path, platform::Opening::kRead));
  if (from == nullptr || std::fseek(from.get(), static_cast<long>(head_size_), SEEK_SET) != 0) {
    return false;
  }
  std::vector<char> piece(kCopiedAtOnce);
  std::size_t length = 0;
  while ((length = std::fread(piece.data(), 1, piece.size(), from.get())) != 0) {
    if (is_over_() || !file_.Write(std::string_view(piece.data(), length))) return false;
  }
  return std::ferror(from.get()) == 0;
}

bool AnswerSpool::Finish() { return InMemory() || file_.Close(); }

GzipStream::Deflater::Deflater() {
  ready_ = deflateInit2(&stream_, kLevel, Z_DEFLATED, kRawWindow, kMemoryLevel,
                        Z_DEFAULT_STRATEGY) == Z_OK;
}

GzipStream::Deflater::~Deflater() {
  if (ready_) deflateEnd(&stream_);
}

template <typename Take>
bool GzipStream::Deflater::Run(std::string_view bytes, int flush, const Take& take) {
  if (!ready_) return false;
  std::array<unsigned char, 32768> out;
  // zlib only reads from here, although its interface lacks the const.
  stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream_.avail_in = static_cast<uInt>(bytes.size());
  do {
    stream_.next_out = out.data();
    stream_.avail_out = static_cast<uInt>(out.size());
    if (deflate(&stream_, flush) == Z_STREAM_ERROR) return false;
    const std::size_t packed = out.size() - stream_.avail_out;
    if (!take(std::string_view(reinterpret_cast<const char*>(out.data()), packed))) return false;
  } while (stream_.avail_out == 0);
  return true;
}

GzipStream::GzipStream(AnswerSink& target) : target_(target) {}

GzipStream::~GzipStream() = default;

// A full flush ends the head at a byte and lets nothing after it refer to it.
std::string GzipStream::PackHead(Deflater& deflater, std::string_view head) {
  std::string packed(kGzipHeader);
  const auto keep = [&packed](std::string_view bytes) {
    packed += bytes;
    return true;
  };
  return head.size() <= kLargestPiece && deflater.Run(head, Z_FULL_FLUSH, keep) ? packed : "";
}

void GzipStream::AddTo(Part& part, std::string_view bytes) {
  part.checksum = crc32(part.checksum, reinterpret_cast<const Bytef*>(bytes.data()),
                        static_cast<uInt>(bytes.size()));
  part.size += bytes.size();
}

bool GzipStream::WriteHead(std::string_view head) {
  AddTo(parts_.emplace_back(), head);
  parts_.emplace_back();
  const std::string packed = PackHead(deflater_, head);
  return !packed.empty() && target_.WriteHead(packed);
}

bool GzipStream::Write(std::string_view bytes) {
  const auto give = [this](std::string_view packed) { return target_.Write(packed); };
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, kLargestPiece);
    if (parts_.back().size + piece.size() > kLargestPiece) parts_.emplace_back();
    AddTo(parts_.back(), piece);
    if (!deflater_.Run(piece, Z_NO_FLUSH, give)) return false;
    bytes.remove_prefix(piece.size());
  }
  return true;
}

bool GzipStream::ReplaceHead(std::string_view head) {
  parts_.front() = {};
  AddTo(parts_.front(), head);
  Deflater another;
  const std::string packed = PackHead(another, head);
  return !packed.empty() && target_.ReplaceHead(packed);
}

bool GzipStream::Finish() {
  const auto give = [this](std::string_view packed) { return target_.Write(packed); };
  uLong checksum = 0;
  std::uint64_t size = 0;
  for (const Part& part : parts_) {
    checksum = crc32_combine(checksum, part.checksum, static_cast<z_off_t>(part.size));
    size += part.size;
  }
  return deflater_.Run({}, Z_FINISH, give) &&
         target_.Write(LittleEndian(checksum) + LittleEndian(size)) && target_.Finish();
}

}  // namespace qv::standin
