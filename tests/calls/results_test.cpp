// What the calls return after answers, and while offline.
#include <cstring>
#include <limits>

#include "CallsFixture.h"
#include "base/platform/Platform.h"

namespace qv::test {
namespace {

class Results : public Calls {
 protected:
  struct Answered {
    Fields fields;
    int transport;
    int result;
  };

  // All these calls return the same for each answer.
  void Expect(const std::vector<std::function<int()>>& calls,
              const std::vector<Answered>& answers) {
    for (const auto& call : calls) {
      for (const Answered& a : answers) {
        Answer(a.fields, a.transport);
        EXPECT_EQ(call(), a.result) << &call - &calls[0] << " after " << a.transport << " and "
                                    << testing::PrintToString(a.fields.Payload());
      }
    }
  }
  static Fields Text(const char* text) { return Fields().Text(text); }
};

TEST_F(Results, OfStatusWords) {
  const std::vector<Answered> plain = {{Text("SUCCESS"), 0, 0},  {Text("success"), 0, 1},
                                       {Text("FAILURE"), 0, 1},  {Fields(), 0, 1},
                                       {Text("SUCCESS"), 1, 1},  {Text("SUCCESS"), -1, -1},
                                       {Text("SUCCESS"), -2, -2}};
  const char* const local = local_.c_str();
  Expect({[=] { return CRvoFile::UpLoadFileToServer(local, "s"); },
          [=] { return CRvoIdFile::UpLoadFileToServerByFileID(local, "s", 1); },
          [] { return CRvoFile::DeleteServerFile("s"); },
          [] { return CRvoIdFile::DeleteServerFileByFileID("s", 1); }},
         plain);
  Expect({[] { return CRvoIdFile::IsIdFileExist("s", 1); }}, {{Text("SUCCESS"), 0, 1},
                                                              {Text("FAILURE"), 0, 0},
                                                              {Text("SUCCESS"), 1, 0},
                                                              {Text("SUCCESS"), -1, 0},
                                                              {Fields(), 0, 0}});
  Expect({[] { return CRvoIdFile::CopyIdFile(1, "a", 2, "b"); }},
         {{Text("SUCCESS"), 0, 0},
          {Text("FAILURE").Number(7), 0, 7},
          {Text("FAILURE").Number(-5), 0, -5},
          {Text("FAILURE").Number(0), 0, -1},
          {Text("success").Number(7), 0, 7},
          {Fields().Number(7), 0, -1},  // no status, and so no code
          {Text("SUCCESS"), 3, 3},
          {Text("FAILURE"), 0, -1},
          {Fields(), 0, -1},
          {Text("FAILURE").Raw("\2\0\0\0ab"), 0, -1},
          {Text("SUCCESS"), -3, -3}});
  EXPECT_EQ(BytesOf(local_), "before");
}

TEST_F(Results, OfDownloads) {
  const struct {
    Fields fields;
    int transport;
    int result;
    bool stays;
  } cases[] = {{Text("SUCCESS"), 0, 0, true},   {Text("FAILURE"), 0, 2, false},
               {Text("failure"), 0, 1, false},  {Fields(), 0, 1, false},
               {Text("FAILURE"), -2, -2, true}, {Text("SUCCESS"), 5, 5, true},
               {Fields(), -1, -1, true},        {Fields(), -3, -3, true}};
  const std::function<int()> calls[] = {
      [&] { return CRvoFile::DownLoadServerFile(local_.c_str(), "s"); },
      [&] { return CRvoIdFile::DownLoadServerFileByFileID(local_.c_str(), "s", 1); }};
  for (const auto& call : calls) {
    for (const auto& c : cases) {
      folder_.Write("local", "before");
      Answer(c.fields, c.transport);
      EXPECT_EQ(call(), c.result);
      EXPECT_EQ(std::filesystem::exists(local_), c.stays) << c.result;
    }
  }
  Answer(Fields());
  EXPECT_EQ(CRvoFile::DownLoadServerFile(nullptr, nullptr), 1);
}

TEST_F(Results, OfNumbers) {
  const std::vector<Answered> above_zero = {
      {Text("1"), 0, 1},    {Text(" +2x"), 0, 1}, {Text("0"), 0, 0},  {Text("-3"), 0, 0},
      {Text("none"), 0, 0}, {Fields(), 0, 0},     {Text("1"), -1, 0}, {Text("1"), -2, 1}};
  Expect(
      {[] { return CRvoFile::RenOneFile("a", "b"); }, [] { return CRvoFolder::NewOneFolder("a"); },
       [] { return CRvoFolder::DelOneFolder("a"); },
       [] { return CRvoFolder::RenOneFolder("a", "b"); }},
      above_zero);
  Expect({[] { return CRvoFile::CopyOneFile("a", "b"); }}, {{Text("1"), 0, 1},
                                                            {Text("2"), 0, 0},
                                                            {Text("0"), 0, 0},
                                                            {Text("1"), -1, 0},
                                                            {Text("1"), 3, 1}});
  const std::vector<Answered> answer = {{Text("41"), 0, 41},
                                        {Text("0"), 0, 0},
                                        {Text("-3").Text("why"), 0, 0},
                                        {Text("-1"), 0, 0},
                                        {Fields(), 0, 0},
                                        {Text("5"), -1, 0},
                                        {Text("5"), 9, 5},
                                        {Text("99999999999"), 0, std::numeric_limits<int>::max()}};
  Expect({[] { return CRvoAd::CreateADDepart(1); }, [] { return CRvoAd::AddADGroup("g", 1, 2); },
          [] { return CRvoAd::AddADGroupUsers("g", "u", 1); },
          [] { return CRvoAd::AddADUser("a", "b", 0); }},
         answer);
  Expect({[] { return CRvoServer::SendSvrLogInfo(1, "x"); }}, {{Text("SUCCESS"), 0, 1},
                                                               {Text("SUCCESS"), 2, 1},
                                                               {Text("SUCCESS"), -1, 0},
                                                               {Text("success"), 0, 0},
                                                               {Fields(), 0, 0}});
}

// Returns the bytes of an array of three records, which is freed; nothing if it is null.
template <class Record>
std::optional<std::string> Take(Record* records) {
  const std::unique_ptr<Record[]> owned(records);
  if (!owned) return {};
  return std::string(reinterpret_cast<const char*>(records), 3 * sizeof(Record));
}

// For each listing: the call, the size of its records, and whether it clears the count first.
TEST_F(Results, OfListings) {
  const struct {
    const char* name;
    std::function<std::optional<std::string>(int&)> call;
    std::size_t size;
    bool clears;
  } listings[] = {
      {"files", [](int& n) { return Take(CRvoFolder::GetFilesInFolder("f", n, 0)); }, 224, true},
      {"folders", [](int& n) { return Take(CRvoFolder::GetChildFolderInfo(n, "f")); }, 132, false},
      {"sub-stores", [](int& n) { return Take(CRvoServer::GetSubStoreInfo(n, "s")); }, 264, false},
      {"groups", [](int& n) { return Take(CRvoAd::GetADGroupInfo("k", n)); }, 260, true},
      {"members", [](int& n) { return Take(CRvoAd::GetADGroupUserInfo("k", n)); }, 260, true},
      {"users", [](int& n) { return Take(CRvoAd::GetADUserInfo(n)); }, 260, false},
  };
  for (const auto& listing : listings) {
    SCOPED_TRACE(listing.name);
    const std::string records(3 * listing.size, 'r');
    const std::string zeros(3 * listing.size, '\0');
    const struct {
      Fields fields;
      int transport;
      std::optional<std::string> bytes;  // nothing: no array
      int count;                         // 77: as it was, or cleared
    } cases[] = {
        {Text("3").Text(records), 0, records, 3},
        {Text("3").Text(records), -2, records, 3},
        {Text("3").Text(records), -1, {}, 77},
        {Text("3").Text(records.substr(1)), 0, zeros, 3},  // not of the size of three
        {Text("3"), 0, zeros, 3},
        {Text("0"), 0, {}, 77},
        {Text("-3").Text("why"), 0, {}, 77},
        {Text("2147483647").Text(records), 0, {}, 2147483647},  // more memory than there is
        {Text("600000").Text(records), 0, {}, 600000},          // more than any reply holds
        {Fields(), 0, {}, 77},
    };
    for (const auto& c : cases) {
      Answer(c.fields, c.transport);
      int count = 77;
      EXPECT_EQ(listing.call(count), c.bytes) << c.count;
      EXPECT_EQ(count, c.count == 77 && listing.clears ? 0 : c.count) << c.count;
    }
  }
}

TEST_F(Results, OfPages) {
  CQvRvoBuf buffer;
  const auto list = [&] {
    count_ = 77;
    return CRvoFolderEx::GetFilesInFolderEx("f", count_, 0, 0, 0, -1, &buffer);
  };
  Answer(Text("9").Text("4").Text("abcd"));
  EXPECT_EQ(list(), 1);
  EXPECT_EQ(count_, 9);
  EXPECT_EQ(std::string(buffer.m_bytes, buffer.m_bytes + buffer.m_size), "abcd");
  Answer(Text("9").Text("4").Text("abc"));  // the bytes are not checked, but never stale
  EXPECT_EQ(list(), 1);
  EXPECT_EQ(std::string(buffer.m_bytes, buffer.m_bytes + buffer.m_size), std::string(4, '\0'));
  Answer(Text("9").Text("0"));  // nothing to hold: the buffer is left alone
  EXPECT_EQ(list(), 0);
  EXPECT_EQ(count_, 9);
  EXPECT_EQ(buffer.m_size, 4u);
  Answer(Text("9").Text("67108865"));  // more than the limit: the buffer is empty
  EXPECT_EQ(list(), 0);
  EXPECT_EQ(count_, 9);
  EXPECT_EQ(buffer.m_bytes, nullptr);
  EXPECT_EQ(buffer.m_size, 0u);
  Answer(Text("0").Text("4").Text("abcd"));
  EXPECT_EQ(list(), 0);
  EXPECT_EQ(count_, 0);
  EXPECT_EQ(buffer.Alloc(3), 1);
  EXPECT_EQ(buffer.Alloc(0), 0);
  EXPECT_EQ(buffer.m_bytes, nullptr);
}

TEST_F(Results, OfFileInformation) {
  CZelkorSvrFileInfo info{{'u'}};
  const std::string record(224, 'r');
  Answer(Text("0").Text(record));
  EXPECT_EQ(CRvoFile::GetFileInfor("f", &info), 0);
  Answer(Text("1").Text(record), -1);
  EXPECT_EQ(CRvoFile::GetFileInfor("f", &info), 0);
  Answer(Text("1"));
  EXPECT_EQ(CRvoFile::GetFileInfor("f", &info), 1);  // the record is not asked after
  EXPECT_EQ(info.bytes[0], 'u');
  Answer(Text("2").Text(record), -2);
  EXPECT_EQ(CRvoFile::GetFileInfor("f", &info), 1);
  EXPECT_EQ(std::memcmp(info.bytes, record.data(), record.size()), 0);
}

TEST_F(Results, OfChecksumsAndPlaces) {
  const std::function<int()> checksums[] = {
      [&] { return CRvoIdFileEx::GetIDFileCRC("n", 1, text_, value_, error_); },
      [&] { return CRvoIdFileEx::GetPackFileCRC("p", "n", 1, text_, value_, error_); }};
  const auto outcome = [&] {
    return std::string(text_) + "|" + std::to_string(value_) + "|" + std::string(error_);
  };
  const bool gbk = platform::NarrowFromWide(u"调").size() == 2;
  const std::string call_failed =
      gbk ? "\xB5\xF7\xD3\xC3\xBA\xAF\xCA\xFD\xCA\xA7\xB0\xDC" : "调用函数失败";
  const struct {
    Fields fields;
    int transport;
    int result;
    std::string outcome;
  } cases[] = {
      {Text("2").Text("1A2B").Number(5), 0, 2, "1A2B|5|error"},
      {Text("1"), 0, 1, "|77|error"},
      {Text("0").Text("why"), 0, 0, "|77|why"},
      {Text("-4").Text("why"), 7, -4, "|77|why"},
      {Text("0"), 0, 0, "|77|error"},
      {Text("1").Text("1A2B").Number(5), -1, 0, "|77|" + call_failed},
  };
  for (const auto& call : checksums) {
    for (const auto& c : cases) {
      text_ = "text";
      error_ = "error";
      value_ = 77;
      Answer(c.fields, c.transport);
      EXPECT_EQ(call(), c.result);
      EXPECT_EQ(outcome(), c.outcome);
    }
  }
  text_ = "text";
  error_ = "error";
  Answer(Text("1").Text("a\\b"));
  EXPECT_EQ(CRvoIdFileEx::GetIDFileSavePath("n", 1, text_, error_), 1);
  EXPECT_EQ(text_, "a\\b");
  EXPECT_EQ(CRvoIdFileEx::CopyPackFileToIdFile("p", "n", 1, "t", 2, error_), 1);
  EXPECT_EQ(error_, "error");
  Answer(Text("-2").Text("why"));
  EXPECT_EQ(CRvoIdFileEx::CopyPackFileToIdFile("p", "n", 1, "t", 2, error_), -2);
  EXPECT_EQ(error_, "why");
  Answer(Text("1"), -1);
  EXPECT_EQ(CRvoIdFileEx::GetIDFileSavePath("n", 1, text_, error_), 0);
  EXPECT_EQ(text_, "");
  EXPECT_EQ(error_, call_failed.c_str());
}

TEST_F(Results, OfTheClientProgram) {
  CQvNetExeInfo info;
  Answer(Text("1").Text("one").Text(" 2x").Text("three").Text("6").Text("-7").Text("eight").Text(
             "nine"),
         5);
  EXPECT_EQ(CRvoServer::GetQvNetExeInfo(&info), 1);
  const std::string path = folder_.At("info.txt");
  EXPECT_EQ(info.SaveData(path.c_str()), 1);
  EXPECT_EQ(info.SaveData(path.c_str()), 1);  // in place of what was there
  std::string lines = BytesOf(path);
  std::erase(lines, '\r');  // where lines end in two bytes
  EXPECT_EQ(lines, "one\n2\nthree\nmain\n4000\n6\n-7\neight\nnine\n");
  Answer(Text("1").Text("1"), -1);
  CQvNetExeInfo other;
  EXPECT_EQ(CRvoServer::GetQvNetExeInfo(&other), 0);
  EXPECT_EQ(other.m_server, "main");
  EXPECT_EQ(other.m_port, 4000);
  EXPECT_EQ(other.m_text1, "");
  EXPECT_EQ(other.LoadData(path.c_str()), 1);
  EXPECT_EQ(other.m_text9, "nine");
  EXPECT_EQ(other.m_number7, -7);
  Answer(Text("1"));
  EXPECT_EQ(CRvoServer::GetQvNetExeInfo(&other), 1);  // only the flag decides
  EXPECT_EQ(other.m_text1, "");
  EXPECT_EQ(other.m_number2, 0);
  Answer(Text("2").Text("text"));
  other.m_server.Empty();
  EXPECT_EQ(CRvoServer::GetQvNetExeInfo(&other), 0);
  EXPECT_EQ(other.m_server, "main");
  EXPECT_EQ(CRvoServer::QvURL("a", -1, "b"), "a_-1:b");

  // A missing line equals the one before; a last line without a line end loses a character.
  folder_.Write("info.txt", "abc\n12\nlast");
  EXPECT_EQ(other.LoadData(path.c_str()), 1);
  EXPECT_EQ(other.m_text3, "las");
  EXPECT_EQ(other.m_text9, "las");
  EXPECT_EQ(other.m_port, 0);
  // Long lines come in pieces of 299 bytes.
  folder_.Write("info.txt", std::string(299, 'a') + std::string(298, '7') + "\nthird\n");
  EXPECT_EQ(other.LoadData(path.c_str()), 1);
  EXPECT_EQ(other.m_text1, CString('a', 298));
  EXPECT_EQ(other.m_number2, std::numeric_limits<int>::max());
  EXPECT_EQ(other.m_text3, "third");
  folder_.Write("info.txt", "");
  EXPECT_EQ(other.LoadData(path.c_str()), 1);
  EXPECT_EQ(other.m_text1, "");
  const std::string nowhere = folder_.At("no/file");
  EXPECT_EQ(other.LoadData(nowhere.c_str()), 0);
  EXPECT_EQ(other.SaveData(nowhere.c_str()), 0);
  EXPECT_EQ(other.LoadData(nullptr) + other.SaveData(nullptr), 0);
}

TEST_F(Results, OfConnectionTexts) {
  const struct {
    Fields fields;
    int transport;
    const char* text;
  } cases[] = {{Text("1").Text("Driver=X"), 0, "Driver=X"},
               {Text("1").Text("Driver=X"), -2, "Driver=X"},
               {Text("1").Text("Driver=X"), -1, ""},
               {Text("0").Text("Driver=X"), 0, ""},
               {Text("1"), 0, ""}};
  for (const auto& c : cases) {
    Answer(c.fields, c.transport);
    EXPECT_EQ(CRvoServer::GetDBConnString("d"), c.text);
  }
}

TEST_F(Results, WhileTheNetworkIsHeldForBad) {
  Answer(Text("1"));
  CRvoServer::SetServerType("WEB_IIS", "main", 4000);
  state_.cache.SetState(cache_state::kNetworkBad);
  const auto calls = EveryCall();
  for (const auto& [call, while_bad] : calls) {
    if (while_bad.has_value()) {
      EXPECT_EQ(call(), while_bad);
    }
  }
  EXPECT_TRUE(transport_.requests.empty());
  EXPECT_TRUE(transport_.bad_state_questions.empty());  // only the stored word counts
  EXPECT_EQ(std::string(text_) + std::string(error_), "texterror");
  EXPECT_EQ(count_, 77);
  EXPECT_EQ(BytesOf(local_), "before");
  EXPECT_EQ(info_.bytes[0], 'u');
  EXPECT_EQ(CRvoIdFile::GetIdFilePath(42), "0\\00\\00\\42\\");

  CRvoServer::SetServerType("TCP_IP", "main", 4000);
  for (const auto& [call, while_bad] : calls) {
    if (!while_bad) call();
  }
  EXPECT_EQ(transport_.requests.size(), 11u);
  state_.cache.SetState(cache_state::kOfflineByChoice);
  transport_.requests.clear();
  for (const auto& one : calls) one.call();
  EXPECT_EQ(transport_.requests.size(), calls.size());
}

TEST_F(Results, OfFailuresHaveAnErrorOfTheirOwn) {
  for (const auto& one : EveryCall()) {
    Answer(Text("1"), -1);
    one.call();
    EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kCannotConnect);
    Answer(Text("-1"));
    one.call();
    EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kInternal);
    EXPECT_EQ(CRvoServer::GetLastErrorText(), "the server refused the call without a reason");
  }
  const std::function<int()> not_sent[] = {
      [] { return CRvoAd::AddADUser("a", "b", 3); },
      [this] { return CRvoFolderEx::GetFilesInFolderEx("f", count_, 0, 0, 2, 1, &buffer_); },
      [] { return CRvoServer::CloseLocalDB("none"); },
      [] {
        CRvoServer::SetServerType("WEB_IIS", "main", 4000);
        return CRvoServer::SendSvrLogInfo(1, "x");
      }};
  for (const auto& call : not_sent) {
    Answer(Text("1"), -1);
    EXPECT_EQ(CRvoAd::CreateADDepart(1), 0);
    EXPECT_EQ(call(), 0);
    EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kLocal);
  }
  CString said;
  EXPECT_EQ(CRvoServer::GetLocalDBError(said), 1);
  EXPECT_EQ(said, "none: no connection is open");
  // Looking at the state leaves the error as it is, even if that probes the server.
  UseServerType("");
  CRvoServer::SetServerType("", "main", 4000);
  transport_.requests.clear();
  EXPECT_EQ(CRvoServer::GetCacheState(0), 0);
  EXPECT_EQ(transport_.requests.size(), 1u);
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kLocal);
}

TEST_F(Results, OfIdentifierFolders) {
  const struct {
    int id;
    const char* path;
  } cases[] = {{0, "0\\00\\00\\0\\"},
               {42, "0\\00\\00\\42\\"},
               {99999, "0\\09\\99\\99999\\"},
               {1234567, "1\\23\\45\\1234567\\"},
               {12345678, "12\\34\\56\\12345678\\"},
               {2147483647, "2147\\48\\36\\2147483647\\"},
               {-42, "-\\00\\00\\-42\\"},
               {std::numeric_limits<int>::min(), "-2147\\48\\36\\-2147483648\\"}};
  for (const auto& [id, path] : cases) EXPECT_EQ(CRvoIdFile::GetIdFilePath(id), path);
}

}  // namespace
}  // namespace qv::test
