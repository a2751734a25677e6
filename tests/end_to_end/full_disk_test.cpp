// A disk that fills up while an answer arrives.
#include "EndToEnd.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/posix/FullDisk.h"

namespace qv {
namespace {

TEST_F(EndToEnd, AnAnswerThatDoesNotFitOnTheDiskIsAFailureAndLeavesNothing) {
  CRvoDatabase::m_NeedUpdateCompressState = 0;  // one exchange per query
  std::string rowset =
      "<xml><s:Schema><s:ElementType name='row'><s:AttributeType name='A' dt:type='string'>"
      "</s:AttributeType></s:ElementType></s:Schema><rs:data>";
  for (int i = 0; i < 3000; ++i) rowset += "<z:row A='" + std::string(60, 'x') + "'/>\n";
  rowset += "</rs:data></xml>";
  const std::string file = folder_.Write("answer.xml", rowset);
  const auto select = [&](const char* storage) {
    const ScriptedServer server([&](ServerSide& side) {
      WholeFrame request;
      if (!side.Receive(request)) return;
      auto outgoing = wire::OutgoingFile::Open(file);
      const std::string found = Field("SUCCESS") + Field({"\1\0\0\0", 4}) + Field(storage);
      const bool is_file = storage == std::string("FILE");
      side.Reply(is_file ? found : found + Field(rowset), is_file ? &*outgoing : nullptr);
    });
    CRvoServer::SetConinfo("127.0.0.1", server.Port());
    return Rows("select 1").substr(0, 9);
  };
  EXPECT_EQ(select("MEMORY"), std::string(9, 'x'));
  EXPECT_EQ(select("FILE"), std::string(9, 'x'));
  const FullDisk full(100000);
  EXPECT_EQ(select("MEMORY"), "result 1");  // the answer could not be stored completely
  EXPECT_EQ(select("FILE"), "result -3");
  EXPECT_TRUE(std::filesystem::is_empty(folder_.Path() / "temp"));
}

}  // namespace
}  // namespace qv
