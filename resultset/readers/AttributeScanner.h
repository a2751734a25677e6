// Attributes as both dialects write them: name='value', separated by blanks.
#pragma once

#include <string_view>
#include <vector>

#include "resultset/ByteScan.h"

namespace qv {

struct Attribute {
  std::string_view name;
  std::string_view value;
};

// Returns the attributes of a stretch of text one by one. This is not an XML parser: a blank
// discards the name read so far, "=" ends it, and every other character, including line breaks and
// brackets, belongs to it. The character after "=" decides which quote encloses the value; without
// a quote, or without its closing one, there is no value.
class AttributeScanner {
 public:
  // With kAtEmptyClose, a "/>" outside a value ends the stretch.
  enum class Stop { kAtEnd, kAtEmptyClose };

  AttributeScanner(const char* begin, const char* end, Stop stop)
      : position_(begin), end_(end), stop_(stop) {}
  AttributeScanner(std::string_view text, Stop stop)
      : AttributeScanner(text.data(), text.data() + text.size(), stop) {}

  // Reads the next attribute that has a value. Returns false if there is none; the position is then
  // the end of the stretch.
  [[nodiscard]] bool Next(Attribute& attribute) {
    const char* name = position_;
    const char* p = position_;
    while (p < end_) {
      if (*p == ' ') {
        name = ++p;
      } else if (*p == '=') {
        attribute.name = {name, static_cast<std::size_t>(p - name)};
        name = ++p;
        if (TakeValue(p, attribute.value)) return true;
      } else if (*p == '/' && stop_ == Stop::kAtEmptyClose && end_ - p > 1 && p[1] == '>') {
        break;
      } else {
        ++p;
      }
    }
    position_ = p;
    return false;
  }

  // Returns true if more text after the end could have made a difference.
  [[nodiscard]] bool IsCutOff() const { return is_cut_off_ || position_ == end_; }
  [[nodiscard]] const char* Position() const { return position_; }
  // Continues after an attribute that the caller read itself.
  void MoveTo(const char* position) { position_ = position; }

 private:
  bool TakeValue(const char* quote, std::string_view& value) {
    if (quote >= end_ || (*quote != '\'' && *quote != '"')) return false;
    const char* const closing = FindQuote(quote + 1, end_, *quote);
    if (closing == end_) {
      is_cut_off_ = true;
      return false;
    }
    value = {quote + 1, static_cast<std::size_t>(closing - quote - 1)};
    position_ = closing + 1;
    return true;
  }

  const char* position_;
  const char* end_;
  Stop stop_;
  bool is_cut_off_ = false;
};

// All attributes of one element, for look-ups by name; the first of several with the same name
// counts.
class AttributeList {
 public:
  void Read(std::string_view text) {
    attributes_.clear();
    AttributeScanner scanner(text, AttributeScanner::Stop::kAtEnd);
    for (Attribute attribute; scanner.Next(attribute);) attributes_.push_back(attribute);
  }

  // Returns null if there is no such attribute.
  [[nodiscard]] const std::string_view* Find(std::string_view name) const {
    for (const Attribute& attribute : attributes_) {
      if (attribute.name == name) return &attribute.value;
    }
    return nullptr;
  }

  // Returns an empty text if there is no such attribute.
  [[nodiscard]] std::string_view Value(std::string_view name) const {
    const std::string_view* const found = Find(name);
    return found != nullptr ? *found : std::string_view();
  }

 private:
  std::vector<Attribute> attributes_;
};

}  // namespace qv
