// Tests databases.json: its settings, the errors that stop the server, and what clients can see of
// it.
#include "tools/qvstandin/databases/DatabaseSettings.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "CommandFixture.h"
#include "base/platform/Folder.h"
#include "base/platform/Platform.h"

namespace qv::standin {
namespace {

using testing::HasSubstr;
using testing::Not;

class DatabaseSettingsTest : public CommandFixture {
 protected:
  std::string Write(const std::string& text) const {
    const std::string file = folder_.At("databases.json");
    const platform::FilePtr stream(platform::CreatePrivateFile(file, platform::Create::kAlways));
    EXPECT_EQ(std::fwrite(text.data(), 1, text.size(), stream.get()), text.size());
    return file;
  }

  DatabaseSettingsByName settings_;
};

TEST_F(DatabaseSettingsTest, AnyOrNoneOfTheTextsMayBeThere) {
  EXPECT_TRUE(ReadDatabaseSettings(folder_.At("none"), settings_).Ok());
  const std::string file =
      Write(R"({"A": {"odbc": "Driver=x", "connection_text": "图"}, "b-1": {}})");
  const Outcome outcome = ReadDatabaseSettings(file, settings_);
  ASSERT_TRUE(outcome.Ok()) << outcome.text;
  ASSERT_EQ(settings_.size(), 2U);
  EXPECT_EQ(settings_["A"].odbc, "Driver=x");
  EXPECT_EQ(settings_["A"].connection_text, "图");
  EXPECT_EQ(settings_["b-1"].odbc, "");
}

TEST_F(DatabaseSettingsTest, AFailureNamesTheFileAndThePlaceAndShowsNoText) {
  const std::string too_long(4097, 'x');
  const std::pair<std::string, std::string> cases[] = {
      {"", "line 1"},
      {"{\"A\":\n{\"odbc\": \"Pwd=secret}}", "line 2"},
      {"{\"A\": {\"odbc\": \"Pwd=secret\xff\"}}", "line 1"},
      {"[1e999]", "out of range"},
      {"[]", "not a JSON object"},
      {R"({"A": "Pwd=secret"})", "A is not an object"},
      {R"({"../A": {}})", "\"../A\" is not a valid name"},
      {R"({"A\n": {}})", "\"A\\x0a\" is not a valid name"},
      {R"({"A": {"Odbc": "Pwd=secret"}})", "A: there is no setting \"Odbc\""},
      {R"({"A": {"odbc": 1}})", "A: odbc is not a text"},
      {R"({"A": {"connection_text": ""}})", "A: connection_text must have 1 to 4096"},
      {R"({"A": {"odbc": ")" + too_long + "\"}}", "A: odbc must have 1 to 4096"},
      {R"({"A": {"odbc": "Pwd=secret\u0000"}})", "NUL"},
      {std::string((1 << 20) + 1, ' '), "too large"}};
  for (const auto& [text, complaint] : cases) {
    const std::string file = Write(text);
    const Outcome outcome = ReadDatabaseSettings(file, settings_);
    EXPECT_FALSE(outcome.Ok()) << text.substr(0, 80);
    EXPECT_THAT(outcome.text,
                testing::AllOf(HasSubstr(file), HasSubstr(complaint), Not(HasSubstr("secret"))));
  }
}

TEST_F(DatabaseSettingsTest, AFileThatOthersCanReadIsRefused) {
  const std::string file = Write("{}");
  std::filesystem::permissions(file, std::filesystem::perms(0640));
  EXPECT_THAT(ReadDatabaseSettings(file, settings_).text, HasSubstr("only its owner"));
  EXPECT_FALSE(ReadDatabaseSettings(folder_.At(), settings_).Ok());
}

TEST_F(DatabaseSettingsTest, ClientsGetTheTextThatIsMeantForThem) {
  Write(R"({"DESIGNDB": {"odbc": "Driver=none", "connection_text": "Driver=x;Database=设计"}})");
  ASSERT_TRUE(data_.Prepare().Ok());
  EXPECT_FALSE(std::filesystem::exists(folder_.Path() / "db" / "DESIGNDB.sqlite"));
  EXPECT_TRUE(std::filesystem::exists(folder_.Path() / "db" / "PLATDB.sqlite"));
  const auto ask = [&](const std::string& name) {
    FieldWriter request;
    if (!name.empty()) request.Text(name);
    const Reply reply = Ask(710, request);
    FieldReader fields(reply.fields.Payload());
    return std::pair<std::string, std::string>{fields.Text().value_or(""),
                                               fields.Text().value_or("(none)")};
  };
  EXPECT_THAT(ask("DESIGNDB"), testing::Pair("1", "Driver=x;Database=设计"));
  for (const char* name : {"PLATDB", "designdb", "../DESIGNDB"}) {
    EXPECT_THAT(ask(name), testing::Pair("0", "(none)")) << name;
  }
  EXPECT_EQ(ask("").first, "FAILURE");
}

}  // namespace
}  // namespace qv::standin
