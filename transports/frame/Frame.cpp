#include "Frame.h"

#include <algorithm>

#include "Reason.h"
#include "message/LittleEndian.h"
#include "message/MsgContentBase.h"

namespace qv::wire {

static_assert(kFrameBlockSize == MessageBlock::kPayload);

namespace {

constexpr std::uint64_t kNoFile = std::numeric_limits<std::uint64_t>::max();

// Offsets of the header's fields.
constexpr std::size_t kMagicAt = 0;
constexpr std::size_t kVersionAndKindAt = 4;
constexpr std::size_t kPayloadLengthAt = 8;
constexpr std::size_t kFileLengthAt = 16;
constexpr std::size_t kTokenLengthAt = 24;
constexpr std::size_t kHeaderChecksumAt = 28;
static_assert(kHeaderChecksumAt + kFrameChecksumSize == kFrameHeaderSize);

// The number is in the upper half of the payload's length, which is zero in other messages.
constexpr std::size_t kNumberAt = kPayloadLengthAt + 4;
static_assert(kMaxPayload <= std::numeric_limits<std::uint32_t>::max());

bool IsNumbered(FrameKind kind) {
  return kind == FrameKind::kNumberedRequest || kind == FrameKind::kNumberedReply;
}

bool IsMessage(FrameKind kind) {
  return kind == FrameKind::kRequest || kind == FrameKind::kReply ||
         kind == FrameKind::kReplyWithReason || IsNumbered(kind);
}

bool IsTokenLength(FrameKind kind, std::uint32_t length) {
  switch (kind) {
    case FrameKind::kRequest:
    case FrameKind::kNumberedRequest:
      return length <= kMaxToken;
    case FrameKind::kReplyWithReason:
    case FrameKind::kNumberedReply:
    case FrameKind::kBusy:
      return IsReasonLength(length);
    case FrameKind::kReply:
    case FrameKind::kHello:
    case FrameKind::kHello3:
    case FrameKind::kProgress:
      break;
  }
  return length == 0;
}

bool IsWithinFormat(const FrameHeader& header) {
  if (!IsTokenLength(header.kind, header.token_length)) return false;
  if (IsMessage(header.kind)) {
    return header.payload_length <= kMaxPayload && header.file_length.value_or(0) <= kMaxFile;
  }
  return !header.file_length && (header.payload_length == 0 || header.kind == FrameKind::kProgress);
}

bool IsWithin(const FrameLimits& limits, const FrameHeader& header) {
  return !IsMessage(header.kind) ||
         (header.payload_length <= limits.payload && header.file_length.value_or(0) <= limits.file);
}

}  // namespace

std::uint64_t FrameLength(const FrameHeader& header) {
  const std::uint64_t message = kFrameHeaderSize + header.token_length + kFrameBlockSize +
                                header.payload_length + kFrameChecksumSize;
  if (!header.file_length) return message;
  const std::uint64_t file = *header.file_length;
  const std::uint64_t chunks = file / kChunkSize + (file % kChunkSize != 0 ? 1 : 0) + 1;
  return message + file + chunks * kChunkHeaderSize;
}

std::array<unsigned char, kFrameHeaderSize> EncodeHeader(const FrameHeader& header) {
  std::array<unsigned char, kFrameHeaderSize> bytes{};
  std::ranges::copy(kFrameMagic, &bytes[kMagicAt]);
  StoreU32(&bytes[kVersionAndKindAt], static_cast<std::uint32_t>(header.kind));
  StoreU64(&bytes[kPayloadLengthAt], header.payload_length);
  if (IsNumbered(header.kind)) StoreU32(&bytes[kNumberAt], header.number);
  StoreU64(&bytes[kFileLengthAt], header.file_length.value_or(kNoFile));
  StoreU32(&bytes[kTokenLengthAt], header.token_length);
  StoreU32(&bytes[kHeaderChecksumAt], Crc32(0, Bytes(bytes).first(kHeaderChecksumAt)));
  return bytes;
}

FrameStatus DecodeHeader(std::span<const unsigned char, kFrameHeaderSize> bytes,
                         FrameKinds expected, const FrameLimits& limits, FrameHeader& header) {
  if (!std::ranges::equal(bytes.subspan<kMagicAt, kFrameMagic.size()>(), kFrameMagic)) {
    return FrameStatus::kMalformed;
  }
  if (LoadU32(&bytes[kHeaderChecksumAt]) != Crc32(0, bytes.first(kHeaderChecksumAt))) {
    return FrameStatus::kBadChecksum;
  }
  const auto kind = static_cast<FrameKind>(LoadU32(&bytes[kVersionAndKindAt]));
  if (std::ranges::find(expected, kind) == expected.end()) return FrameStatus::kMalformed;
  FrameHeader decoded{.kind = kind,
                      .token_length = LoadU32(&bytes[kTokenLengthAt]),
                      .payload_length = LoadU64(&bytes[kPayloadLengthAt]),
                      .file_length = LoadU64(&bytes[kFileLengthAt])};
  if (IsNumbered(kind)) {
    decoded.payload_length = LoadU32(&bytes[kPayloadLengthAt]);
    decoded.number = LoadU32(&bytes[kNumberAt]);
  }
  if (decoded.file_length == kNoFile) decoded.file_length.reset();
  if (!IsWithinFormat(decoded)) return FrameStatus::kMalformed;
  if (!IsWithin(limits, decoded)) return FrameStatus::kDoesNotFit;
  header = decoded;
  return FrameStatus::kDone;
}

std::array<unsigned char, kChunkHeaderSize> EncodeChunk(const ChunkHeader& chunk) {
  std::array<unsigned char, kChunkHeaderSize> bytes{};
  StoreU32(&bytes[0], chunk.length);
  StoreU32(&bytes[4], chunk.checksum);
  return bytes;
}

FrameStatus DecodeChunk(std::span<const unsigned char, kChunkHeaderSize> bytes,
                        std::uint64_t remaining, ChunkHeader& chunk) {
  chunk = {.length = LoadU32(&bytes[0]), .checksum = LoadU32(&bytes[4])};
  const std::uint64_t most = std::min<std::uint64_t>(remaining, kMaxChunk);
  const bool ends_at_end = (chunk.length == 0) == (remaining == 0);
  return chunk.length <= most && ends_at_end ? FrameStatus::kDone : FrameStatus::kMalformed;
}

}  // namespace qv::wire
