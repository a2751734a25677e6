// The payload queue of a message: fields, back to back, in a memory area that somebody else owns.
#pragma once

#include <cstdint>

// What became of an append.
enum class AppendResult { kDone, kFailed, kDetached, kDoesNotFit };

// A field is a 4-byte little-endian length, that many bytes, and one zero byte. Field order and
// widths of the class are shared with the transport libraries. No operation throws.
class CFIFOClass {
 public:
  // The bytes that a field takes beside its body: the length word and the zero byte.
  static constexpr std::uint32_t kFieldOverhead = 5;

  CFIFOClass() = default;
  virtual ~CFIFOClass() = default;
  CFIFOClass(const CFIFOClass&) = delete;
  CFIFOClass& operator=(const CFIFOClass&) = delete;

  // Takes an area of `capacity` bytes, fills it with zeros and starts empty. The area stays its
  // owner's.
  void Attach(unsigned char* area, std::uint32_t capacity);
  // Lets go of the area.
  void Detach();

  bool IsDetached() const {
    return data_ == nullptr && capacity_ == 0 && read_position_ == 0 && write_position_ == 0;
  }
  bool IsValid() const { return data_ != nullptr && write_position_ <= capacity_; }

  // Appends one field. The last byte of the area is never used.
  [[nodiscard]] AppendResult Append(const void* body, std::uint32_t length);

  // A field at the read position: its body inside the area, followed by at least one byte of it.
  struct Field {
    unsigned char* body;
    std::uint32_t length;
  };
  // Finds the next field and checks that all of it lies inside the area. False when there is none.
  [[nodiscard]] bool Peek(Field& field) const;
  // Steps over `field`, wiping its body; the length word as well when asked.
  void Consume(const Field& field, bool wipe_length);

  // For transports: the area, what was written and not read yet, and how much a reply has put
  // there.
  unsigned char* Area() const { return data_; }
  std::uint32_t Capacity() const { return capacity_; }
  std::uint32_t ReadPosition() const { return read_position_; }
  std::uint32_t WritePosition() const { return write_position_; }
  // Declares that the first `bytes` of the area hold fields. False, and no change, when the area is
  // smaller.
  [[nodiscard]] bool SetFilled(std::uint32_t bytes) {
    if (data_ == nullptr || bytes > capacity_) return false;
    read_position_ = 0;
    write_position_ = bytes;
    return true;
  }

 private:
  friend struct MessageLayout;

  unsigned char* data_ = nullptr;
  std::uint32_t capacity_ = 0;
  std::uint32_t read_position_ = 0;
  std::uint32_t write_position_ = 0;
};
