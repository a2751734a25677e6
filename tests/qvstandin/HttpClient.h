// A client that writes its requests over HTTP by hand.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "ServerFixture.h"

namespace qv::standin {

inline const std::string kHost = "Host: x\r\n";
inline const std::string kBytes = "Content-Type: application/octet-stream\r\n";
inline const std::string kChunked = "Transfer-Encoding: chunked\r\n";

inline std::string Length(std::size_t length) {
  return "Content-Length: " + std::to_string(length) + "\r\n";
}

inline std::string Post(const std::string& fields, const std::string& body) {
  return "POST /qvcall HTTP/1.1\r\n" + kHost + kBytes + fields + "\r\n" + body;
}

inline std::string Call(const std::string& frame, const std::string& fields = {}) {
  return Post(fields + Length(frame.size()), frame);
}

struct HttpReply {
  std::string status = {};  // "200"; empty if no reply came
  std::string head = {};
  std::string body = {};

  [[nodiscard]] std::string Value(const std::string& name) const {
    const std::size_t at = head.find("\r\n" + name + ": ");
    if (at == std::string::npos) return {};
    const std::size_t start = at + name.size() + 4;
    return head.substr(start, head.find("\r\n", start) - start);
  }
  // Returns the fields of the frame in the body, which must contain nothing else. Its file goes to
  // `path`.
  [[nodiscard]] std::vector<std::string> Fields(const std::string& path = {}) const {
    MemoryStream stream;
    stream.unread = body;
    const WholeFrame frame = ReceiveWhole(stream, wire::FrameKind::kReply, path);
    EXPECT_EQ(frame.status, wire::FrameStatus::kDone);
    EXPECT_EQ(stream.unread, "");
    return FieldsOf(frame.payload);
  }
  [[nodiscard]] std::string Outcome() const { return Fields().at(0); }
};

class HttpClient : public RawClient {
 public:
  using RawClient::RawClient;

  HttpReply Receive(bool has_body = true) {
    HttpReply reply{.head = ReadUntil("\r\n\r\n")};
    if (reply.head.empty()) return {};
    reply.status = reply.head.substr(reply.head.find(' ') + 1, 3);
    if (reply.Value("Transfer-Encoding") == "chunked") {
      reply.body = ReadChunks();
    } else if (has_body) {
      reply.body = Read(std::stoul("0" + reply.Value("Content-Length")));
    }
    return reply;
  }
  HttpReply Ask(const std::string& bytes) {
    EXPECT_TRUE(Send(bytes));
    return Receive();
  }

 private:
  // Returns nothing if the connection ends before.
  std::string ReadUntil(std::string_view end) {
    std::string text;
    while (!text.ends_with(end)) {
      const std::string byte = Read(1);
      if (byte.empty()) return {};
      text += byte;
    }
    return text;
  }
  std::string ReadChunks() {
    std::string body;
    std::size_t length = 0;
    do {
      length = std::stoul("0" + ReadUntil("\r\n"), nullptr, 16);
      body += Read(length);
      EXPECT_EQ(ReadUntil("\r\n"), "\r\n");
    } while (length != 0);
    return body;
  }
};

}  // namespace qv::standin
