#include "RecordsetReaders.h"

#include <array>
#include <string>

#include "AttributeScanner.h"
#include "ColumnFiller.h"
#include "FileText.h"
#include "base/call/CancelFlag.h"

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

// Walks through the rows: elements of one tag, whose children are the values. Positions are offsets
// into the text.
class RowWalker {
 public:
  // With `plain_names`, neither a closing tag nor the tag of the rows can be mistaken for a
  // column's.
  RowWalker(std::string_view text, std::string_view tag, std::size_t start, bool plain_names)
      : text_(text),
        opening_('<' + std::string(tag)),
        closing_(std::string("</").append(tag)),
        plain_names_(plain_names),
        last_closing_(text.rfind(closing_)),
        tag_end_(text, ">"),
        empty_close_(text, "/>"),
        ampersands_(text, "&"),
        next_row_(text.find(opening_, start)) {}

  [[nodiscard]] bool HasRow() const { return next_row_ != kNone; }
  [[nodiscard]] bool HasClosing() const { return IsClosedBehind(next_row_ + opening_.size()); }

  // Whether the row that was read last contains an ampersand.
  [[nodiscard]] bool MayHaveEntities() const { return may_have_entities_; }
  // The end of that row.
  [[nodiscard]] std::size_t Position() const { return position_; }

  // Reads the next row and moves past it. Returns false if it is not closed: the rows end before
  // it.
  [[nodiscard]] bool ReadRow(RowValues& values) {
    const std::size_t start = next_row_ + opening_.size();
    values.Begin();
    std::size_t behind = EndOfEmptyRow(start);
    if (behind == kNone && IsClosedBehind(start)) {
      behind = ReadChildren(start, text_.size(), values) + closing_.size();
    } else if (behind == kNone) {
      const std::size_t end = empty_close_.Find(start);
      if (end == kNone) return false;
      ReadChildren(start, end, values);
      behind = end + empty_close_.MarkerLength();
    }
    values.End();
    position_ = behind;
    may_have_entities_ = ampersands_.Find(start) < behind;
    next_row_ = FindTag(text_, opening_, behind);
    return true;
  }

 private:
  [[nodiscard]] bool IsClosedBehind(std::size_t position) const {
    return last_closing_ != kNone && last_closing_ >= position;
  }

  // Returns the position after the row's own "/>", or kNone if its opening tag does not end that
  // way.
  [[nodiscard]] std::size_t EndOfEmptyRow(std::size_t start) {
    if (start < text_.size() && text_[start] == '>') return kNone;
    const std::size_t end = tag_end_.Find(start);
    const bool is_empty = end != kNone && end > start && text_[end - 1] == '/';
    return is_empty ? end + 1 : kNone;
  }

  [[nodiscard]] bool IsRowClosing(const char* p, const char* end) const {
    return end - p >= static_cast<std::ptrdiff_t>(closing_.size()) && p[1] == '/' &&
           std::memcmp(p, closing_.data(), closing_.size()) == 0;
  }

  // Records the values of the children between `start` and the row's closing tag or `limit`,
  // whichever comes first, and returns that position. "<" starts a name, ">" ends it and starts its
  // value, which extends to the next "<". An empty element only says that its column is not null.
  std::size_t ReadChildren(std::size_t start, std::size_t limit, RowValues& values) const {
    const char* p = text_.data() + start;
    const char* const end = text_.data() + limit;
    const char* name = p;
    while (p < end) {
      if (*p == '<') {
        p = TakeExpected(p, end, values);
        if (p == end || IsRowClosing(p, end)) break;
        name = ++p;
      } else if (*p == '>') {
        const char* const value = p + 1;
        const bool is_pair = value < end && *value == '<';
        const std::string_view tag(name, Distance(name, p));
        p = is_pair ? value : FindByte(value, end, '<');
        if (!is_pair) values.Put(tag, {value, Distance(value, p)});
        NoteEmpty(tag, is_pair, value, values);
        name = p;
      } else {
        ++p;
      }
    }
    return static_cast<std::size_t>(p - text_.data());
  }

  // Notes the element whose tag has the text `tag` if it is empty: "<name/>", with blanks before
  // the slash or without, or "<name></name>", of which `is_pair` says that a "<" follows the tag.
  static void NoteEmpty(std::string_view tag, bool is_pair, const char* value, RowValues& values) {
    const bool is_closed = tag.ends_with('/');
    if (tag.empty() || (!is_closed && (!is_pair || tag.starts_with('/')))) return;
    if (is_closed) tag.remove_suffix(1);
    while (is_closed && tag.ends_with(' ')) tag.remove_suffix(1);
    values.PutEmpty(tag, value);
  }

  // Takes the children from the "<" at `p` as long as they come as expected, "<name>value</name>".
  // Returns the first "<" that it did not take, or `end`.
  const char* TakeExpected(const char* p, const char* end, RowValues& values) const {
    while (p < end && *p == '<' && !IsRowClosing(p, end)) {
      const std::size_t length = values.MatchExpected(p + 1, end);
      if (length == 0) return p;
      const char* const name = p + 1;
      const char* const value = name + length + 1;
      if (value >= end || (*value == '<' && !plain_names_)) return p;
      const char* const value_end = FindByte(value, end, '<');
      if (value_end != value) {
        values.PutExpected({value, Distance(value, value_end)});
      } else {
        values.PutExpectedEmpty(value);
      }
      p = BehindClosing(value_end, end, length, values);
    }
    return p;
  }

  // Returns the "<" after the closing tag at `p` of the last child, whose name has `length` bytes,
  // or `p` if something else is there.
  const char* BehindClosing(const char* p, const char* end, std::size_t length,
                            const RowValues& values) const {
    const bool is_closing = plain_names_ && p[1] == '/' && values.IsLastExpected(p + 2, end);
    return is_closing ? FindByte(p + length + 3, end, '<') : p;
  }

  static std::size_t Distance(const char* from, const char* to) {
    return static_cast<std::size_t>(to - from);
  }

  std::string_view text_;
  std::string opening_;
  std::string closing_;
  bool plain_names_;
  std::size_t last_closing_;
  ForwardFinder tag_end_;
  ForwardFinder empty_close_;
  ForwardFinder ampersands_;
  std::size_t next_row_;
  std::size_t position_ = 0;
  bool may_have_entities_ = false;
};

// Reads the rows that start after `start`. Returns what ReadSchema does.
Reading ReadRows(std::string_view text, std::string_view tag, std::size_t start, ResultTable& table,
                 BinaryCells& binary) {
  RowValues values(table.Columns(), '>');
  const bool plain_names = !values.HasNameWith("/") && !values.HasNameWith(tag);
  RowWalker rows(text, tag, start, plain_names);
  if (!rows.HasRow()) return Reading::kDone;
  if (!rows.HasClosing()) return Reading::kUnreadable;
  ColumnFiller filler(table, values, binary);
  for (std::size_t count = 1; rows.HasRow() && rows.ReadRow(values); ++count) {
    if (!filler.AppendRow(rows.MayHaveEntities())) return Reading::kTooLarge;
    if (IsTimeToLookUp(count) && call::IsCancelled()) return Reading::kCancelled;
    if (count == kRowsBeforeReserve) filler.ReserveAfter(rows.Position(), text.size());
  }
  return Reading::kDone;
}

Reading ReadSchema(std::string_view text, ResultTable& table, const tagTEMPFILEINFO& files) {
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
  const Reading reading = ReadRows(text, tag, sequence, table, binary);
  if (reading != Reading::kDone) DropRows(table);
  return reading;
}

}  // namespace

bool ReadSchemaFile(const char* path, CRvoDbRes& result, const tagTEMPFILEINFO& files) {
  FileText& file = KeptFileText();
  Reading reading = file.Load(path);
  if (reading == Reading::kDone) reading = ReadSchema(file.View(), ResultTable::Of(result), files);
  return NoteReading(reading);
}

}  // namespace qv
