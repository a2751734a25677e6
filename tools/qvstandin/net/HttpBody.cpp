#include "HttpBody.h"

#include <algorithm>

#include "base/text/Numbers.h"

namespace qv::standin {

namespace {

// Room for a length and a few extensions, which mean nothing here.
constexpr std::size_t kLongestLine = 256;

std::optional<std::uint64_t> ChunkLength(std::string_view line) {
  return text::ParseNumber<std::uint64_t>(line.substr(0, line.find(';')), 16);
}

}  // namespace

bool HttpBody::Read(wire::WritableBytes bytes) {
  // One for all chunks, or dribbling them would be a way to stay for ever.
  const auto deadline = stream_.DeadlineFor(bytes.size());
  while (!bytes.empty()) {
    if (left_ == 0 && !NextChunk(deadline)) return false;
    const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(left_, bytes.size()));
    if (!stream_.Read(bytes.first(length), deadline)) {
      is_lost_ = true;
      return false;
    }
    left_ -= length;
    bytes = bytes.subspan(length);
  }
  return true;
}

bool HttpBody::IsAtEnd() {
  return left_ == 0 && !NextChunk(stream_.DeadlineFor(0)) && (is_last_ || !is_chunked_);
}

// The chunk codec is this one rather than the parser's, which asserts on a last chunk that arrives
// byte by byte.
bool HttpBody::NextChunk(ClientStream::Deadline deadline) {
  if (!is_chunked_ || is_last_) return false;
  if (!is_first_ && Line(deadline) != "") return false;
  is_first_ = false;
  const auto line = Line(deadline);
  const auto length = line ? ChunkLength(*line) : std::nullopt;
  if (!length) return false;
  left_ = *length;
  // Fields behind the last chunk are not taken.
  if (left_ == 0) is_last_ = Line(deadline) == "";
  return left_ != 0;
}

std::optional<std::string> HttpBody::Line(ClientStream::Deadline deadline) {
  std::string line;
  while (line.size() < kLongestLine) {
    unsigned char byte = 0;
    if (!stream_.Read({&byte, 1}, deadline)) {
      is_lost_ = true;
      return std::nullopt;
    }
    if (byte == '\n') {
      if (!line.ends_with('\r')) return std::nullopt;
      line.pop_back();
      if (line.find('\r') != std::string::npos) return std::nullopt;
      return line;
    }
    line += static_cast<char>(byte);
  }
  return std::nullopt;
}

}  // namespace qv::standin
