#include <gtest/gtest.h>

#include "message/MsgContent.h"
#include "qvnetcall/transport/QvHttpClient.h"

TEST(HttpTransport, SaysThatItDeliversNothing) {
  CAutoBuf buffer(1024);
  CMsgContent message(buffer);
  HttpworkTransInit();
  EXPECT_EQ(HttpworkTransMsg("127.0.0.1", 80, message, message, 1), -1);
  char token[] = "old";
  EXPECT_EQ(HttpworkLoginToken(token), 0);
  EXPECT_STREQ(token, "");
  EXPECT_EQ(HttpworkLoginToken(nullptr), 0);
  HttpworkTransFini();
}
