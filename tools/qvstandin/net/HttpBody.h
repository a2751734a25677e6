// The body of an HTTP request, as the frame that it holds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ClientStream.h"
#include "HttpHead.h"

namespace qv::standin {

// Reads what is left when HTTP's own marks are taken away; writes as the connection does.
class HttpBody : public wire::ByteStream {
 public:
  // The stream stands behind the head, and outlives the body.
  HttpBody(ClientStream& stream, const HttpRequestHead& head)
      : stream_(stream), is_chunked_(head.is_chunked), left_(head.length.value_or(0)) {}

  // False also when the body ends before that.
  bool Read(wire::WritableBytes bytes) override;
  bool Write(std::initializer_list<wire::Bytes> pieces) override { return stream_.Write(pieces); }
  // Whether nothing follows any more; may have to wait for the mark that says so.
  [[nodiscard]] bool IsAtEnd();
  // Whether the connection can be used no more.
  [[nodiscard]] bool IsLost() const { return is_lost_; }

 private:
  [[nodiscard]] bool NextChunk(ClientStream::Deadline deadline);
  // A line without its end. Nothing when it is too long or has a wrong end.
  [[nodiscard]] std::optional<std::string> Line(ClientStream::Deadline deadline);

  ClientStream& stream_;
  const bool is_chunked_;
  std::uint64_t left_;  // of the body, or of this chunk
  bool is_first_ = true;
  bool is_last_ = false;  // the end was seen
  bool is_lost_ = false;
};

}  // namespace qv::standin
