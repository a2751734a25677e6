#include "components/queue/TransferQueue.h"

#include <gmock/gmock.h>

#include <deque>
#include <filesystem>

#include "tests/support/TempFolder.h"

namespace qv::components {

namespace {

using testing::ElementsAre;

// Returns the given results in order, then success, and records the calls.
class ScriptedStore final : public RemoteStore {
 public:
  QvTransferResult Upload(const std::string& local, const std::string& remote, Resume& resume,
                          TransferMeter&) override {
    calls.push_back(local + ">" + remote + ":" + std::to_string(resume.done));
    return Next(resume);
  }
  QvTransferResult Download(const std::string& remote, const std::string& local, Resume& resume,
                            TransferMeter& meter) override {
    return Upload(remote, local, resume, meter);
  }
  QvTransferResult Copy(const std::string& from, const std::string& to, Resume& resume,
                        TransferMeter& meter) override {
    return Upload(from, to, resume, meter);
  }
  bool Abandon(const std::string& remote, const Resume& resume) override {
    calls.push_back("abandon " + remote + ":" + std::to_string(resume.done));
    return is_reachable;
  }
  QvTransferResult Rename(const std::string&, const std::string&) override { return {}; }
  QvTransferResult DeleteFile(const std::string&) override { return {}; }
  QvTransferResult DeleteFolder(const std::string&) override { return {}; }

  std::deque<QvTransferResult> answers;
  std::vector<std::string> calls;
  std::string part = "part";
  bool is_reachable = true;

 private:
  QvTransferResult Next(Resume& resume) {
    const QvTransferResult answer = answers.empty() ? QvTransfer_Success : answers.front();
    if (!answers.empty()) answers.pop_front();
    if (answer == QvTransfer_Success)
      resume = {};
    else
      resume = {.part = part, .tag = "", .done = resume.done + 1};
    return answer;
  }
};

TEST(TransferQueueTest, TriesWhatBrokeAgainAndOnlyThat) {
  ScriptedStore store;
  TransferQueue queue(TransferKind::kUpload);
  EXPECT_EQ(queue.Add("a", "\\x\\a"), QvTransfer_Success);
  EXPECT_EQ(queue.Add("b", "x/b"), QvTransfer_Success);
  EXPECT_EQ(queue.Add("c", "x\n"), QvTransfer_BadArgument);
  store.answers = {QvTransfer_Broken, QvTransfer_CannotConnect, QvTransfer_Broken,
                   QvTransfer_Refused};
  RunOutcome outcome = queue.Run(&store, 2);
  EXPECT_EQ(outcome.result, QvTransfer_Broken);
  EXPECT_EQ(outcome.count, 0);
  EXPECT_THAT(store.calls, ElementsAre("a>/x/a:0", "a>/x/a:1", "a>/x/a:2", "b>x/b:0"));
  store.calls.clear();
  outcome = queue.Run(&store, -1);
  EXPECT_EQ(outcome.result, QvTransfer_BadArgument);
  EXPECT_EQ(outcome.count, 2);
  EXPECT_THAT(store.calls, ElementsAre("a>/x/a:3", "b>x/b:1"));
  EXPECT_TRUE(queue.HasSucceeded("a") && queue.HasSucceeded("b"));
  EXPECT_FALSE(queue.HasSucceeded("c") || queue.HasSucceeded("d"));
}

TEST(TransferQueueTest, BeginsAnewOnlyAfterSuccess) {
  ScriptedStore store;
  TransferQueue queue(TransferKind::kCopy);
  EXPECT_EQ(queue.Run(&store, 0).result, QvTransfer_Success) << "of nothing";
  static_cast<void>(queue.Add("a", "b"));
  EXPECT_EQ(queue.Run(nullptr, 0).result, QvTransfer_NotLoggedIn);
  static_cast<void>(queue.Add("a", "c"));
  EXPECT_EQ(queue.Run(&store, 0).count, 2);
  EXPECT_EQ(queue.Run(&store, 0).count, 2) << "nothing is moved twice";
  EXPECT_THAT(store.calls, ElementsAre("a>b:0", "a>c:0"));
  static_cast<void>(queue.Add("d", "e"));
  EXPECT_EQ(queue.Run(&store, 0).count, 1);
}

TEST(TransferQueueTest, EndsARunThatNoOtherFileWouldSurvive) {
  for (const auto end : {QvTransfer_CannotConnect, QvTransfer_LoginRefused, QvTransfer_NotTrusted,
                         QvTransfer_Stopped}) {
    ScriptedStore store;
    TransferQueue queue(TransferKind::kUpload);
    for (const char* const file : {"a", "b", "c"}) static_cast<void>(queue.Add(file, file));
    store.answers = {QvTransfer_Success, end};
    const RunOutcome outcome = queue.Run(&store, 3);
    EXPECT_EQ(outcome.result, end);
    EXPECT_EQ(outcome.count, 1);
    EXPECT_EQ(store.calls.size(), 2U);
  }
}

TEST(TransferQueueTest, EmptyingTakesBackWhatBrokenTriesLeft) {
  TempFolder folder;
  ScriptedStore store;
  store.part = folder.Write("part", "half");
  for (const auto kind : {TransferKind::kUpload, TransferKind::kCopy, TransferKind::kDownload}) {
    TransferQueue queue(kind);
    store.calls.clear();
    store.answers.assign(3, QvTransfer_Refused);
    for (const char* const file : {"a", "b", "c"}) static_cast<void>(queue.Add(file, file));
    EXPECT_EQ(queue.Run(&store, 0).result, QvTransfer_Refused);
    store.calls.clear();
    store.is_reachable = kind != TransferKind::kCopy;
    queue.Empty(&store);
    const bool is_download = kind == TransferKind::kDownload;
    EXPECT_EQ(store.calls.size(), is_download ? 0U : store.is_reachable ? 3U : 1U);
    EXPECT_EQ(std::filesystem::exists(store.part), !is_download);
    EXPECT_EQ(queue.Run(&store, 0).count, 0);
  }
}

}  // namespace

}  // namespace qv::components
