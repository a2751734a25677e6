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
/// converted; lengths and positions count bytes. Case and white space are those of ASCII, whatever
/// the locale, so bytes above 0x7f are never changed. A null `const char*` stands for the empty
/// text everywhere.
///
/// An object may be used by one thread at a time; different objects are independent. Running out of
/// memory throws std::bad_alloc; a position outside the text throws CInvalidArgException where a
/// function says so.
class QVNETCALL_API CString {
 public:
  CString() noexcept = default;
  CString(const CString&) = default;
  CString(CString&&) noexcept = default;
  CString(const char* text) : text_(OrEmpty(text)) {}  // NOLINT: implicit, as hosts know it
  /// The first `length` bytes of `text`, NUL bytes included; a negative length counts as 0.
  CString(const char* text, int length);
  /// `ch`, `repeat` times; a negative count is 0.
  explicit CString(char ch, int repeat = 1);
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

  /// The bytes with a NUL behind them; valid until the text changes.
  operator const char*() const noexcept {
    return text_.c_str();
  }  // NOLINT: implicit, as hosts know it
  [[nodiscard]] const char* GetString() const noexcept { return text_.c_str(); }
  /// The bytes without a copy; valid until the text changes.
  [[nodiscard]] std::string_view View() const noexcept { return text_; }

  /// The number of bytes; a text longer than the largest int reports that.
  [[nodiscard]] int GetLength() const noexcept;
  [[nodiscard]] bool IsEmpty() const noexcept { return text_.empty(); }
  void Empty() noexcept { text_.clear(); }

  /// The byte at `index`; index == length gives NUL. Throws CInvalidArgException outside 0..length.
  [[nodiscard]] char GetAt(std::ptrdiff_t index) const;
  template <std::integral Index>
  [[nodiscard]] char operator[](Index index) const {
    return GetAt(static_cast<std::ptrdiff_t>(index));  // a value too large turns negative
  }
  /// Throws CInvalidArgException outside 0..length-1.
  void SetAt(std::ptrdiff_t index, char ch);

  /// Compare bytes as unsigned numbers; -1, 0 or 1. The second takes ASCII letters of either case
  /// as equal.
  [[nodiscard]] int Compare(const char* other) const noexcept;
  [[nodiscard]] int Compare(const CString& other) const noexcept;
  [[nodiscard]] int CompareNoCase(const char* other) const noexcept;
  [[nodiscard]] int CompareNoCase(const CString& other) const noexcept;

  /// Writes as printf does, texts of any length; a CString may stand for a "%s". The arguments may
  /// be this text itself. A null `format`, or one that cannot be carried out, gives (or appends)
  /// nothing. A null text is "(null)".
  template <typename... Args>
  void Format(const char* format, const Args&... args) {
    text_ = Print(format, ForPrintf(args)...);
  }
  template <typename... Args>
  void AppendFormat(const char* format, const Args&... args) {
    text_ += Print(format, ForPrintf(args)...);
  }

  /// Parts of the text; positions and counts are clamped to it.
  [[nodiscard]] CString Left(int count) const;
  [[nodiscard]] CString Right(int count) const;
  [[nodiscard]] CString Mid(int first) const;
  [[nodiscard]] CString Mid(int first, int count) const;

  /// The first place at or after `start`, or -1; also -1 for a start outside the text and for null.
  [[nodiscard]] int Find(char ch, int start = 0) const noexcept;
  [[nodiscard]] int Find(const char* text, int start = 0) const noexcept;
  /// The last place of `ch`, or -1.
  [[nodiscard]] int ReverseFind(char ch) const noexcept;

  /// Replaces every occurrence from left to right; returns how many. An empty `from` is found
  /// nowhere.
  int Replace(char from, char to) noexcept;
  int Replace(const char* from, const char* to);

  CString& MakeLower() noexcept;
  CString& MakeUpper() noexcept;

  /// Remove blanks, \t, \n, \v, \f and \r, or the bytes of `set`, at one or both ends.
  CString& Trim() { return Trim(kWhiteSpace); }
  CString& Trim(char ch) { return Trim(std::string_view(&ch, 1)); }
  CString& Trim(const char* set) { return Trim(OrEmpty(set)); }
  CString& TrimLeft() { return TrimLeft(kWhiteSpace); }
  CString& TrimLeft(char ch) { return TrimLeft(std::string_view(&ch, 1)); }
  CString& TrimLeft(const char* set) { return TrimLeft(OrEmpty(set)); }
  CString& TrimRight() { return TrimRight(kWhiteSpace); }
  CString& TrimRight(char ch) { return TrimRight(std::string_view(&ch, 1)); }
  CString& TrimRight(const char* set) { return TrimRight(OrEmpty(set)); }

  /// Room to write at least `min_length` bytes and a NUL, owned by this object. End with
  /// ReleaseBuffer, which takes the new length, or -1 for what stands before the first NUL; it is
  /// clamped to the room.
  [[nodiscard]] char* GetBuffer(int min_length = 0);
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
