// Servers and disks that fail while a query is on its way: each gives its documented code and
// leaves no file behind.
#include <gtest/gtest.h>
#include <qvnetcall/QvNetCall4.h>
#include <sys/resource.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

#include "message/LittleEndian.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/TempFolder.h"

namespace qv {
namespace {

// While it lives, no file of this process grows over `bytes`, as on a full disk.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int);
};

std::string Number(std::uint32_t number) {
  std::string bytes(sizeof number, '\0');
  StoreU32(bytes.data(), number);
  return bytes;
}

std::array<unsigned char, kFrameHeaderSize> ReplyHeader(
    std::uint64_t payload_length, std::optional<std::uint64_t> file_length = std::nullopt) {
  return EncodeHeader({FrameKind::kReply, 0, payload_length, file_length});
}

class FailingServer : public testing::Test {
 protected:
  FailingServer() {
    CRvoServer::InitNet();
    std::filesystem::create_directory(folder_.Path() / "temp");
    CRvoDatabase::SetFileTempInfo((folder_.Path() / "temp/").c_str());
    CRvoServer::SetNetClientPara("io_timeout_ms", "300");
    CRvoServer::SetNetClientPara("connect_timeout_ms", "1000");
    CRvoDatabase::m_NeedUpdateCompressState = 0;  // one exchange per query
  }
  ~FailingServer() override {
    CRvoServer::SetNetClientPara("io_timeout_ms", "30000");
    CRvoServer::SetNetClientPara("connect_timeout_ms", "5000");
    CRvoServer::FinitNet();
    CRvoDatabase::Ini();
  }

  // A recordset of that many rows, with text enough to be large.
  static std::string Rowset(int rows) {
    std::string text =
        "<xml><s:Schema><s:ElementType name='row'><s:AttributeType name='A' dt:type='string'>"
        "</s:AttributeType></s:ElementType></s:Schema><rs:data>";
    for (int i = 0; i < rows; ++i) text += "<z:row A='" + std::string(60, 'x') + "'/>\n";
    return text + "</rs:data></xml>";
  }
  int SelectFrom(const char* server, long port) {
    CRvoServer::SetConinfo(server, port);
    CRvoDbRes rows;
    const CString sql("select 1");
    return CRvoDatabase::SelectSQL(&sql, &rows, "DESIGNDB", 0);
  }
  // Queries a server that plays this script for each connection.
  int SelectFrom(const ScriptedServer::Script& script) {
    const ScriptedServer server(script);
    return SelectFrom("127.0.0.1", server.Port());
  }
  // A script that receives the query, then does this.
  static ScriptedServer::Script AfterRequest(std::function<void(ServerSide&)> act) {
    return [act](ServerSide& side) {
      WholeFrame request;
      if (side.Receive(request)) act(side);
    };
  }
  void ExpectNothingLeft() const {
    EXPECT_TRUE(std::filesystem::is_empty(folder_.Path() / "temp"))
        << std::filesystem::directory_iterator(folder_.Path() / "temp")->path();
  }

  const std::string in_reply_ = Field("SUCCESS") + Field(Number(1)) + Field("MEMORY");
  const std::string in_file_ = Field("SUCCESS") + Field(Number(1)) + Field("FILE");
  TempFolder folder_;
};

TEST_F(FailingServer, CannotBeReached) {
  EXPECT_EQ(SelectFrom("no-such-host.invalid", 4000), -1);
  std::uint16_t port = 0;
  {
    const ScriptedServer server(ScriptedServer::Echo);
    port = server.Port();
  }
  EXPECT_EQ(SelectFrom("127.0.0.1", port), -1);
  ExpectNothingLeft();
}

TEST_F(FailingServer, HangsUpOrSaysNothing) {
  EXPECT_EQ(SelectFrom(AfterRequest([](ServerSide&) {})), -2);
  EXPECT_EQ(SelectFrom(AfterRequest([](ServerSide& side) {
              WholeFrame never;
              static_cast<void>(side.Receive(never));
            })),
            -2);
  ExpectNothingLeft();
}

TEST_F(FailingServer, SendsWhatIsNoFrame) {
  EXPECT_EQ(SelectFrom(AfterRequest([](ServerSide& side) {
              const std::string noise(4096, '\xFF');
              static_cast<void>(side.Write({BytesOfText(noise)}));
            })),
            -3);
  EXPECT_EQ(SelectFrom(AfterRequest([](ServerSide& side) {
              auto header = ReplyHeader(1ULL << 32);
              static_cast<void>(side.Write({header}));
            })),
            -3);
  EXPECT_EQ(SelectFrom(AfterRequest([](ServerSide& side) {
              const auto header = ReplyHeader(4);
              const std::string rest(kFrameBlockSize + 4 + kFrameChecksumSize, 'x');
              static_cast<void>(side.Write({header, BytesOfText(rest)}));
            })),
            -3);
  ExpectNothingLeft();
}

TEST_F(FailingServer, HangsUpInTheMiddleOfAFile) {
  const std::string payload = in_file_;
  const auto script = AfterRequest([payload](ServerSide& side) {
    const auto header = ReplyHeader(payload.size(), 1 << 20);
    const std::string block(kFrameBlockSize, '\0');
    std::string checksum(kFrameChecksumSize, '\0');
    StoreU32(checksum.data(), Crc32(Crc32(0, BytesOfText(block)), BytesOfText(payload)));
    const std::string bytes(5000, 'f');
    const auto chunk = EncodeChunk({.length = 5000, .checksum = Crc32(0, BytesOfText(bytes))});
    static_cast<void>(side.Write({header, BytesOfText(block), BytesOfText(payload),
                                  BytesOfText(checksum), chunk, BytesOfText(bytes)}));
  });
  EXPECT_EQ(SelectFrom(script), -2);
  ExpectNothingLeft();
}

TEST_F(FailingServer, AnswersOnToAFullDisk) {
  const std::string rowset = Rowset(3000);
  const std::string file = folder_.Write("answer.xml", rowset);
  const auto memory =
      AfterRequest([&](ServerSide& side) { side.Reply(in_reply_ + Field(rowset)); });
  const auto streamed = AfterRequest([&](ServerSide& side) {
    auto outgoing = OutgoingFile::Open(file);
    ASSERT_TRUE(outgoing);
    side.Reply(in_file_, &*outgoing);
  });
  EXPECT_EQ(SelectFrom(memory), 0);
  EXPECT_EQ(SelectFrom(streamed), 0);
  const FullDisk full(100000);
  EXPECT_EQ(SelectFrom(memory), 1);  // half an answer is none
  EXPECT_EQ(SelectFrom(streamed), -3);
  ExpectNothingLeft();
}

}  // namespace
}  // namespace qv
