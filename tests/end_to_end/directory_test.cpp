#include <sqlite3.h>

#include "EndToEnd.h"
#include "qvnetcall/standin/Records.h"

namespace qv {
namespace {

using Records = std::unique_ptr<CZelkorSvrADObjInfo[]>;
namespace layout = records::directory;

TEST_F(EndToEnd, TheDirectoryIsReadAndFilled) {
  const auto server = Serve(Options());
  int count = -1;
  const Records groups(CRvoAd::GetADGroupInfo("*", count));
  ASSERT_EQ(count, 4);
  EXPECT_EQ(Number(groups[3], layout::kKind), layout::kGroup);
  EXPECT_EQ(Text(groups[3], layout::kDisplayName), "施工图审查组");
  EXPECT_EQ(CRvoAd::GetADGroupUserInfo("nothing", count), nullptr);
  EXPECT_EQ(count, 0);

  const int department = CRvoAd::CreateADDepart(70);
  const int user = CRvoAd::AddADUser("sun.yang", "孙洋", 1);
  EXPECT_GT(department, 0);
  EXPECT_GT(CRvoAd::AddADGroup("幕墙组", 1, department), 0);
  EXPECT_EQ(CRvoAd::AddADGroup("幕墙组", 1, department), 0);
  EXPECT_EQ(CRvoAd::AddADGroupUsers("幕墙组", "OFFICE\\sun.yang", 0), 1);
  const Records members(CRvoAd::GetADGroupUserInfo("幕墙组", count));
  ASSERT_EQ(count, 1);
  EXPECT_EQ(Number(members[0], layout::kKind), layout::kUser);
  EXPECT_EQ(Number(members[0], layout::kId), static_cast<std::uint64_t>(user));
  EXPECT_EQ(Text(members[0], layout::kDisplayName), "孙洋");
}

TEST_F(EndToEnd, AsManyUsersAreListedAsAReplyHolds) {
  const auto server = Serve(Options());
  sqlite3* directory = nullptr;
  ASSERT_EQ(sqlite3_open(folder_.At("data/directory.sqlite").c_str(), &directory), 0);
  const auto run = [&](const char* sql) {
    return sqlite3_exec(directory, sql, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(run("WITH RECURSIVE n (i) AS (SELECT 7 UNION ALL SELECT i + 1 FROM n WHERE i < 1967)"
                "INSERT INTO users SELECT i, 'u' || i, 'U', 0 FROM n"),
            SQLITE_OK);
  int count = 0;
  const Records users(CRvoAd::GetADUserInfo(count));
  ASSERT_EQ(count, 1967);
  EXPECT_EQ(Text(users[1966], layout::kName), "zhao.min");
  EXPECT_EQ(run("INSERT INTO users VALUES (1968, 'one.more', 'U', 0)"), SQLITE_OK);
  EXPECT_EQ(CRvoAd::GetADUserInfo(count), nullptr);
  EXPECT_EQ(server->Served().back().outcome, "the list does not fit into one reply");
  sqlite3_close(directory);
}

}  // namespace
}  // namespace qv
