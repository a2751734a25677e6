#include "RowValues.h"

#include <algorithm>
#include <utility>

namespace qv {

namespace {

// Scanners never return names with these characters whole, so comparing bytes must not find them
// either.
bool CanBeCompared(std::string_view name) {
  return name.find_first_of(" =<>") == std::string_view::npos;
}

}  // namespace

RowValues::Name RowValues::MakeName(std::string_view closed) {
  char bytes[16] = {};
  char mask[16] = {};
  const std::size_t length = std::min(closed.size(), sizeof bytes);
  std::memcpy(bytes, closed.data(), length);
  std::memset(mask, 0xFF, length);
  return {LoadWord(bytes),    LoadWord(mask), LoadWord(bytes + 8),
          LoadWord(mask + 8), closed.size(),  closed.data()};
}

RowValues::RowValues(std::span<const Column> columns, char closing) {
  // No text has a bit outside the mask, so this head never matches.
  constexpr Name kNeverMet = {1, 0, 0, 0, 0, nullptr};
  for (const Column& column : columns) {
    const auto [entry, is_new] = slot_of_name_.try_emplace(column.name, names_.size());
    slots_.push_back(entry->second);
    if (!is_new) continue;
    closed_names_.push_back(column.name);
    closed_names_.back() += closing;
    names_.push_back(CanBeCompared(column.name) ? MakeName(closed_names_.back()) : kNeverMet);
  }
  // Rows of very many columns are held one by one.
  constexpr std::size_t kMostBytes = 0x10000;
  const std::size_t row_bytes = std::max<std::size_t>(names_.size(), 1) * sizeof(std::string_view);
  room_ = std::clamp<std::size_t>(kMostBytes / row_bytes, 1, kMostRows);
  values_.resize(names_.size() * room_);
  empty_values_.resize(names_.size());
  names_.resize(names_.size() + kLookAhead, kNeverMet);
}

bool RowValues::HasNameWith(std::string_view prefix) const {
  return std::any_of(slot_of_name_.begin(), slot_of_name_.end(),
                     [&](const auto& entry) { return entry.first.starts_with(prefix); });
}

void RowValues::Clear() {
  rows_ = 0;
  with_entities_ = 0;
}

void RowValues::Begin() {
  const std::size_t slots = empty_values_.size();
  row_ = values_.data() + rows_ * slots;
  std::fill_n(row_, slots, std::string_view());
  ++rows_;
  expected_ = 0;
}

void RowValues::TakeBack() {
  --rows_;
  if (has_empty_) std::fill(empty_values_.begin(), empty_values_.end(), nullptr);
  has_empty_ = false;
}

void RowValues::Put(std::string_view name, std::string_view value) {
  const auto found = slot_of_name_.find(name);
  if (found == slot_of_name_.end()) return;
  expected_ = found->second;
  PutExpected(value);
}

void RowValues::PutEmpty(std::string_view name, const char* at) {
  const auto found = slot_of_name_.find(name);
  if (found == slot_of_name_.end()) return;
  expected_ = found->second;
  PutExpectedEmpty(at);
}

void RowValues::End() {
  if (!has_empty_) return;
  for (std::size_t slot = 0; slot < empty_values_.size(); ++slot) {
    const char* const at = std::exchange(empty_values_[slot], nullptr);
    if (at != nullptr && row_[slot].data() == nullptr) row_[slot] = std::string_view(at, at);
  }
  has_empty_ = false;
}

}  // namespace qv
