#include "qvnetcall/framework/String.h"

#include <algorithm>
#include <compare>
#include <cstdarg>
#include <cstdio>

#include "qvnetcall/framework/InvalidArgException.h"

#include "base/text/Letters.h"
#include "base/text/Numbers.h"

using qv::text::CompareIgnoringCase;
using qv::text::SaturatedTo32Bits;
using qv::text::ToLower;
using qv::text::ToUpper;

namespace {

constexpr std::size_t Clamped(int count) noexcept {
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

constexpr int Position(std::size_t place) noexcept {
  return place == std::string_view::npos ? -1 : SaturatedTo32Bits(place);
}

constexpr int Sign(std::strong_ordering order) noexcept {
  if (std::is_lt(order)) return -1;
  return std::is_gt(order) ? 1 : 0;
}

}  // namespace

CString::CString(const char* text, int length)
    : text_(text != nullptr ? std::string_view(text, Clamped(length)) : std::string_view()) {}

CString::CString(char ch, int repeat) : text_(Clamped(repeat), ch) {}

int CString::GetLength() const noexcept { return SaturatedTo32Bits(text_.size()); }

char CString::GetAt(std::ptrdiff_t index) const {
  if (std::cmp_less(index, 0) || std::cmp_greater(index, text_.size())) {
    AfxThrowInvalidArgException();
  }
  return text_.c_str()[index];
}

void CString::SetAt(std::ptrdiff_t index, char ch) {
  if (std::cmp_less(index, 0) || std::cmp_greater_equal(index, text_.size())) {
    AfxThrowInvalidArgException();
  }
  text_[static_cast<std::size_t>(index)] = ch;
}

int CString::Compare(const char* other) const noexcept { return Sign(View() <=> OrEmpty(other)); }

int CString::Compare(const CString& other) const noexcept { return Sign(View() <=> other.View()); }

int CString::CompareNoCase(const char* other) const noexcept {
  return Sign(CompareIgnoringCase(View(), OrEmpty(other)));
}

int CString::CompareNoCase(const CString& other) const noexcept {
  return Sign(CompareIgnoringCase(View(), other.View()));
}

std::string CString::Print(const char* format, ...) {
  std::string text;
  if (format == nullptr) return text;
  std::va_list measured;
  std::va_list printed;
  va_start(measured, format);
  va_copy(printed, measured);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  if (length > 0) {
    text.resize(static_cast<std::size_t>(length));
    std::vsnprintf(text.data(), text.size() + 1, format, printed);
  }
  va_end(printed);
  va_end(measured);
  return text;
}

CString CString::Left(int count) const { return CString(View().substr(0, Clamped(count))); }

CString CString::Right(int count) const {
  const std::size_t kept = std::min(Clamped(count), text_.size());
  return CString(View().substr(text_.size() - kept));
}

CString CString::Mid(int first) const {
  return CString(View().substr(std::min(Clamped(first), text_.size())));
}

CString CString::Mid(int first, int count) const {
  return CString(View().substr(std::min(Clamped(first), text_.size()), Clamped(count)));
}

int CString::Find(char ch, int start) const noexcept {
  return start < 0 ? -1 : Position(text_.find(ch, Clamped(start)));
}

int CString::Find(const char* text, int start) const noexcept {
  return text == nullptr || start < 0 ? -1 : Position(text_.find(text, Clamped(start)));
}

int CString::ReverseFind(char ch) const noexcept { return Position(text_.rfind(ch)); }

int CString::Replace(char from, char to) noexcept {
  const auto count = std::count(text_.begin(), text_.end(), from);
  std::replace(text_.begin(), text_.end(), from, to);
  return SaturatedTo32Bits(count);
}

int CString::Replace(const char* from, const char* to) {
  const std::string_view old_part = OrEmpty(from);
  const std::string_view new_part = OrEmpty(to);
  std::size_t found = old_part.empty() ? std::string::npos : text_.find(old_part);
  if (found == std::string::npos) return 0;
  // Builds a second text, so that many replacements cost one pass, and either argument may be part
  // of this text.
  std::string result;
  std::size_t copied = 0;
  std::size_t count = 0;
  for (; found != std::string::npos; found = text_.find(old_part, copied)) {
    result.append(text_, copied, found - copied).append(new_part);
    copied = found + old_part.size();
    ++count;
  }
  result.append(text_, copied);
  text_ = std::move(result);
  return SaturatedTo32Bits(count);
}

CString& CString::MakeLower() noexcept {
  std::transform(text_.begin(), text_.end(), text_.begin(), [](char ch) { return ToLower(ch); });
  return *this;
}

CString& CString::MakeUpper() noexcept {
  std::transform(text_.begin(), text_.end(), text_.begin(), ToUpper);
  return *this;
}

CString& CString::TrimLeft(std::string_view set) {
  text_.erase(0, std::min(text_.find_first_not_of(set), text_.size()));
  return *this;
}

CString& CString::TrimRight(std::string_view set) {
  text_.erase(text_.find_last_not_of(set) + 1);  // npos + 1 is 0
  return *this;
}

char* CString::GetBuffer(int min_length) {
  text_.resize(std::max(text_.size(), Clamped(min_length)));
  return text_.data();
}

void CString::ReleaseBuffer(int new_length) {
  const std::size_t length = new_length < 0 ? text_.find('\0') : Clamped(new_length);
  text_.resize(std::min(length, text_.size()));
}
