// The exact bytes of every request.
#include <cstring>
#include <functional>

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
  std::string name_field = {};  // without the zeros behind it
  int message_flag = 1;
  std::string file = {};
  std::string reply_file = {};
};

struct Case {
  const char* name;
  std::function<void()> call;
  Sent sent;
};

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
  // Only the log asks for the server's kind; all go over the socket.
  Requests() { CRvoServer::SetServerType("WEB_IIS", "main", 4000); }

  void Expect(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.name);
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
      // 1 is also how a message starts; with a path it says that the file travels.
      EXPECT_EQ(request.file_flag, 1);
      EXPECT_EQ(request.reply_file_flag, 1);
    }
  }

  int count_ = 0;
  int value_ = 0;
  CString text_;
  CString error_;
  CZelkorSvrFileInfo info_{};
  CQvRvoBuf buffer_;
};

TEST_F(Requests, OfFilesByPathAndByIdentifier) {
  const std::string absent = (folder_.Path() / "absent").string();
  const char* const local = absent.c_str();
  const std::string long_name(300, 'n');
  const auto small = [](std::uint32_t code, const std::string& name, int flag = 1,
                        const std::string& file = "", const std::string& reply_file = "") {
    return Sent{code, kSmall, kSmall, "", name, flag, file, reply_file};
  };
  Expect({
      {"upload", [&] { CRvoFile::UpLoadFileToServer(local, "a\\b"); },
       small(100, "a\\b", 0, absent)},
      {"download", [&] { CRvoFile::DownLoadServerFile(local, "a\\b"); },
       small(101, "a\\b", 0, "", absent)},
      {"delete", [&] { CRvoFile::DeleteServerFile(long_name.c_str()); },
       small(700, long_name.substr(0, 255))},
      {"upload by id", [&] { CRvoIdFile::UpLoadFileToServerByFileID(local, "n", 7); },
       small(130, IdName("n", 7), 0, absent)},
      {"download by id",
       [&] { CRvoIdFile::DownLoadServerFileByFileID(local, long_name.c_str(), 0x01020304); },
       small(131, IdName(long_name.substr(0, 251), 0x01020304), 0, "", absent)},
      {"delete by id", [] { CRvoIdFile::DeleteServerFileByFileID("n", 0); },
       small(730, IdName("n", 0))},
      {"delete by an id that there is not", [] { CRvoIdFile::DeleteServerFileByFileID("n", -1); },
       small(730, "")},
      {"copy by id",
       [] { CRvoIdFile::CopyIdFile(1, "from", 2, "to"); },
       {140, kMebibyte, kMebibyte, Fields().Number(1).Text("from").Number(2).Text("to").Payload(),
        "", 0}},
      {"copy by id of no names",
       [] { CRvoIdFile::CopyIdFile(-1, "", 2, nullptr); },
       {140, kMebibyte, kMebibyte, Fields().Number(-1).Number(2).Payload(), "", 0}},
      {"exists",
       [] { CRvoIdFile::IsIdFileExist("n", 9); },
       {150, kSmall, kSmall, Fields().Number(9).Text("n").Payload()}},
      {"information",
       [&] { CRvoFile::GetFileInfor("a\\b", &info_); },
       {6007, kRequest, kReply, Fields().Text("a\\b").Payload()}},
      {"copy",
       [] { CRvoFile::CopyOneFile("a", "b"); },
       {6011, kRequest, kReply, Fields().Text("a").Text("b").Payload()}},
      {"rename",
       [] { CRvoFile::RenOneFile("a", "b"); },
       {6005, kRequest, kReply, Fields().Text("a").Text("b").Payload()}},
      {"checksum",
       [&] { CRvoIdFileEx::GetIDFileCRC("n", 5, text_, value_, error_); },
       {6032, kRequest, kRequest, Fields().Text("n").Number(5).Payload()}},
      {"packed checksum",
       [&] { CRvoIdFileEx::GetPackFileCRC("p", "n", 5, text_, value_, error_); },
       {6031, kRequest, kRequest, Fields().Text("p").Text("n").Number(5).Payload()}},
      {"save path",
       [&] { CRvoIdFileEx::GetIDFileSavePath("n", 5, text_, error_); },
       {6033, kRequest, kRequest, Fields().Text("n").Number(5).Payload()}},
      {"unpack",
       [&] { CRvoIdFileEx::CopyPackFileToIdFile("p", "n", 1, "t", 2, error_); },
       {6030, kRequest, kRequest,
        Fields().Text("p").Text("n").Number(1).Text("t").Number(2).Payload()}},
  });
}

TEST_F(Requests, OfFolders) {
  const auto page = [](const char* pattern, const char* flag, int option, int from, int to) {
    return Sent{6029, kRequest, kMebibyte,
                Fields()
                    .Text("f")
                    .Text(pattern)
                    .Text(flag)
                    .Number(option)
                    .Number(from)
                    .Number(to)
                    .Payload()};
  };
  Expect({
      {"children",
       [&] { CRvoFolder::GetChildFolderInfo(count_, "f"); },
       {6001, kRequest, kMebibyte, Fields().Text("f").Payload()}},
      {"matching",
       [&] { CRvoFolder::GetMatchFilesInFolder("f", "*.dwg", count_, -2); },
       {6002, kRequest, kReply, Fields().Text("f").Text("*.dwg").Text("1").Payload()}},
      {"all",
       [&] { CRvoFolder::GetFilesInFolder("f", count_, 0); },
       {6002, kRequest, kReply, Fields().Text("f").Text("*.*").Text("0").Payload()}},
      // An empty text is no field.
      {"of no name",
       [&] { CRvoFolder::GetFilesInFolder("", count_, 0); },
       {6002, kRequest, kReply, Fields().Text("*.*").Text("0").Payload()}},
      {"new",
       [] { CRvoFolder::NewOneFolder("f"); },
       {6003, kRequest, kReply, Fields().Text("f").Payload()}},
      {"delete",
       [] { CRvoFolder::DelOneFolder("f"); },
       {6004, kRequest, kReply, Fields().Text("f").Payload()}},
      {"rename",
       [] { CRvoFolder::RenOneFolder("f", "g"); },
       {6005, kRequest, kReply, Fields().Text("f").Text("g").Payload()}},
      {"page",
       [&] { CRvoFolderEx::GetMatchFilesInFolderEx("f", "?", count_, 1, 3, 5, 5, &buffer_); },
       page("?", "1", 3, 5, 5)},
      {"rest", [&] { CRvoFolderEx::GetFilesInFolderEx("f", count_, 0, 0, 10, -1, &buffer_); },
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

TEST_F(Requests, OfTheDirectory) {
  const auto texts = [](std::uint32_t code, std::initializer_list<const char*> fields) {
    Fields all;
    for (const char* const field : fields) all.Text(field);
    return Sent{code, kRequest, kReply, all.Payload()};
  };
  Expect({
      {"groups", [&] { CRvoAd::GetADGroupInfo("k", count_); }, texts(6015, {"k"})},
      {"users of", [&] { CRvoAd::GetADGroupUserInfo("g", count_); }, texts(6016, {"g"})},
      {"department", [] { CRvoAd::CreateADDepart(-5); }, texts(6017, {"-5"})},
      {"group", [] { CRvoAd::AddADGroup("g", 1, 2); }, texts(6018, {"g", "1", "2"})},
      {"members", [] { CRvoAd::AddADGroupUsers("g\\h", "d\\u,\xB0\\v", 0); },
       texts(6019, {"g\\h", "d/u,\xB0/v", "0"})},  // byte by byte
      {"users", [&] { CRvoAd::GetADUserInfo(count_); }, texts(6020, {})},
      {"user", [] { CRvoAd::AddADUser("a", "b", 2); }, texts(6021, {"a", "b", "2"})},
  });
  transport_.requests.clear();
  for (const int mode : {-1, 3}) EXPECT_EQ(CRvoAd::AddADUser("a", "b", mode), 0);
  EXPECT_TRUE(transport_.requests.empty());
}

TEST_F(Requests, OfTheServer) {
  CRvoServer::SetServerType("TCP_IP", "main", 4000);
  CQvNetExeInfo info;
  Expect({
      {"program", [&] { CRvoServer::GetQvNetExeInfo(&info); }, {6008}},
      {"sub-stores",
       [&] { CRvoServer::GetSubStoreInfo(count_, "s"); },
       {6009, kRequest, kReply, Fields().Text("s").Payload()}},
      {"log",
       [] { CRvoServer::SendSvrLogInfo(3, "line"); },
       {4, kRequest, kReply, Fields().Number(3).Text("line").Payload()}},
      {"empty log",
       [] { CRvoServer::SendSvrLogInfo(3, ""); },
       {4, kRequest, kReply, Fields().Number(3).Payload()}},
      {"connection",
       [] { CRvoServer::GetDBConnString("d"); },
       {710, kRequest, kReply, Fields().Text("d").Payload()}},
  });
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
      {std::string(10238, 'x') + "\xB0\xA1", 10238},        // its first half stands last
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
