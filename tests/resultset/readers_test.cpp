// The two readers on handwritten files: what is easy to get wrong in these formats.
#include "ReadersFixture.h"

namespace qv {
namespace {

Rows NamesOf(const CRvoDbRes& result) {
  Rows names;
  for (int i = 0; i < result.GetFieldCount(); ++i) names.emplace_back(result.GetFiledName(i));
  return names;
}

// Values that both dialects convert alike, with the types of the schema and the rowset dialect.
struct ValueCase {
  const char* schema_type;
  const char* rowset_type;
  std::string value;
  std::string text;
  int display_length;
};

const ValueCase kValues[] = {
    {"boolean", "boolean", "TRUE", "1", 1},
    {"boolean", "boolean", "1", "0", 1},
    {"boolean", "boolean", "True ", "0", 1},
    {"unsignedByte", "ui1", " +300x", "300", 3},
    {"short", "i2", "-70000", "-70000", 6},
    {"int", "int", "-2147483649", "-2147483648", 11},
    {"long", "i8", "9223372036854775807", "2147483647", 10},
    {"int", "int", "abc", "0", 1},
    {"float", "r4", " 1.50 ", "1.50", 4},
    {"double", "float", "2.5", "2.500000", 8},
    {"double", "float", "-1e15", "-1000000000000000.000000", 24},
    {"double", "float", "nan", "nan", 3},
    {"double", "float", "-1e999", "-inf", 4},
    {"double", "float", "-0.0000001", "-0.000000", 9},
    {"double", "float", "0.9999999", "1.000000", 8},
    {"double", "float", "-", "0.000000", 8},
    {"double", "float", " 0x1p4,", "16.000000", 9},
    {"decimal", "number", " 12345678901234.5678", "12345678901234.5678", 19},
    {"dateTime", "dateTime", "2024-01-02T03:04:05.678", "2024-01-02 03:04:05", 14},
    {"dateTime", "dateTime", "2024-12-31 23:59:59", "2024-12-31 23:59:59", 19},
    {"dateTime", "dateTime", "1800-02-03 18:00:00", "1800-02-03 18:00:00", 15},
    {"dateTime", "dateTime", "2024-01-02 03:04:0", "", 0},
    {"dateTime", "dateTime", "2023-02-29 00:00:00", "", 15},
    {"string", "string", " a&#x26;#x3c;b ", "a&#x3c;b", 8},
    {"string", "string", "&#x3c;&#x3e;&#x27;&#x26;&#x22;", "<>'&\"", 5},
    {"string", "string", "&#x3C;&amp;&#x3", "&#x3C;&amp;&#x3", 15},
    {"string", "string", "\t\v&#x26; \r\n\f", "&", 1},
    {"string", "string", "\xd6\xd0\xce\xc4", "\xd6\xd0\xce\xc4", 4},
    {"unknown", "Int", "2.5", "2.5", 3},
};

TEST_F(ReadersTest, ValuesAreConvertedAndMeasured) {
  for (const ValueCase& c : kValues) {
    SCOPED_TRACE(c.schema_type + (" " + c.value));
    CRvoDbRes rowset;
    const std::string head = RowsetHead({"name='a' dt:type='" + std::string(c.rowset_type) + "'"});
    ASSERT_TRUE(Rowset(head + "<z:row a='" + c.value + "'/>", rowset));
    EXPECT_EQ(RowsOf(rowset), Rows{c.text});
    EXPECT_EQ(rowset.GetFiledLength(0), c.display_length);

    CRvoDbRes schema;
    const std::string type = "type='xs:" + std::string(c.schema_type) + "'";
    ASSERT_TRUE(
        Schema(SchemaHead("<xs:element " + type + " name='a'/>") + "<T><a>" + c.value + "</a></T>",
               schema));
    EXPECT_EQ(RowsOf(schema), Rows{c.text});
    EXPECT_EQ(schema.GetFiledLength(0), c.display_length);
  }
}

struct RowsCase {
  const char* what;
  std::string body;
  Rows rows;
};

TEST_F(ReadersTest, RowsetRowsAreScannedByByte) {
  const RowsCase cases[] = {
      {"marker in a value", "<z:row a='x/>y' b='2'/>", {"x/>y|2"}},
      {"the other quote", "<z:row a=\"it's\" b='say \"x\"'/>", {"it's|say \"x\""}},
      {"line break and = in a value", "<z:row a='1\r\n2=3'/>", {"1\r\n2=3|"}},
      {"line break before a name", "<z:row\na='1' b='2'/>", {"|2"}},
      {"tab before a name", "<z:row a='1'\tb='2'/>", {"1|"}},
      {"no blank between", "<z:row a='1'b='2'/>", {"1|2"}},
      {"no blank after the marker", "<z:rowa='1'/>", {"1|"}},
      {"the first of two", "<z:row a='1' a='2' b='' b='2'/>", {"1|"}},
      {"blank before the value", "<z:row a= '1' b='2'/>", {"|2"}},
      {"no quote", "<z:row a=1 b='2'/>", {"|2"}},
      {"doubled =", "<z:row a=='1' b='2'/>", {"|2"}},
      {"slash in a name", "<z:row a/='1' /b='2' b='3'/>", {"|3"}},
      {"unclosed quote", "<z:row b='1' a=\"2/><z:row a='3'/>", {"|1", "3|"}},
      {"quote closed in the next row", "<z:row a='2/><z:row b='3'/>", {"2/><z:row b=|"}},
      {"closed by the end", "<z:row a='1' b='2'", {"1|2"}},
      {"no marker before the next row", "<z:row a='1' <z:row b='2'/>", {"1|2"}},
      {"behind the data", "<z:row a='1'/></rs:data><z:row a='2'/>", {"1|", "2|"}},
      {"no rows", "</rs:data>", {}},
  };
  for (const RowsCase& c : cases) {
    SCOPED_TRACE(c.what);
    CRvoDbRes result;
    ASSERT_TRUE(Rowset(RowsetHead({"name='a'", "name='b'"}) + c.body, result));
    EXPECT_EQ(RowsOf(result), c.rows);
  }
}

TEST_F(ReadersTest, RowsetColumns) {
  const std::string file =
      "<s:ElementType name='row'>"
      "<s:AttributeType name='a'><s:datatype dt:type='int' rs:long='true'/></s:AttributeType>"
      "<s:AttributeType\nname='lost' dt:type='int'></s:AttributeType>"
      "<s:AttributeType name='' dt:type='int'></s:AttributeType>"
      "<s:AttributeType dt:type=\"float\" name=\"a\" dt:type='int'></s:AttributeType>"
      "<s:AttributeType name='&#x3c;'/><s:AttributeType name='swallowed'></s:AttributeType>"
      "</s:ElementType><s:AttributeType name='late'></s:AttributeType>"
      "<rs:data><z:row a='2.5' &#x3c;='y'/>";
  CRvoDbRes result;
  ASSERT_TRUE(Rowset(file, result));
  EXPECT_EQ(NamesOf(result), (Rows{"a", "a", "&#x3c;"}));
  EXPECT_EQ(RowsOf(result), Rows{"2|2.500000|y"});
}

TEST_F(ReadersTest, SchemaRowsAreScannedByByte) {
  const RowsCase cases[] = {
      {"side by side", "<T><a>1</a><b>2</b></T>", {"1|2"}},
      {"apart", "<T>\n <a>1</a>\n <b>2</b>\n</T>", {"1|2"}},
      {"empty rows", "<T/><T><a>1</a></T><T />", {"0|", "1|", "0|"}},
      {"an empty element records nothing", "<T><a></a><b/><a>2</a><b>3</b></T>", {"2|3"}},
      {"the first of two", "<T><a> </a><a>2</a><b>3</b><b>4</b></T>", {"0|3"}},
      {"an element cut off is empty", "<T><b></T>", {"0|"}},
      {"> in a value", "<T><b>x>y/>z</b></T>", {"0|x>y/>z"}},
      {"attributes belong to the name", "<T><a x='1'>1</a><b >2</b></T>", {"0|"}},
      {"attributes of the row", "<T x='1'><a>1</a></T>", {"1|"}},
      {"longer names", "<Tx><a>1</a></Tx><T><a>2</a></T>", {"1|", "2|"}},
      {"a row within a row", "<T><a>1</a><T><b>2</b></T></T>", {"1|2"}},
      {"closed by a marker only", "<T><a>1</a></T><T><a>2</a><b>3/><a>9", {"1|", "2|3"}},
      {"never closed", "<T><a>1</a></T><T><a>2</a>", {"1|"}},
      {"closed by the next row's closing", "<T><a>1</a>\n<T><b>2</b></T>", {"1|2"}},
      {"no rows", "<U><a>1</a></U>", {}},
  };
  for (const RowsCase& c : cases) {
    SCOPED_TRACE(c.what);
    CRvoDbRes result;
    ASSERT_TRUE(Schema(SchemaHead(kIntColumn + "<xs:element name='b'/>") + c.body, result));
    EXPECT_EQ(RowsOf(result), c.rows);
  }
}

TEST_F(ReadersTest, SchemaColumns) {
  const std::string columns =
      "<xs:element type='xs:int' name=\"a\" name='b'/><xs:element\nname='lost' type='xs:int'/>"
      "<xs:element name='x>y'/><xs:element name=''/><xs:element name='a' type='xs:float'/>";
  CRvoDbRes result;
  ASSERT_TRUE(Schema(SchemaHead(columns) + "<xs:element name='late'/><T><a>2.5</a></T>", result));
  EXPECT_EQ(NamesOf(result), (Rows{"a", "a"}));
  EXPECT_EQ(RowsOf(result), Rows{"2|2.5"});
}

TEST_F(ReadersTest, FilesWithoutTheirAnchorsAreRefused) {
  const std::string rowset = RowsetHead({"name='a'"}) + "<z:row a='1'/>";
  for (const std::string anchor : {"<s:ElementType", "</s:ElementType", "<rs:data>"}) {
    std::string file = rowset;
    file.erase(file.find(anchor), 1);
    CRvoDbRes result;
    EXPECT_FALSE(Rowset(file, result)) << anchor;
    EXPECT_EQ(result.GetFieldCount(), anchor == "<rs:data>" ? 1 : 0) << anchor;
  }
  const std::string schema = SchemaHead(kIntColumn) + "<T><a>1</a></T>";
  for (const std::string anchor : {"<xs:schema", "</xs:schema", "name='T'", "msdata:MainDataTable",
                                   "<xs:sequence", "</xs:sequence", "</T>"}) {
    std::string file = schema;
    file.erase(file.find(anchor), 1);
    CRvoDbRes result;
    EXPECT_FALSE(Schema(file, result)) << anchor;
    EXPECT_EQ(result.GetFieldCount(), anchor == "</T>" ? 1 : 0) << anchor;
  }
  CRvoDbRes result;
  EXPECT_FALSE(ReadRowsetFile(folder_.At("none").c_str(), result, temp_files_));
  EXPECT_FALSE(ReadSchemaFile(folder_.At("none").c_str(), result, temp_files_));
}

TEST_F(ReadersTest, ChunksEndAtTheirFirstNul) {
  constexpr std::size_t kChunk = 0x200000;
  std::string file = RowsetHead({"name='a'"}) + "<z:row a='1'/><z:row a='2";
  file += std::string(1, '\0') + "<z:row a='lost'/>";
  file.resize(kChunk, ' ');
  file += "3'/><z:row a='4'";
  // A file with an odd number of bytes loses none of them.
  for (const std::string end : {"", " "}) {
    CRvoDbRes from_file, from_bytes;
    ASSERT_TRUE(Rowset(file + end, from_file));
    EXPECT_EQ(RowsOf(from_file), (Rows{"1", "23", "4"}));
    ASSERT_TRUE(ReadRowset(file + end, from_bytes, temp_files_));
    EXPECT_EQ(RowsOf(from_bytes), (Rows{"1", "23", "4"}));
  }
}

TEST_F(ReadersTest, ASecondReplyJoinsTheFirst) {
  CRvoDbRes result;
  ASSERT_TRUE(Rowset(RowsetHead({"name='a' dt:type='int'"}) + "<z:row a='12345'/>", result));
  ASSERT_TRUE(Schema(SchemaHead("<xs:element name='b'/>") + "<T><a>7</a><b>8</b></T>", result));
  EXPECT_EQ(RowsOf(result), Rows{"7|8"});
  EXPECT_EQ(result["A"] + result["B"], "78");
  ASSERT_TRUE(Rowset(RowsetHead({"name='c'"}) + "<z:row b='9'/><z:row/>", result));
  EXPECT_EQ(ExactRow(result, 0), "null|9|null");
  EXPECT_EQ(ExactRow(result, 1), "null|null|null");
  EXPECT_EQ(result.GetFiledLength(0), 5);
}

TEST_F(ReadersTest, CellsThatTheFileLeavesOutAreNull) {
  CRvoDbRes rowset;
  ASSERT_TRUE(Rowset(RowsetHead({"name='n' dt:type='i8'", "name='d' dt:type='float'", "name='s'",
                                 "name='t' dt:type='dateTime'", "name='b' dt:type='bin.hex'",
                                 "name='f' dt:type='boolean'"}) +
                         "<z:row n='' d='' s='' t='' b='' f=''/><z:row/>"
                         "<z:row f='False' s=' &#x26; ' n='0' d='1e300' n='5'/><z:row n='1' d=2/>",
                     rowset));
  EXPECT_EQ(ExactRow(rowset, 0), "0|0||||0");
  EXPECT_EQ(ExactRow(rowset, 1), "null|null|null|null|null|null");
  EXPECT_EQ(ExactRow(rowset, 2), "0|1e+300| & |null|null|0");
  EXPECT_EQ(ExactRow(rowset, 3), "1|null|null|null|null|null");
}

TEST_F(ReadersTest, EmptyElementsAreNotNull) {
  const RowsCase cases[] = {
      {"in one line", "<T><a></a><b></b></T>", {"0|"}},
      {"closed at once", "<T><a/><b/></T>", {"0|"}},
      {"with blanks", "<T>\n <a />\n <b  />\n</T>", {"0|"}},
      {"before and behind", "<T><b/><a>1</a></T><T><a>1</a><b/></T>", {"1|", "1|"}},
      {"a value later", "<T><b/><b>x</b><a></a><a>2</a></T>", {"2|x"}},
      {"a value before", "<T><b>x</b><b/></T>", {"null|x"}},
      {"not in the next row", "<T><a/></T><T><b></b></T><T/>", {"0|null", "null|", "null|null"}},
      {"attributes belong to the name", "<T><a x='1'/><b x='1'></b></T>", {"null|null"}},
      {"closing tags are none", "<T></a><c></c></b></T>", {"null|null"}},
  };
  for (const RowsCase& c : cases) {
    SCOPED_TRACE(c.what);
    CRvoDbRes result;
    ASSERT_TRUE(Schema(SchemaHead(kIntColumn + "<xs:element name='b'/>") + c.body, result));
    Rows rows;
    for (int row = 0; row < result.GetRecordCount(); ++row) rows.push_back(ExactRow(result, row));
    EXPECT_EQ(rows, c.rows);
  }
}

TEST_F(ReadersTest, RowsetBinaryCellsGetAFileEach) {
  CRvoDbRes result;
  ASSERT_TRUE(Rowset(RowsetHead({"name='a' dt:type='bin.hex'"}) +
                         "<z:row a='4a4B'/><z:row a='004a4'/><z:row a='4'/><z:row a=''/>",
                     result));
  const Rows paths = RowsOf(result);
  ASSERT_EQ(paths.size(), 4U);
  EXPECT_EQ(BytesOf(paths[0]), "J");
  EXPECT_EQ(BytesOf(paths[1]), std::string("\0J", 2));
  EXPECT_TRUE(std::filesystem::exists(paths[2]));
  EXPECT_EQ(BytesOf(paths[2]), "");
  EXPECT_EQ(paths[3], "");
  EXPECT_NE(paths[0], paths[1]);
  EXPECT_TRUE(paths[0].starts_with(folder_.At("cell_"))) << paths[0];
  EXPECT_TRUE(paths[0].ends_with(".bin")) << paths[0];
  EXPECT_EQ(result.GetFiledLength(0), static_cast<int>(paths[0].size()));
}

TEST_F(ReadersTest, SchemaBinaryCellsShareOneFile) {
  const std::pair<std::string, std::string> cases[] = {{"SGVs\n bG8=", "Hello"},
                                                       {"SGVsbG8", "Hello"},
                                                       {"SGVs*bG8=", "Hel"},
                                                       {"SGVsbA==bG8=", "Hell"},
                                                       {"S", ""},
                                                       {" \n", ""},
                                                       {"AP+/", std::string("\0\xff\xbf", 3)}};
  for (const auto& [written, bytes] : cases) {
    CRvoDbRes result;
    ASSERT_TRUE(Schema(SchemaHead("<xs:element name='a' type='xs:base64Binary'/>") +
                           "<T><a>eHl6</a></T><T><a>" + written + "</a></T><T/>",
                       result));
    const std::string path = folder_.At("cell.bin");
    EXPECT_EQ(RowsOf(result), (Rows{path, path, ""})) << written;
    EXPECT_EQ(BytesOf(path), bytes) << written;
  }
}

TEST_F(ReadersTest, ABinaryCellWithoutAFileIsEmpty) {
  std::snprintf(temp_files_.path, sizeof temp_files_.path, "%s", folder_.At("none").c_str());
  CRvoDbRes result;
  ASSERT_TRUE(Rowset(RowsetHead({"name='a' dt:type='bin.hex'"}) + "<z:row a='4a'/>", result));
  EXPECT_EQ(RowsOf(result), Rows{""});
  CRvoDbRes other;
  ASSERT_TRUE(Schema(
      SchemaHead("<xs:element name='a' type='xs:base64Binary'/>") + "<T><a>eHl6</a></T>", other));
  EXPECT_EQ(RowsOf(other), Rows{""});
}

}  // namespace
}  // namespace qv
