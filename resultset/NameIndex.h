// Finds columns by their names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace qv {

// A list of names in which ASCII letters of either case are equal. Each name is folded once, when
// it is added; a look-up allocates nothing and takes the same time however many names there are.
class NameIndex {
 public:
  static constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

  // Appends a name. Throws std::bad_alloc and then changes nothing.
  void Add(std::string_view name);
  // Removes the name at `position`, which must exist; those after it move up.
  void Remove(std::size_t position) noexcept;

  // Returns the position of the first name that equals `name`, or kNotFound.
  [[nodiscard]] std::size_t Find(std::string_view name) const noexcept;

 private:
  // This holds eight bytes of a folded name. The cases of a letter differ in one bit, which is set
  // in `case_bits` where a letter stands: with it, either case of that letter equals the folded
  // one.
  struct FoldedWord {
    [[nodiscard]] bool Equals(std::uint64_t word) const noexcept {
      return (word | case_bits) == folded;
    }
    std::uint64_t folded;
    std::uint64_t case_bits;
  };
  // The bytes at both ends of a name. They are the whole name if it has up to sixteen bytes, and
  // they tell most longer names apart.
  struct Ends {
    explicit Ends(std::string_view name) noexcept;
    [[nodiscard]] std::uint64_t Hash() const noexcept;
    std::size_t size;
    std::uint64_t head;
    std::uint64_t tail;
  };
  struct Entry {
    [[nodiscard]] bool Equals(std::string_view name, const Ends& ends) const noexcept;
    std::size_t size;
    FoldedWord head;
    FoldedWord tail;
    std::vector<FoldedWord> middle;  // words between the ends; the last may overlap the tail
    std::uint64_t hash;
    std::size_t next;  // entry of the same chain, or kNotFound
  };
  // A chain links the entries whose hashes begin with the same bits, in ascending order, so that
  // the first of several equal names is met first. Entries are appended at the end, so that adding
  // names stays fast even if somebody chose them to collide.
  struct Chain {
    std::size_t first = kNotFound;
    std::size_t last = kNotFound;
  };

  [[nodiscard]] std::size_t ChainOf(std::uint64_t hash) const noexcept {
    return static_cast<std::size_t>(hash >> shift_);
  }
  void Link(std::size_t position) noexcept;
  void LinkAll() noexcept;
  void Grow();

  std::vector<Entry> entries_;
  std::vector<Chain> chains_;  // 2^(64 - shift_), once there is an entry
  int shift_ = 64;
};

}  // namespace qv
