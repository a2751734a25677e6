// What the tests of single exchanges share: a scripted server that answers every request alike.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qvnetcall/RvoAd.h"
#include "qvnetcall/RvoFile.h"
#include "qvnetcall/RvoFolder.h"
#include "qvnetcall/RvoFolderEx.h"
#include "qvnetcall/RvoIdFile.h"
#include "qvnetcall/RvoIdFileEx.h"
#include "tests/support/ModuleTest.h"

namespace qv::test {

using Fields = ScriptedReply;

class Calls : public ModuleTest {
 protected:
  Calls() {
    UseServerType("TCP_IP");
    Answer(Fields());
  }

  void Answer(const Fields& fields, int result = 0) {
    transport_.handler = [=](const SentRequest&, ScriptedReply& reply) {
      reply = fields;
      return result;
    };
  }

  struct OneCall {
    std::function<int()> call;
    std::optional<int> while_bad;  // its result while nothing is sent; empty if it always sends
  };
  // Every call that reads a reply.
  std::vector<OneCall> EveryCall() {
    const char* const local = local_.c_str();
    const auto taken = [](auto* records) {
      delete[] records;
      return records == nullptr ? 0 : 1;
    };
    return {
        {[=] { return CRvoFile::UpLoadFileToServer(local, "s"); }, 0},
        {[=] { return CRvoFile::DownLoadServerFile(local, "s"); }, 0},
        {[] { return CRvoFile::DeleteServerFile("s"); }, 0},
        {[this] { return CRvoFile::GetFileInfor("s", &info_); }, 1},
        {[] { return CRvoFile::CopyOneFile("a", "b"); }, 1},
        {[] { return CRvoFile::RenOneFile("a", "b"); }, 1},
        {[] { return CRvoFolder::NewOneFolder("f"); }, 1},
        {[] { return CRvoFolder::DelOneFolder("f"); }, 1},
        {[] { return CRvoFolder::RenOneFolder("f", "g"); }, 1},
        {[=, this] { return taken(CRvoFolder::GetFilesInFolder("f", count_, 0)); }, 0},
        {[=, this] { return taken(CRvoFolder::GetChildFolderInfo(count_, "f")); }, 0},
        {[this] { return CRvoFolderEx::GetFilesInFolderEx("f", count_, 0, 0, 0, -1, &buffer_); },
         0},
        {[=] { return CRvoIdFile::UpLoadFileToServerByFileID(local, "n", 1); }, 0},
        {[=] { return CRvoIdFile::DownLoadServerFileByFileID(local, "n", 1); }, 0},
        {[] { return CRvoIdFile::DeleteServerFileByFileID("n", 1); }, 0},
        {[] { return CRvoIdFile::CopyIdFile(1, "a", 2, "b"); }, 0},
        {[] { return CRvoIdFile::IsIdFileExist("n", 1); }, 0},
        {[this] { return CRvoIdFileEx::GetIDFileCRC("n", 1, text_, value_, error_); }, 0},
        {[this] { return CRvoIdFileEx::GetPackFileCRC("p", "n", 1, text_, value_, error_); }, 0},
        {[this] { return CRvoIdFileEx::GetIDFileSavePath("n", 1, text_, error_); }, 0},
        {[this] { return CRvoIdFileEx::CopyPackFileToIdFile("p", "n", 1, "t", 2, error_); }, 0},
        // Calls for the directory and for information about the server ignore the offline state.
        {[=, this] { return taken(CRvoAd::GetADGroupInfo("k", count_)); }, {}},
        {[=, this] { return taken(CRvoAd::GetADGroupUserInfo("k", count_)); }, {}},
        {[=, this] { return taken(CRvoAd::GetADUserInfo(count_)); }, {}},
        {[] { return CRvoAd::CreateADDepart(1); }, {}},
        {[] { return CRvoAd::AddADGroup("g", 1, 2); }, {}},
        {[] { return CRvoAd::AddADGroupUsers("g", "u", 1); }, {}},
        {[] { return CRvoAd::AddADUser("a", "b", 1); }, {}},
        {[this] { return CRvoServer::GetQvNetExeInfo(&exe_); }, {}},
        {[=, this] { return taken(CRvoServer::GetSubStoreInfo(count_, "s")); }, {}},
        {[] { return CRvoServer::SendSvrLogInfo(1, "x"); }, {}},
        {[] { return CRvoServer::GetDBConnString("d").GetLength(); }, {}},
    };
  }

  const std::string local_ = folder_.Write("local", "before");
  CString text_ = "text";
  CString error_ = "error";
  int value_ = 77;
  int count_ = 77;
  CZelkorSvrFileInfo info_{{'u'}};
  CQvRvoBuf buffer_;
  CQvNetExeInfo exe_;
};

}  // namespace qv::test
