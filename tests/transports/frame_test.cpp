#include "transports/frame/Frame.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "message/LittleEndian.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WholeFrame.h"
#include "transports/frame/FrameIo.h"

namespace qv::wire {
namespace {

std::string FromHex(const std::string& hex) {
  std::string bytes;
  for (std::size_t at = 0; at < hex.size(); at += 2) {
    bytes.push_back(static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16)));
  }
  return bytes;
}

// The examples of docs/wire-protocol.md.
std::string GoldenRequest() {
  return FromHex(
             "51764e34010000000d00000000000000"
             "ffffffffffffffff030000004c761d8d"
             "6b6579"
             "c8000000000000000000000000612e62") +
         std::string(253, '\0') +
         FromHex(
             "0800000053454c4543542031"
             "00503f458c");
}

std::string GoldenReply() {
  return FromHex(
             "51764e34010001000c00000000000000"
             "05000000000000000000000032e8b36b") +
         std::string(kFrameBlockSize, '\0') +
         FromHex(
             "070000005355434345535300bb8f678d"
             "0500000086a6103668656c6c6f"
             "0000000086a61036");
}

WholeFrame Receive(const std::string& frame, FrameKind kind, const std::string& path) {
  MemoryStream stream;
  stream.unread = frame;
  return ReceiveWhole(stream, kind, path);
}

TEST(Frame, WritesTheDocumentedBytes) {
  WholeFrame message{.token = "key", .payload = Field("SELECT 1")};
  message.block[0] = static_cast<char>(200);
  message.block.replace(13, 3, "a.b");
  MemoryStream request;
  EXPECT_EQ(SendWhole(request, FrameKind::kRequest, message), FrameStatus::kDone);
  EXPECT_EQ(request.written, GoldenRequest());

  const TempFolder folder;
  auto file = OutgoingFile::Open(folder.Write("answer", "hello"));
  ASSERT_TRUE(file);
  MemoryStream reply;
  EXPECT_EQ(SendWhole(reply, FrameKind::kReply, {.payload = Field("SUCCESS")}, &*file),
            FrameStatus::kDone);
  EXPECT_EQ(reply.written, GoldenReply());
}

TEST(Frame, ItsLengthIsKnownBeforehand) {
  const TempFolder folder;
  for (const std::size_t length : {0U, 1U, 65535U, 65536U, 65537U, 131072U}) {
    auto file = OutgoingFile::Open(folder.Write("answer", std::string(length, 'x')));
    ASSERT_TRUE(file);
    FrameHeader header{.token_length = 3, .payload_length = 13, .file_length = {}};
    const WholeFrame message{.token = "key", .payload = Field("SELECT 1")};
    EXPECT_EQ(FrameLength(header), GoldenRequest().size());
    header.file_length = length;
    MemoryStream stream;
    EXPECT_EQ(SendWhole(stream, FrameKind::kRequest, message, &*file), FrameStatus::kDone);
    EXPECT_EQ(FrameLength(header), stream.written.size());
  }
  EXPECT_GT(FrameLength({.file_length = kMaxFile}), kMaxFile);
}

TEST(Frame, ReadsThemBack) {
  const TempFolder folder;
  const std::string path = (folder.Path() / "answer").string();
  const WholeFrame request = Receive(GoldenRequest(), FrameKind::kRequest, path);
  EXPECT_EQ(request.status, FrameStatus::kDone);
  EXPECT_EQ(request.block.substr(13, 4), std::string("a.b\0", 4));
  EXPECT_EQ(request.payload, Field("SELECT 1"));
  const WholeFrame reply = Receive(GoldenReply(), FrameKind::kReply, path);
  EXPECT_EQ(reply.status, FrameStatus::kDone);
  EXPECT_EQ(reply.payload, Field("SUCCESS"));
  EXPECT_EQ(BytesOf(path), "hello");
}

TEST(Frame, NoticesEveryCutAndEveryDamagedByte) {
  const TempFolder folder;
  const std::string path = (folder.Path() / "answer").string();
  const std::string whole = GoldenReply();
  for (std::size_t at = 0; at < whole.size(); ++at) {
    EXPECT_EQ(Receive(whole.substr(0, at), FrameKind::kReply, path).status,
              FrameStatus::kConnectionLost)
        << at;
    std::string damaged = whole;
    damaged[at] = static_cast<char>(damaged[at] ^ 0x10);
    EXPECT_NE(Receive(damaged, FrameKind::kReply, path).status, FrameStatus::kDone) << at;
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

// A header whose checksum is right and whose word at `at` is `value`.
FrameStatus DecodeWith(std::size_t at, std::uint64_t value, FrameKind kind) {
  auto bytes =
      EncodeHeader({.kind = kind, .token_length = 0, .payload_length = 0, .file_length = {}});
  StoreU64(&bytes[at], value);
  StoreU32(&bytes[28], Crc32(0, Bytes(bytes).first(28)));
  FrameHeader header;
  return DecodeHeader(bytes, kind, {.payload = 1000, .file = 5000}, header);
}

TEST(Frame, ChecksLengthsBeforeAnythingElse) {
  constexpr std::uint64_t kHeaderStart = 0x00000001344E7651;
  const struct {
    std::size_t at;
    std::uint64_t value;
    FrameStatus status;
  } cases[] = {
      {0, kHeaderStart, FrameStatus::kDone},
      {0, kHeaderStart + 1, FrameStatus::kMalformed},             // magic
      {0, kHeaderStart + (1ULL << 32), FrameStatus::kMalformed},  // version
      {0, kHeaderStart + (1ULL << 48), FrameStatus::kMalformed},  // kind
      {8, 1000, FrameStatus::kDone},
      {8, 1001, FrameStatus::kDoesNotFit},
      {8, kMaxPayload + 1, FrameStatus::kMalformed},
      {8, 1ULL << 32, FrameStatus::kMalformed},
      {16, 5000, FrameStatus::kDone},
      {16, 5001, FrameStatus::kDoesNotFit},
      {16, kMaxFile + 1, FrameStatus::kMalformed},
      {20, 0x00001000FFFFFFFF, FrameStatus::kDone},  // token
      {20, 0x00001001FFFFFFFF, FrameStatus::kMalformed},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(DecodeWith(one.at, one.value, FrameKind::kRequest), one.status)
        << one.at << ' ' << one.value;
  }
  EXPECT_EQ(DecodeWith(20, 0x00000001FFFFFFFF, FrameKind::kReply), FrameStatus::kMalformed);
}

TEST(Frame, ChunksStayWithinTheFile) {
  const struct {
    std::uint32_t length;
    std::uint64_t remaining;
    bool right;
  } cases[] = {{1, 1, true},
               {2, 1, false},
               {0, 1, false},
               {0, 0, true},
               {1, 0, false},
               {kMaxChunk, 1ULL << 40, true},
               {kMaxChunk + 1, 1ULL << 40, false},
               {0xFFFFFFFF, kMaxFile, false}};
  for (const auto& one : cases) {
    ChunkHeader chunk;
    const auto bytes = EncodeChunk({one.length, 0});
    EXPECT_EQ(DecodeChunk(bytes, one.remaining, chunk) == FrameStatus::kDone, one.right)
        << one.length << " of " << one.remaining;
  }
}

TEST(Frame, RefusesToSendWhatNobodyWouldTake) {
  MemoryStream stream;
  const WholeFrame big{.payload = std::string(kMaxPayload + 1, 'x')};
  EXPECT_EQ(SendWhole(stream, FrameKind::kReply, big), FrameStatus::kDoesNotFit);
  EXPECT_EQ(stream.written, "");
}

TEST(Frame, AFileThatShrinksIsNotSentAsIfItWereWhole) {
  const TempFolder folder;
  const std::string path = folder.Write("shrinking", "0123456789");
  auto file = OutgoingFile::Open(path);
  ASSERT_TRUE(file);
  std::filesystem::resize_file(path, 4);
  MemoryStream stream;
  EXPECT_EQ(SendWhole(stream, FrameKind::kReply, {}, &*file), FrameStatus::kFileFailed);
  EXPECT_FALSE(OutgoingFile::Open(folder.Path().string()));
}

}  // namespace
}  // namespace qv::wire
