// Both kinds of queues, each over its scripted component and a scripted server.
#include <gmock/gmock.h>

#include <functional>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

#include "ScriptedLibrary.h"
#include "message/LittleEndian.h"
#include "qvnetcall/RvoCloudStorage.h"
#include "qvnetcall/RvoFtp.h"
#include "tests/support/ModuleTest.h"

namespace qv::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

// Where the two classes differ.
struct Ftp {
  struct Object final : CRvoFtp {};  // final, since its destructor is not virtual
  static constexpr const char* kLibrary = "QvCoFtp";
  static constexpr ::GUID kInterface{
      0xDDE4AECC, 0xCD9D, 0x4BF8, {0x8C, 0x71, 0xD8, 0x52, 0xAC, 0xBB, 0x2A, 0x7A}};
  static constexpr bool kIsFtp = true;
  static constexpr const char* kLabels[] = {"FtpUp", "FtpDown", "FtpCopy"};
  static constexpr const char* kRuns[] = {"UploadFile 7", "DownloadFile 1,7", "CopyServerFile 7"};
  static constexpr const char* kLogin = "FtpLogin h,-3,u,p";
  static long Login(Object& object) { return object.FtpLogin("h", "u", "p", -3); }
  static std::string Suffix(int, long) { return ""; }
  static Texts SingleLogs(const std::string&) {
    return {"FtpDelFile Fail %s", "FtpDelPath Fail %d", "FtpRenFile Fail o->n",
            "Ftp_IsOperatorFileSuc Fail q"};
  }
};

struct Cloud {
  using Object = CRvoCloudStorage;
  static constexpr const char* kLibrary = "QvCoCSC";
  static constexpr ::GUID kInterface{
      0x90302F64, 0xB9C6, 0x471A, {0xAF, 0x28, 0x5D, 0xE9, 0x53, 0xCF, 0x55, 0x06}};
  static constexpr bool kIsFtp = false;
  static constexpr const char* kLabels[] = {"CSCUp", "CSCDown", "CSCCopy"};
  static constexpr const char* kRuns[] = {"UploadFile 7,-1", "DownloadFile 1,7,-1",
                                          "CopyServerFile 7"};
  static constexpr const char* kLogin = "FtpLogin h,-3,u,p,-70000";
  static long Login(Object& object) { return object.FtpLogin("h", "u", "p", -3, -70000); }
  static std::string Suffix(int kind, long result) {
    return kind == 2 ? "" : ". Res:" + std::to_string(result) + ".";
  }
  static Texts SingleLogs(const std::string& result) {
    return {"CSCDelFile Fail %s. Res:" + result + ".", "CSCDelPath Fail %d. Res:" + result + ".",
            "CSCRenFile Fail o->n. Res:" + result + ".", "CSC_IsOperatorFileSuc Fail q"};
  }
};

constexpr int kKinds[] = {0, 1, 2};
constexpr const char* kAdds[] = {"AddUploadFile", "AddDownloadFile", "AddCopyServerFile"};
constexpr const char* kRuns[] = {"UploadFile", "DownloadFile", "CopyServerFile"};
constexpr const char* kSingles[] = {"DeleteServerFile", "DeleteServerPath", "RenameServerFile"};
constexpr long kLeast = std::numeric_limits<long>::min();
constexpr long kMost = std::numeric_limits<long>::max();

template <class Kind>
class Queues : public ModuleTest {
 protected:
  using Object = typename Kind::Object;

  Queues() {
    UseServerType("TCP_IP");
    *script_ = Script();
  }

  Object& object() {
    if (!object_) object_.emplace();
    return *object_;
  }
  long Add(int kind, const std::string& first, const std::string& second) {
    constexpr long (Object::*kCalls[])(CString, CString) = {
        &Object::AddUploadFile, &Object::AddDownloadFile, &Object::AddCopyServerFile};
    const auto call = kCalls[kind];
    return (object().*call)(first.c_str(), second.c_str());
  }
  // The result and the count of a run.
  std::pair<long, long> Run(int kind) {
    constexpr long (Object::*kCalls[])(long, long&) = {&Object::UploadFile, &Object::DownloadFile,
                                                       &Object::CopyServerile};
    count_ = 77;
    const auto call = kCalls[kind];
    const long result = (object().*call)(7, count_);
    return {result, count_};
  }
  // The four calls that write to the log.
  std::vector<long> SingleCalls() {
    return {object().DeleteServerFile("%s"), object().DeleteServerPath("%d"),
            object().RenameServerFile("o", "n"), object().IsOperatorFileSuc("q")};
  }
  // Returns the pairs of a queue as the report lists them after its label if every file failed.
  std::string Queued(int kind) {
    script_->other_answer = 0;
    const CString report = object().GetFailInfo(kind, kLeast);
    return std::string(report.View().substr(std::string_view(Kind::kLabels[kind]).size()));
  }
  Texts TakeCalls() { return std::exchange(script_->calls, {}); }
  // Returns what was logged since the last call.
  Texts TakeLogs() {
    Texts logs;
    for (const SentRequest& request : std::exchange(transport_.requests, {})) {
      EXPECT_EQ(request.command, 4u);
      EXPECT_EQ(LoadU32(request.fields.at(0).data()), 3u);
      logs.push_back(request.fields.at(1));
    }
    return logs;
  }

  const ScriptedLibrary library_{Kind::kLibrary};
  Script* const script_ = &library_.GetScript();
  std::optional<Object> object_;
  long count_ = 0;
};

using Kinds = testing::Types<Ftp, Cloud>;
TYPED_TEST_SUITE(Queues, Kinds);

TYPED_TEST(Queues, PassTheirCallsOnInTheComponentsOrder) {
  for (const char* const method : {"FtpLogin", "FtpLogout"}) this->script_->results[method] = -5;
  for (const char* const method : kRuns) this->script_->results[method] = -5;
  this->script_->results["GetLastResult"] = 9;
  EXPECT_EQ(TypeParam::Login(this->object()), -5);
  EXPECT_EQ(this->object().FtpLogout(), -5);
  EXPECT_THAT(this->TakeCalls(), ElementsAre(TypeParam::kLogin, "FtpLogout"));
  for (const int kind : kKinds) {
    const Texts calls = {kAdds[kind] + std::string(" f,s"), "GetLastResult", TypeParam::kRuns[kind],
                         "GetLastResult", "IsOperatorFileSuc f"};
    EXPECT_EQ(this->Add(kind, "f", "s"), 9);
    EXPECT_EQ(this->Run(kind), std::pair(9L, -5L));
    EXPECT_EQ(this->TakeCalls(), calls);
    if (kind == 2) break;
    auto& fresh = this->object_.emplace();
    EXPECT_EQ(kind == 0 ? fresh.UploadOneFile("f", "s", 7) : fresh.DownloadOneFile("f", "s", 7), 9);
    EXPECT_EQ(this->TakeCalls(), calls);
  }
  EXPECT_EQ(this->script_->factory_calls, 3);
  EXPECT_EQ(this->script_->alive, 1);
}

TYPED_TEST(Queues, LogSingleCallsThatDoNotGiveZero) {
  for (const long result : {0L, 1L, -5L}) {
    for (const char* const method : kSingles) this->script_->results[method] = result;
    this->script_->other_answer = result;
    EXPECT_THAT(this->SingleCalls(), testing::Each(result));
    EXPECT_THAT(this->TakeCalls(), ElementsAre("DeleteServerFile %s", "DeleteServerPath %d",
                                               "RenameServerFile o,n", "IsOperatorFileSuc q"));
    const Texts logs = TypeParam::SingleLogs(std::to_string(result));
    EXPECT_THAT(this->TakeLogs(), ElementsAreArray(result == 0 ? Texts() : logs));
  }
}

TYPED_TEST(Queues, ReportWhatFailed) {
  const struct {
    std::vector<long> answers;
    long count;
    std::string report;  // after the label
  } cases[] = {
      {{}, 0, ""},
      {{}, -1, " 0 Files FAIL\n"},
      {{1}, -1, ""},
      {{0}, kMost, " Fail:  s0(f0)"},
      {{-100}, 0, " Fail:  s0(f0)"},
      {{0, 0, 0}, 3, ""},
      {{0, 0, 0}, kMost, ""},
      {{1, 1}, 1, " 2 Files FAIL\n"},
      {{0, 5}, kLeast, " 2 Files FAIL\n\t\t\t<1> s0(f0)\n\t\t\t<2> s1(f1)\n"},
      {{0, 1, 0}, 1, " 3 Files FAIL\n\t\t\t<1> s0(f0)\n\t\t\t<1> s0(f0)\n\t\t\t<2> s2(f2)\n"},
  };
  for (const auto& [answers, succeeded, behind_label] : cases) {
    for (const int kind : kKinds) {
      for (const long result : {0L, -8L}) {  // also of a run that came out well
        SCOPED_TRACE(std::to_string(kind) + behind_label + std::to_string(result));
        this->object_.reset();
        for (std::size_t i = 0; i < answers.size(); ++i) {
          this->Add(kind, "f" + std::to_string(i), "s" + std::to_string(i));
          this->script_->answers["f" + std::to_string(i)] = answers[i];
        }
        this->script_->results[kRuns[kind]] = succeeded;
        this->script_->results["GetLastResult"] = result;
        EXPECT_EQ(this->Run(kind).first, result);
        const bool asks = answers.size() == 1 || (answers.size() > 1 && !behind_label.empty());
        EXPECT_EQ(this->TakeCalls().back() != "GetLastResult", asks);
        const std::string report = TypeParam::kLabels[kind] + behind_label;
        const Texts sent = {report + TypeParam::Suffix(kind, result)};
        EXPECT_THAT(this->TakeLogs(), ElementsAreArray(behind_label.empty() ? Texts() : sent));
        EXPECT_EQ(this->object().GetFailInfo(kind, succeeded),
                  behind_label.empty() ? "" : report.c_str());
        EXPECT_EQ(this->object().GetFailInfo(kind == 0 ? 3 : -kind, succeeded), "");
        EXPECT_THAT(this->TakeLogs(), IsEmpty());
      }
    }
  }
}

TYPED_TEST(Queues, StartAnewAfterARunThatSucceeded) {
  for (const int kind : kKinds) {
    const auto run = [&](long result) {
      this->script_->results["GetLastResult"] = result;
      this->Run(kind);
    };
    this->Add(kind, "a", "1");
    run(4);
    this->Add(kind, "b", "2");
    run(0);
    EXPECT_EQ(this->Queued(kind), " 2 Files FAIL\n\t\t\t<1> 1(a)\n\t\t\t<2> 2(b)\n");
    run(4);  // leaves the mark of the one before
    this->Add(kind, "c", "3");
    EXPECT_EQ(this->Queued(kind), " Fail:  3(c)");
    this->Add(kind, "d", "4");
    EXPECT_EQ(this->Queued(kind), " 2 Files FAIL\n\t\t\t<1> 3(c)\n\t\t\t<2> 4(d)\n");
  }
}

TYPED_TEST(Queues, AreEmptiedByLoginAndLogout) {
  using Object = typename TypeParam::Object;
  std::vector<std::function<long(Object&)>> calls = {
      TypeParam::Login, [](Object& object) { return object.FtpLogout(); }};
  if constexpr (TypeParam::kIsFtp) {
    calls.push_back([](Object& object) { return object.AddFtpServer("h", 1, "u", "p"); });
  }
  this->script_->absent = true;  // which changes nothing about it
  for (const auto& call : calls) {
    for (const int kind : kKinds) this->Add(kind, "a", "b");
    EXPECT_EQ(call(this->object()), -100);
    for (const int kind : kKinds) {
      EXPECT_EQ(this->object().GetFailInfo(kind, 0).IsEmpty(), kind == 0 || !TypeParam::kIsFtp);
    }
  }
}

TYPED_TEST(Queues, PassFailedCallsOnAsExceptions) {
  const auto fails = [&](const char* method, const std::function<void()>& call) {
    SCOPED_TRACE(method);
    constexpr auto kRefused = static_cast<HRESULT>(0x80070005);
    this->script_->hresults = {{method, kRefused}};
    try {
      call();
      ADD_FAILURE() << "no exception";
    } catch (const _com_error& error) {
      EXPECT_EQ(error.Error(), kRefused);
      EXPECT_TRUE(Names(error, TypeParam::kInterface));
    }
    this->script_->hresults.clear();
    EXPECT_THAT(this->TakeLogs(), IsEmpty());
  };
  auto& object = this->object();
  fails("FtpLogout", [&] { object.FtpLogout(); });
  this->Add(0, "before", "the login");  // goes with it, although it fails
  fails("FtpLogin", [&] { TypeParam::Login(object); });
  fails("DeleteServerFile", [&] { object.DeleteServerFile("x"); });
  fails("DeleteServerPath", [&] { object.DeleteServerPath("x"); });
  fails("RenameServerFile", [&] { object.RenameServerFile("x", "y"); });
  fails("IsOperatorFileSuc", [&] { object.IsOperatorFileSuc("x"); });
  for (const int kind : kKinds) {
    fails(kAdds[kind], [&] { this->Add(kind, "x", "y"); });
    fails("GetLastResult", [&] { this->Add(kind, "x", "y"); });
    this->Add(kind, "a", "b");
    this->script_->results[kRuns[kind]] = 3;
    fails(kRuns[kind], [&] { this->Run(kind); });
    EXPECT_EQ(this->count_, 0);
    fails("GetLastResult", [&] { this->Run(kind); });
    EXPECT_EQ(this->count_, 3);
    this->Add(kind, "c", "d");
    EXPECT_EQ(this->Queued(kind), " 2 Files FAIL\n\t\t\t<1> b(a)\n\t\t\t<2> d(c)\n");
    // The queue is marked before the report is requested.
    this->script_->results[kRuns[kind]] = 0;
    fails("IsOperatorFileSuc", [&] { this->Run(kind); });
    this->Add(kind, "e", "f");
    EXPECT_EQ(this->Queued(kind), " Fail:  f(e)");
  }
}

TYPED_TEST(Queues, DoWithoutAComponent) {
  this->script_->absent = true;
  EXPECT_THAT(this->SingleCalls(), testing::Each(-100));
  EXPECT_EQ(this->script_->factory_calls, TypeParam::kIsFtp ? 4 * kTries : 1);
  EXPECT_THAT(this->TakeLogs(), ElementsAreArray(TypeParam::SingleLogs("-100")));
  for (const int kind : kKinds) {
    EXPECT_EQ(this->Add(kind, "a", "b"), -100);
    EXPECT_EQ(this->Run(kind), std::pair(-100L, 0L));
    EXPECT_THAT(this->TakeLogs(), ElementsAre(std::string(TypeParam::kLabels[kind]) +
                                              " Fail:  b(a)" + TypeParam::Suffix(kind, -100)));
    this->Add(kind, "c", "d");
    EXPECT_EQ(this->Queued(kind), " 2 Files FAIL\n\t\t\t<1> b(a)\n\t\t\t<2> d(c)\n");
  }
  EXPECT_THAT(this->TakeCalls(), IsEmpty());
  this->script_->absent = false;
  EXPECT_EQ(this->object().FtpLogout(), TypeParam::kIsFtp ? 0 : -100);
}

using FtpQueues = Queues<Ftp>;

TEST_F(FtpQueues, MakeTheComponentWhenItIsNeededAndEndIt) {
  static_assert(std::is_polymorphic_v<CRvoFtp> && !std::has_virtual_destructor_v<CRvoFtp>);
  object();
  EXPECT_EQ(script_->factory_calls, 0);
  script_->results["AddFtpServer"] = 6;
  EXPECT_EQ(object().AddFtpServer("h", 70000, "u", "p"), 6);
  EXPECT_EQ(object().AddFtpServer("h", 40000, "u", "p"), 6);
  EXPECT_THAT(TakeCalls(), ElementsAre("AddFtpServer h,4464,u,p", "AddFtpServer h,-25536,u,p"));
  EXPECT_EQ(script_->alive, 1);
  object_.reset();
  EXPECT_EQ(script_->alive, 0);
  script_->absent = true;
  EXPECT_EQ(object().SetFtpTransModel(1, 1), -100);
  CRvoFtpClient client;
  CRvoFtpFiles queue(&client);
  queue.Add("f", "s");
  for (const int kind : {-1, 3}) EXPECT_EQ(queue.GetFailInfo(kind, 0), " Fail:  s(f)");
}

TEST_F(FtpQueues, SetTheModes) {
  script_->hresults = {{"SetTransModel1", 3}, {"SetTransModel2", 6}};
  EXPECT_EQ(object().SetFtpTransModel(2, 1), 6);
  EXPECT_EQ(object().SetFtpTransModel(1, -1), 6);
  EXPECT_THAT(TakeCalls(), ElementsAre("SetTransModel1 0", "SetTransModel2 1", "SetTransModel1 1",
                                       "SetTransModel2 0"));
  for (const char* const method : {"SetTransModel1", "SetTransModel2"}) {
    script_->hresults = {{method, -1}};
    EXPECT_THROW(object().SetFtpTransModel(1, 1), _com_error);
  }
}

using CloudQueues = Queues<Cloud>;

TEST_F(CloudQueues, AreSharedByCopiesUntilTheLastEnds) {
  static_assert(sizeof(CRvoCloudStorage) == 5 * sizeof(void*));
  static_assert(std::has_virtual_destructor_v<CRvoCSCFiles>);
  CRvoCloudStorage other;
  {
    CRvoCloudStorage source;
    EXPECT_EQ(script_->alive, 2);
    CRvoCloudStorage copy(source);
    copy.AddUploadFile("a", "b");
    source.AddDownloadFile("c", "d");
    source.AddCopyServerFile("e", "f");
    const CRvoCloudStorage& itself = copy;
    copy = itself;
    other = copy;
    EXPECT_EQ(script_->alive, 1);
  }
  script_->other_answer = 0;
  EXPECT_EQ(other.GetFailInfo(0, 0), "CSCUp Fail:  b(a)");
  EXPECT_EQ(other.GetFailInfo(1, 0), "CSCDown Fail:  d(c)");
  EXPECT_EQ(other.GetFailInfo(2, 0), "CSCCopy Fail:  f(e)");
  EXPECT_EQ(script_->alive, 1);
  other = CRvoCloudStorage();
  EXPECT_EQ(script_->factory_calls, 3);
  EXPECT_EQ(script_->alive, 1);
}

}  // namespace
}  // namespace qv::test
