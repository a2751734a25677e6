// Servers and disks that fail during a query: each failure returns its documented code and leaves
// no file.
#include <functional>

#include "EndToEnd.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/posix/FullDisk.h"

namespace qv {
namespace {

class FailingServer : public EndToEnd {
 protected:
  FailingServer() {
    CRvoServer::SetNetClientPara("io_timeout_ms", "300");
    CRvoServer::SetNetClientPara("connect_timeout_ms", "1000");
    CRvoDatabase::m_NeedUpdateCompressState = 0;  // one exchange per query
  }
  ~FailingServer() override {
    CRvoServer::SetNetClientPara("io_timeout_ms", "30000");
    CRvoServer::SetNetClientPara("connect_timeout_ms", "5000");
  }

  // Returns a recordset with that many rows and much text.
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
  // Runs a query on a server that runs this script for each connection.
  int SelectFrom(const ScriptedServer::Script& script) {
    const ScriptedServer server(script);
    return SelectFrom("127.0.0.1", server.Port());
  }
  // Returns a script that receives the query and then calls `act`.
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

  const std::string found_ = Field("SUCCESS") + Field({"\1\0\0\0", 4});
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

TEST_F(FailingServer, GivesNoWholeAnswer) {
  EXPECT_EQ(SelectFrom(AfterRequest([](ServerSide& side) {
              WholeFrame never;
              static_cast<void>(side.Receive(never));
            })),
            -2);
  const std::string right = ReplyWithFile();
  const std::pair<std::string, int> cases[] = {
      {"", -2},
      {right.substr(0, 150'000), -2},
      {std::string(4096, '\xFF'), -3},
      {HeaderOnly(wire::FrameKind::kReply, 1ULL << 32), -3},
      {Damaged(right, 306), -3}};
  for (const auto& [answer, result] : cases) {
    const auto script = AfterRequest([&](ServerSide& side) { side.Write({BytesOfText(answer)}); });
    EXPECT_EQ(SelectFrom(script), result) << answer.size();
    ExpectNothingLeft();
  }
}

TEST_F(FailingServer, AnswersOnToAFullDisk) {
  const std::string rowset = Rowset(3000);
  const std::string file = folder_.Write("answer.xml", rowset);
  const auto memory =
      AfterRequest([&](ServerSide& side) { side.Reply(found_ + Field("MEMORY") + Field(rowset)); });
  const auto streamed = AfterRequest([&](ServerSide& side) {
    auto outgoing = wire::OutgoingFile::Open(file);
    ASSERT_TRUE(outgoing);
    side.Reply(found_ + Field("FILE"), &*outgoing);
  });
  EXPECT_EQ(SelectFrom(memory), 0);
  EXPECT_EQ(SelectFrom(streamed), 0);
  const FullDisk full(100000);
  EXPECT_EQ(SelectFrom(memory), 1);  // the answer could not be stored completely
  EXPECT_EQ(SelectFrom(streamed), -3);
  ExpectNothingLeft();
}

}  // namespace
}  // namespace qv
