#include "base/text/ConnectionText.h"

#include <gtest/gtest.h>

#include <string>

namespace qv::text {
namespace {

using Hide = ConnectionText::Hide;

TEST(ConnectionText, HasValuesInBracesAndWithout) {
  const ConnectionText text("A=b; DRIVER = {a;}}b} ;;x; =y;C==d=;a=second;Open={e;f");
  const std::pair<const char*, const char*> cases[] = {
      {"a", "b"}, {"Driver", "a;}b"}, {"", "y"}, {"C", "=d="}, {"open", "e;f"}};
  for (const auto& [key, value] : cases) {
    const std::string* const found = text.ValueOf(key);
    ASSERT_NE(found, nullptr) << key;
    EXPECT_EQ(*found, value) << key;
  }
  EXPECT_EQ(text.ValueOf("x"), nullptr);
  const std::pair<const char*, std::size_t> lengths[] = {
      {"", 0}, {"a;b", 1}, {"{a;}}b};c", 7}, {" {;} ;", 5}, {"{a;b", 4}, {"a{;}", 2}};
  for (const auto& [rest, length] : lengths) EXPECT_EQ(ConnectionValueLength(rest), length) << rest;
}

TEST(ConnectionText, IsNotToldByDrivers) {
  const struct {
    const char* connection;
    Hide hide;
    const char* said;
    const char* shown;
  } cases[] = {
      {"Driver=X;Uid=eve;Pwd=s3cret", Hide::kSecrets, "no \"s3cret\" for eve: s3cret",
       "no \"***\" for eve: ***"},
      {"Server=db.example; Port = 5432;Uid=me;Pwd={a;}}b};;x;Password=q", Hide::kAllValues,
       "db.example:5432 refused me (a;}b) with q, db.example",
       "***:*** refused me (***) with ***, ***"},
      {"PASSWORD={a;b}};c} ;Uid=eve", Hide::kSecrets, "bad a;b};c or {a;b}};c} of eve",
       "bad *** or *** of eve"},
      {"Pwd={open", Hide::kSecrets, "open sesame", "*** sesame"},
      {"Pwd=;Driver=X", Hide::kSecrets, "no driver", "no driver"},
      {"Pwd=a;Driver=X", Hide::kSecrets, "a bad cat, a", "*** bad cat, ***"},
      {"DSN=plans", Hide::kSecrets, "cannot take DSN=plans", "cannot take ***"},
      {"Driver", Hide::kSecrets, "no Driver", "no ***"},
      // Drivers have many names for it.
      {"AuthToken=t0ken;my secret=hush;PassPhrase=words", Hide::kSecrets, "t0ken, hush and words",
       "***, *** and ***"},
      // Otherwise the rest of the longer value would remain.
      {"Uid=root;Pwd=root1234", Hide::kAllValues, "root1234 of root", "*** of ***"},
  };
  for (const auto& [connection, hide, said, shown] : cases) {
    EXPECT_EQ(ConnectionText(connection).WithoutSecrets(said, hide), shown) << connection;
  }
}

}  // namespace
}  // namespace qv::text
