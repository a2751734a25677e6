#include "RecordsetFiles.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <random>
#include <stdexcept>

namespace qv {

namespace {

using Row = std::array<std::string, kFileColumns.size()>;

// The bytes do not depend on how the compiler encodes literals.
std::string_view Bytes(std::u8string_view text) {
  return {reinterpret_cast<const char*>(text.data()), text.size()};
}

constexpr std::array<std::u8string_view, 8> kTitles = {
    u8"传动轴",     u8"Bearing block", u8"液压缸总成",     u8"Gear, 24 teeth",
    u8"上盖板 (A)", u8"Spacer ring",   u8"电机支架焊接件", u8"Base frame, left hand"};

constexpr std::array<std::u8string_view, 12> kWords = {
    u8"checked", u8"against", u8"drawing", u8"表面处理",   u8"tolerance",  u8"released",
    u8"部门",    u8"revised", u8"and",     u8"未注公差按", u8"deburr all", u8"assembly"};

constexpr std::array<std::string_view, 5> kEntities = {"&#x3c;", "&#x3e;", "&#x27;", "&#x26;",
                                                       "&#x22;"};

class RowMaker {
 public:
  explicit RowMaker(Dialect dialect) : dialect_(dialect) {}

  // Empty texts are missing values.
  Row Next() {
    ++id_;
    return {std::to_string(id_ + 100000),
            OneIn(8) ? std::string() : std::to_string(Below(2'000'000'000)),
            OneIn(10) ? std::string() : Weight(),
            Flag(),
            OneIn(10) ? std::string() : Date(),
            Code(),
            OneIn(20) ? std::string() : Title(),
            OneIn(4) ? std::string() : Remark()};
  }

 private:
  // The standard fixes the engine's numbers, but not those of its distributions. Nor does it fix in
  // which order a call's arguments draw them; a list in braces does.
  unsigned Below(unsigned limit) { return static_cast<unsigned>(engine_() % limit); }
  bool OneIn(unsigned count) { return Below(count) == 0; }

  template <class... Values>
  static std::string Printed(const char* format, Values... values) {
    char text[64];
    return std::string(
        text, static_cast<std::size_t>(std::snprintf(text, sizeof text, format, values...)));
  }

  std::string Weight() {
    const std::array<unsigned, 2> parts = {Below(5000), Below(1000)};
    return Printed("%u.%03u", parts[0], parts[1]);
  }

  std::string Flag() {
    const bool set = OneIn(3);
    if (dialect_ == Dialect::kRowset) return set ? "True" : "False";
    return set ? "true" : "false";
  }

  std::string Date() {
    const std::array<unsigned, 6> parts = {1995 + Below(30), 1 + Below(12), 1 + Below(28),
                                           Below(24),        Below(60),     Below(60)};
    return Printed("%04u-%02u-%02uT%02u:%02u:%02u%s", parts[0], parts[1], parts[2], parts[3],
                   parts[4], parts[5], dialect_ == Dialect::kSchema ? "+08:00" : "");
  }

  std::string Code() {
    const std::array<unsigned, 2> parts = {Below(10'000'000), Below(6)};
    return Printed("DWG-%07u.%c", parts[0], static_cast<int>('A' + parts[1]));
  }

  std::string Title() {
    std::string text(Bytes(kTitles[Below(kTitles.size())]));
    return text.append(" ").append(std::to_string(Below(1000)));
  }

  std::string Remark() {
    std::string text;
    for (unsigned left = 3 + Below(20); left != 0; --left) {
      text.append(Bytes(kWords[Below(kWords.size())])).append(" ");
      if (OneIn(16)) text.append(kEntities[Below(kEntities.size())]).append(" ");
    }
    text.pop_back();
    return text;
  }

  Dialect dialect_;
  std::mt19937_64 engine_;
  unsigned id_ = 0;
};

std::string RowsetHead() {
  std::string text =
      "<xml xmlns:s='urn:s' xmlns:dt='urn:dt' xmlns:rs='urn:rs' xmlns:z='#RowsetSchema'>\n"
      "<s:Schema id='RowsetSchema'>\n"
      "\t<s:ElementType name='row' content='eltOnly'>\n";
  for (const FileColumn& column : kFileColumns) {
    text.append("\t\t<s:AttributeType name='").append(column.name).append("' rs:nullable='true'>");
    text.append("<s:datatype ").append(column.rowset_type).append("/></s:AttributeType>\n");
  }
  return text.append("\t</s:ElementType>\n</s:Schema>\n<rs:data>\n");
}

void AppendRowsetRow(const Row& row, std::string& text) {
  text.append("\t<").append(kRowsetRow);
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (row[i].empty()) continue;
    text.append(" ").append(kFileColumns[i].name).append("='").append(row[i]).append("'");
  }
  text.append("/>\n");
}

std::string SchemaHead() {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<DataSet>\n"
      "  <xs:schema id=\"DataSet\" xmlns:xs=\"urn:xs\" xmlns:msdata=\"urn:msdata\">\n"
      "    <xs:element name=\"";
  text.append(kSchemaRow).append("\" msdata:MainDataTable=\"").append(kSchemaRow);
  text.append("\">\n      <xs:complexType>\n        <xs:sequence>\n");
  for (const FileColumn& column : kFileColumns) {
    text.append("          <xs:element name=\"").append(column.name).append("\" type=\"");
    text.append(column.schema_type).append("\" minOccurs=\"0\" />\n");
  }
  return text.append(
      "        </xs:sequence>\n      </xs:complexType>\n    </xs:element>\n  </xs:schema>\n");
}

void AppendSchemaRow(const Row& row, std::string& text) {
  text.append("  <").append(kSchemaRow).append(">\n");
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (row[i].empty()) continue;
    const std::string_view name = kFileColumns[i].name;
    text.append("    <").append(name).append(">").append(row[i]);
    text.append("</").append(name).append(">\n");
  }
  text.append("  </").append(kSchemaRow).append(">\n");
}

struct Form {
  std::string (*head)();
  void (*append_row)(const Row& row, std::string& text);
  std::string_view tail;
};

Form FormOf(Dialect dialect) {
  if (dialect == Dialect::kRowset) return {RowsetHead, AppendRowsetRow, "</rs:data>\n</xml>\n"};
  return {SchemaHead, AppendSchemaRow, "</DataSet>\n"};
}

}  // namespace

void WriteRecordsetFile(Dialect dialect, const std::string& path, std::uint64_t bytes) {
  constexpr std::size_t kBlock = 0x100000;
  const Form form = FormOf(dialect);
  std::ofstream file(path, std::ios::binary);
  RowMaker rows(dialect);
  std::string block = form.head();
  for (std::uint64_t written = 0; written + block.size() < bytes;) {
    form.append_row(rows.Next(), block);
    if (block.size() < kBlock) continue;
    file << block;
    written += block.size();
    block.clear();
  }
  file << block << form.tail;
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

}  // namespace qv
