#include "AnswerSpool.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/platform/Platform.h"

namespace qv::standin {

namespace {

// The largest window; adding 16 selects the gzip format.
constexpr int kGzipWindow = MAX_WBITS + 16;
constexpr int kMemoryLevel = 8;
// Fast compression, since most clients are local.
constexpr int kLevel = 3;
constexpr std::size_t kLargestPiece = std::size_t{1} << 30;  // zlib counts in 32 bits

}  // namespace

AnswerSpool::AnswerSpool(std::string folder, std::uint64_t memory_limit, std::uint64_t size_limit)
    : folder_(std::move(folder)), memory_limit_(memory_limit), size_limit_(size_limit) {}

AnswerSpool::~AnswerSpool() {
  file_ = {};  // some systems remove no file that is open
  if (!path_.empty()) platform::RemoveFile(path_);
}

bool AnswerSpool::Write(std::string_view bytes) {
  if (bytes.size() > size_limit_ - size_) return false;
  size_ += bytes.size();
  if (path_.empty() && size_ <= memory_limit_) {
    bytes_ += bytes;
    return true;
  }
  if (path_.empty() && !MoveToDisk()) return false;
  return file_.Write(bytes);
}

bool AnswerSpool::MoveToDisk() {
  const std::string path = folder_ + platform::NewGuid() + kExtension;
  file_ = storage::OutputFile(path, platform::Create::kNew);
  if (!file_.IsOpen()) return false;
  path_ = path;
  return file_.Write(std::exchange(bytes_, {}));
}

bool AnswerSpool::Finish() { return InMemory() || file_.Close(); }

GzipStream::GzipStream(ByteSink& target) : target_(target) {
  ready_ = deflateInit2(&stream_, kLevel, Z_DEFLATED, kGzipWindow, kMemoryLevel,
                        Z_DEFAULT_STRATEGY) == Z_OK;
}

GzipStream::~GzipStream() {
  if (ready_) deflateEnd(&stream_);
}

bool GzipStream::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, kLargestPiece);
    if (!Deflate(piece, Z_NO_FLUSH)) return false;
    bytes.remove_prefix(piece.size());
  }
  return true;
}

bool GzipStream::Finish() { return Deflate({}, Z_FINISH) && target_.Finish(); }

bool GzipStream::Deflate(std::string_view bytes, int flush) {
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
    if (!target_.Write({reinterpret_cast<const char*>(out.data()), packed})) return false;
  } while (stream_.avail_out == 0);
  return true;
}

}  // namespace qv::standin
