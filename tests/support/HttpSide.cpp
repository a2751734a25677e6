#include "HttpSide.h"

namespace qv {

namespace {

// Reads byte by byte, so that nothing after the head is consumed.
bool ReceiveHead(wire::ByteStream& stream, std::string& head) {
  unsigned char byte = 0;
  for (head.clear(); !head.ends_with("\r\n\r\n"); head.push_back(static_cast<char>(byte))) {
    if (!stream.Read({&byte, 1})) return false;
  }
  return true;
}

}  // namespace

bool ReceiveHttp(wire::ByteStream& stream, HttpRequestSeen& request, const std::string& file_path) {
  static const std::string kLength = "\r\nContent-Length: ";
  if (!ReceiveHead(stream, request.head)) return false;
  const std::size_t length = request.head.find(kLength);
  if (length == std::string::npos) return false;
  std::string body(std::stoul(request.head.substr(length + kLength.size())), '\0');
  if (!stream.Read({reinterpret_cast<unsigned char*>(body.data()), body.size()})) return false;
  MemoryStream memory;
  memory.unread = std::move(body);
  request.frame = ReceiveWhole(memory, wire::FrameKind::kRequest, file_path);
  if (!memory.unread.empty()) request.frame.status = wire::FrameStatus::kMalformed;
  return request.frame.status == wire::FrameStatus::kDone;
}

std::string HttpAnswer(const std::string& body, const std::string& more_headers,
                       const std::string& status) {
  return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
         more_headers + "\r\n" + body;
}

bool ReplyHttp(wire::ByteStream& stream, const std::string& payload, wire::OutgoingFile* file,
               const std::string& more_headers) {
  MemoryStream frame;
  const wire::FrameStatus status =
      SendWhole(frame, wire::FrameKind::kReply, {.payload = payload}, file);
  return status == wire::FrameStatus::kDone &&
         stream.Write({BytesOfText(HttpAnswer(frame.written, more_headers))});
}

void EchoHttp(wire::ByteStream& stream) {
  for (HttpRequestSeen request; ReceiveHttp(stream, request);) {
    if (!ReplyHttp(stream, request.frame.payload)) return;
  }
}

}  // namespace qv
