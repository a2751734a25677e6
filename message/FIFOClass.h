// The payload queue of a message: consecutive fields in a memory area that another object owns.
#pragma once

#include <cstdint>

// The result of an append.
enum class AppendResult { kDone, kFailed, kDetached, kDoesNotFit };

// A field is a 4-byte little-endian length, that many bytes, and one zero byte. Field order and
// widths of the class are shared with the transport libraries. No operation throws.
class CFIFOClass {
 public:
  // The bytes of a field other than its body: the length word and the zero byte.
  static constexpr std::uint32_t kFieldOverhead = 5;

  CFIFOClass() = default;
  virtual ~CFIFOClass() = default;
  CFIFOClass(const CFIFOClass&) = delete;
  CFIFOClass& operator=(const CFIFOClass&) = delete;

  // Attaches an area of `capacity` bytes, which are zero, and starts empty. The caller keeps owning
  // the area.
  void Attach(unsigned char* area, std::uint32_t capacity);
  // Detaches the area.
  void Detach();

  bool IsDetached() const {
    return data_ == nullptr && capacity_ == 0 && read_position_ == 0 && write_position_ == 0;
  }
  bool IsValid() const { return data_ != nullptr && write_position_ <= capacity_; }

  // Appends one field. The last byte of the area is never used.
  [[nodiscard]] AppendResult Append(const void* body, std::uint32_t length);

  // The field at the read position: its body inside the area, followed by at least one byte of the
  // area.
  struct Field {
    unsigned char* body;
    std::uint32_t length;
  };
  // Finds the next field and checks that it lies inside the area. Returns false if there is none.
  [[nodiscard]] bool Peek(Field& field) const;
  // Moves past `field` and zeroes its body, and its length word as well if asked.
  void Consume(const Field& field, bool wipe_length);

  // For transports: the area, the bytes that were written and not read yet, and the bytes that a
  // reply has stored there.
  unsigned char* Area() const { return data_; }
  std::uint32_t Capacity() const { return capacity_; }
  std::uint32_t ReadPosition() const { return read_position_; }
  std::uint32_t WritePosition() const { return write_position_; }
  // Declares that the first `bytes` of the area hold fields. Returns false and changes nothing if
  // the area is smaller.
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
