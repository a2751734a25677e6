// A destination of bytes, and one that computes their checksum.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qv::standin {

class ByteSink {
 public:
  virtual ~ByteSink() = default;
  // Returns false if the bytes could not be stored. The sink is then useless.
  [[nodiscard]] virtual bool Write(std::string_view bytes) = 0;
  // Completes the writing. Call it once, at the end. Returns false if any bytes are missing.
  [[nodiscard]] virtual bool Finish() = 0;
};

// A destination whose first bytes can still change after others were written.
class AnswerSink : public ByteSink {
 public:
  // Writes the first bytes. Call it once, before Write(). Returns what Write() returns.
  [[nodiscard]] virtual bool WriteHead(std::string_view head) = 0;
  // Replaces what WriteHead() wrote. Call it at most once, right before Finish(). It may copy
  // everything that was written. Returns false if that fails; the sink is then useless.
  [[nodiscard]] virtual bool ReplaceHead(std::string_view head) = 0;
};

// Computes the checksum of the bytes that are written to it.
class Checksum : public ByteSink {
 public:
  bool Write(std::string_view bytes) override;
  bool Finish() override { return true; }

  // Returns the CRC-32 as eight upper-case hexadecimal digits.
  [[nodiscard]] std::string Text() const;
  // Returns the number of bytes, or the largest 32-bit number if there are more.
  [[nodiscard]] std::int32_t Size() const;

 private:
  std::uint32_t checksum_ = 0;
  std::uint64_t size_ = 0;
};

}  // namespace qv::standin
