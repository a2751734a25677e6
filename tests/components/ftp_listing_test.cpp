#include <gmock/gmock.h>

#include "components/ftp/FtpFolder.h"

namespace qv::components {

namespace {

using testing::ElementsAre;
using testing::Optional;

TEST(FtpListingTest, GivesNamesOfSingleEntries) {
  EXPECT_THAT(NamesInListing("type=cdir; /a\r\nType=PDIR;x=y; ..\r\ntype=file;size=3;  b c\r\n"
                             "type=dir; ..\r\ntype=OS.unix=slink; d",
                             true, 2),
              Optional(ElementsAre(" b c", "d")));
  EXPECT_THAT(NamesInListing("a b\n\n/x/y/c\r\n.\n/x/..", false, 2),
              Optional(ElementsAre("a b", "c")));
  for (const char* const line :
       {"type=file;size=3", "type=file; ", "type=file; ../b", "type=file; b\rc", "type=dir; /b"}) {
    EXPECT_EQ(NamesInListing(line, true, 9), std::nullopt) << line;
  }
  EXPECT_EQ(NamesInListing("a\nb\nc", false, 2), std::nullopt);
  EXPECT_EQ(NamesInListing("folder/", false, 9), std::nullopt);
}

}  // namespace

}  // namespace qv::components
