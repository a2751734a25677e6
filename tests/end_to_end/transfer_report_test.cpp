// Failures of a transfer queue, from the client's call to the server's log.
#include <gmock/gmock.h>

#include "EndToEnd.h"

namespace qv {
namespace {

using TransferReportTest = EndToEnd;

TEST_F(TransferReportTest, ComesIntoTheServersLog) {
  const auto server = Serve(Options());
  CRvoFtp queue;  // that has logged in nowhere, whether or not there is a component beside the test
  queue.AddUploadFile("/work/图 1.dwg", "drawings/1.dwg");
  queue.AddUploadFile("/work/2.dwg", "drawings/2.dwg");
  long count = 0;
  EXPECT_NE(queue.UploadFile(0, count), 0);
  const std::string line_start = R"(\x0a\x09\x09\x09)";
  EXPECT_THAT(BytesOf(folder_.At("data/server.log")),
              testing::EndsWith(" 3 FtpUp 2 Files FAIL" + line_start +
                                "<1> drawings/1.dwg(/work/图 1.dwg)" + line_start +
                                "<2> drawings/2.dwg(/work/2.dwg)\\x0a\n"));
}

}  // namespace
}  // namespace qv
