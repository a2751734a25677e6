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
// kNone. The attributes are in the window's view.
std::size_t ReadElement(TextWindow& text, std::size_t opening, AttributeList& attributes) {
  const std::size_t start = opening + kElement.size();
  const std::size_t end = text.Find(">", start);
  if (end != kNone) attributes.Read(text.View().substr(start, end - start));
  return end;
}

// Returns the tag of the rows, which is the name of the first element, or an empty text if the
// element lacks a required attribute.
std::string RowTag(TextWindow& text) {
  AttributeList attributes;
  const std::size_t opening = text.Find(kElement, 0);
  if (opening == kNone || ReadElement(text, opening, attributes) == kNone) return {};
  // The main table must be named, but it does not choose the rows.
  if (attributes.Value("msdata:MainDataTable").empty()) return {};
  return std::string(attributes.Value("name"));
}

// Defines a column for every element that opens between `sequence` and `sequence_end`.
void DefineColumns(TextWindow& text, std::size_t sequence, std::size_t sequence_end,
                   ResultTable& table) {
  AttributeList attributes;
  std::size_t opening = text.View().find(kElement, sequence);
  while (opening < sequence_end) {
    const std::size_t end = ReadElement(text, opening, attributes);
    if (end == kNone) return;
    const std::string_view name = attributes.Value("name");
    if (!name.empty()) {
      table.AddColumn({.name = std::string(name), .type = TypeOf(attributes.Value("type"))});
    }
    opening = text.View().substr(0, sequence_end).find(kElement, end);
  }
}

// The elements of one tag, whose children are the values.
class SchemaRows final : public RowScanner {
 public:
  // `tag` is that of the rows.
  SchemaRows(TextWindow& window, std::span<const Column> columns, const std::string& tag)
      : RowScanner(window, columns, '>'),
        opening_('<' + tag),
        closing_("</" + tag),
        plain_names_(!values_.HasNameWith("/") && !values_.HasNameWith(tag)),
        tag_end_(">"),
        empty_close_("/>"),
        ampersands_("&") {}

  [[nodiscard]] Reading ReadRows(std::uint64_t limit, ColumnFiller& filler) override {
    return ReadEachRow(*this, limit, filler);
  }

 private:
  friend RowScanner;

  [[nodiscard]] std::size_t FindRow(std::size_t from) const override {
    return FindTag(View(), opening_, from);
  }
  void TakeView() override {
    for (ForwardFinder* const finder : {&tag_end_, &empty_close_, &ampersands_}) {
      finder->SetText(View());
    }
    last_closing_ = View().rfind(closing_);
  }

  // The rows end before one that is not closed.
  [[nodiscard]] Row ReadRow(std::size_t& index) {
    const std::size_t start = index + opening_.size();
    if (!HasTagEnd(start) && !Window().IsLast()) return Row::kCutOff;
    std::size_t end = EndOfEmptyRow(start);
    if (end == kNone && IsClosedBehind(start)) {
      end = ReadChildren(start, View().size()) + closing_.size();
    } else if (end == kNone) {
      // A closing tag may follow.
      if (!Window().IsLast()) return Row::kCutOff;
      end = empty_close_.Find(start);
      if (end == kNone) return Row::kNoRow;
      ReadChildren(start, end);
      end += empty_close_.MarkerLength();
    }
    values_.End();
    index = end;
    return ampersands_.Find(start) < end ? Row::kWithEntities : Row::kPlain;
  }

  [[nodiscard]] bool IsClosedBehind(std::size_t index) const {
    return last_closing_ != kNone && last_closing_ >= index;
  }

  // Whether the opening tag, whose name ends at `start`, does so in the view.
  [[nodiscard]] bool HasTagEnd(std::size_t start) {
    return (start < View().size() && View()[start] == '>') || tag_end_.Find(start) != kNone;
  }

  // Returns the index after the row's own "/>", or kNone if its opening tag does not end that way.
  [[nodiscard]] std::size_t EndOfEmptyRow(std::size_t start) {
    if (start < View().size() && View()[start] == '>') return kNone;
    const std::size_t end = tag_end_.Find(start);
    const bool is_empty = end != kNone && end > start && View()[end - 1] == '/';
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
    const char* p = View().data() + start;
    const char* const end = View().data() + limit;
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
    return static_cast<std::size_t>(p - View().data());
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
  std::size_t last_closing_ = kNone;  // the last place in the view at which a row is closed
  ForwardFinder tag_end_;
  ForwardFinder empty_close_;
  ForwardFinder ampersands_;
};

// Reads the rows that start after `start`. Returns what ReadSchemaText does.
Reading ReadRows(TextWindow& text, const std::string& tag, std::size_t start, ResultTable& table,
                 BinaryCells& binary) {
  const std::size_t first = text.Find('<' + tag, start);
  if (first == kNone) return text.Status();
  if (text.Find("</" + tag, first + tag.size() + 1) == kNone) return NotFound(text);
  const auto make = [&](TextWindow& window) {
    return std::make_unique<SchemaRows>(window, table.Columns(), tag);
  };
  return ReadAllRows(text, first, make, table, binary);
}

}  // namespace

Reading ReadSchemaText(TextWindow& text, ResultTable& table, const tagTEMPFILEINFO& files) {
  const std::size_t schema = text.Find(kSchema, 0);
  if (schema == kNone) return NotFound(text);
  if (text.Find(kSchemaEnd, schema + kSchema.size()) == kNone) return NotFound(text);
  const std::string tag = RowTag(text);
  if (tag.empty() || tag.size() > kMaxTag) return NotFound(text);
  const std::size_t sequence = text.Find(kSequence, 0);
  const std::size_t sequence_end = text.Find(kSequenceEnd, 0);
  if (sequence == kNone || sequence_end == kNone) return NotFound(text);

  DefineColumns(text, sequence, sequence_end, table);
  table.RebuildCells();
  Base64Cells binary(files);
  return ReadRows(text, tag, sequence, table, binary);
}

}  // namespace qv
