#include "NameIndex.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "ByteScan.h"
#include "base/text/Letters.h"

namespace qv {

namespace {

constexpr std::size_t kWord = sizeof(std::uint64_t);

// Returns all bytes of a name that is shorter than a word, in some order.
std::uint64_t LoadShort(std::string_view name) noexcept {
  std::uint32_t first = 0;
  std::uint32_t last = 0;
  if (name.size() >= sizeof first) {
    std::memcpy(&first, name.data(), sizeof first);
    std::memcpy(&last, name.data() + name.size() - sizeof last, sizeof last);
  } else {
    for (const char c : name) first = first << 8 | static_cast<unsigned char>(c);
  }
  return std::uint64_t{last} << 32 | first;
}

}  // namespace

NameIndex::Ends::Ends(std::string_view name) noexcept
    : size(name.size()),
      head(size < kWord ? LoadShort(name) : LoadWord(name.data())),
      tail(size < kWord ? 0 : LoadWord(name.data() + size - kWord)) {}

// Names that differ in case only have one hash, because the bit that tells the cases apart is set
// in every byte. That folds other characters than letters too, so a few more names collide.
std::uint64_t NameIndex::Ends::Hash() const noexcept {
  constexpr std::uint64_t kCaseBits = 0x2020202020202020;
  // Odd and with well mixed bits, so that every byte reaches the upper bits of the sum.
  constexpr std::uint64_t kHeadFactor = 0x9E3779B97F4A7C15;
  constexpr std::uint64_t kTailFactor = 0xD1B54A32D192ED03;
  return (head | kCaseBits) * kHeadFactor + (tail | kCaseBits) * kTailFactor + size;
}

bool NameIndex::Entry::Equals(std::string_view name, const Ends& ends) const noexcept {
  if (size != ends.size || !head.Equals(ends.head) || !tail.Equals(ends.tail)) return false;
  const char* p = name.data();
  for (const FoldedWord& word : middle) {
    p += kWord;
    if (!word.Equals(LoadWord(p))) return false;
  }
  return true;
}

void NameIndex::Add(std::string_view name) {
  const std::string folded = text::ToLower(name);
  std::string case_bits = folded;
  for (char& c : case_bits) c = static_cast<char>(c ^ text::ToUpper(c));
  const Ends ends(folded);
  const Ends bits(case_bits);
  Entry entry{ends.size, {ends.head, bits.head}, {ends.tail, bits.tail}, {}, ends.Hash(),
              kNotFound};
  for (std::size_t at = kWord; at + kWord < name.size(); at += kWord) {
    entry.middle.push_back({LoadWord(folded.data() + at), LoadWord(case_bits.data() + at)});
  }
  if (entries_.size() * 2 >= chains_.size()) Grow();
  entries_.push_back(std::move(entry));
  Link(entries_.size() - 1);
}

void NameIndex::Remove(std::size_t position) noexcept {
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position));
  LinkAll();
}

std::size_t NameIndex::Find(std::string_view name) const noexcept {
  if (entries_.empty()) return kNotFound;
  const Ends ends(name);
  std::size_t position = chains_[ChainOf(ends.Hash())].first;
  while (position != kNotFound && !entries_[position].Equals(name, ends)) {
    position = entries_[position].next;
  }
  return position;
}

void NameIndex::Link(std::size_t position) noexcept {
  Chain& chain = chains_[ChainOf(entries_[position].hash)];
  (chain.last == kNotFound ? chain.first : entries_[chain.last].next) = position;
  chain.last = position;
}

void NameIndex::LinkAll() noexcept {
  std::fill(chains_.begin(), chains_.end(), Chain());
  for (std::size_t position = 0; position < entries_.size(); ++position) {
    entries_[position].next = kNotFound;
    Link(position);
  }
}

void NameIndex::Grow() {
  constexpr int kFirstBits = 4;
  const int bits = chains_.empty() ? kFirstBits : 64 - shift_ + 1;
  chains_ = std::vector<Chain>(std::size_t{1} << bits);
  shift_ = 64 - bits;
  LinkAll();
}

}  // namespace qv
