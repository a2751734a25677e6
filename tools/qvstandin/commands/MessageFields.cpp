#include "MessageFields.h"

#include <algorithm>

#include "message/LittleEndian.h"

namespace qv::standin {

namespace {

constexpr std::size_t kLengthWord = 4;
constexpr std::size_t kOverhead = kLengthWord + 1;

constexpr std::size_t kIdAt = 252;

// Returns the text before the first NUL, which must come before the last byte.
std::optional<std::string> TextIn(NameField field) {
  const auto end = std::ranges::find(field, 0);
  if (end == field.begin() || field.end() - end < 2) return std::nullopt;
  return std::string(field.begin(), end);
}

}  // namespace

std::optional<std::span<const unsigned char>> FieldReader::Peek() const {
  if (rest_.size() < kOverhead) return std::nullopt;
  const std::uint64_t length = LoadU32(rest_.data());
  if (length > rest_.size() - kOverhead) return std::nullopt;
  const auto body = rest_.subspan(kLengthWord, static_cast<std::size_t>(length));
  if (rest_[kLengthWord + body.size()] != 0) return std::nullopt;
  return body;
}

void FieldReader::Consume(std::size_t length) { rest_ = rest_.subspan(length + kOverhead); }

std::optional<std::string> FieldReader::Text() {
  const auto view = View();
  return view ? std::optional<std::string>(*view) : std::nullopt;
}

std::optional<std::string_view> FieldReader::View() {
  const auto body = Peek();
  if (!body || body->empty() || std::ranges::find(*body, 0) != body->end()) return std::nullopt;
  Consume(body->size());
  return std::string_view(reinterpret_cast<const char*>(body->data()), body->size());
}

std::optional<std::int32_t> FieldReader::Integer() {
  const auto body = Peek();
  if (!body || body->size() != sizeof(std::int32_t)) return std::nullopt;
  Consume(body->size());
  return static_cast<std::int32_t>(LoadU32(body->data()));
}

void FieldWriter::Append(const void* body, std::size_t length) {
  const std::size_t start = payload_.size();
  payload_.resize(start + sizeof(std::uint32_t) + length + 1);
  StoreU32(&payload_[start], static_cast<std::uint32_t>(length));
  if (length != 0) std::memcpy(&payload_[start + sizeof(std::uint32_t)], body, length);
}

std::optional<std::string> PathIn(NameField field) {
  if (field.size() != kNameFieldSize) return std::nullopt;
  return TextIn(field);
}

std::optional<IdName> IdNameIn(NameField field) {
  if (field.size() != kNameFieldSize) return std::nullopt;
  auto name = TextIn(field.first(kIdAt));
  if (!name) return std::nullopt;
  return IdName{static_cast<std::int32_t>(LoadU32(field.data() + kIdAt)), std::move(*name)};
}

}  // namespace qv::standin
