// Calls that another thread cancels, as hosts do it.
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include "EndToEnd.h"
#include "tests/support/HttpSide.h"
#include "tests/support/ScriptedServer.h"

namespace qv {
namespace {

using Clock = std::chrono::steady_clock;

// Generous, because the tests may run on a busy machine.
constexpr std::chrono::milliseconds kSoon{500};

const char kEndless[] =
    "with recursive c(x) as (select 1 union all select x + 1 from c) select count(*) from c";

class Cancel : public EndToEnd {
 protected:
  Cancel() {
    CRvoDatabase::m_NeedUpdateCompressState = 0;
    CRvoCancel::SetForThread(&cancel_);
  }
  ~Cancel() override {
    CRvoCancel::SetForThread(nullptr);
    CRvoServer::UseLocalDB(0);
    CRvoServer::CareOpenDBConn(1);
  }

  // Runs `call`, and cancels it from another thread so long after its beginning.
  int Cancelled(const std::function<int()>& call, std::chrono::milliseconds after) {
    cancel_.Reset();
    std::mutex mutex;
    std::condition_variable returned;
    bool has_returned = false;
    Clock::time_point since = Clock::time_point::max();
    std::thread other([&] {
      std::unique_lock lock(mutex);
      returned.wait_for(lock, after, [&] { return has_returned; });
      since = Clock::now();
      cancel_.Cancel();
      cancel_.Cancel();
    });
    const int result = call();
    const Clock::time_point end = Clock::now();
    {
      const std::lock_guard lock(mutex);
      has_returned = true;
    }
    returned.notify_all();
    other.join();
    EXPECT_LT(end - since, kSoon);
    EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kCancelled);
    EXPECT_EQ(CRvoServer::GetLastErrorText(), "cancelled");
    return result;
  }

  static int Select(const char* text, RowsCall call = CRvoDatabase::SelectSQL) {
    CRvoDbRes rows;
    const CString sql(text);
    return call(&sql, &rows, "DESIGNDB", 0);
  }

  CRvoCancel cancel_;
};

TEST_F(Cancel, EndsEveryKindOfCallOverBothTransports) {
  const std::string file = folder_.Write("a.dwg", "content");
  const std::function<int()> calls[] = {
      [] { return Select("select 1"); },
      [] { return Execute("update x"); },
      [] { return Select("exec x", CRvoDatabase::ExecuteSP); },
      [] {
        return ExecuteBatch({"update x", "update y"});
      },
      [&] { return CRvoFile::UpLoadFileToServer(file.c_str(), "a.dwg"); },
      [&] { return CRvoFile::DownLoadServerFile(file.c_str(), "a.dwg"); },
  };
  constexpr std::size_t kOverTheWeb = 3;  // the others always go over the socket
  for (const bool web : {false, true}) {
    // Takes requests, and never answers.
    const ScriptedServer server([&](ServerSide& side) {
      const std::string stored = folder_.At("stored");
      WholeFrame request;
      HttpRequestSeen web_request;
      while (web ? ReceiveHttp(side, web_request, stored) : side.Receive(request, stored)) {
      }
    });
    ConnectTo(server.Port(), web);
    for (std::size_t i = 0; i < (web ? kOverTheWeb : std::size(calls)); ++i) {
      SCOPED_TRACE(std::to_string(i) + (web ? " over the web" : ""));
      EXPECT_EQ(Cancelled(calls[i], std::chrono::milliseconds(250)), -2);
    }
    cancel_.Reset();
    cancel_.Cancel();
    EXPECT_EQ(Select("select 1"), -1) << "nothing is sent after a cancel";
    EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kCancelled);
  }
}

TEST_F(Cancel, MakesTheServerStopItsWork) {
  StandInOptions options = Options();
  options.http_port = 0;
  const auto server = Serve(options);
  CRvoDatabase::m_NeedUpdateCompressState = 0;
  for (const bool web : {false, true}) {
    ConnectTo(web ? server->HttpPort() : server->Port(), web);
    const std::size_t before = server->Served().size();
    // A cancel may come before the connection, which gives -1.
    for (const int after : {0, 1, 3, 10, 100}) {
      const int result =
          Cancelled([] { return Select(kEndless); }, std::chrono::milliseconds(after));
      EXPECT_TRUE(result == -1 || result == -2) << result;
    }
    const Clock::time_point end = Clock::now() + std::chrono::seconds(2);
    while (server->Served().size() == before && Clock::now() < end) std::this_thread::yield();
    ASSERT_GT(server->Served().size(), before);
    EXPECT_EQ(server->Served().back().error_class, error::kCancelled);
    cancel_.Reset();
    EXPECT_EQ(Rows("select 1 as a"), "1|\n");
  }
}

TEST_F(Cancel, EndsTheStatementOfADriver) {
  CRvoServer::UseLocalDB(1);
  const std::string file = (folder_.Path() / "direct.sqlite").generic_string();
  const std::string text = "Driver=SQLite3;Database=" + file;
  ASSERT_EQ(CRvoServer::OpenLocalDB("DESIGNDB", text.c_str()), 1);
  EXPECT_EQ(Execute("create table t (a)"), 0);
  const std::string insert = "insert into t " + std::string(kEndless);
  const std::function<int()> calls[] = {[] { return Select(kEndless); },
                                        [&] { return Execute(insert.c_str()); }};
  for (const auto& call : calls) {
    for (const int after : {0, 1, 30, 100}) {
      EXPECT_EQ(Cancelled(call, std::chrono::milliseconds(after)), 1);
    }
  }
  // A call that waits for another one on the same database ends as well.
  CRvoCancel other;
  std::thread holder([&] {
    CRvoCancel::SetForThread(&other);
    EXPECT_EQ(Select(kEndless), 1);
    CRvoCancel::SetForThread(nullptr);
  });
  EXPECT_EQ(Cancelled([] { return Select(kEndless); }, std::chrono::milliseconds(30)), 1);
  other.Cancel();
  holder.join();
  cancel_.Reset();
  EXPECT_EQ(Rows("select count(*) from t"), "0|\n");
  EXPECT_EQ(CRvoServer::GetLastErrorClass(), error::kNone);
  CRvoServer::CloseLocalDB("DESIGNDB");
}

TEST_F(Cancel, BelongsToItsThreadAsLongAsItExists) {
  EXPECT_EQ(CRvoCancel::GetForThread(), &cancel_);
  std::thread([] { EXPECT_EQ(CRvoCancel::GetForThread(), nullptr); }).join();
  {
    CRvoCancel short_lived;
    CRvoCancel::SetForThread(&short_lived);
    short_lived.Cancel();
    EXPECT_EQ(short_lived.IsCancelled(), 1);
  }
  EXPECT_EQ(CRvoCancel::GetForThread(), nullptr);
  const auto server = Serve(Options());
  EXPECT_EQ(Rows("select 1 as a"), "1|\n");
}

}  // namespace
}  // namespace qv
