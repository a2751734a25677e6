// Sends and receives whole frames over a byte stream, in steps that client and server share. Memory
// use does not depend on the length of a file.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "Frame.h"
#include "Reason.h"
#include "base/platform/Folder.h"

namespace qv::wire {

// Calls block, at most for the time that the implementation allows without progress.
class ByteStream {
 public:
  virtual ~ByteStream() = default;

  // Fills `bytes`. Returns false if the connection ended, failed or made no progress before that.
  [[nodiscard]] virtual bool Read(WritableBytes bytes) = 0;
  // Writes all of `pieces`, one after the other. Returns false in the same cases.
  [[nodiscard]] virtual bool Write(std::initializer_list<Bytes> pieces) = 0;
  // Called after the last byte of a frame, before its file takes its place. Returns kDone if the
  // frame may end here, kMalformed if more bytes follow, and kConnectionLost if that cannot be
  // determined. The default is for connections that carry one frame after another.
  [[nodiscard]] virtual FrameStatus End() { return FrameStatus::kDone; }
};

// The file of a frame that is sent. Its length is fixed when it is opened.
class OutgoingFile {
 public:
  // Returns nothing if `path` is not a readable regular file.
  [[nodiscard]] static std::optional<OutgoingFile> Open(const std::string& path);
  // Takes an open file that is positioned at its beginning.
  explicit OutgoingFile(platform::OpenedFile opened)
      : file_(std::move(opened.file)), length_(opened.size) {}

  [[nodiscard]] std::uint64_t Length() const { return length_; }
  // Fills `bytes` with the next bytes. Returns false if fewer are left.
  [[nodiscard]] bool Read(WritableBytes bytes);

 private:
  platform::FilePtr file_;
  std::uint64_t length_;
};

// Called with the number of bytes of a file that have been sent or received, and with the total.
using FileProgress = std::function<void(std::uint64_t done, std::uint64_t total)>;

// A message to send. Refers to the caller's bytes.
struct OutgoingMessage {
  // A request or a reply.
  FrameKind kind = FrameKind::kRequest;
  // The token of a request, the reason of kReplyWithReason and kNumberedReply as EncodeReason gives
  // it, else empty.
  Bytes token;
  // kFrameBlockSize bytes.
  Bytes block;
  Bytes payload;
  // Of kNumberedRequest and kNumberedReply.
  std::uint32_t number = 0;
};

// The buffers for the parts of a received message. Each has exactly the length that the header
// states. The token of a reply is the reason, which DecodeReason reads.
struct IncomingMessage {
  WritableBytes token;
  WritableBytes block;
  WritableBytes payload;
};

// Returns the number of bytes that SendFrame writes for a message and its file; `file` may be null.
[[nodiscard]] std::uint64_t FrameLength(const OutgoingMessage& message, const OutgoingFile* file);

// Sends a message, followed by `file` unless it is null. Returns kDoesNotFit, and sends nothing, if
// the message exceeds the limits. After any other failure the stream is in the middle of a frame
// and must not be used again; kFileFailed means that the file became shorter or unreadable.
[[nodiscard]] FrameStatus SendFrame(ByteStream& stream, const OutgoingMessage& message,
                                    OutgoingFile* file = nullptr,
                                    const FileProgress& progress = nullptr);

// Send the other frames; `hello` is kHello or kHello3. Return false if the stream failed; it must
// not be used again then.
[[nodiscard]] bool SendHello(ByteStream& stream, FrameKind hello = FrameKind::kHello);
[[nodiscard]] bool SendProgress(ByteStream& stream, std::chrono::milliseconds at_work);
[[nodiscard]] bool SendBusy(ByteStream& stream, const Reason& reason);

// A message is received in three steps: the header, which states how large the message is, the
// message, and, if header.file_length is set, the file, which is received or skipped. After any
// failure the stream must not be used again.
[[nodiscard]] FrameStatus ReceiveHeader(ByteStream& stream, FrameKinds expected,
                                        const FrameLimits& limits, FrameHeader& header);
// The same if only one kind is expected.
[[nodiscard]] FrameStatus ReceiveHeader(ByteStream& stream, FrameKind expected,
                                        const FrameLimits& limits, FrameHeader& header);
// Receives what follows a header of kBusy. Fills `reason` only if the result is kDone.
[[nodiscard]] FrameStatus ReceiveBusy(ByteStream& stream, const FrameHeader& header,
                                      Reason& reason);
// The contents of `message` are valid only if the result is kDone.
[[nodiscard]] FrameStatus ReceiveMessage(ByteStream& stream, const IncomingMessage& message);
// Receives the file into a part beside `path`, readable by its owner only, and moves it to `path`
// when the last checksum is right. Nothing is left after a failure. The file is flushed to the disk
// before it is moved, unless its name is that of an answer (storage::IsAnswerName).
[[nodiscard]] FrameStatus ReceiveFile(ByteStream& stream, std::uint64_t length,
                                      const std::string& path,
                                      const FileProgress& progress = nullptr);
// Reads and validates the file, and discards it.
[[nodiscard]] FrameStatus SkipFile(ByteStream& stream, std::uint64_t length);

}  // namespace qv::wire
