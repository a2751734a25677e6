#include <array>
#include <memory>
#include <string>

#include "AttributeScanner.h"
#include "Dialects.h"
#include "PieceReading.h"
#include "RowScanner.h"

namespace qv {

namespace {

constexpr std::string_view kSchema = "<xs:schema";
constexpr std::string_view kSchemaEnd = "</xs:schema";
constexpr std::string_view kElement = "<xs:element";
constexpr std::string_view kSequence = "<xs:sequence";
constexpr std::string_view kSequenceEnd = "</xs:sequence";
// The file chooses the tag that is searched for. A long one could make every search slow, and no
// real table has it.
constexpr std::size_t kMaxTag = 1024;
constexpr std::size_t kNone = std::string_view::npos;

std::uint8_t TypeOf(std::string_view name) {
  static constexpr std::array<NamedType, 11> kTypes = {{{"xs:boolean", kTypeBoolean},
                                                        {"xs:unsignedByte", kTypeUnsignedTinyInt},
                                                        {"xs:short", kTypeSmallInt},
                                                        {"xs:int", kTypeInteger},
                                                        {"xs:long", kTypeBigInt},
                                                        {"xs:float", kTypeSingle},
                                                        {"xs:double", kTypeDouble},
                                                        {"xs:decimal", kTypeNumeric},
                                                        {"xs:string", kTypeVarChar},
                                                        {"xs:dateTime", kTypeTimeStamp},
                                                        {"xs:base64Binary", kTypeLongVarBinary}}};
  return FindType(kTypes, name);
}

// Reads the attributes of the element that opens at `opening`. Returns the position of its ">", or
// kNone.
std::size_t ReadElement(std::string_view text, std::size_t opening, AttributeList& attributes) {
  const std::size_t start = opening + kElement.size();
  const std::size_t end = text.find('>', start);
  if (end != kNone) attributes.Read(text.substr(start, end - start));
  return end;
}

// Returns the tag of the rows, which is the name of the first element, or an empty text if the
// element lacks a required attribute.
std::string_view RowTag(std::string_view text) {
  AttributeList attributes;
  const std::size_t opening = text.find(kElement);
  if (opening == kNone || ReadElement(text, opening, attributes) == kNone) return {};
  // The main table must be named, but it does not choose the rows.
  if (attributes.Value("msdata:MainDataTable").empty()) return {};
  return attributes.Value("name");
}

// Defines a column for every element that opens between `sequence` and `sequence_end`.
void DefineColumns(std::string_view text, std::size_t sequence, std::size_t sequence_end,
                   ResultTable& table) {
  AttributeList attributes;
  std::size_t opening = text.find(kElement, sequence);
  while (opening < sequence_end) {
    const std::size_t end = ReadElement(text, opening, attributes);
    if (end == kNone) return;
    const std::string_view name = attributes.Value("name");
    if (!name.empty()) {
      table.AddColumn({.name = std::string(name), .type = TypeOf(attributes.Value("type"))});
    }
    opening = text.substr(0, sequence_end).find(kElement, end);
  }
}

// The elements of one tag, whose children are the values.
class SchemaRows final : public RowScanner {
 public:
  // `tag` is that of the rows, and `last_closing` the last place at which one is closed.
  SchemaRows(std::string_view text, std::span<const Column> columns, std::string_view tag,
             std::size_t last_closing)
      : RowScanner(text, columns, '>'),
        opening_('<' + std::string(tag)),
        closing_(ClosingOf(tag)),
        plain_names_(!values_.HasNameWith("/") && !values_.HasNameWith(tag)),
        last_closing_(last_closing),
        tag_end_(text, ">"),
        empty_close_(text, "/>"),
        ampersands_(text, "&") {}

  [[nodiscard]] std::size_t FindRow(std::size_t from) const override {
    return FindTag(Text(), opening_, from);
  }
  [[nodiscard]] Reading ReadRows(std::size_t& position, std::size_t limit,
                                 ColumnFiller& filler) override {
    return ReadEachRow(*this, position, limit, filler);
  }

  static std::string ClosingOf(std::string_view tag) { return std::string("</").append(tag); }

 private:
  friend RowScanner;

  // The rows end before one that is not closed.
  [[nodiscard]] Row ReadRow(std::size_t& position) {
    const std::size_t start = position + opening_.size();
    position = EndOfEmptyRow(start);
    if (position == kNone && IsClosedBehind(start)) {
      position = ReadChildren(start, Text().size()) + closing_.size();
    } else if (position == kNone) {
      const std::size_t end = empty_close_.Find(start);
      if (end == kNone) return Row::kNoRow;
      ReadChildren(start, end);
      position = end + empty_close_.MarkerLength();
    }
    values_.End();
    return ampersands_.Find(start) < position ? Row::kWithEntities : Row::kPlain;
  }

  [[nodiscard]] bool IsClosedBehind(std::size_t position) const {
    return last_closing_ >= position;
  }

  // Returns the position after the row's own "/>", or kNone if its opening tag does not end that
  // way.
  [[nodiscard]] std::size_t EndOfEmptyRow(std::size_t start) {
    if (start < Text().size() && Text()[start] == '>') return kNone;
    const std::size_t end = tag_end_.Find(start);
    const bool is_empty = end != kNone && end > start && Text()[end - 1] == '/';
    return is_empty ? end + 1 : kNone;
  }

  [[nodiscard]] bool IsRowClosing(const char* p, const char* end) const {
    return end - p >= static_cast<std::ptrdiff_t>(closing_.size()) && p[1] == '/' &&
           std::memcmp(p, closing_.data(), closing_.size()) == 0;
  }

  // Records the values of the children between `start` and the row's closing tag or `limit`,
  // whichever comes first, and returns that position. "<" starts a name, ">" ends it and starts its
  // value, which extends to the next "<". An empty element only says that its column is not null.
  std::size_t ReadChildren(std::size_t start, std::size_t limit) {
    const char* p = Text().data() + start;
    const char* const end = Text().data() + limit;
    const char* name = p;
    while (p < end) {
      if (*p == '<') {
        p = TakeExpected(p, end);
        if (p == end || IsRowClosing(p, end)) break;
        name = ++p;
      } else if (*p == '>') {
        const char* const value = p + 1;
        const bool is_pair = value < end && *value == '<';
        const std::string_view tag(name, Distance(name, p));
        p = is_pair ? value : FindByte(value, end, '<');
        if (!is_pair) values_.Put(tag, {value, Distance(value, p)});
        NoteEmpty(tag, is_pair, value);
        name = p;
      } else {
        ++p;
      }
    }
    return static_cast<std::size_t>(p - Text().data());
  }

  // Notes the element whose tag has the text `tag` if it is empty: "<name/>", with blanks before
  // the slash or without, or "<name></name>", of which `is_pair` says that a "<" follows the tag.
  void NoteEmpty(std::string_view tag, bool is_pair, const char* value) {
    const bool is_closed = tag.ends_with('/');
    if (tag.empty() || (!is_closed && (!is_pair || tag.starts_with('/')))) return;
    if (is_closed) tag.remove_suffix(1);
    while (is_closed && tag.ends_with(' ')) tag.remove_suffix(1);
    values_.PutEmpty(tag, value);
  }

  // Takes the children from the "<" at `p` as long as they come as expected, "<name>value</name>".
  // Returns the first "<" that it did not take, or `end`.
  const char* TakeExpected(const char* p, const char* end) {
    while (p < end && *p == '<' && !IsRowClosing(p, end)) {
      const std::size_t length = values_.MatchExpected(p + 1, end);
      if (length == 0) return p;
      const char* const name = p + 1;
      const char* const value = name + length + 1;
      if (value >= end || (*value == '<' && !plain_names_)) return p;
      const char* const value_end = FindByte(value, end, '<');
      if (value_end != value) {
        values_.PutExpected({value, Distance(value, value_end)});
      } else {
        values_.PutExpectedEmpty(value);
      }
      p = BehindClosing(value_end, end, length);
    }
    return p;
  }

  // Returns the "<" after the closing tag at `p` of the last child, whose name has `length` bytes,
  // or `p` if something else is there.
  const char* BehindClosing(const char* p, const char* end, std::size_t length) const {
    const bool is_closing = plain_names_ && p[1] == '/' && values_.IsLastExpected(p + 2, end);
    return is_closing ? FindByte(p + length + 3, end, '<') : p;
  }

  static std::size_t Distance(const char* from, const char* to) {
    return static_cast<std::size_t>(to - from);
  }

  const std::string opening_;
  const std::string closing_;
  // Neither a closing tag nor the tag of the rows can be mistaken for a column's.
  const bool plain_names_;
  const std::size_t last_closing_;
  ForwardFinder tag_end_;
  ForwardFinder empty_close_;
  ForwardFinder ampersands_;
};

// Reads the rows that start after `start`. Returns what ReadSchemaText does.
Reading ReadRows(std::string_view text, std::string_view tag, std::size_t start, ResultTable& table,
                 BinaryCells& binary) {
  const std::size_t first = text.find('<' + std::string(tag), start);
  if (first == kNone) return Reading::kDone;
  const std::size_t last_closing = text.rfind(SchemaRows::ClosingOf(tag));
  const bool is_closed = last_closing != kNone && last_closing > first + tag.size();
  if (!is_closed) return Reading::kUnreadable;
  const auto make = [&] {
    return std::make_unique<SchemaRows>(text, table.Columns(), tag, last_closing);
  };
  return ReadAllRows(first, make, table, binary);
}

}  // namespace

Reading ReadSchemaText(std::string_view text, ResultTable& table, const tagTEMPFILEINFO& files) {
  const std::size_t schema = text.find(kSchema);
  if (schema == kNone) return Reading::kUnreadable;
  if (text.find(kSchemaEnd, schema + kSchema.size()) == kNone) return Reading::kUnreadable;
  const std::string_view tag = RowTag(text);
  if (tag.empty() || tag.size() > kMaxTag) return Reading::kUnreadable;
  const std::size_t sequence = text.find(kSequence);
  const std::size_t sequence_end = text.find(kSequenceEnd);
  if (sequence == kNone || sequence_end == kNone) return Reading::kUnreadable;

  DefineColumns(text, sequence, sequence_end, table);
  table.RebuildCells();
  Base64Cells binary(files);
  return ReadRows(text, tag, sequence, table, binary);
}

}  // namespace qv
