#include "tools/qvcall/session/ConnectionSecrets.h"

#include <gtest/gtest.h>

namespace {

TEST(ConnectionSecrets, AreNotShown) {
  const struct {
    const char* connection;
    const char* text;
    const char* shown;
  } cases[] = {
      {"Driver=X;Uid=eve;Pwd=s3cret", "no \"s3cret\" for eve: s3cret", "no \"***\" for eve: ***"},
      {"PASSWORD={a;b}};c} ;Uid=eve", "bad a;b};c of eve", "bad *** of eve"},
      {"Pwd={open", "open sesame", "*** sesame"},
      {"Pwd={x}}", "x}", "x}"},
      {"Pwd=;Driver=X", "no driver", "no driver"},
      {"Pwd=a;Driver=X", "a bad", "a bad"},
      {"DSN=plans", "cannot take DSN=plans", "cannot take ***"},
      {"Driver", "no Driver", "no ***"},
  };
  for (const auto& [connection, text, shown] : cases) {
    EXPECT_EQ(qv::tool::WithoutSecrets(text, connection), shown) << connection;
  }
}

}  // namespace
