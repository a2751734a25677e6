// Whole frames over a byte stream, in steps that client and server share. Memory use does not
// depend on the length of a file.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "Frame.h"
#include "base/platform/Folder.h"

namespace qv::wire {

// Blocks for as long as its implementation allows a stretch without progress to last.
class ByteStream {
 public:
  virtual ~ByteStream() = default;

  // Fills `bytes`. False when the connection ended, failed or stood still before that.
  [[nodiscard]] virtual bool Read(WritableBytes bytes) = 0;
  // Writes all of `pieces`, back to back. False likewise.
  [[nodiscard]] virtual bool Write(std::initializer_list<Bytes> pieces) = 0;
  // Called behind the last byte of a frame, and before its file gets its name: whether the frame
  // may end here. kMalformed when what carries it goes on, kConnectionLost when that cannot be
  // told. A connection that carries one frame after the other has nothing to say about it.
  [[nodiscard]] virtual FrameStatus End() { return FrameStatus::kDone; }
};

// Its length is fixed when it is opened.
class OutgoingFile {
 public:
  // Nothing when there is no regular file at `path` that can be read.
  [[nodiscard]] static std::optional<OutgoingFile> Open(const std::string& path);
  // An opened one; it stands at its beginning.
  explicit OutgoingFile(platform::OpenedFile opened)
      : file_(std::move(opened.file)), length_(opened.size) {}

  [[nodiscard]] std::uint64_t Length() const { return length_; }
  // Fills `bytes` with what comes next. False when there is less.
  [[nodiscard]] bool Read(WritableBytes bytes);

 private:
  platform::FilePtr file_;
  std::uint64_t length_;
};

// Hears how many bytes of a file have been sent or received, out of how many.
using FileProgress = std::function<void(std::uint64_t done, std::uint64_t total)>;

// A message on its way out. Nothing is owned.
struct OutgoingMessage {
  FrameKind kind = FrameKind::kRequest;
  Bytes token;
  // kFrameBlockSize bytes.
  Bytes block;
  Bytes payload;
};

// Where the parts of a message on its way in go, each of exactly the length that the header says.
struct IncomingMessage {
  WritableBytes token;
  WritableBytes block;
  WritableBytes payload;
};

// The bytes that SendFrame writes for a message and, when there is one, its file.
[[nodiscard]] std::uint64_t FrameLength(const OutgoingMessage& message, const OutgoingFile* file);

// Sends a message and, when there is one, `file` behind it. A message above the limits is
// kDoesNotFit, and nothing of it is sent. After any other failure the stream is in the middle of a
// frame and of no further use; kFileFailed means that the file became shorter or unreadable.
[[nodiscard]] FrameStatus SendFrame(ByteStream& stream, const OutgoingMessage& message,
                                    OutgoingFile* file = nullptr,
                                    const FileProgress& progress = nullptr);

// Receiving is done in three steps: the header, which says how much room the message needs, the
// message, and then the file, when header.file_length is there: to a path, or past. After any
// failure the stream is of no further use.
[[nodiscard]] FrameStatus ReceiveHeader(ByteStream& stream, FrameKind expected,
                                        const FrameLimits& limits, FrameHeader& header);
// Nothing in `message` may be trusted unless the result is kDone.
[[nodiscard]] FrameStatus ReceiveMessage(ByteStream& stream, const IncomingMessage& message);
// The file appears at `path`, readable by its owner only, when the last checksum held; until then
// it is a part beside it, and after a failure nothing is left of it. It is flushed to the disk
// before it appears, unless its name is that of an answer (storage::IsAnswerName).
[[nodiscard]] FrameStatus ReceiveFile(ByteStream& stream, std::uint64_t length,
                                      const std::string& path,
                                      const FileProgress& progress = nullptr);
// Reads and checks the file, and forgets it.
[[nodiscard]] FrameStatus SkipFile(ByteStream& stream, std::uint64_t length);

}  // namespace qv::wire
