// The encoding of a frame: one message between a client and a server, with the file that it
// carries. docs/wire-protocol.md describes the format. The code here encodes, decodes and validates
// without any socket or file.
//
// The frame of a request or a reply is
//   the header (kFrameHeaderSize bytes), with its own checksum,
//   the token of a request, or the reason of a reply of version 2 or 3; often empty,
//   the message's header block (kFrameBlockSize bytes),
//   the payload: the message's fields unchanged,
//   the body checksum: CRC-32 of token or reason, block and payload,
//   and, if there is a file, its chunks: a chunk header and 1 to kMaxChunk bytes each, ended by a
//   chunk header of length 0.
// The frames hello and progress are a header alone. The frame busy is a header, a reason and the
// CRC-32 of the reason.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

#include "base/storage/Checksum.h"

namespace qv::wire {

using Bytes = std::span<const unsigned char>;
using WritableBytes = std::span<unsigned char>;

// The first bytes of a frame: "QvN4".
inline constexpr std::array<unsigned char, 4> kFrameMagic{'Q', 'v', 'N', '4'};

inline constexpr std::size_t kFrameHeaderSize = 32;
inline constexpr std::size_t kFrameBlockSize = 269;
inline constexpr std::size_t kFrameChecksumSize = 4;
inline constexpr std::size_t kChunkHeaderSize = 8;

inline constexpr std::uint64_t kMaxPayload = 64ULL << 20;
inline constexpr std::uint32_t kMaxToken = 4096;
inline constexpr std::uint32_t kMaxChunk = 1U << 20;
// The number of bytes that a sender puts into one chunk.
inline constexpr std::uint32_t kChunkSize = 64U << 10;
inline constexpr std::uint64_t kMaxFile = std::numeric_limits<std::int64_t>::max();

// The outcome of sending or receiving a frame or a part of one.
enum class FrameStatus {
  kDone,
  kConnectionLost,  // the stream ended, failed or made no progress for too long
  kMalformed,       // not a frame, or a field is out of its limits
  kBadChecksum,
  kDoesNotFit,  // a valid frame that is larger than its receiver allows
  kFileFailed,  // the local file could not be read or written
};

// The values are those of the header's word: the version is in the low half, the kind in the high
// half. Only a client that has said hello, or asked for version 2 over HTTP, is sent frames of
// version 2, and only one that has said hello in version 3 may number its requests.
enum class FrameKind : std::uint32_t {
  kRequest = 0x0000'0001,
  kReply = 0x0001'0001,
  kReplyWithReason = 0x0001'0002,
  kHello = 0x0002'0002,     // the first frame of a client that knows version 2, and its answer
  kProgress = 0x0003'0002,  // the server is still at work
  kBusy = 0x0004'0002,      // in place of the answer to a hello: the server has no place left
  kNumberedRequest = 0x0000'0003,  // may follow others whose replies have not come yet
  kNumberedReply = 0x0001'0003,    // has the number of its request, and may have a reason
  kHello3 = 0x0002'0003,  // the hello of a client that will number requests, and its answer
};

// How many bytes of numbered requests a client may have on the way without their replies, or one
// request that is larger.
inline constexpr std::uint64_t kRequestWindow = 256ULL << 10;

// What a receiver takes next.
using FrameKinds = std::span<const FrameKind>;
inline constexpr FrameKind kFirstFromClient[] = {FrameKind::kRequest, FrameKind::kHello,
                                                 FrameKind::kHello3};
inline constexpr FrameKind kRequestsOfVersion3[] = {FrameKind::kRequest,
                                                    FrameKind::kNumberedRequest};
inline constexpr FrameKind kAnswersToHello[] = {FrameKind::kHello, FrameKind::kBusy};
inline constexpr FrameKind kAnswersToRequest[] = {FrameKind::kReply, FrameKind::kReplyWithReason,
                                                  FrameKind::kProgress};
inline constexpr FrameKind kAnswersToHello3[] = {FrameKind::kHello3, FrameKind::kBusy};
inline constexpr FrameKind kAnswersToNumbered[] = {FrameKind::kNumberedReply, FrameKind::kProgress};

struct FrameHeader {
  FrameKind kind = FrameKind::kRequest;
  // The length of the token, or of the reason as EncodeReason writes it.
  std::uint32_t token_length = 0;
  // Of kProgress: how long the server has been at work, in milliseconds; any number.
  std::uint64_t payload_length = 0;
  // Nothing if there is no file.
  std::optional<std::uint64_t> file_length;
  // Of a numbered request and its reply; else 0.
  std::uint32_t number = 0;

  bool operator==(const FrameHeader&) const = default;
};

// Returns the length of the frame that SendFrame sends with this header, including the chunks of
// its file.
[[nodiscard]] std::uint64_t FrameLength(const FrameHeader& header);

// The largest frame that a receiver accepts. It may be less than the format allows.
struct FrameLimits {
  std::uint64_t payload = kMaxPayload;
  std::uint64_t file = kMaxFile;
};

[[nodiscard]] std::array<unsigned char, kFrameHeaderSize> EncodeHeader(const FrameHeader& header);

// Validates a header completely, so that nothing needs to be allocated before. Fills `header` only
// if the result is kDone. Returns kMalformed for a kind that is not among `expected`, and
// kDoesNotFit for a valid header that exceeds `limits`.
[[nodiscard]] FrameStatus DecodeHeader(std::span<const unsigned char, kFrameHeaderSize> bytes,
                                       FrameKinds expected, const FrameLimits& limits,
                                       FrameHeader& header);

using storage::Crc32;

// Each chunk carries the checksum of the whole file up to its end, so a chunk that is damaged,
// missing, repeated or out of order is detected at once. The last chunk is empty.
struct ChunkHeader {
  std::uint32_t length = 0;
  std::uint32_t checksum = 0;
};

[[nodiscard]] std::array<unsigned char, kChunkHeaderSize> EncodeChunk(const ChunkHeader& chunk);

// `remaining` is the number of bytes that the file still lacks. A chunk must not be longer than
// that, and the empty chunk must follow the last byte.
[[nodiscard]] FrameStatus DecodeChunk(std::span<const unsigned char, kChunkHeaderSize> bytes,
                                      std::uint64_t remaining, ChunkHeader& chunk);

}  // namespace qv::wire
