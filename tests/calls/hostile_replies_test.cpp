// Every call gets replies that no honest server sends; the sanitizers are the judges.
#include <functional>
#include <memory>

#include "CallsFixture.h"

namespace qv::test {
namespace {

class HostileReplies : public Calls {
 protected:
  template <class Record>
  static void Free(Record* records) {
    delete[] records;
  }

  // Every call that reads a reply.
  std::vector<std::function<void()>> EveryCall() {
    const char* const local = local_.c_str();
    return {
        [=] { CRvoFile::UpLoadFileToServer(local, "s"); },
        [=] { CRvoFile::DownLoadServerFile(local, "s"); },
        [] { CRvoFile::DeleteServerFile("s"); },
        [this] { CRvoFile::GetFileInfor("s", &info_); },
        [] { CRvoFile::CopyOneFile("a", "b"); },
        [] { CRvoFile::RenOneFile("a", "b"); },
        [this] { Free(CRvoFolder::GetFilesInFolder("f", count_, 0)); },
        [this] { Free(CRvoFolder::GetChildFolderInfo(count_, "f")); },
        [] { CRvoFolder::NewOneFolder("f"); },
        [] { CRvoFolder::DelOneFolder("f"); },
        [] { CRvoFolder::RenOneFolder("f", "g"); },
        [this] { CRvoFolderEx::GetFilesInFolderEx("f", count_, 0, 0, 0, -1, &buffer_); },
        [=] { CRvoIdFile::UpLoadFileToServerByFileID(local, "n", 1); },
        [=] { CRvoIdFile::DownLoadServerFileByFileID(local, "n", 1); },
        [] { CRvoIdFile::DeleteServerFileByFileID("n", 1); },
        [] { CRvoIdFile::CopyIdFile(1, "a", 2, "b"); },
        [] { CRvoIdFile::IsIdFileExist("n", 1); },
        [this] { CRvoIdFileEx::GetIDFileCRC("n", 1, text_, count_, text_); },
        [this] { CRvoIdFileEx::GetPackFileCRC("p", "n", 1, text_, count_, text_); },
        [this] { CRvoIdFileEx::GetIDFileSavePath("n", 1, text_, text_); },
        [this] { CRvoIdFileEx::CopyPackFileToIdFile("p", "n", 1, "t", 2, text_); },
        [this] { Free(CRvoAd::GetADGroupInfo("k", count_)); },
        [this] { Free(CRvoAd::GetADGroupUserInfo("k", count_)); },
        [this] { Free(CRvoAd::GetADUserInfo(count_)); },
        [] { CRvoAd::CreateADDepart(1); },
        [] { CRvoAd::AddADGroup("g", 1, 2); },
        [] { CRvoAd::AddADGroupUsers("g", "u", 1); },
        [] { CRvoAd::AddADUser("a", "b", 1); },
        [this] { CRvoServer::GetQvNetExeInfo(&exe_); },
        [this] { Free(CRvoServer::GetSubStoreInfo(count_, "s")); },
        [] { CRvoServer::SendSvrLogInfo(1, "x"); },
        [] { CRvoServer::GetDBConnString("d"); },
    };
  }

  const std::string local_ = folder_.Write("local", "x");
  CZelkorSvrFileInfo info_{};
  CQvRvoBuf buffer_;
  CQvNetExeInfo exe_;
  CString text_;
  int count_ = 0;
};

TEST_F(HostileReplies, NeverHarmTheCaller) {
  // Small enough for the smallest reply's block.
  std::vector<std::string> starts = {""};
  for (const char* const number : {"-1", "0", "1", "3", "2147483647", "4294967296", "x", "SUCCESS",
                                   "FAILURE", "1\n", "00000000000000000000000000001"}) {
    starts.push_back(Fields().Text(number).Payload());
  }
  const std::string lengths[] = {std::string("\xFF\xFF\xFF\xFF", 4), std::string("\0\0\0\x80", 4),
                                 std::string("\xFF\xFF\xFF\x7F", 4), std::string(4, '\0')};
  std::vector<std::string> ends = {"",
                                   "x",
                                   Fields().Text(std::string(300, 'r')).Payload(),
                                   Fields().Text("2147483647").Text("abc").Payload(),
                                   Fields().Text("-1").Payload(),
                                   Fields().Number(-1).Payload(),
                                   Fields().Text(std::string("a\0b", 3)).Payload()};
  std::string unterminated = Fields().Text("12").Payload();
  unterminated.back() = 'y';
  ends.push_back(unterminated);
  for (const std::string& length : lengths) ends.push_back(length + "abcdef");
  const auto calls = EveryCall();
  for (const std::string& start : starts) {
    for (const std::string& end : ends) {
      Answer(Fields().Raw(start).Raw(end));
      for (const auto& call : calls) call();
    }
  }
  EXPECT_EQ(transport_.requests.size(), starts.size() * ends.size() * calls.size());
}

}  // namespace
}  // namespace qv::test
