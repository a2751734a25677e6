// Both kinds of queues, each over its scripted component and a scripted server.
#include <gmock/gmock.h>

#include <limits>
#include <memory>
#include <optional>

#include "Script.h"
#include "message/LittleEndian.h"
#include "platform/Platform.h"
#include "qvnetcall/RvoCloudStorage.h"
#include "qvnetcall/RvoFtp.h"
#include "qvnetcall/transfer/ComError.h"
#include "tests/support/ModuleTest.h"
#include "transfer/posix/ComponentLibrary.h"

namespace qv::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

// Where the two classes differ.
struct Ftp {
  using Object = CRvoFtp;
  static constexpr const char* kLibrary = "libQvCoFtp.so";
  static constexpr ::GUID kInterface{
      0xDDE4AECC, 0xCD9D, 0x4BF8, {0x8C, 0x71, 0xD8, 0x52, 0xAC, 0xBB, 0x2A, 0x7A}};
  static constexpr const char* kLabels[] = {"FtpUp", "FtpDown", "FtpCopy"};
  static constexpr const char* kRuns[] = {"UploadFile 7", "DownloadFile 1,7", "CopyServerFile 7"};
  static constexpr const char* kLogin = "FtpLogin h,-3,u,p";
  static long Login(Object& object) { return object.FtpLogin("h", "u", "p", -3); }
  static constexpr bool kLoginEmpties[] = {true, false, false};
  static std::string Suffix(int, long) { return ""; }
  static Texts SingleLogs(const std::string&) {
    return {"FtpDelFile Fail %s", "FtpDelPath Fail %d", "FtpRenFile Fail o->n",
            "Ftp_IsOperatorFileSuc Fail q"};
  }
};

struct Cloud {
  using Object = CRvoCloudStorage;
  static constexpr const char* kLibrary = "libQvCoCSC.so";
  static constexpr ::GUID kInterface{
      0x90302F64, 0xB9C6, 0x471A, {0xAF, 0x28, 0x5D, 0xE9, 0x53, 0xCF, 0x55, 0x06}};
  static constexpr const char* kLabels[] = {"CSCUp", "CSCDown", "CSCCopy"};
  static constexpr const char* kRuns[] = {"UploadFile 7,-1", "DownloadFile 1,7,-1",
                                          "CopyServerFile 7"};
  static constexpr const char* kLogin = "FtpLogin h,-3,u,p,-9";
  static long Login(Object& object) { return object.FtpLogin("h", "u", "p", -3, -9); }
  static constexpr bool kLoginEmpties[] = {true, true, true};
  static std::string Suffix(int kind, long result) {
    return kind == 2 ? "" : ". Res:" + std::to_string(result) + ".";
  }
  static Texts SingleLogs(const std::string& result) {
    return {"CSCDelFile Fail %s. Res:" + result + ".", "CSCDelPath Fail %d. Res:" + result + ".",
            "CSCRenFile Fail o->n. Res:" + result + ".", "CSC_IsOperatorFileSuc Fail q"};
  }
};

template <class Kind>
class Queues : public ModuleTest {
 protected:
  using Object = typename Kind::Object;

  Queues() {
    UseServerType("TCP_IP");
    // Never closed, so that the script is the one that the components have.
    void* const library = platform::OpenLibrary(platform::ProgramFolder() + Kind::kLibrary);
    auto* const find = reinterpret_cast<TheScript*>(platform::FindFunction(library, "TheScript"));
    script_ = find();
    *script_ = Script();
  }

  // Makes the object anew when a test has changed what it finds.
  Object& object() {
    if (!object_) object_ = std::make_unique<Object>();
    return *object_;
  }
  long Add(int kind, const char* first, const char* second) {
    using Call = long (Object::*)(CString, CString);
    constexpr Call kAdds[] = {&Object::AddUploadFile, &Object::AddDownloadFile,
                              &Object::AddCopyServerFile};
    return (object().*kAdds[kind])(first, second);
  }
  long Run(int kind, long* count = nullptr) {
    using Call = long (Object::*)(long, long&);
    constexpr Call kRuns[] = {&Object::UploadFile, &Object::DownloadFile, &Object::CopyServerile};
    long ignored = 77;
    return (object().*kRuns[kind])(7, count != nullptr ? *count : ignored);
  }
  // The four calls that log on their own.
  std::vector<long> SingleCalls() {
    return {object().DeleteServerFile("%s"), object().DeleteServerPath("%d"),
            object().RenameServerFile("o", "n"), object().IsOperatorFileSuc("q")};
  }
  // The first paths of a queue, found by a report in which all failed.
  Texts Queued(int kind) {
    Texts paths;
    script_->hook = [&](const std::string& path) { paths.push_back(path); };
    static_cast<void>(object().GetFailInfo(kind, std::numeric_limits<long>::min()));
    script_->hook = [](const std::string&) {};
    script_->calls.clear();
    return paths;
  }
  Texts TakeCalls() { return std::exchange(script_->calls, {}); }
  // What was logged since the last question.
  Texts TakeLogs() {
    Texts logs;
    for (const SentRequest& request : transport_.requests) {
      EXPECT_EQ(request.command, 4u);
      EXPECT_EQ(LoadU32(request.fields.at(0).data()), 3u);
      logs.push_back(request.fields.at(1));
    }
    transport_.requests.clear();
    return logs;
  }

  Script* script_;
  std::unique_ptr<Object> object_;
};

using Kinds = testing::Types<Ftp, Cloud>;
TYPED_TEST_SUITE(Queues, Kinds);

TYPED_TEST(Queues, PassTheirCallsOnInTheComponentsOrder) {
  constexpr const char* kAdds[] = {"AddUploadFile f,s", "AddDownloadFile f,s",
                                   "AddCopyServerFile f,s"};
  for (const char* const method :
       {"FtpLogin", "FtpLogout", "UploadFile", "DownloadFile", "CopyServerFile", "RenameServerFile",
        "DeleteServerFile", "DeleteServerPath"}) {
    this->script_->results[method] = -5;
  }
  this->script_->results["GetLastResult"] = 9;
  this->script_->answers = {{"q", -5}, {"f", 1}};
  EXPECT_EQ(TypeParam::Login(this->object()), -5);
  EXPECT_THAT(this->TakeCalls(), ElementsAre(TypeParam::kLogin));
  for (const int kind : {0, 1, 2}) {
    EXPECT_EQ(this->Add(kind, "f", "s"), 9);
    EXPECT_THAT(this->TakeCalls(), ElementsAre(kAdds[kind], "GetLastResult"));
    long count = 77;
    EXPECT_EQ(this->Run(kind, &count), 9);
    EXPECT_EQ(count, -5);
    EXPECT_THAT(this->TakeCalls(),
                ElementsAre(TypeParam::kRuns[kind], "GetLastResult", "IsOperatorFileSuc f"));
  }
  EXPECT_EQ(this->object().FtpLogout(), -5);
  EXPECT_THAT(this->SingleCalls(), testing::Each(-5));
  EXPECT_THAT(this->TakeCalls(),
              ElementsAre("FtpLogout", "DeleteServerFile %s", "DeleteServerPath %d",
                          "RenameServerFile o,n", "IsOperatorFileSuc q"));
  EXPECT_EQ(this->object().UploadOneFile("f", "s", 7), 9);
  EXPECT_EQ(this->object().DownloadOneFile("g", "t", 7), 9);
  const Texts calls = this->TakeCalls();
  EXPECT_THAT(Texts(calls.begin(), calls.begin() + 4),
              ElementsAre(kAdds[0], "GetLastResult", TypeParam::kRuns[0], "GetLastResult"));
  EXPECT_THAT(calls, testing::IsSupersetOf({"AddDownloadFile g,t", TypeParam::kRuns[1]}));
  EXPECT_EQ(this->script_->factory_calls, 1);
}

TYPED_TEST(Queues, ReportWhatFailed) {
  constexpr long kLeast = std::numeric_limits<long>::min();
  constexpr long kMost = std::numeric_limits<long>::max();
  const struct {
    std::vector<long> answers;
    long count;
    std::string report;  // behind the label
  } cases[] = {
      {{}, 0, ""},
      {{}, -1, " 0 Files FAIL\n"},
      {{1}, -1, ""},
      {{0}, 1, " Fail:  s0(f0)"},
      {{2}, kMost, " Fail:  s0(f0)"},
      {{-100}, 0, " Fail:  s0(f0)"},
      {{0, 0, 0}, 3, ""},
      {{0, 0, 0}, kMost, ""},
      {{1, 1}, 1, " 2 Files FAIL\n"},
      {{0, 5}, kLeast, " 2 Files FAIL\n\t\t\t<1> s0(f0)\n\t\t\t<2> s1(f1)\n"},
      {{0, 1, 0}, 1, " 3 Files FAIL\n\t\t\t<1> s0(f0)\n\t\t\t<1> s0(f0)\n\t\t\t<2> s2(f2)\n"},
      {{1, 0, 1}, 2, " 3 Files FAIL\n\t\t\t<1> s1(f1)\n\t\t\t<1> s1(f1)\n"},
  };
  for (const auto& [answers, succeeded, behind_label] : cases) {
    for (const int kind : {0, 1, 2}) {
      // Also for a run that came out well.
      for (const long result : {0L, -8L}) {
        SCOPED_TRACE(std::to_string(kind) + behind_label + std::to_string(result));
        this->object_.reset();
        for (std::size_t i = 0; i < answers.size(); ++i) {
          const std::string at = std::to_string(i);
          this->Add(kind, ("f" + at).c_str(), ("s" + at).c_str());
          this->script_->answers["f" + at] = answers[i];
        }
        for (const char* const run : {"UploadFile", "DownloadFile", "CopyServerFile"}) {
          this->script_->results[run] = succeeded;
        }
        this->script_->results["GetLastResult"] = result;
        EXPECT_EQ(this->Run(kind), result);
        const std::string report =
            behind_label.empty() ? "" : TypeParam::kLabels[kind] + behind_label;
        const std::string sent = report + TypeParam::Suffix(kind, result);
        EXPECT_THAT(this->TakeLogs(), ElementsAreArray(report.empty() ? Texts() : Texts{sent}));
        EXPECT_EQ(this->object().GetFailInfo(kind, succeeded).View(), report);
        EXPECT_EQ(this->object().GetFailInfo(kind == 0 ? 3 : -kind, succeeded).View(), "");
        EXPECT_THAT(this->TakeLogs(), IsEmpty());
      }
    }
  }
}

TYPED_TEST(Queues, StartAnewAfterARunThatSucceeded) {
  for (const int kind : {0, 1, 2}) {
    this->Add(kind, "a", "1");
    this->script_->results["GetLastResult"] = 4;
    this->Run(kind);
    this->Add(kind, "b", "2");
    EXPECT_THAT(this->Queued(kind), ElementsAre("a", "b"));
    this->script_->results["GetLastResult"] = 0;
    this->Run(kind);
    EXPECT_THAT(this->Queued(kind), ElementsAre("a", "b"));
    // A run that fails leaves the mark of the one before.
    this->script_->results["GetLastResult"] = 4;
    this->Run(kind);
    this->Add(kind, "c", "3");
    this->Add(kind, "d", "4");
    EXPECT_THAT(this->Queued(kind), ElementsAre("c", "d"));
  }
}

TYPED_TEST(Queues, AreEmptiedByLoginAndLogout) {
  using Object = typename TypeParam::Object;
  std::vector<std::function<long(Object&)>> calls = {
      TypeParam::Login, [](Object& object) { return object.FtpLogout(); }};
  if constexpr (std::is_same_v<Object, CRvoFtp>) {
    calls.push_back([](Object& object) { return object.AddFtpServer("h", 1, "u", "p"); });
  }
  for (const auto& call : calls) {
    this->object_.reset();
    for (const int kind : {0, 1, 2}) this->Add(kind, "a", "b");
    call(this->object());
    for (const int kind : {0, 1, 2}) {
      EXPECT_EQ(this->Queued(kind).empty(), TypeParam::kLoginEmpties[kind]) << kind;
    }
  }
}

TYPED_TEST(Queues, LogEveryResultOfSingleCallsButNone) {
  for (const long result : {0L, 1L, 5L}) {
    for (const char* const method : {"DeleteServerFile", "DeleteServerPath", "RenameServerFile"}) {
      this->script_->results[method] = result;
    }
    this->script_->answers["q"] = result;
    this->SingleCalls();
    EXPECT_THAT(
        this->TakeLogs(),
        ElementsAreArray(result == 0 ? Texts() : TypeParam::SingleLogs(std::to_string(result))));
  }
}

TYPED_TEST(Queues, PassFailedCallsOnAsExceptions) {
  const auto fails = [&](const char* method, const std::function<long()>& call) {
    SCOPED_TRACE(method);
    constexpr auto kRefused = static_cast<HRESULT>(0x80070005);
    this->script_->hresults = {{method, kRefused}};
    try {
      call();
      ADD_FAILURE() << "no exception";
    } catch (const _com_error& error) {
      EXPECT_EQ(error.Error(), kRefused);
      EXPECT_EQ(error.GUID(), TypeParam::kInterface);
      EXPECT_NE(error.Interface(), nullptr);
    }
    this->script_->hresults.clear();
    EXPECT_THAT(this->TakeLogs(), IsEmpty());
  };
  auto& object = this->object();
  this->script_->answers["a"] = 0;
  fails("FtpLogin", [&] { return TypeParam::Login(object); });
  fails("FtpLogout", [&] { return object.FtpLogout(); });
  fails("DeleteServerFile", [&] { return object.DeleteServerFile("x"); });
  fails("DeleteServerPath", [&] { return object.DeleteServerPath("x"); });
  fails("RenameServerFile", [&] { return object.RenameServerFile("x", "y"); });
  fails("IsOperatorFileSuc", [&] { return object.IsOperatorFileSuc("x"); });
  constexpr const char* kAdds[] = {"AddUploadFile", "AddDownloadFile", "AddCopyServerFile"};
  constexpr const char* kRuns[] = {"UploadFile", "DownloadFile", "CopyServerFile"};
  for (const int kind : {0, 1, 2}) {
    fails(kAdds[kind], [&] { return this->Add(kind, "x", "y"); });
    fails("GetLastResult", [&] { return this->Add(kind, "x", "y"); });
    this->Add(kind, "a", "b");
    this->script_->results[kRuns[kind]] = 3;
    long count = 77;
    fails(kRuns[kind], [&] { return this->Run(kind, &count); });
    EXPECT_EQ(count, 0);
    fails("GetLastResult", [&] { return this->Run(kind, &count); });
    EXPECT_EQ(count, 3);
    this->Add(kind, "c", "d");
    EXPECT_THAT(this->Queued(kind), ElementsAre("a", "c"));
    // The queue is marked before the report asks.
    fails("IsOperatorFileSuc",
          [&] { return this->script_->results[kRuns[kind]] = 0, this->Run(kind); });
    this->Add(kind, "e", "f");
    EXPECT_THAT(this->Queued(kind), ElementsAre("e"));
  }
}

TYPED_TEST(Queues, DoWithoutAComponent) {
  constexpr bool kTriesAgain = std::is_same_v<typename TypeParam::Object, CRvoFtp>;
  this->script_->nulls = 1000;
  EXPECT_EQ(TypeParam::Login(this->object()), -100);
  EXPECT_EQ(this->object().FtpLogout(), -100);
  EXPECT_EQ(this->script_->factory_calls, kTriesAgain ? 2 : 1);
  EXPECT_THAT(this->SingleCalls(), testing::Each(-100));
  EXPECT_THAT(this->TakeLogs(), ElementsAreArray(TypeParam::SingleLogs("-100")));
  for (const int kind : {0, 1, 2}) {
    EXPECT_EQ(this->Add(kind, "a", "b"), -100);
    long count = 77;
    EXPECT_EQ(this->Run(kind, &count), -100);
    EXPECT_EQ(count, 0);
    EXPECT_THAT(this->TakeLogs(), ElementsAre(std::string(TypeParam::kLabels[kind]) +
                                              " Fail:  b(a)" + TypeParam::Suffix(kind, -100)));
  }
  if constexpr (kTriesAgain) {
    EXPECT_EQ(this->object().AddFtpServer("h", 1, "u", "p"), -100);
    EXPECT_EQ(this->object().SetFtpTransModel(1, 1), -100);
  }
  EXPECT_THAT(this->TakeCalls(), IsEmpty());
  this->script_->nulls = 0;
  EXPECT_EQ(this->object().FtpLogout(), kTriesAgain ? 0 : -100);
}

using FtpQueues = Queues<Ftp>;

TEST_F(FtpQueues, MakeTheComponentWhenItIsNeededAndEndIt) {
  object();
  EXPECT_EQ(script_->factory_calls, 0);
  EXPECT_EQ(object().AddFtpServer("h", 70000, "u", "p"), 0);
  EXPECT_EQ(object().AddFtpServer("h", 40000, "u", "p"), 0);
  EXPECT_THAT(TakeCalls(), ElementsAre("AddFtpServer h,4464,u,p", "AddFtpServer h,-25536,u,p"));
  EXPECT_EQ(script_->alive, 1);
  object_.reset();
  EXPECT_EQ(script_->alive, 0);
}

TEST_F(FtpQueues, SetTheModes) {
  script_->hresults = {{"SetTransModel1", 3}, {"SetTransModel2", 6}};
  EXPECT_EQ(object().SetFtpTransModel(2, 1), 6);
  EXPECT_EQ(object().SetFtpTransModel(1, -1), 6);
  EXPECT_THAT(TakeCalls(), ElementsAre("SetTransModel1 0", "SetTransModel2 1", "SetTransModel1 1",
                                       "SetTransModel2 0"));
  script_->hresults["SetTransModel1"] = -1;
  EXPECT_THROW(object().SetFtpTransModel(1, 1), _com_error);
  script_->hresults = {{"SetTransModel2", -1}};
  EXPECT_THROW(object().SetFtpTransModel(1, 1), _com_error);
}

using CloudQueues = Queues<Cloud>;

TEST_F(CloudQueues, AreSharedByCopiesUntilTheLastEnds) {
  static_assert(sizeof(CRvoCloudStorage) == 5 * sizeof(void*));
  CRvoCloudStorage other;
  EXPECT_EQ(script_->alive, 1);
  {
    CRvoCloudStorage source;
    EXPECT_EQ(script_->alive, 2);
    CRvoCloudStorage copy(source);
    copy.AddUploadFile("a", "b");
    source.AddCopyServerFile("c", "d");
    const CRvoCloudStorage& itself = copy;
    copy = itself;
    other = copy;
    EXPECT_EQ(script_->alive, 1);
  }
  EXPECT_EQ(script_->alive, 1);
  script_->answers = {{"a", 0}, {"c", 0}};
  EXPECT_EQ(other.GetFailInfo(0, 0).View(), "CSCUp Fail:  b(a)");
  EXPECT_EQ(other.GetFailInfo(2, 0).View(), "CSCCopy Fail:  d(c)");
  EXPECT_EQ(CRvoCloudStorage(other).FtpLogout(), 0);
  EXPECT_EQ(script_->alive, 1);
  other = CRvoCloudStorage();
  EXPECT_EQ(script_->factory_calls, 3);
  EXPECT_EQ(script_->alive, 1);
}

TEST(ComponentLibrary, HasAFileAndAFunction) {
  EXPECT_NE(FindFactory("libQvCoFtp.so", "QvCoFtpCreate"), nullptr);
  EXPECT_EQ(FindFactory("libQvCoFtp.so", "QvCoCscCreate"), nullptr);
  EXPECT_EQ(FindFactory("libQvCoNone.so", "QvCoFtpCreate"), nullptr);
}

TEST(ComError, SaysWhatFailed) {
  const std::pair<std::uint32_t, int> codes[] = {{0x800401FF, 0}, {0x80040200, 0},
                                                 {0x80040205, 5}, {0x8004FFFF, 0xFDFF},
                                                 {0x80050000, 0}, {0x00040205, 0}};
  for (const auto& [error, code] : codes) {
    EXPECT_EQ(_com_error(static_cast<HRESULT>(error), nullptr, {}).WCode(), code) << error;
  }
  std::optional<_com_error> first(std::in_place, -1, nullptr, ::GUID{});
  const _com_error copy(*first);
  first.reset();
  EXPECT_STREQ(copy.ErrorMessage(), "Call failed: 0xFFFFFFFF");
}

}  // namespace
}  // namespace qv::test
