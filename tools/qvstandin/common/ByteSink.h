// Where the bytes of an answer go.
// The checksum of what is written to it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qv::standin {

class ByteSink {
 public:
  virtual ~ByteSink() = default;
  // False when the bytes could not be kept; nothing that follows makes up for it.
  [[nodiscard]] virtual bool Write(std::string_view bytes) = 0;
  // Sees to it that all that was written has arrived. Once, at the end.
  [[nodiscard]] virtual bool Finish() = 0;
};

class Checksum : public ByteSink {
 public:
  bool Write(std::string_view bytes) override;
  bool Finish() override { return true; }

  // CRC-32 as eight upper-case hexadecimal digits.
  [[nodiscard]] std::string Text() const;
  // How many bytes it is of, as far as 32 bits can tell.
  [[nodiscard]] std::int32_t Size() const;

 private:
  std::uint32_t checksum_ = 0;
  std::uint64_t size_ = 0;
};

}  // namespace qv::standin
