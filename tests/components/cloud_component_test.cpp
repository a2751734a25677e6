// The cloud component as a host uses it.
#include <gmock/gmock.h>

#include <memory>

#include "ComponentCall.h"
#include "S3ServerTest.h"
#include "qvnetcall/transfer/Extensions.h"
#include "qvnetcall/transfer/QvCoCSC.h"
#include "qvnetcall/transfer/ResultCodes.h"

namespace qv::components {

namespace {

using testing::IsEmpty;
using testing::SizeIs;

class CloudComponentTest : public S3ServerTest {
 protected:
  struct Ending {
    void operator()(IQvCoCSC* cloud) const { cloud->Release(); }
  };

  template <class... Parameters, class... Arguments>
  long Ask(HRESULT (IQvCoCSC::*call)(Parameters...), const Arguments&... arguments) const {
    return ResultOf(cloud_.get(), call, arguments...);
  }
  long LogIn(const char* host, const char* user, const char* password, long style) const {
    return Ask(&IQvCoCSC::FtpLogin, host, static_cast<short>(Port()), user, password, style);
  }
  long LogIn(long style = 0) const { return LogIn("http://localhost", kAccess, kSecret, style); }
  long Upload(long option = 0) const { return Ask(&IQvCoCSC::UploadFile, option, -1L); }
  long Download(long option = 0) const { return Ask(&IQvCoCSC::DownloadFile, 1L, option, -1L); }
  long Copy() const { return Ask(&IQvCoCSC::CopyServerFile, 0L); }
  long Result() const { return Ask(&IQvCoCSC::GetLastResult); }
  void PutObject(const std::string& name, const std::string& bytes) {
    cloud_->AddUploadFile(folder_.Write("source", bytes).c_str(), name.c_str());
    ASSERT_EQ(Upload(), 1) << name;
  }
  std::string GetObject(const std::string& name) {
    cloud_->AddDownloadFile(name.c_str(), Local("fetched").c_str());
    return Download() == 1 ? BytesOf(Local("fetched")) : "no object";
  }

  std::unique_ptr<IQvCoCSC, Ending> cloud_{QvCoCSCCreate()};
};

struct Way {
  long style;
  long option;
};
class CloudComponentQueueTest : public CloudComponentTest,
                                public testing::WithParamInterface<Way> {};

// Names that have to be encoded, of all lengths from nothing to some hundred thousand bytes.
std::string NameOf(int i) { return std::to_string(i) + (i % 7 == 0 ? " +%~ 图纸'&.dwg" : ".dwg"); }
std::size_t LengthOf(int i) { return static_cast<std::size_t>(i * i * i) % 300007; }

TEST_P(CloudComponentQueueTest, MovesEverythingThoughTheConnectionIsCut) {
  constexpr int kFiles = 200;
  // Ten files with more bytes than get through before the connection ends, once in each direction.
  std::vector<std::string> cuts;
  for (int i = 50; i < 60; ++i) {
    const std::string file = "/in/" + std::to_string(i) + "[.%]";
    cuts.push_back("1 cut-request 90000 ^PUT .*" + file);
    cuts.push_back("1 cut-answer 90000 ^GET .*" + file);
  }
  Serve(cuts);
  ASSERT_EQ(LogIn(GetParam().style), QvTransfer_Success);
  for (int i = 0; i < kFiles; ++i) {
    const std::string local =
        folder_.Write(NameOf(i), Bytes(LengthOf(i), static_cast<unsigned>(i)));
    cloud_->AddUploadFile(local.c_str(), ("\\bucket\\in/" + NameOf(i)).c_str());
    cloud_->AddDownloadFile(("bucket/in/" + NameOf(i)).c_str(), Local("got/" + NameOf(i)).c_str());
  }
  const auto run = [&](long count_of_first, auto move, auto path) {
    long count = move();
    if (GetParam().option == 0) {
      EXPECT_EQ(count, count_of_first);
      EXPECT_EQ(Result(), QvTransfer_Broken);
      for (int i = 0; i < kFiles; ++i) {
        EXPECT_EQ(Ask(&IQvCoCSC::IsOperatorFileSuc, path(i).c_str()), i / 10 != 5) << path(i);
      }
      count = move();
    }
    EXPECT_EQ(count, kFiles);
    EXPECT_EQ(Result(), QvTransfer_Success);
  };
  const long option = GetParam().option;
  run(
      kFiles - 10, [&] { return Upload(option); }, [&](int i) { return Local(NameOf(i)); });
  run(
      kFiles - 10, [&] { return Download(option); },
      [](int i) { return "bucket/in/" + NameOf(i); });
  for (int i = 0; i < kFiles; ++i) {
    EXPECT_TRUE(BytesOf(Local("got/" + NameOf(i))) == BytesOf(Local(NameOf(i)))) << NameOf(i);
  }
  EXPECT_THAT(Requests(" 206 "), SizeIs(10));
}

INSTANTIATE_TEST_SUITE_P(Ways, CloudComponentQueueTest, testing::Values(Way{0, 0}, Way{1, 2}));

TEST_F(CloudComponentTest, TellsWhatIsWrongWithALogin) {
  Serve();
  struct Login {
    const char* host;
    const char* user;
    const char* password;
    long style;
    long result;
  };
  for (const Login& login :
       {Login{"http://127.0.0.1", kAccess, kSecret, 0, QvTransfer_Success},
        Login{"http://127.0.0.1", kAccess, "another", 0, QvTransfer_LoginRefused},
        Login{"http://127.0.0.1", "another", kSecret, 0, QvTransfer_LoginRefused},
        Login{"http://127.0.0.1", "", kSecret, 0, QvTransfer_BadArgument},
        Login{"http://127.0.0.1", "a\r\nb", kSecret, 0, QvTransfer_BadArgument},
        Login{"http://127.0.0.1", kAccess, kSecret, 1, QvTransfer_BadArgument},
        Login{"http://localhost", kAccess, kSecret, 2, QvTransfer_BadArgument},
        Login{"user@localhost", kAccess, kSecret, 0, QvTransfer_BadArgument},
        Login{"ftp://localhost", kAccess, kSecret, 0, QvTransfer_BadArgument},
        // The port does not speak TLS.
        Login{"localhost", kAccess, kSecret, 0, QvTransfer_CannotConnect}}) {
    EXPECT_EQ(LogIn(login.host, login.user, login.password, login.style), login.result)
        << login.host << " " << login.user << " " << login.style;
  }
  EXPECT_EQ(Ask(&IQvCoCSC::DeleteServerFile, "bucket/a"), QvTransfer_NotLoggedIn);
  server_->Kill();
  EXPECT_EQ(LogIn(), QvTransfer_CannotConnect);
}

TEST_F(CloudComponentTest, GoesOnWithADownloadOnlyWhileTheObjectIsTheSame) {
  Serve({"2 cut-answer 300000 ^GET /bucket"});
  ASSERT_EQ(LogIn(), QvTransfer_Success);
  PutObject("bucket/a", Bytes(700000, 1));
  cloud_->AddDownloadFile("bucket/a", Local("a").c_str());
  EXPECT_EQ(Download(1), 0);
  EXPECT_EQ(Result(), QvTransfer_Broken);
  EXPECT_THAT(Requests("GET /bucket/a 206 0 300000"), SizeIs(1)) << "what was there came again";
  const std::string changed = Bytes(700000, 2);
  PutObject("bucket/a", changed);
  EXPECT_EQ(Download(1), 1);
  EXPECT_TRUE(BytesOf(Local("a")) == changed);
  EXPECT_EQ(Download(), 1) << "what has succeeded is not moved again";
}

TEST_F(CloudComponentTest, CopiesAndRenamesAtTheServer) {
  Serve();
  ASSERT_EQ(LogIn(), QvTransfer_Success);
  PutObject("bucket/一 +%.dwg", "bytes");
  cloud_->AddCopyServerFile("bucket/一 +%.dwg", "bucket/copies/b~");
  cloud_->AddCopyServerFile("bucket/none", "bucket/copies/c");
  EXPECT_EQ(Copy(), 1);
  EXPECT_EQ(Result(), QvTransfer_NotFound);
  EXPECT_EQ(GetObject("bucket/copies/b~"), "bytes");
  const auto rename = [&](const char* from, const char* to) {
    return Ask(&IQvCoCSC::RenameServerFile, from, to);
  };
  EXPECT_EQ(rename("bucket/一 +%.dwg", "bucket/二"), QvTransfer_Success);
  EXPECT_EQ(rename("bucket/一 +%.dwg", "bucket/二"), QvTransfer_NotFound);
  EXPECT_EQ(rename("bucket/二", "/bucket/二"), QvTransfer_Success) << "it has that name";
  EXPECT_EQ(GetObject("bucket/二"), "bytes");
  EXPECT_EQ(Ask(&IQvCoCSC::DeleteServerFile, "bucket/二"), QvTransfer_Success);
  EXPECT_EQ(Ask(&IQvCoCSC::DeleteServerFile, "bucket/二"), QvTransfer_NotFound);
}

TEST_F(CloudComponentTest, DeletesFoldersOfAnyLengthAndNothingBeside) {
  Serve();
  ASSERT_EQ(LogIn(), QvTransfer_Success);
  EXPECT_EQ(Ask(&IQvCoCSC::DeleteServerPath, "many/folder"), QvTransfer_Success);
  EXPECT_THAT(Requests("POST /many\\?delete= 200"), SizeIs(3));
  EXPECT_EQ(Ask(&IQvCoCSC::DeleteServerPath, "many/folder"), QvTransfer_NotFound);
  EXPECT_EQ(GetObject("many/folder"), ".");
  EXPECT_EQ(GetObject("many/folder2/a"), ".");
  EXPECT_EQ(Ask(&IQvCoCSC::DeleteServerPath, "many/stuck"), QvTransfer_Refused);
  EXPECT_EQ(GetObject("many/stuck/locked"), ".");
  EXPECT_EQ(GetObject("many/stuck/a"), "no object");
  EXPECT_THAT(Requests("DELETE /many/stuck/%01 204"), SizeIs(1));
  for (const char* const path : {"many", "many/", "many//", "/", ""}) {
    EXPECT_EQ(Ask(&IQvCoCSC::DeleteServerPath, path), QvTransfer_BadArgument) << path;
  }
}

struct Fault {
  const char* text;
  long result;
};
class CloudComponentFaultTest : public CloudComponentTest,
                                public testing::WithParamInterface<Fault> {};

// Tries several calls; those that the fault does not concern succeed and are not counted.
TEST_P(CloudComponentFaultTest, IsTold) {
  Serve({GetParam().text});
  ASSERT_EQ(LogIn(), QvTransfer_Success);
  PutObject("bucket/a", Bytes(2000));
  cloud_->AddDownloadFile("bucket/a", Local("a").c_str());
  cloud_->AddCopyServerFile("bucket/a", "bucket/b");
  std::vector<long> results;
  Download();
  results.push_back(Result());
  Copy();
  results.push_back(Result());
  results.push_back(Ask(&IQvCoCSC::DeleteServerPath, "many/folder"));
  std::erase(results, long{QvTransfer_Success});
  EXPECT_THAT(results, testing::ElementsAre(GetParam().result));
}

INSTANTIATE_TEST_SUITE_P(
    Faults, CloudComponentFaultTest,
    testing::Values(Fault{"1 status 503 ^GET /bucket/a", QvTransfer_Broken},
                    Fault{"1 status 429 ^PUT /bucket/b", QvTransfer_Broken},
                    Fault{"1 status 307 ^GET /bucket/a", QvTransfer_Refused},
                    Fault{"1 status 403 ^HEAD", QvTransfer_Refused},
                    Fault{"1 skew 1000 ^PUT /bucket/b", QvTransfer_LoginRefused},
                    Fault{"1 error InternalError ^PUT /bucket/b", QvTransfer_Broken},
                    Fault{"1 error Unheard ^PUT /bucket/b", QvTransfer_BadAnswer},
                    Fault{"1 replace <html/> ^PUT /bucket/b", QvTransfer_BadAnswer},
                    Fault{"1 error SlowDown ^POST /many", QvTransfer_Broken},
                    Fault{"1 replace <html/> ^POST /many", QvTransfer_BadAnswer},
                    Fault{
                        "1 replace "
                        "<ListBucketResult><Contents><Key>else</Key></Contents></ListBucketResult>"
                        " ^GET /many",
                        QvTransfer_BadAnswer},
                    Fault{"9 replace "
                          "<ListBucketResult><IsTruncated>true</IsTruncated></ListBucketResult>"
                          " ^GET /many",
                          QvTransfer_BadAnswer},
                    Fault{"1 endless 5 ^GET /bucket/a", QvTransfer_BadAnswer},
                    Fault{"1 cut-answer 20 ^GET /many", QvTransfer_Broken}));

TEST_F(CloudComponentTest, KnowsItsParameters) {
  EXPECT_EQ(QvCoCSCSetParameter("part_bytes", "5242880"), 1);
  EXPECT_EQ(QvCoCSCSetParameter("part_bytes", "16777216"), 1);
  for (const auto& [name, value] :
       std::vector<std::pair<const char*, const char*>>{{"part_bytes", "5242879"},
                                                        {"part_bytes", "5368709121"},
                                                        {"part_bytes", "16777216 "},
                                                        {"region", ""},
                                                        {"region", "a\r\nb"},
                                                        {"unheard", "1"}}) {
    EXPECT_EQ(QvCoCSCSetParameter(name, value), 0) << name << "=" << value;
  }
}

}  // namespace

}  // namespace qv::components
