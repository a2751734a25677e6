#include <array>
#include <memory>

#include "AttributeScanner.h"
#include "Dialects.h"
#include "PieceReading.h"
#include "RowScanner.h"
#include "base/text/Numbers.h"

namespace qv {

namespace {

constexpr std::string_view kElementType = "<s:ElementType";
constexpr std::string_view kElementTypeEnd = "</s:ElementType";
constexpr std::string_view kAttributeType = "<s:AttributeType";
constexpr std::string_view kAttributeTypeEnd = "</s:AttributeType";
constexpr std::string_view kData = "<rs:data>";
constexpr std::string_view kRow = "<z:row";
constexpr std::size_t kNone = std::string_view::npos;

std::uint8_t TextType(const AttributeList& attributes) {
  if (attributes.Value("rs:fixedlength") == "true") return kTypeChar;
  if (attributes.Value("rs:long") == "true") return kTypeLongVarChar;
  return kTypeVarChar;
}

std::uint8_t TypeOf(const AttributeList& attributes) {
  static constexpr std::array<NamedType, 9> kTypes = {{{"boolean", kTypeBoolean},
                                                       {"ui1", kTypeUnsignedTinyInt},
                                                       {"i2", kTypeSmallInt},
                                                       {"int", kTypeInteger},
                                                       {"i8", kTypeBigInt},
                                                       {"r4", kTypeSingle},
                                                       {"float", kTypeDouble},
                                                       {"number", kTypeNumeric},
                                                       {"bin.hex", kTypeLongVarBinary}}};
  const std::string_view name = attributes.Value("dt:type");
  if (name == "string") return TextType(attributes);
  if (name == "dateTime") {
    return attributes.Value("rs:precision") == "23" ? kTypeTimeStamp : kTypeDate;
  }
  return FindType(kTypes, name);
}

void DefineColumn(const AttributeList& attributes, ResultTable& table) {
  const std::string_view name = attributes.Value("name");
  if (name.empty()) return;
  Column& column = table.AddColumn({.name = std::string(name)});
  column.type = TypeOf(attributes);
  // A missing attribute is the empty text, which converts to 0.
  column.declared_length = text::DecimalToInt32(attributes.Value("dt:maxLength"));
}

// `schema` is the text between the element type's markers.
void DefineColumns(std::string_view schema, ResultTable& table) {
  AttributeList attributes;
  std::size_t position = 0;
  while (true) {
    const std::size_t opening = schema.find(kAttributeType, position);
    if (opening == kNone) return;
    const std::size_t start = opening + kAttributeType.size();
    const std::size_t closing = schema.find(kAttributeTypeEnd, start);
    if (closing == kNone) return;
    attributes.Read(schema.substr(start, closing - start));
    DefineColumn(attributes, table);
    position = closing;
  }
}

// Takes attributes as long as they come as expected: a blank and name='value'. The text is followed
// by zeros, so that searching for a blank or a quote there is harmless.
void TakeExpected(AttributeScanner& scanner, const char* end, RowValues& values) {
  const char* p = scanner.Position();
  while (*p == ' ') {
    const std::size_t length = values.MatchExpected(p + 1, end);
    if (length == 0) break;
    const char* const quote = p + length + 2;
    if (*quote != '\'' && *quote != '"') break;
    const char* const closing = FindQuote(quote + 1, end, *quote);
    if (closing == end) break;
    values.PutExpected({quote + 1, static_cast<std::size_t>(closing - quote - 1)});
    p = closing + 1;
  }
  scanner.MoveTo(p);
}

// Reads the attributes after "<z:row", to which `scanner` moves.
void ReadAttributes(AttributeScanner& scanner, const char* end, RowValues& values) {
  while (true) {
    TakeExpected(scanner, end, values);
    // Most rows end here; the scanner would find the same.
    const char* const here = scanner.Position();
    if (here[0] == '/' && here[1] == '>') return;
    Attribute attribute;
    if (!scanner.Next(attribute)) return;
    values.Put(attribute.name, attribute.value);
  }
}

// The elements "<z:row".
class RowsetRows final : public RowScanner {
 public:
  RowsetRows(TextWindow& window, std::span<const Column> columns)
      : RowScanner(window, columns, '='), ampersands_("&") {}

  [[nodiscard]] Reading ReadRows(std::uint64_t limit, ColumnFiller& filler) override {
    return ReadEachRow(*this, limit, filler);
  }

 private:
  friend RowScanner;

  [[nodiscard]] std::size_t FindRow(std::size_t from) const override {
    return FindTag(View(), kRow, from);
  }
  void TakeView() override { ampersands_.SetText(View()); }

  [[nodiscard]] Row ReadRow(std::size_t& index) {
    const std::size_t start = index;
    const std::string_view text = View();
    const char* const end = text.data() + text.size();
    AttributeScanner scanner(text.data() + start + kRow.size(), end,
                             AttributeScanner::Stop::kAtEmptyClose);
    ReadAttributes(scanner, end, values_);
    if (scanner.IsCutOff() && !Window().IsLast()) return Row::kCutOff;
    index = static_cast<std::size_t>(scanner.Position() - text.data());
    return ampersands_.Find(start) < index ? Row::kWithEntities : Row::kPlain;
  }

  ForwardFinder ampersands_;
};

}  // namespace

Reading ReadRowsetText(TextWindow& text, ResultTable& table, const tagTEMPFILEINFO& files) {
  const std::size_t opening = text.Find(kElementType, 0);
  if (opening == kNone) return NotFound(text);
  const std::size_t closing = text.Find(kElementTypeEnd, opening + kElementType.size());
  if (closing == kNone) return NotFound(text);

  DefineColumns(text.View().substr(opening, closing - opening), table);
  table.RebuildCells();

  const std::size_t data = text.Find(kData, opening);
  if (data == kNone) return NotFound(text);
  HexCells binary(files);
  const auto make = [&](TextWindow& window) {
    return std::make_unique<RowsetRows>(window, table.Columns());
  };
  return ReadAllRows(text, data, make, table, binary);
}

}  // namespace qv
