// The exact bytes of every request.
#include "CallsFixture.h"
#include "message/LittleEndian.h"

namespace qv::test {
namespace {

constexpr std::uint32_t kSmall = 1024;
constexpr std::uint32_t kRequest = 10240;
constexpr std::uint32_t kReply = 512000;
constexpr std::uint32_t kMebibyte = 1048576;

struct Sent {
  std::uint32_t command;
  std::uint32_t request_block = kRequest;
  std::uint32_t reply_block = kReply;
  std::string payload = {};
  std::string name_field = {};  // without the zeros after it
  int message_flag = 1;
  std::string file = {};
  std::string reply_file = {};
};

struct Case {
  std::function<void()> call;
  Sent sent;
};

// A request as most calls send it: fields, and nothing in the header.
Sent Texts(std::uint32_t command, std::initializer_list<const char*> fields,
           std::uint32_t reply_block = kReply) {
  Fields all;
  for (const char* const field : fields) all.Text(field);
  return {command, kRequest, reply_block, all.Payload()};
}

std::string IdName(std::string name, int id) {
  name.resize(252);
  name.resize(256);
  StoreU32(name.data() + 252, static_cast<std::uint32_t>(id));
  return name;
}

std::string WithoutEnd(std::string bytes) {
  while (!bytes.empty() && bytes.back() == '\0') bytes.pop_back();
  return bytes;
}

class Requests : public Calls {
 protected:
  // Only the log asks for the server's kind; all calls use the socket.
  Requests() { CRvoServer::SetServerType("WEB_IIS", "main", 4000); }

  void Expect(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::to_string(c.sent.command) + " " + std::to_string(&c - &cases[0]));
      transport_.requests.clear();
      c.call();
      ASSERT_EQ(transport_.requests.size(), 1u);
      const SentRequest& request = transport_.requests[0];
      EXPECT_FALSE(request.web);
      EXPECT_EQ(request.server + ":" + std::to_string(request.port), "main:4000");
      EXPECT_EQ(request.command, c.sent.command);
      EXPECT_EQ(request.request_block, c.sent.request_block);
      EXPECT_EQ(request.reply_block, c.sent.reply_block);
      EXPECT_EQ(request.payload, c.sent.payload);
      EXPECT_EQ(WithoutEnd(request.name_field), WithoutEnd(c.sent.name_field));
      EXPECT_EQ(request.message_flag, c.sent.message_flag);
      EXPECT_EQ(request.file_name, c.sent.file);
      EXPECT_EQ(request.reply_file_name, c.sent.reply_file);
      // 1 is also the initial value; with a path it says that a file is transferred.
      EXPECT_EQ(request.file_flag, 1);
      EXPECT_EQ(request.reply_file_flag, 1);
    }
  }
};

TEST_F(Requests, OfFilesByPathAndByIdentifier) {
  const std::string absent = folder_.At("absent");
  const char* const local = absent.c_str();
  const std::string long_name(300, 'n');
  const auto small = [](std::uint32_t code, const std::string& name, int flag = 1,
                        const std::string& file = "", const std::string& reply_file = "") {
    return Sent{code, kSmall, kSmall, "", name, flag, file, reply_file};
  };
  const auto identified = [](std::uint32_t code, const Fields& fields) {
    return Sent{code, kRequest, kRequest, fields.Payload()};
  };
  const auto copied = [](const Fields& fields) {
    return Sent{140, kMebibyte, kMebibyte, fields.Payload(), "", 0};
  };
  Expect({
      {[&] { CRvoFile::UpLoadFileToServer(local, "a\\b"); }, small(100, "a\\b", 0, absent)},
      {[&] { CRvoFile::DownLoadServerFile(local, "a\\b"); }, small(101, "a\\b", 0, "", absent)},
      {[&] { CRvoFile::DeleteServerFile(long_name.c_str()); },
       small(700, long_name.substr(0, 255))},
      {[&] { CRvoIdFile::UpLoadFileToServerByFileID(local, "n", 7); },
       small(130, IdName("n", 7), 0, absent)},
      {[&] { CRvoIdFile::DownLoadServerFileByFileID(local, long_name.c_str(), 0x01020304); },
       small(131, IdName(long_name.substr(0, 251), 0x01020304), 0, "", absent)},
      {[] { CRvoIdFile::DeleteServerFileByFileID("n", 0); }, small(730, IdName("n", 0))},
      {[] { CRvoIdFile::DeleteServerFileByFileID("n", -1); }, small(730, "")},
      {[] { CRvoIdFile::CopyIdFile(1, "from", 2, "to"); },
       copied(Fields().Number(1).Text("from").Number(2).Text("to"))},
      {[] { CRvoIdFile::CopyIdFile(-1, "", 2, nullptr); }, copied(Fields().Number(-1).Number(2))},
      {[] { CRvoIdFile::IsIdFileExist("n", 9); },
       {150, kSmall, kSmall, Fields().Number(9).Text("n").Payload()}},
      {[&] { CRvoFile::GetFileInfor("a\\b", &info_); }, Texts(6007, {"a\\b"})},
      {[] { CRvoFile::CopyOneFile("a", "b"); }, Texts(6011, {"a", "b"})},
      {[] { CRvoFile::RenOneFile("a", "b"); }, Texts(6005, {"a", "b"})},
      {[&] { CRvoIdFileEx::GetIDFileCRC("n", 5, text_, value_, error_); },
       identified(6032, Fields().Text("n").Number(5))},
      {[&] { CRvoIdFileEx::GetPackFileCRC("p", "n", 5, text_, value_, error_); },
       identified(6031, Fields().Text("p").Text("n").Number(5))},
      {[&] { CRvoIdFileEx::GetIDFileSavePath("n", 5, text_, error_); },
       identified(6033, Fields().Text("n").Number(5))},
      {[&] { CRvoIdFileEx::CopyPackFileToIdFile("p", "n", 1, "t", 2, error_); },
       identified(6030, Fields().Text("p").Text("n").Number(1).Text("t").Number(2))},
  });
}

TEST_F(Requests, OfFolders) {
  const auto page = [](const char* pattern, const char* flag, int option, int from, int to) {
    const Fields texts = Fields().Text("f").Text(pattern).Text(flag);
    return Sent{6029, kRequest, kMebibyte,
                Fields(texts).Number(option).Number(from).Number(to).Payload()};
  };
  Expect({
      {[&] { CRvoFolder::GetChildFolderInfo(count_, "f"); }, Texts(6001, {"f"}, kMebibyte)},
      {[&] { CRvoFolder::GetMatchFilesInFolder("f", "*.dwg", count_, -2); },
       Texts(6002, {"f", "*.dwg", "1"})},
      {[&] { CRvoFolder::GetFilesInFolder("f", count_, 0); }, Texts(6002, {"f", "*.*", "0"})},
      // An empty text is left out.
      {[&] { CRvoFolder::GetFilesInFolder("", count_, 0); }, Texts(6002, {"*.*", "0"})},
      {[] { CRvoFolder::NewOneFolder("f"); }, Texts(6003, {"f"})},
      {[] { CRvoFolder::DelOneFolder("f"); }, Texts(6004, {"f"})},
      {[] { CRvoFolder::RenOneFolder("f", "g"); }, Texts(6005, {"f", "g"})},
      {[&] { CRvoFolderEx::GetMatchFilesInFolderEx("f", "?", count_, 1, 3, 5, 5, &buffer_); },
       page("?", "1", 3, 5, 5)},
      {[&] { CRvoFolderEx::GetFilesInFolderEx("f", count_, 0, 0, 10, -1, &buffer_); },
       page("*.*", "0", 0, 10, -1)},
  });
  transport_.requests.clear();
  const struct {
    int option, from, to;
  } outside[] = {{-1, 0, 0}, {0, -1, 0}, {0, 10, 5}, {0, 0, -2}};
  for (const auto& [option, from, to] : outside) {
    count_ = 77;
    EXPECT_EQ(CRvoFolderEx::GetFilesInFolderEx("f", count_, 0, option, from, to, &buffer_), 0);
    EXPECT_EQ(count_, 0);
  }
  EXPECT_TRUE(transport_.requests.empty());
}

TEST_F(Requests, OfTheDirectoryAndTheServer) {
  Expect({
      {[&] { CRvoAd::GetADGroupInfo("k", count_); }, Texts(6015, {"k"})},
      {[&] { CRvoAd::GetADGroupUserInfo("g", count_); }, Texts(6016, {"g"})},
      {[] { CRvoAd::CreateADDepart(-5); }, Texts(6017, {"-5"})},
      {[] { CRvoAd::AddADGroup("g", 1, 2); }, Texts(6018, {"g", "1", "2"})},
      {[] { CRvoAd::AddADGroupUsers("g\\h", "d\\u,\xB0\\v", 0); },
       Texts(6019, {"g\\h", "d/u,\xB0/v", "0"})},  // byte by byte
      {[&] { CRvoAd::GetADUserInfo(count_); }, Texts(6020, {})},
      {[] { CRvoAd::AddADUser("a", "b", 2); }, Texts(6021, {"a", "b", "2"})},
      {[&] { CRvoServer::GetQvNetExeInfo(&exe_); }, Texts(6008, {})},
      {[&] { CRvoServer::GetSubStoreInfo(count_, "s"); }, Texts(6009, {"s"})},
      {[] { CRvoServer::GetDBConnString("d"); }, Texts(710, {"d"})},
  });
  CRvoServer::SetServerType("TCP_IP", "main", 4000);
  const auto log = [](const Fields& fields) { return Sent{4, kRequest, kReply, fields.Payload()}; };
  Expect({
      {[] { CRvoServer::SendSvrLogInfo(3, "line"); }, log(Fields().Number(3).Text("line"))},
      {[] { CRvoServer::SendSvrLogInfo(3, ""); }, log(Fields().Number(3))},
  });
  transport_.requests.clear();
  for (const int mode : {-1, 3}) EXPECT_EQ(CRvoAd::AddADUser("a", "b", mode), 0);
  EXPECT_TRUE(transport_.requests.empty());
}

TEST_F(Requests, CutTheLogAtWholeCharacters) {
  const struct {
    std::string text;
    std::size_t sent;
  } cases[] = {
      {"\x81", 1},  // short ones are sent as they are
      {std::string(10238, 'x'), 10238},
      {std::string(10238, 'x') + "\xB0", 10238},
      {std::string(10239, 'x'), 10239},
      {std::string(10240, 'x'), 10239},
      {std::string(10238, 'x') + "\xB0\xA1", 10238},        // its first half would be last
      {std::string(10237, 'x') + "\xB0\xA1", 10239},        // its second half does
      {std::string(10237, 'x') + "\xB0\xA1" + "y", 10239},  // looks like a first half, is none
      {std::string(10238, 'x') + "\x80" + "y", 10239},      // no first half
      {std::string(10238, 'x') + "\xFF" + "y", 10239},
      {std::string(10238, 'x') + "\x81" + "y", 10238},
      {std::string(10238, 'x') + "\xFE" + "y", 10238},
  };
  CRvoServer::SetServerType("TCP_IP", "main", 4000);
  for (const auto& [text, sent] : cases) {
    transport_.requests.clear();
    CRvoServer::SendSvrLogInfo(1, text.c_str());
    ASSERT_EQ(transport_.requests.size(), 1u);
    EXPECT_EQ(transport_.requests[0].fields.at(1), text.substr(0, sent));
  }
  transport_.requests.clear();
  CRvoServer::SetServerType("web_iis", "main", 4000);
  EXPECT_EQ(CRvoServer::SendSvrLogInfo(1, "x"), 0);
  EXPECT_TRUE(transport_.requests.empty());
}

}  // namespace
}  // namespace qv::test
