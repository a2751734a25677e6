#include "RandomRecordset.h"

#include <algorithm>
#include <utility>

namespace qv {
namespace {

using Choices = std::vector<std::string_view>;

const Choices kRowsetTypes = {"boolean", "ui1",    "i2",      "int",      "i8",
                              "r4",      "float",  "string",  "dateTime", "string",
                              "bin.hex", "number", "unknown", ""};
const Choices kSchemaTypes = {
    "xs:boolean",      "xs:unsignedByte", "xs:short",  "xs:int",    "xs:long",
    "xs:float",        "xs:double",       "xs:string", "xs:string", "xs:dateTime",
    "xs:base64Binary", "xs:decimal",      "xs:other",  ""};
const Choices kNames = {"ID",           "Name",       "name", "Date", "a:b",      "\xe5\x90\x8d",
                        "\xc3\xfb",     "s",          "/x",   "x",    "Document", "DocumentNo",
                        "DocumentName", "DocumentNo2"};
const Choices kBooleans = {"True", "true", "TRUE", "1", "0", "False", "True ", "", "Tru"};
const Choices kIntegers = {"0",
                           "-1",
                           "2147483647",
                           "2147483648",
                           "-2147483648",
                           "-2147483649",
                           "99999999999999999999",
                           "9223372036854775807",
                           "9223372036854775808",
                           "-9223372036854775808",
                           "-9223372036854775809",
                           "123456789",
                           "1234567890123456",
                           "12345678901234567",
                           "12345678x01234",
                           "-99999999999",
                           " 42",
                           "+7",
                           "12abc",
                           "",
                           "abc",
                           "-",
                           "--3",
                           "\t\v9",
                           "007"};
const Choices kDoubles = {"2.5",
                          "-0.0",
                          "1e400",
                          "-1e400",
                          "1e-400",
                          "1e300",
                          "-1e308",
                          "nan",
                          "-nan",
                          "NaN",
                          "nan(12)",
                          "inf",
                          "-inf",
                          "Infinity",
                          "0x1p4",
                          "0x.8",
                          ".5",
                          "5.",
                          " \n12.5xyz",
                          "1e",
                          "1e+",
                          "",
                          "abc",
                          "--1",
                          "+3",
                          "-.",
                          "0.1",
                          "-2.0000005",
                          "0x",
                          "+-1",
                          "infi",
                          "nan(",
                          "1,5",
                          "999999.9999999",
                          "123456789012345678901234567890",
                          "0.00000049999999999999999999999"};
const Choices kDates = {"2024-02-29T12:34:56",
                        "2023-02-29 12:34:56",
                        "1899-12-30 00:00:00",
                        "1899-12-29T06:00:00.123",
                        "0099-01-01 00:00:00",
                        "0100-01-01T00:00:00",
                        "9999-12-31 23:59:59",
                        "2024-01-01",
                        "2024-01-0x",
                        "2024/01/01",
                        "2024-01-01 00:00:0",
                        "2024-02-29T12:34:56.",
                        "2024-02-29T12:34:56.7899+08:00",
                        "2024-02-29T12:34:56.0x5",
                        "2024-02-29T12:34:56+08:00",
                        "2024-13-01T00:00:00",
                        "2024- 1- 2 03:04:05",
                        "+204-01-02 03:04:05",
                        "-204--1--2 -3:-4:-5",
                        "abcd-ef-gh ij:kl:mn",
                        "                   ",
                        "2024-01-01 24:00:00",
                        "1900-02-29 00:00:00",
                        "2000-02-29x59:59:59",
                        ""};
const Choices kPieces = {
    "part", "&#x3c;", "&#x3e;", "&#x27;", "&#x26;", "&#x22;",       "&#x26;#x3c;",
    "&#x3", "&amp;",  "&",      " ",      "  ",     "\r\n",         "\t",
    "=",    "/>",     "'",      "\"",     "='",     "\xe4\xb8\xad", "\xd6\xd0",
    "\x80", "/",      "#x22;",  "12",     "x='y'",  "\v\f",         "&#x26;#x26;#x22;"};
const Choices kMarkers = {"/>",
                          "<z:row",
                          "='",
                          "=\"",
                          "\"",
                          "'",
                          " ",
                          "=",
                          "<",
                          ">",
                          "><",
                          "</",
                          "\n",
                          "<T",
                          "</T",
                          "<T/>",
                          "<Table",
                          "</Table",
                          "<s:AttributeType",
                          "</s:AttributeType>",
                          "</s:ElementType",
                          "<s:ElementType",
                          "<rs:data>",
                          "<xs:element",
                          "<xs:sequence",
                          "</xs:sequence",
                          "<xs:schema",
                          "</xs:schema",
                          " name='ID'",
                          " name=''",
                          "&#x26;"};

}  // namespace

std::string RandomRecordset::Name(std::size_t number) {
  if (OneIn(4)) return std::string(Pick(kNames));
  return "C" + std::to_string(number);
}

std::vector<RandomRecordset::Field> RandomRecordset::Fields(const Choices& types) {
  const std::size_t count = OneIn(20) ? 60 + Below(20) : Below(9);
  std::vector<Field> fields;
  for (std::size_t i = 0; i < count; ++i) fields.push_back({Name(i), Pick(types)});
  return fields;
}

std::string RandomRecordset::Date() {
  if (!OneIn(3)) return std::string(Pick(kDates));
  const auto two = [&](std::size_t limit) {
    const std::size_t value = Below(limit);
    return std::string(value < 10 ? "0" : "") + std::to_string(value);
  };
  std::string date = std::to_string(1000 + Below(9000)) + "-" + two(14) + "-" + two(33);
  date += OneIn(2) ? "T" : " ";
  return date + two(25) + ":" + two(61) + ":" + two(61) +
         (OneIn(3) ? "." + std::to_string(Below(9999)) : "");
}

std::string RandomRecordset::Text() {
  std::string text;
  for (std::size_t count = Below(6); count > 0; --count) text += Pick(kPieces);
  return text;
}

std::string RandomRecordset::Hex() {
  const std::string_view digits = OneIn(6) ? "0123456789abcdefABCDEFg /:`\xff" : "0123456789abcdef";
  std::string text;
  for (std::size_t count = Below(24); count > 0; --count) text += digits[Below(digits.size())];
  return text;
}

std::string RandomRecordset::Base64() {
  std::string_view digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/ \n\t\r";
  if (OneIn(6)) digits = "Zz+/ \v\f-_=*\xff";
  std::string text;
  for (std::size_t count = Below(24); count > 0; --count) text += digits[Below(digits.size())];
  if (OneIn(3)) text += OneIn(2) ? "=" : "==";
  return text;
}

std::string RandomRecordset::Value(std::string_view type) {
  if (OneIn(15)) return Text();
  if (type.ends_with("oolean")) return std::string(Pick(kBooleans));
  if (type == "float" || type == "xs:double") {
    if (!OneIn(3)) return std::string(Pick(kDoubles));
    return (OneIn(2) ? "-" : "") + std::to_string(engine_()) + "." + std::to_string(engine_());
  }
  if (type.ends_with("dateTime")) return Date();
  if (type == "bin.hex") return Hex();
  if (type == "xs:base64Binary") return Base64();
  if (type.ends_with("string") || OneIn(4)) return Text();
  return OneIn(3) ? std::to_string(engine_()) : std::string(Pick(kIntegers));
}

std::string RandomRecordset::Quoted(std::string value) {
  const char quote = value.find('\'') == std::string::npos && !OneIn(4) ? '\'' : '"';
  std::erase(value, quote);
  return quote + value + quote;
}

std::string RandomRecordset::AttributeType(const Field& field) {
  std::vector<std::string> parts = {"name=" + Quoted(field.name)};
  if (!field.type.empty()) parts.push_back("dt:type=" + Quoted(std::string(field.type)));
  if (OneIn(2)) parts.push_back("dt:maxLength=" + Quoted(std::string(Pick(kIntegers))));
  if (OneIn(3)) parts.push_back("rs:precision='23'");
  if (OneIn(3)) parts.push_back("rs:long='true'");
  if (OneIn(4)) parts.push_back("rs:fixedlength='true'");
  if (OneIn(4)) std::shuffle(parts.begin(), parts.end(), engine_);
  const std::size_t nested = Below(parts.size() + 1);
  std::string text = "\t\t<s:AttributeType";
  for (std::size_t i = 0; i < parts.size(); ++i) {
    text += i == nested ? "> <s:datatype " : " ";
    text += parts[i];
  }
  return text + "/>\r\n\t\t</s:AttributeType>\r\n";
}

std::string RandomRecordset::Row(const std::vector<Field>& fields) {
  std::vector<std::string> parts;
  for (const Field& field : fields) {
    if (OneIn(6)) continue;
    parts.push_back(field.name + "=" + Quoted(Value(field.type)));
    if (OneIn(25)) parts.push_back(field.name + "=" + Quoted(Value(field.type)));
    if (OneIn(25)) parts.push_back("other=" + Quoted(Text()));
  }
  if (OneIn(4)) std::shuffle(parts.begin(), parts.end(), engine_);
  std::string text = "\t<z:row";
  for (const std::string& part : parts) text += (OneIn(20) ? "\r\n\t\t " : " ") + part;
  return text + (OneIn(10) ? " />" : "/>") + "\r\n";
}

std::string RandomRecordset::Rowset() {
  const std::vector<Field> fields = Fields(kRowsetTypes);
  std::string text =
      "<xml xmlns:z='#RowsetSchema'>\r\n<s:Schema id='RowsetSchema'>\r\n"
      "\t<s:ElementType name='row' content='eltOnly'>\r\n";
  for (const Field& field : fields) text += AttributeType(field);
  text +=
      "\t\t<s:extends type='rs:rowbase'/>\r\n\t</s:ElementType>\r\n</s:Schema>\r\n<rs:data>\r\n";
  for (std::size_t rows = RowCount(); rows > 0; --rows) text += Row(fields);
  return text + "</rs:data>\r\n</xml>\r\n";
}

std::string RandomRecordset::Element(const Field& field) {
  std::string text = "<" + field.name;
  if (OneIn(12)) return text + (OneIn(2) ? "/>" : " />");
  std::string value = Value(field.type);
  std::erase(value, '<');
  return text + ">" + value + "</" + field.name + ">";
}

std::string RandomRecordset::TaggedRow(std::string_view tag, const std::vector<Field>& fields) {
  const std::string name(tag);
  if (OneIn(8)) return "  <" + name + (OneIn(2) ? " />\n" : "/>\n");
  std::vector<std::string> parts;
  for (const Field& field : fields) {
    if (OneIn(6)) continue;
    parts.push_back(Element(field));
    if (OneIn(25)) parts.push_back(Element(field));
    if (OneIn(25)) parts.push_back(Element({"other", "xs:string"}));
  }
  if (OneIn(4)) std::shuffle(parts.begin(), parts.end(), engine_);
  const std::string_view between = OneIn(2) ? "\n    " : "";
  std::string text = "  <" + name + (OneIn(10) ? " a='b'>" : ">");
  for (const std::string& part : parts) (text += between) += part;
  return text + "\n  </" + name + ">\n";
}

std::string RandomRecordset::Schema() {
  const std::vector<Field> fields = Fields(kSchemaTypes);
  const std::string tag(Pick({"Table", "T", "\xc3\xfb", "row:1"}));
  std::string text = "<?xml version='1.0'?>\n<Data>\n  <xs:schema id='Data' xmlns=''>\n";
  text += "<xs:element name=" + Quoted(tag) + " msdata:MainDataTable=" + Quoted("Main");
  text += " msdata:UseCurrentLocale='true'>\n<xs:complexType>\n<xs:sequence>\n";
  for (const Field& field : fields) {
    std::string type = field.type.empty() ? "" : " type=" + Quoted(std::string(field.type));
    std::string name = " name=" + Quoted(field.name);
    if (OneIn(4)) std::swap(type, name);
    text += "<xs:element" + name + type + " minOccurs='0' />\n";
  }
  text += "</xs:sequence>\n</xs:complexType>\n</xs:element>\n  </xs:schema>\n";
  for (std::size_t rows = RowCount(); rows > 0; --rows) text += TaggedRow(tag, fields);
  return text + "</Data>\n";
}

void RandomRecordset::DamageOnce(std::string& file) {
  const std::size_t at = Below(file.size());
  switch (Below(8)) {
    case 0:
      file.erase(at, 1 + Below(OneIn(4) ? 300 : 12));
      break;
    case 1:
      file.insert(Below(file.size()), file.substr(at, 1 + Below(200)));
      break;
    case 2:
      if (!file.empty()) std::swap(file[at], file[Below(file.size())]);
      break;
    case 3:
      if (OneIn(3)) file.resize(at);
      break;
    case 4:
      if (OneIn(6)) file.insert(at, 1, '\0');
      break;
    default:
      file.insert(at, Pick(kMarkers));
  }
}

std::string RandomRecordset::Damaged(std::string file) {
  for (std::size_t count = 1 + Below(OneIn(5) ? 40 : 5); count > 0; --count) DamageOnce(file);
  return file;
}

}  // namespace qv
