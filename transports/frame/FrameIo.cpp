#include "FrameIo.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <vector>

#include "base/platform/Platform.h"
#include "base/storage/FileNames.h"
#include "base/storage/PartFile.h"
#include "message/LittleEndian.h"

namespace qv::wire {

namespace {

// Progress is reported each time so many bytes have been moved, and at the end.
constexpr std::uint64_t kProgressStep = 1ULL << 20;

class ProgressReport {
 public:
  ProgressReport(const FileProgress& listener, std::uint64_t total)
      : listener_(listener), total_(total) {}

  void Advance(std::uint64_t bytes) {
    done_ += bytes;
    if (!listener_ || (done_ < next_ && done_ != total_)) return;
    next_ = done_ + kProgressStep;
    listener_(done_, total_);
  }

 private:
  const FileProgress& listener_;
  std::uint64_t total_;
  std::uint64_t done_ = 0;
  std::uint64_t next_ = kProgressStep;
};

std::array<unsigned char, kFrameChecksumSize> BodyChecksum(Bytes token, Bytes block,
                                                           Bytes payload) {
  std::array<unsigned char, kFrameChecksumSize> bytes{};
  StoreU32(bytes.data(), Crc32(Crc32(Crc32(0, token), block), payload));
  return bytes;
}

FrameHeader HeaderOf(const OutgoingMessage& message, const OutgoingFile* file) {
  FrameHeader header{.kind = message.kind,
                     .token_length = static_cast<std::uint32_t>(message.token.size()),
                     .payload_length = message.payload.size(),
                     .file_length = {},
                     .number = message.number};
  if (file != nullptr) header.file_length = file->Length();
  return header;
}

bool SendHeader(ByteStream& stream, FrameKind kind, std::uint64_t number) {
  return stream.Write({EncodeHeader(
      {.kind = kind, .token_length = 0, .payload_length = number, .file_length = {}})});
}

FrameStatus SendChunks(ByteStream& stream, OutgoingFile& file, const FileProgress& progress) {
  std::vector<unsigned char> buffer(
      static_cast<std::size_t>(std::min<std::uint64_t>(file.Length(), kChunkSize)));
  ProgressReport report(progress, file.Length());
  std::uint32_t checksum = 0;
  for (std::uint64_t left = file.Length(); left != 0;) {
    const auto length = static_cast<std::uint32_t>(std::min<std::uint64_t>(left, kChunkSize));
    const WritableBytes bytes = WritableBytes(buffer).first(length);
    if (!file.Read(bytes)) return FrameStatus::kFileFailed;
    checksum = Crc32(checksum, bytes);
    if (!stream.Write({EncodeChunk({length, checksum}), bytes})) {
      return FrameStatus::kConnectionLost;
    }
    left -= length;
    report.Advance(length);
  }
  if (!stream.Write({EncodeChunk({0, checksum})})) return FrameStatus::kConnectionLost;
  return FrameStatus::kDone;
}

// An answer is deleted as soon as it has been read, so waiting for the disk would be wasted.
storage::Flush FlushOf(const std::string& path) {
  return storage::IsAnswerName(path) ? storage::Flush::kNo : storage::Flush::kYes;
}

// Passes the bytes of a file to `take` chunk by chunk, each after its checksum was verified.
FrameStatus ReceiveChunks(ByteStream& stream, std::uint64_t length, const FileProgress& progress,
                          const std::function<bool(Bytes)>& take) {
  std::vector<unsigned char> buffer;
  ProgressReport report(progress, length);
  std::uint32_t checksum = 0;
  for (std::uint64_t left = length;;) {
    std::array<unsigned char, kChunkHeaderSize> header_bytes{};
    if (!stream.Read(header_bytes)) return FrameStatus::kConnectionLost;
    ChunkHeader header;
    const FrameStatus status = DecodeChunk(header_bytes, left, header);
    if (status != FrameStatus::kDone) return status;
    if (buffer.size() < header.length) buffer.resize(header.length);
    const WritableBytes bytes = WritableBytes(buffer).first(header.length);
    if (!stream.Read(bytes)) return FrameStatus::kConnectionLost;
    checksum = Crc32(checksum, bytes);
    if (checksum != header.checksum) return FrameStatus::kBadChecksum;
    if (left == 0) return FrameStatus::kDone;
    if (!take(bytes)) return FrameStatus::kFileFailed;
    left -= header.length;
    report.Advance(header.length);
  }
}

}  // namespace

std::uint64_t FrameLength(const OutgoingMessage& message, const OutgoingFile* file) {
  return FrameLength(HeaderOf(message, file));
}

FrameStatus SendFrame(ByteStream& stream, const OutgoingMessage& message, OutgoingFile* file,
                      const FileProgress& progress) {
  const bool fits = message.payload.size() <= kMaxPayload && message.token.size() <= kMaxToken;
  if (!fits || message.block.size() != kFrameBlockSize) return FrameStatus::kDoesNotFit;
  const auto header = EncodeHeader(HeaderOf(message, file));
  const auto checksum = BodyChecksum(message.token, message.block, message.payload);
  if (!stream.Write({header, message.token, message.block, message.payload, checksum})) {
    return FrameStatus::kConnectionLost;
  }
  return file != nullptr ? SendChunks(stream, *file, progress) : FrameStatus::kDone;
}

bool SendHello(ByteStream& stream, FrameKind hello) { return SendHeader(stream, hello, 0); }

bool SendProgress(ByteStream& stream, std::chrono::milliseconds at_work) {
  return SendHeader(stream, FrameKind::kProgress,
                    static_cast<std::uint64_t>(std::max<std::int64_t>(at_work.count(), 0)));
}

bool SendBusy(ByteStream& stream, const Reason& reason) {
  const std::vector<unsigned char> encoded = EncodeReason(reason);
  const auto header = EncodeHeader({.kind = FrameKind::kBusy,
                                    .token_length = static_cast<std::uint32_t>(encoded.size()),
                                    .payload_length = 0,
                                    .file_length = {}});
  return stream.Write({header, encoded, BodyChecksum(encoded, {}, {})});
}

FrameStatus ReceiveBusy(ByteStream& stream, const FrameHeader& header, Reason& reason) {
  std::vector<unsigned char> encoded(header.token_length);
  std::array<unsigned char, kFrameChecksumSize> checksum{};
  if (!stream.Read(encoded) || !stream.Read(checksum)) return FrameStatus::kConnectionLost;
  if (checksum != BodyChecksum(encoded, {}, {})) return FrameStatus::kBadChecksum;
  reason = DecodeReason(encoded);
  return FrameStatus::kDone;
}

FrameStatus ReceiveHeader(ByteStream& stream, FrameKind expected, const FrameLimits& limits,
                          FrameHeader& header) {
  return ReceiveHeader(stream, FrameKinds(&expected, 1), limits, header);
}

FrameStatus ReceiveHeader(ByteStream& stream, FrameKinds expected, const FrameLimits& limits,
                          FrameHeader& header) {
  std::array<unsigned char, kFrameHeaderSize> bytes{};
  if (!stream.Read(bytes)) return FrameStatus::kConnectionLost;
  return DecodeHeader(bytes, expected, limits, header);
}

FrameStatus ReceiveMessage(ByteStream& stream, const IncomingMessage& message) {
  std::array<unsigned char, kFrameChecksumSize> checksum{};
  for (const WritableBytes part :
       {message.token, message.block, message.payload, WritableBytes(checksum)}) {
    if (!stream.Read(part)) return FrameStatus::kConnectionLost;
  }
  const bool right = checksum == BodyChecksum(message.token, message.block, message.payload);
  return right ? FrameStatus::kDone : FrameStatus::kBadChecksum;
}

FrameStatus ReceiveFile(ByteStream& stream, std::uint64_t length, const std::string& path,
                        const FileProgress& progress) {
  storage::PartFile file(storage::PartBeside(path));
  if (!file.IsOpen()) return FrameStatus::kFileFailed;
  FrameStatus status =
      ReceiveChunks(stream, length, progress, [&](Bytes bytes) { return file.Write(bytes); });
  if (status == FrameStatus::kDone) status = stream.End();
  if (status != FrameStatus::kDone) return status;
  const bool is_there = file.Finish(FlushOf(path)) && file.MoveTo(path);
  return is_there ? FrameStatus::kDone : FrameStatus::kFileFailed;
}

FrameStatus SkipFile(ByteStream& stream, std::uint64_t length) {
  return ReceiveChunks(stream, length, nullptr, [](Bytes) { return true; });
}

std::optional<OutgoingFile> OutgoingFile::Open(const std::string& path) {
  std::error_code error;
  // This also keeps the sender from waiting forever on a pipe.
  const std::filesystem::path place = platform::PathFromNarrow(path);
  if (!std::filesystem::is_regular_file(place, error)) return std::nullopt;
  const std::uintmax_t length = std::filesystem::file_size(place, error);
  if (error || length > kMaxFile) return std::nullopt;
  platform::FilePtr file(platform::OpenFile(path, platform::Opening::kRead));
  if (file == nullptr) return std::nullopt;
  return OutgoingFile({std::move(file), length});
}

bool OutgoingFile::Read(WritableBytes bytes) {
  return std::fread(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size();
}

}  // namespace qv::wire
