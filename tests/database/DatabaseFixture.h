// What the tests of the database calls share: a scripted server with a settings row and one answer.
#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/platform/Platform.h"
#include "qvnetcall/RvoDatabase.h"
#include "tests/support/ModuleTest.h"
#include "tests/support/Shape.h"

namespace qv::test {

// Returns a rowset with one text column per name and two rows, for the socket server: the given
// values, and a row of ones.
inline std::string Rowset(const std::vector<std::pair<std::string, std::string>>& row) {
  std::string schema;
  std::string cells;
  std::string ones;
  for (const auto& [name, value] : row) {
    schema +=
        "<s:AttributeType name='" + name + "'><s:datatype dt:type='string'/></s:AttributeType>";
    cells += " " + name + "='" + value + "'";
    ones += " " + name + "='1'";
  }
  return "<xml><s:Schema><s:ElementType name='row'>" + schema +
         "</s:ElementType></s:Schema><rs:data><z:row" + cells + "/><z:row" + ones +
         "/></rs:data></xml>";
}

// The same for the web server.
inline std::string DataSet(const std::string& name, const std::string& value) {
  return "<xs:schema><xs:element name=\"Row\" msdata:MainDataTable=\"Row\"><xs:sequence>"
         "<xs:element name=\"" +
         name +
         "\" type=\"xs:string\"/></xs:sequence></xs:element></xs:schema>"
         "<Row><" +
         name + ">" + value + "</" + name + "></Row>";
}

class FakeLocalDatabase : public LocalDatabase {
 public:
  int Open(const char* database, const char* connection) override {
    log += std::string("open ") + database + " " + connection + ";";
    return 1;
  }
  int Close(const char* database) override {
    log += std::string("close ") + database + ";";
    return 1;
  }
  int Select(const CString& sql, CRvoDbRes& rows, const char* database) override {
    log += std::string("select ") + database + " " + static_cast<const char*>(sql) + ";";
    if (!answer.empty()) CRvoDatabase::ReadFromXmlFile(answer.c_str(), &rows, {});
    return result;
  }
  int Execute(const CString& sql, const char* database) override {
    log += std::string("execute ") + database + " " + static_cast<const char*>(sql) + ";";
    return result;
  }
  std::string log;
  std::string answer;  // the rowset that queries return, if not empty
  int result = 0;
};

struct Settings {
  std::string cache = "0";
  std::string compress = "0";
  std::string select_default = "0";
  std::string display_default = "0";
  std::string domain = "0";
};

class DatabaseFixture : public ModuleTest {
 protected:
  DatabaseFixture() {
    UseServerType("TCP_IP");
    std::filesystem::create_directory(folder_.Path() / "temp");
    CRvoDatabase::SetFileTempInfo(folder_.At("temp/").c_str(), "bin", "dat");
    answer_ = Memory(Rowset({{"A", "from server"}}));
    transport_.handler = [this](const SentRequest& request, ScriptedReply& reply) {
      if (!IsSettings(request)) {
        reply = answer_;
        return answer_result_;
      }
      reply = settings_answer_.value_or(Memory(SettingsRow()));
      return settings_result_;
    };
  }

  static ScriptedReply Memory(const std::string& file, const char* status = "SUCCESS") {
    return ScriptedReply().Text(status).Number(1).Text("MEMORY").Text(file);
  }
  static bool IsSettings(const SentRequest& request) {
    return !request.fields.empty() && request.fields[0] == "PLATDB";
  }

  // Checks what all requests for queries have in common.
  void ExpectQuery(const SentRequest& request) const {
    EXPECT_EQ(request.server, "main");
    EXPECT_EQ(request.port, 4000u);
    EXPECT_EQ(request.command, 200u);
    EXPECT_EQ(request.message_flag, 0);
    EXPECT_EQ(request.request_block, 0x100000u);
    EXPECT_EQ(request.reply_block, 0x100000u);
    EXPECT_THAT(request.reply_file_name,
                EndsInShape("TempClient_" + std::string(kGuidShape) + ".txt"));
    EXPECT_THAT(request.reply_file_name, testing::StartsWith(folder_.At("temp")));
    EXPECT_EQ(request.reply_file_flag, 0);
  }

  std::string SettingsRow() const {
    return Rowset({{"CI_ServerSetCache", settings_.cache},
                   {"CI_ServerCompress", settings_.compress},
                   {"CI_DefaultSelectCompress", settings_.select_default},
                   {"CI_DefaultDisplayCompress", settings_.display_default},
                   {"CI_DefaultDisplayDomain", settings_.domain}});
  }
  void OpenCache() { ASSERT_EQ(CRvoServer::SetCachePath(folder_.At("cache").c_str()), 1); }
  // Returns the text of the first cell, or "result N".
  std::string Select(int use_cache = 0, const CString& sql = "select 1") {
    CRvoDbRes result;
    const int code = CRvoDatabase::SelectSQL(&sql, &result, "DESIGNDB", use_cache);
    if (code != 0) return "result " + std::to_string(code);
    return static_cast<const char*>(result._str(0, 0));
  }
  std::vector<std::string> TempFiles() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "temp")) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }
  // Returns the commands sent for queries, except that of the settings.
  std::vector<std::uint32_t> QueryCommands() const {
    std::vector<std::uint32_t> commands;
    for (const SentRequest& request : transport_.requests) {
      if (!IsSettings(request)) commands.push_back(request.command);
    }
    return commands;
  }

  Settings settings_;
  ScriptedReply answer_;
  int answer_result_ = 0;
  std::optional<ScriptedReply> settings_answer_;  // instead of a row of `settings_`
  int settings_result_ = 0;
};

}  // namespace qv::test
