#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "qvnetcall/standin/Records.h"
#include "tests/support/ScriptedTransport.h"
#include "tests/support/TempFolder.h"
#include "tools/qvcall/files/FileCommands.h"

namespace {

namespace fs = std::filesystem;
using qv::test::ScriptedReply;
using qv::test::ScriptedTransport;
using qv::test::SentRequest;
using Names = std::vector<std::string>;

template <class Record>
std::string WithName(qv::records::Field field, const std::string& name) {
  Record record{};
  EXPECT_TRUE(qv::records::SetText(record, field, name));
  return {reinterpret_cast<const char*>(record.bytes), sizeof record};
}

std::string FileRecord(const std::string& name) {
  return WithName<CZelkorSvrFileInfo>(qv::records::file::kName, name);
}

// A server whose listings, files and results each test chooses.
class FileCommands : public testing::Test {
 protected:
  FileCommands() {
    ScriptedTransport::Get().Reset();
    ScriptedTransport::Get().handler = [this](const SentRequest& request, ScriptedReply& reply) {
      Answer(request, reply);
      return 0;
    };
  }

  template <class Command>
  int Run(const Command& command) {
    out_.str("");
    err_.str("");
    return qv::tool::Run(connection_, command, out_, err_);
  }
  int Fetch(std::vector<std::string> server, bool recursive = true) {
    return Run(qv::tool::GetFiles{std::move(server), Here("got"), recursive});
  }
  std::string Here(const std::string& name) const { return (folder_.Path() / name).string(); }
  // Returns everything in the test's folder, folders with "/" at the end.
  std::set<std::string> Tree() const {
    std::set<std::string> tree;
    for (const auto& entry : fs::recursive_directory_iterator(folder_.Path())) {
      tree.insert(entry.path().lexically_relative(folder_.Path()).string() +
                  (entry.is_directory() ? "/" : ""));
    }
    return tree;
  }
  std::size_t Sent(std::uint32_t command) const {
    const auto& requests = ScriptedTransport::Get().requests;
    return static_cast<std::size_t>(
        std::count_if(requests.begin(), requests.end(),
                      [&](const SentRequest& request) { return request.command == command; }));
  }

  const qv::TempFolder folder_;
  const qv::tool::ConnectionOptions connection_{.server = "main", .port = 4000};
  std::map<std::string, Names> folders_;  // by the path of the folder above
  std::map<std::string, Names> files_;
  std::uint64_t hidden_ = 0;  // the folders' flags
  bool too_many_ = false;     // files to list
  std::string status_ = "SUCCESS";
  std::string checksum_ = "00000000";
  std::ostringstream out_;
  std::ostringstream err_;

 private:
  void Answer(const SentRequest& request, ScriptedReply& reply) {
    const std::string path = request.fields.empty() ? "" : request.fields[0];
    switch (request.command) {
      case 6001:
        return AnswerFolders(path, reply);
      case 6029:
        return AnswerPage(request, reply);
      case 101:
      case 131:
        if (status_ == "SUCCESS") std::ofstream(request.reply_file_name) << "new";
        [[fallthrough]];
      case 100:
        reply.Text(status_);
        return;
      case 6032:
        reply.Text("1").Text(checksum_).Number(3);
        return;
      default:
        reply.Text("0");
    }
  }
  void AnswerFolders(const std::string& path, ScriptedReply& reply) {
    const Names& names = folders_[path];
    std::string records;
    for (const std::string& name : names) {
      records += WithName<CZelkorSvrFolderInfo>(qv::records::folder::kName, name);
      records[records.size() - sizeof(CZelkorSvrFolderInfo) + qv::records::folder::kFlags.offset] =
          static_cast<char>(hidden_);
    }
    reply.Text(std::to_string(names.size())).Text(records);
  }
  void AnswerPage(const SentRequest& request, ScriptedReply& reply) {
    // An empty path is not sent.
    const std::size_t count = request.fields.size();
    const Names& names = files_[count == 6 ? request.fields[0] : ""];
    std::string records;
    for (std::size_t i = NumberIn(request.fields[count - 2]);
         i < names.size() && i <= NumberIn(request.fields[count - 1]); ++i) {
      records += FileRecord(names[i]);
    }
    const std::size_t number = too_many_ ? 100'001 : names.size();
    reply.Text(std::to_string(number)).Text(std::to_string(records.size())).Text(records);
  }
  static std::size_t NumberIn(const std::string& field) {
    std::int32_t number = 0;
    std::memcpy(&number, field.data(), sizeof number);
    return static_cast<std::size_t>(number);
  }
};

TEST_F(FileCommands, WriteNothingOutsideTheFolderWhateverAServerCallsItsFiles) {
  fs::create_directories(Here("got/top"));
  fs::create_directory(Here("elsewhere"));
  fs::create_directory_symlink(Here("elsewhere"), Here("got/top/link"));
  folders_[""] = {"top"};
  folders_["top"] = {"..", "a/b", "link", "图\x1b[2J", "sub"};
  files_["top"] = {"../out", "..\\out", "/etc", "C:x", "ok", "..", "a\nb", "图.dwg"};
  for (const char* folder : {"top\\..", "top\\a/b", "top\\link", "top\\sub"}) {
    files_[folder] = {"inside"};
  }
  EXPECT_EQ(Fetch({"top"}), qv::tool::kFailed);
  EXPECT_EQ(Tree(),
            (std::set<std::string>{"elsewhere/", "got/", "got/top/", "got/top/link/", "got/top/ok",
                                   "got/top/sub/", "got/top/sub/inside", "got/top/图.dwg"}));
  EXPECT_EQ(err_.str().find('\x1b'), std::string::npos);
  EXPECT_NE(err_.str().find("10 failed"), std::string::npos) << err_.str();
}

TEST_F(FileCommands, LeaveALocalFileAsItIsWhenItsDownloadFails) {
  folder_.Write("got", "");
  EXPECT_EQ(Fetch({"a"}), qv::tool::kFailed);
  fs::remove(Here("got"));
  fs::create_directory(Here("got"));
  folder_.Write("got/a", "old");
  files_[""] = {"a"};
  folders_[""] = {"top"};
  files_["top"] = {"a", "b"};
  status_ = "FAILURE";
  EXPECT_EQ(Run(qv::tool::GetById{{7, "a"}, Here("got")}), qv::tool::kFailed);
  EXPECT_EQ(Fetch({""}), qv::tool::kFailed);
  status_ = "SUCCESS";
  EXPECT_EQ(Run(qv::tool::GetById{{7, "a"}, Here("got")}), qv::tool::kFailed);  // wrong checksum
  EXPECT_EQ(qv::BytesOf(Here("got/a")), "old");
  EXPECT_EQ(Tree(), (std::set<std::string>{"got/", "got/a", "got/top/"}));
  checksum_ = "6BE34445";
  EXPECT_EQ(Run(qv::tool::GetById{{7, "a"}, Here("got")}), qv::tool::kDone);
  EXPECT_NE(err_.str().find("checksum ok"), std::string::npos) << err_.str();
  EXPECT_EQ(qv::BytesOf(Here("got/a")), "new");
}

TEST_F(FileCommands, ListLargeFoldersInPagesAndSpellOutWhatATerminalWouldObey) {
  folders_["top"] = {"z", "a"};
  for (int i = 0; i < 4001; ++i) files_["top"].push_back("f" + std::to_string(i));
  files_["top"].back() = "\x1b[2J";
  EXPECT_EQ(Run(qv::tool::ListFolder{"top", "", false}), qv::tool::kDone);
  EXPECT_EQ(out_.str().substr(0, 9), "a\\\nz\\\nf0\n");
  EXPECT_NE(out_.str().find("\nf3999\n\\x1b[2J\n"), std::string::npos);
  EXPECT_EQ(Sent(6029), 2);
  files_["top"] = {"a", "", "b"};  // like an incomplete listing
  EXPECT_EQ(Run(qv::tool::ListFolder{"top", "", false}), qv::tool::kFailed);
  EXPECT_EQ(Run(qv::tool::ListFolder{"none", "", false}), qv::tool::kFailed);
  // Folders that exist, but are too many for the server to list.
  folders_[""] = {"many"};
  files_["many"] = {"a"};
  hidden_ = qv::records::folder::kHasFolders;
  EXPECT_EQ(Run(qv::tool::ListFolder{"many", "", false}), qv::tool::kFailed);
  fs::create_directory(Here("got"));
  EXPECT_EQ(Fetch({"many"}), qv::tool::kFailed);
  hidden_ = 0;
  EXPECT_EQ(Run(qv::tool::ListFolder{"many", "", false}), qv::tool::kDone);
  files_["many"].clear();
  too_many_ = true;
  EXPECT_EQ(Run(qv::tool::ListFolder{"many", "", false}), qv::tool::kFailed);
  EXPECT_EQ(Fetch({"many"}), qv::tool::kFailed);
  too_many_ = false;
  folders_["many"] = {"", ""};
  EXPECT_EQ(Run(qv::tool::ListFolder{"many", "", false}), qv::tool::kFailed);
  EXPECT_EQ(Fetch({"many"}), qv::tool::kFailed);
}

TEST_F(FileCommands, SendWhatCanBeSentAndSayWhatCannot) {
  fs::create_directories(Here("up/sub"));
  folder_.Write("up/a", "1");
  folder_.Write("up/sub/b", "2");
  folder_.Write("up/sub/c\\d", "3");
  fs::create_directory_symlink(Here("up"), Here("up/sub/loop"));
  fs::create_symlink(Here("up/a"), Here("up/sub/link"));
  folders_[""] = {"to"};
  folders_["to"] = {"up"};
  folders_["to\\up"] = {"sub"};
  EXPECT_EQ(Run(qv::tool::PutFiles{{Here("up"), Here("none")}, "to", true}), qv::tool::kFailed);
  Names sent;
  for (const SentRequest& request : ScriptedTransport::Get().requests) {
    if (request.command == 100) sent.emplace_back(request.name_field.c_str());
  }
  EXPECT_EQ(sent, (Names{"to\\up\\a", "to\\up\\sub\\b", "to\\up\\sub\\link"}));
  EXPECT_NE(err_.str().find("3 failed"), std::string::npos) << err_.str();
  EXPECT_EQ(Run(qv::tool::PutFiles{{Here("up")}, "to", false}), qv::tool::kFailed);
  EXPECT_EQ(Run(qv::tool::PutFiles{{Here("up/a")}, "nowhere", false}), qv::tool::kFailed);
  EXPECT_EQ(Sent(100), 3);
}

TEST_F(FileCommands, LeaveOutWhatWouldOverwriteAnotherOfThem) {
  fs::create_directories(Here("got"));
  folder_.Write("a", "1");
  folder_.Write("got/a", "2");
  folders_[""] = {"to"};
  files_["to"] = {"b", "b"};
  EXPECT_EQ(Run(qv::tool::PutFiles{{Here("a"), Here("got/a")}, "to", false}), qv::tool::kFailed);
  EXPECT_EQ(Sent(100), 1);
  EXPECT_EQ(Fetch({"to"}), qv::tool::kFailed);
  EXPECT_EQ(Sent(101), 1);
}

}  // namespace
