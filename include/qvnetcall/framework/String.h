#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "qvnetcall/Export.h"

/// A narrow text that owns its bytes. The bytes are in the platform's code page and are never
/// converted; lengths and positions count bytes, from 0. Letter case and white space are those of
/// ASCII in every locale, so bytes above 0x7f are never changed. A null `const char*` counts as the
/// empty text unless a comment says otherwise.
///
/// One thread at a time may use an object; different objects are independent. If memory runs out, a
/// function throws std::bad_alloc. A position outside the text throws CInvalidArgException only
/// where a comment says so.
class QVNETCALL_API CString {
 public:
  CString() noexcept = default;
  CString(const CString&) = default;
  CString(CString&&) noexcept = default;
  /// The bytes of `text` up to its NUL.
  CString(const char* text) : text_(OrEmpty(text)) {}  // NOLINT: implicit, as hosts know it
  /// The first `length` bytes of `text`, NUL bytes included; a negative length counts as 0.
  CString(const char* text, int length);
  /// `ch`, `repeat` times; a negative count counts as 0.
  explicit CString(char ch, int repeat = 1);
  /// All bytes of `text`, NUL bytes included.
  explicit CString(std::string_view text) : text_(text) {}
  ~CString() = default;

  CString& operator=(const CString&) = default;
  CString& operator=(CString&&) noexcept = default;
  CString& operator=(const char* text) { return text_ = OrEmpty(text), *this; }
  // A template, so that `= {}` does not find it.
  template <std::same_as<char> Char>
  CString& operator=(Char ch) {
    return text_ = ch, *this;
  }

  /// Both return the bytes, followed by a NUL; valid until the text changes.
  operator const char*() const noexcept {
    return text_.c_str();
  }  // NOLINT: implicit, as hosts know it
  [[nodiscard]] const char* GetString() const noexcept { return text_.c_str(); }
  /// Returns the bytes without copying them; valid until the text changes.
  [[nodiscard]] std::string_view View() const noexcept { return text_; }

  /// Returns the number of bytes, or the largest int if there are more.
  [[nodiscard]] int GetLength() const noexcept;
  [[nodiscard]] bool IsEmpty() const noexcept { return text_.empty(); }
  void Empty() noexcept { text_.clear(); }

  /// Both return the byte at `index`; at the length of the text that is a NUL. Throw
  /// CInvalidArgException if the index is outside 0..length.
  [[nodiscard]] char GetAt(std::ptrdiff_t index) const;
  template <std::integral Index>
  [[nodiscard]] char operator[](Index index) const {
    return GetAt(static_cast<std::ptrdiff_t>(index));  // a value too large turns negative
  }
  /// Replaces the byte at `index`. Throws CInvalidArgException if the index is outside 0..length-1.
  void SetAt(std::ptrdiff_t index, char ch);

  /// Compare bytes as unsigned numbers; CompareNoCase ignores the case of ASCII letters. Return -1,
  /// 0 or 1 if this text is less than, equal to or greater than `other`.
  [[nodiscard]] int Compare(const char* other) const noexcept;
  [[nodiscard]] int Compare(const CString& other) const noexcept;
  [[nodiscard]] int CompareNoCase(const char* other) const noexcept;
  [[nodiscard]] int CompareNoCase(const CString& other) const noexcept;

  /// Format replaces the text by what printf would print, AppendFormat appends that; it may have
  /// any length. A "%s" also takes a CString, and a null argument for it prints as "(null)".
  /// Arguments may be this text itself. If `format` is null or cannot be carried out, nothing is
  /// printed, so Format leaves an empty text.
  template <typename... Args>
  void Format(const char* format, const Args&... args) {
    text_ = Print(format, ForPrintf(args)...);
  }
  template <typename... Args>
  void AppendFormat(const char* format, const Args&... args) {
    text_ += Print(format, ForPrintf(args)...);
  }

  /// Return a part of the text: its first bytes, its last bytes, those from `first` on. Positions
  /// and counts are limited to the text.
  [[nodiscard]] CString Left(int count) const;
  [[nodiscard]] CString Right(int count) const;
  [[nodiscard]] CString Mid(int first) const;
  [[nodiscard]] CString Mid(int first, int count) const;

  /// Return the first position, at or after `start`, at which `ch` or `text` begins. Return -1 if
  /// there is none, if `start` is outside the text, or if `text` is null.
  [[nodiscard]] int Find(char ch, int start = 0) const noexcept;
  [[nodiscard]] int Find(const char* text, int start = 0) const noexcept;
  /// Returns the last position of `ch`, or -1 if there is none.
  [[nodiscard]] int ReverseFind(char ch) const noexcept;

  /// Replace every occurrence of `from`, from left to right. Return how many were replaced. An
  /// empty `from` is never found.
  int Replace(char from, char to) noexcept;
  int Replace(const char* from, const char* to);

  /// Change the case of all ASCII letters. Return this text.
  CString& MakeLower() noexcept;
  CString& MakeUpper() noexcept;

  /// Remove blanks, \t, \n, \v, \f and \r, or `ch`, or the bytes of `set`, at one or both ends.
  /// Return this text.
  CString& Trim() { return Trim(kWhiteSpace); }
  CString& Trim(char ch) { return Trim(std::string_view(&ch, 1)); }
  CString& Trim(const char* set) { return Trim(OrEmpty(set)); }
  CString& TrimLeft() { return TrimLeft(kWhiteSpace); }
  CString& TrimLeft(char ch) { return TrimLeft(std::string_view(&ch, 1)); }
  CString& TrimLeft(const char* set) { return TrimLeft(OrEmpty(set)); }
  CString& TrimRight() { return TrimRight(kWhiteSpace); }
  CString& TrimRight(char ch) { return TrimRight(std::string_view(&ch, 1)); }
  CString& TrimRight(const char* set) { return TrimRight(OrEmpty(set)); }

  /// Returns a buffer with room for at least `min_length` bytes and a NUL, which starts with the
  /// text and which this object owns. After writing, call ReleaseBuffer.
  [[nodiscard]] char* GetBuffer(int min_length = 0);
  /// Ends writing to the buffer. The text becomes its first `new_length` bytes, or those before its
  /// first NUL if that is negative; the length is limited to the buffer's.
  void ReleaseBuffer(int new_length = -1);

  CString& operator+=(const CString& tail) { return text_ += tail.text_, *this; }
  CString& operator+=(const char* tail) { return text_ += OrEmpty(tail), *this; }
  CString& operator+=(char tail) { return text_ += tail, *this; }

  friend CString operator+(CString head, const CString& tail) { return std::move(head += tail); }
  friend CString operator+(CString head, const char* tail) { return std::move(head += tail); }
  friend CString operator+(CString head, char tail) { return std::move(head += tail); }
  friend CString operator+(const char* head, const CString& tail) { return CString(head) + tail; }
  friend CString operator+(char head, const CString& tail) { return CString(head) + tail; }

  friend bool operator==(const CString& a, const CString& b) noexcept { return a.text_ == b.text_; }
  friend bool operator==(const CString& a, const char* b) noexcept { return a.text_ == OrEmpty(b); }
  friend std::strong_ordering operator<=>(const CString& a, const CString& b) noexcept {
    return a.View() <=> b.View();
  }
  friend std::strong_ordering operator<=>(const CString& a, const char* b) noexcept {
    return a.View() <=> OrEmpty(b);
  }

 private:
  static constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

  static constexpr std::string_view OrEmpty(const char* text) noexcept {
    return text != nullptr ? std::string_view(text) : std::string_view();
  }
  // Objects cannot pass through an ellipsis, and a null text there is undefined.
  template <typename T>
  static auto ForPrintf(const T& value) {
    if constexpr (std::convertible_to<const T&, const char*> && !std::same_as<T, std::nullptr_t>) {
      const char* text = value;
      return text != nullptr ? text : "(null)";
    } else {
      return value;
    }
  }
  static std::string Print(const char* format, ...);

  CString& Trim(std::string_view set) { return TrimRight(set).TrimLeft(set); }
  CString& TrimLeft(std::string_view set);
  CString& TrimRight(std::string_view set);

  std::string text_;
};

template <>
struct std::hash<CString> {
  std::size_t operator()(const CString& text) const noexcept {
    return std::hash<std::string_view>()(text.View());
  }
};
