// What the tests of both transports call with, and what their servers answer.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "message/MsgContent.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WholeFrame.h"

namespace qv {

struct TransportCall {
  explicit TransportCall(unsigned int size = 4096) : request_block(size), reply_block(size) {
    request.SetCommand(200);
  }
  std::string Answer() { return std::string(reply.GetString(nullptr)); }

  CAutoBuf request_block;
  CAutoBuf reply_block;
  CMsgContent request{request_block};
  CMsgContent reply{reply_block};
};

// 3,000,001 bytes, no two chunks of which are alike.
inline std::string LongBytes() {
  std::string bytes(3'000'001, '\0');
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    bytes[at] = static_cast<char>(at * 7 + at / 251);
  }
  return bytes;
}

// The bytes of a right reply with a file of 200,000 bytes.
inline std::string ReplyWithFile(const TempFolder& folder) {
  const std::string path = folder.Write("source", std::string(200'000, 'f'));
  auto file = OutgoingFile::Open(path);
  MemoryStream stream;
  EXPECT_EQ(SendWhole(stream, FrameKind::kReply, {.payload = Field("SUCCESS")}, &*file),
            FrameStatus::kDone);
  std::filesystem::remove(path);
  return stream.written;
}

inline std::string Damaged(std::string bytes, std::size_t at) {
  bytes[at] = static_cast<char>(bytes[at] ^ 1);
  return bytes;
}

inline std::string HeaderOnly(FrameKind kind, std::uint64_t payload_length) {
  const auto bytes = EncodeHeader(
      {.kind = kind, .token_length = 0, .payload_length = payload_length, .file_length = {}});
  return {bytes.begin(), bytes.end()};
}

}  // namespace qv
