// The bytes of a frame: one message on its way between a client and a server, with the file that
// travels with it. docs/wire-protocol.md describes them; here they are encoded, decoded and checked
// without touching a socket or a file.
//
// A frame is
//   the header (kFrameHeaderSize bytes), with a checksum of its own,
//   the token (only in a request, often empty),
//   the message's header block (kFrameBlockSize bytes),
//   the payload: the message's fields as they stand,
//   the body checksum: CRC-32 of token, block and payload,
//   and, when a file travels, its chunks: a chunk header and 1 to kMaxChunk bytes each, closed by a
//   chunk header of length 0.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

namespace qv::wire {

using Bytes = std::span<const unsigned char>;
using WritableBytes = std::span<unsigned char>;

// What a frame begins with: "QvN4".
inline constexpr std::array<unsigned char, 4> kFrameMagic{'Q', 'v', 'N', '4'};

inline constexpr std::size_t kFrameHeaderSize = 32;
inline constexpr std::size_t kFrameBlockSize = 269;
inline constexpr std::size_t kFrameChecksumSize = 4;
inline constexpr std::size_t kChunkHeaderSize = 8;

inline constexpr std::uint64_t kMaxPayload = 64ULL << 20;
inline constexpr std::uint32_t kMaxToken = 4096;
inline constexpr std::uint32_t kMaxChunk = 1U << 20;
// What a sender puts into one chunk.
inline constexpr std::uint32_t kChunkSize = 64U << 10;
inline constexpr std::uint64_t kMaxFile = std::numeric_limits<std::int64_t>::max();

// What became of a frame, or of a part of one.
enum class FrameStatus {
  kDone,
  kConnectionLost,  // the stream ended, failed or stood still for too long
  kMalformed,       // no frame, or a field of it is out of its limits
  kBadChecksum,
  kDoesNotFit,  // a frame, but larger than what its receiver has room for
  kFileFailed,  // the local file could not be read, or not be written
};

enum class FrameKind : std::uint16_t { kRequest = 0, kReply = 1 };

struct FrameHeader {
  FrameKind kind = FrameKind::kRequest;
  std::uint32_t token_length = 0;
  std::uint64_t payload_length = 0;
  // Nothing when no file travels.
  std::optional<std::uint64_t> file_length;

  bool operator==(const FrameHeader&) const = default;
};

// How long the frame with this header is that SendFrame sends, its file's chunks included.
[[nodiscard]] std::uint64_t FrameLength(const FrameHeader& header);

// What a receiver accepts; it can ask for less than the format allows.
struct FrameLimits {
  std::uint64_t payload = kMaxPayload;
  std::uint64_t file = kMaxFile;
};

[[nodiscard]] std::array<unsigned char, kFrameHeaderSize> EncodeHeader(const FrameHeader& header);

// Checks everything that a header can be checked for, before anything is allocated for what
// follows. Fills `header` only when the result is kDone. kDoesNotFit: right, but above `limits`.
[[nodiscard]] FrameStatus DecodeHeader(std::span<const unsigned char, kFrameHeaderSize> bytes,
                                       FrameKind expected, const FrameLimits& limits,
                                       FrameHeader& header);

// The CRC-32 of what `start` is the CRC-32 of, followed by `bytes`; 0 is that of no bytes.
[[nodiscard]] std::uint32_t Crc32(std::uint32_t start, Bytes bytes);

// A chunk carries the checksum of the whole file up to its own end, so a chunk that is damaged,
// missing, doubled or out of order is found at once. The last one has no bytes.
struct ChunkHeader {
  std::uint32_t length = 0;
  std::uint32_t checksum = 0;
};

[[nodiscard]] std::array<unsigned char, kChunkHeaderSize> EncodeChunk(const ChunkHeader& chunk);

// `remaining` is what the file has left; a chunk must not be longer, and the empty one stands
// behind the last byte.
[[nodiscard]] FrameStatus DecodeChunk(std::span<const unsigned char, kChunkHeaderSize> bytes,
                                      std::uint64_t remaining, ChunkHeader& chunk);

}  // namespace qv::wire
