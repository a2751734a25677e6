// Tests the commands on groups, users and departments without a network.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "CommandFixture.h"
#include "qvnetcall/standin/Records.h"

namespace qv::standin {
namespace {

class DirectoryTest : public CommandFixture {
 protected:
  void SetUp() override { ASSERT_TRUE(data_.Prepare().Ok()); }

  // Returns the number and the content of each record; "-3" if the reply is a refusal with a text.
  std::string Ask(std::uint32_t command, const std::vector<std::string>& texts = {}) {
    FieldWriter writer;
    for (const std::string& text : texts) writer.Text(text);
    const Reply reply = CommandFixture::Ask(command, writer);
    FieldReader fields(reply.fields.Payload());
    std::string answer = fields.Text().value_or("nothing");
    if (answer == "-3") return fields.Text() ? answer : "-3 without a text";
    const std::size_t records = reply.fields.Payload().size() / sizeof(CZelkorSvrADObjInfo);
    for (std::size_t i = 0; i < records; ++i) {
      CZelkorSvrADObjInfo record;
      const auto* const last = reply.fields.Payload().data() + reply.fields.Payload().size() - 1;
      std::memcpy(record.bytes, last - (records - i) * sizeof record, sizeof record);
      answer += " " + Text(record, records::directory::kName);
    }
    return answer;
  }
};

struct Call {
  std::uint32_t command;
  std::vector<std::string> fields;
  std::string answer;
};

TEST_F(DirectoryTest, Lists) {
  for (const Call& call : std::vector<Call>{
           {6015, {"*"}, "4 administrators designers structural 审图组"},
           {6015, {"D*S"}, "1 designers"},
           {6015, {"审?组"}, "1 审图组"},
           {6015, {"%"}, "0"},
           {6015, {std::string(124, '*')}, "-3"},
           {6016, {"STRUCTURAL"}, "2 wang.wei zhang.lei"},
           {6016, {"*"}, "-3"},
           {6020, {}, "6 admin chen.jing li.na wang.wei zhang.lei zhao.min"},
       }) {
    EXPECT_EQ(Ask(call.command, call.fields), call.answer) << call.command << call.fields.size();
  }
}

TEST_F(DirectoryTest, MakesWhatIsNotThereYet) {
  const std::string longest(123, 'x');
  for (const Call& call : std::vector<Call>{
           {6017, {"40"}, "4"},
           {6017, {"20"}, "2"},
           {6017, {"0"}, "-3"},
           {6017, {"2147483648"}, "0"},
           {6017, {"5x"}, "0"},
           {6018, {"排水组", "7", "4"}, "5"},
           {6018, {longest, "-1", "0"}, "6"},
           {6018, {longest + "x", "0", "0"}, "-3"},
           {6018, {"Designers", "0", "0"}, "-3"},
           {6018, {"g", "0", "99"}, "-3"},
           {6018, {"g", "0"}, "0"},
           {6018, {"a\nb", "0", "0"}, "-3"},
           {6021, {"x'); drop table users;--", "名", "2"}, "-3"},
           {6021, {"x')--", "名", "2"}, "7"},
           {6021, {"LI.NA", "n", "0"}, "-3"},
           {6021, {"dom/li", "n", "0"}, "-3"},
           {6021, {" li", "n", "0"}, "-3"},
           {6021, {"new", longest + "x", "0"}, "-3"},
           {6021, {"new", "n", "3"}, "0"},
           {6015, {"*组"}, "2 审图组 排水组"},
       }) {
    EXPECT_EQ(Ask(call.command, call.fields), call.answer) << call.command << call.fields[0];
  }
}

TEST_F(DirectoryTest, PutsAllUsersIntoAGroupOrNone) {
  for (const Call& call : std::vector<Call>{
           {6019, {"审图组", "D/li.na, LI.NA;; chen.jing ;", "0"}, "2"},
           {6016, {"审图组"}, "2 chen.jing li.na"},
           {6019, {"审图组", "zhao.min,nobody", "0"}, "-3"},
           {6019, {"审图组", "zhao.min,D/", "0"}, "-3"},
           {6019, {"审图组", " ; ", "0"}, "-3"},
           {6019, {"nothing", "admin", "0"}, "-3"},
           {6019, {"审图组", "admin"}, "0"},
           {6016, {"审图组"}, "2 chen.jing li.na"},
       }) {
    EXPECT_EQ(Ask(call.command, call.fields), call.answer) << call.fields.back();
  }
  std::string many;
  for (int i = 0; i < 10'001; ++i) many += "admin,";
  EXPECT_EQ(Ask(6019, {"审图组", many, "0"}), "-3");
  time_ = {};
  EXPECT_EQ(Ask(6019, {"审图组", "admin", "0"}), "0");
}

TEST_F(DirectoryTest, AnswersZeroWithoutFieldsOrWithoutItsFile) {
  for (const std::uint32_t command : {6015U, 6016U, 6017U, 6018U, 6019U, 6021U}) {
    EXPECT_EQ(Ask(command), "0") << command;
  }
  folder_.Write("directory.sqlite", "no database");
  EXPECT_EQ(Ask(6020), "0");
  std::filesystem::remove(folder_.Path() / "directory.sqlite");
  EXPECT_EQ(Ask(6020), "0");
}

}  // namespace
}  // namespace qv::standin
