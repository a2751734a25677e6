#include "transports/frame/Frame.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <utility>

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

constexpr const char* kGoldenHello =
    "51764e34020002000000000000000000ffffffffffffffff00000000a7bfb75f";
constexpr const char* kGoldenProgress =
    "51764e3402000300dc05000000000000ffffffffffffffff000000002920ec1b";
constexpr const char* kGoldenBusy =
    "51764e34020004000000000000000000ffffffffffffffff1d000000656a358f"
    "070000003634206f6620363420706c61636573206172652074616b656ef6e6769f";

std::string GoldenReplyWithReason() {
  return FromHex(
             "51764e34020001000c00000000000000"
             "ffffffffffffffff180000007c505420"
             "020000006e6f2073756368207461626c653a207061727473") +
         std::string(kFrameBlockSize, '\0') + FromHex("070000004641494c5552450061f0816e");
}

constexpr const char* kGoldenHello3 =
    "51764e34030002000000000000000000ffffffffffffffff0000000080da92de";

std::string GoldenNumbered(const char* header, const char* rest) {
  return FromHex(header) + '\xC8' + std::string(kFrameBlockSize - 1, '\0') + FromHex(rest);
}

std::string GoldenNumberedRequest() {
  return GoldenNumbered("51764e34030000000d00000007000000ffffffffffffffff00000000d8ed6abb",
                        "0800000053454c4543542031005178b411");
}

std::string GoldenNumberedReply() {
  return GoldenNumbered("51764e34030001000c00000007000000ffffffffffffffff000000005eb225c9",
                        "070000005355434345535300615aada4");
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

TEST(Frame, WritesTheDocumentedBytesOfVersion2) {
  MemoryStream hello;
  EXPECT_TRUE(SendHello(hello));
  EXPECT_EQ(hello.written, FromHex(kGoldenHello));
  MemoryStream progress;
  EXPECT_TRUE(SendProgress(progress, std::chrono::milliseconds(1500)));
  EXPECT_EQ(progress.written, FromHex(kGoldenProgress));
  MemoryStream busy;
  EXPECT_TRUE(SendBusy(busy, {error::kBusy, "64 of 64 places are taken"}));
  EXPECT_EQ(busy.written, FromHex(kGoldenBusy));
  MemoryStream reply;
  const auto reason = EncodeReason({error::kUnknownObject, "no such table: parts"});
  EXPECT_EQ(SendWhole(reply, FrameKind::kReplyWithReason,
                      {.token = {reason.begin(), reason.end()}, .payload = Field("FAILURE")}),
            FrameStatus::kDone);
  EXPECT_EQ(reply.written, GoldenReplyWithReason());
}

TEST(Frame, WritesTheDocumentedBytesOfVersion3AndReadsThemBack) {
  MemoryStream hello;
  EXPECT_TRUE(SendHello(hello, FrameKind::kHello3));
  EXPECT_EQ(hello.written, FromHex(kGoldenHello3));
  const struct {
    FrameKind kind;
    const char* text;
    std::string golden;
  } cases[] = {{FrameKind::kNumberedRequest, "SELECT 1", GoldenNumberedRequest()},
               {FrameKind::kNumberedReply, "SUCCESS", GoldenNumberedReply()}};
  for (const auto& one : cases) {
    WholeFrame message{.payload = Field(one.text), .number = 7};
    message.block[0] = static_cast<char>(200);
    MemoryStream stream;
    EXPECT_EQ(SendWhole(stream, one.kind, message), FrameStatus::kDone);
    EXPECT_EQ(stream.written, one.golden);
    const WholeFrame back = Receive(one.golden, one.kind, "");
    EXPECT_EQ(back.status, FrameStatus::kDone);
    EXPECT_EQ(back.number, 7U);
    EXPECT_EQ(back.payload, Field(one.text));
    for (std::size_t at = 0; at < one.golden.size(); ++at) {
      EXPECT_EQ(Receive(one.golden.substr(0, at), one.kind, "").status,
                FrameStatus::kConnectionLost);
      EXPECT_NE(Receive(Damaged(one.golden, at), one.kind, "").status, FrameStatus::kDone) << at;
    }
  }
}

FrameStatus ReceiveBusyOf(const std::string& frame, Reason& reason) {
  MemoryStream stream;
  stream.unread = frame;
  FrameHeader header;
  const FrameStatus status = ReceiveHeader(stream, kAnswersToHello, {}, header);
  return status == FrameStatus::kDone && header.kind == FrameKind::kBusy
             ? ReceiveBusy(stream, header, reason)
             : status;
}

TEST(Frame, ReadsVersion2BackAndNoticesDamage) {
  const WholeFrame reply = Receive(GoldenReplyWithReason(), FrameKind::kReplyWithReason, "");
  EXPECT_EQ(reply.status, FrameStatus::kDone);
  EXPECT_EQ(DecodeReason(BytesOfText(reply.token)),
            (Reason{error::kUnknownObject, "no such table: parts"}));
  const std::string busy = FromHex(kGoldenBusy);
  Reason reason;
  EXPECT_EQ(ReceiveBusyOf(busy, reason), FrameStatus::kDone);
  EXPECT_EQ(reason, (Reason{error::kBusy, "64 of 64 places are taken"}));
  for (std::size_t at = 0; at < busy.size(); ++at) {
    EXPECT_EQ(ReceiveBusyOf(busy.substr(0, at), reason), FrameStatus::kConnectionLost) << at;
    EXPECT_NE(ReceiveBusyOf(Damaged(busy, at), reason), FrameStatus::kDone) << at;
  }
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
  return DecodeHeader(bytes, {&kind, 1}, {.payload = 1000, .file = 5000}, header);
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

TEST(Frame, ChecksWhatTheFramesOfVersion2MayHold) {
  // No file, and token lengths in the upper half of the word at 20.
  const auto token = [](std::uint64_t length) { return length << 32 | 0xFFFFFFFF; };
  const struct {
    FrameKind kind;
    std::size_t at;
    std::uint64_t value;
    FrameStatus status;
  } cases[] = {
      {FrameKind::kReplyWithReason, 20, token(0), FrameStatus::kDone},
      {FrameKind::kReplyWithReason, 20, token(3), FrameStatus::kMalformed},
      {FrameKind::kReplyWithReason, 20, token(4), FrameStatus::kDone},
      {FrameKind::kReplyWithReason, 20, token(1004), FrameStatus::kDone},
      {FrameKind::kReplyWithReason, 20, token(1005), FrameStatus::kMalformed},
      {FrameKind::kReplyWithReason, 8, 1001, FrameStatus::kDoesNotFit},
      {FrameKind::kReplyWithReason, 16, 5001, FrameStatus::kDoesNotFit},
      {FrameKind::kHello, 8, 0, FrameStatus::kDone},
      {FrameKind::kHello, 8, 1, FrameStatus::kMalformed},
      {FrameKind::kHello, 16, 0, FrameStatus::kMalformed},
      {FrameKind::kHello, 20, token(4), FrameStatus::kMalformed},
      {FrameKind::kProgress, 8, 0xFFFFFFFFFFFFFFFF, FrameStatus::kDone},
      {FrameKind::kProgress, 16, 0, FrameStatus::kMalformed},
      {FrameKind::kProgress, 20, token(1), FrameStatus::kMalformed},
      {FrameKind::kBusy, 20, token(1004), FrameStatus::kDone},
      {FrameKind::kBusy, 20, token(1005), FrameStatus::kMalformed},
      {FrameKind::kBusy, 20, token(0xFFFFFFFF), FrameStatus::kMalformed},
      {FrameKind::kBusy, 8, 1, FrameStatus::kMalformed},
      {FrameKind::kBusy, 16, 1, FrameStatus::kMalformed},
      {FrameKind::kHello3, 8, 0, FrameStatus::kDone},
      {FrameKind::kHello3, 8, 1ULL << 32, FrameStatus::kMalformed},
      {FrameKind::kNumberedRequest, 8, 0xFFFFFFFF'000003E8, FrameStatus::kDone},
      {FrameKind::kNumberedRequest, 8, 0xFFFFFFFF'000003E9, FrameStatus::kDoesNotFit},
      {FrameKind::kNumberedReply, 8, 0x00000001'04000001, FrameStatus::kMalformed},
      {FrameKind::kNumberedRequest, 20, token(4096), FrameStatus::kDone},
      {FrameKind::kNumberedReply, 20, token(1005), FrameStatus::kMalformed},
      {FrameKind::kReplyWithReason, 8, 1ULL << 32, FrameStatus::kMalformed},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(DecodeWith(one.at, one.value, one.kind), one.status)
        << std::hex << static_cast<std::uint32_t>(one.kind) << ' ' << one.at << ' ' << one.value;
  }
  const auto hello = EncodeHeader(
      {.kind = FrameKind::kHello, .token_length = 0, .payload_length = 0, .file_length = {}});
  FrameHeader header;
  EXPECT_EQ(DecodeHeader(hello, kAnswersToRequest, {}, header), FrameStatus::kMalformed);
  EXPECT_EQ(DecodeHeader(hello, kFirstFromClient, {}, header), FrameStatus::kDone);
  EXPECT_EQ(header.kind, FrameKind::kHello);
  auto request = EncodeHeader({.token_length = 0, .payload_length = 0, .file_length = {}});
  StoreU32(&request[4], 2);  // no request has version 2
  StoreU32(&request[28], Crc32(0, Bytes(request).first(28)));
  EXPECT_EQ(DecodeHeader(request, kFirstFromClient, {}, header), FrameStatus::kMalformed);
}

TEST(Frame, AReasonIsValidWhateverItsBytesAre) {
  const std::string longest(kMaxReasonText, 'x');
  const std::pair<std::string, std::string> texts[] = {
      {"", ""},
      {" \r\n", ""},
      {"near \"form\": syntax error", "near \"form\": syntax error"},
      {"a\r\n\tb\x1b[31m\x7f", "a   b [31m "},
      {std::string("a\0b", 3), "a b"},
      {"\xC2\x85\xE2\x80\xA8\xE2\x80\xAE.", "   ."},
      {"\xE8\xB0\x83", "\xE8\xB0\x83"},
      {"\xE8\xB0", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {longest + "y", longest},
      {longest.substr(2) + "\xE8\xB0\x83", longest.substr(2)},
      {std::string(100'000, '\xFF'), std::string(ReasonText(std::string(333, '\xFF')))},
  };
  for (const auto& [given, clean] : texts) EXPECT_EQ(ReasonText(given), clean);

  const std::pair<std::uint32_t, error::Class> classes[] = {
      {0, error::kInternal},  {1, error::kSyntax},         {10, error::kInternal},
      {11, error::kInternal}, {24, error::kInternal},      {0xFFFFFFFF, error::kInternal},
      {7, error::kBusy},      {3, error::kUnknownDatabase}};
  for (const auto& [number, error_class] : classes) {
    unsigned char bytes[6] = {0, 0, 0, 0, '\n', 'a'};
    StoreU32(bytes, number);
    EXPECT_EQ(DecodeReason(bytes), (Reason{error_class, " a"})) << number;
  }
  EXPECT_EQ(DecodeReason({}), Reason());
  EXPECT_TRUE(EncodeReason({}).empty());
  EXPECT_EQ(EncodeReason({error::kSyntax, longest + "y"}).size(), 4 + kMaxReasonText);
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
