// Names of files and of hosts.
#include <gtest/gtest.h>

#include <string>

#include "base/text/DeviceNames.h"
#include "base/text/HostName.h"

namespace qv::text {
namespace {

// Returns whether the name is judged so in bytes and in wider characters.
bool IsJudged(std::string_view name, bool is_portable) {
  const std::u16string units(name.begin(), name.end());
  const std::wstring wide(name.begin(), name.end());
  return IsPortableName(name) == is_portable &&
         IsPortableName(std::u16string_view(units)) == is_portable &&
         IsPortableName(std::wstring_view(wide)) == is_portable;
}

TEST(PortableName, MeansNothingElseOnAnySystem) {
  for (const char* const name :
       {"a", ".a", "a.b c", "COM", "COM10", "LPTx", "xNUL", "CON1", "a.CON", "CLOCK"}) {
    EXPECT_TRUE(IsJudged(name, true)) << name;
  }
  for (const char* const name :
       {"",       ".",   "..",     "a.",        "a ",     "a/b",  "a\\b",     "a:b",  "a*",
        "a?",     "\"a", "<a",     "a>",        "a|b",    "a\nb", "a\x7F",    "CON",  "nul.txt",
        "Aux .x", "prn", "conin$", "CONOUT$.a", "clock$", "COM0", "com9.a.b", "lpt1 "}) {
    EXPECT_TRUE(IsJudged(name, false)) << name;
  }
  for (const std::u16string_view name : {u"COM\u00B9", u"lpt\u00B2.x", u"Com\u00B3 "}) {
    EXPECT_TRUE(IsDeviceName(name));
  }
  for (const std::string_view name : {"COM\xC2\xB9", "LPT\xB2.txt"}) {
    EXPECT_TRUE(IsDeviceName(name)) << name;
  }
  EXPECT_FALSE(IsDeviceName(std::u16string_view(u"COM\u00C2\u00B9")));
  EXPECT_TRUE(IsPortableName(std::string_view("\xE5\x9B\xBE.dwg")));
}

TEST(HostName, IsOnePartOfAnAddress) {
  const std::pair<const char*, const char*> hosts[] = {{"Files.Example", "files.example"},
                                                       {"a_b-1.", "a_b-1."},
                                                       {"10.0.0.1", "10.0.0.1"},
                                                       {"::1", "[::1]"},
                                                       {"[::FFFF:1.2.3.4]", "[::ffff:1.2.3.4]"}};
  for (const auto& [name, host] : hosts) EXPECT_EQ(HostForUrl(name), host) << name;
  for (const char* const name :
       {"",    "http://a", "a:80",         "a/b",  "u@a",  "a?b", "a#b",
        "a b", "a%41",     "a\nb",         "[::1", "::1]", "[a]", "[127.0.0.1]",
        "[]",  "[::1]:80", "fe80::1%eth0", "-a",   ".",    "_a",  "图"}) {
    EXPECT_EQ(HostForUrl(name), std::nullopt) << name;
  }
  EXPECT_TRUE(HostForUrl(std::string(255, 'a')) && !HostForUrl(std::string(256, 'a')));
  for (const char* const host : {"10.0.0.1", "[::1]"}) EXPECT_TRUE(IsAddress(host)) << host;
  EXPECT_FALSE(IsAddress("a1.2"));
  std::string_view server = "HTTPS://http://a";
  EXPECT_TRUE(!TakeScheme(server, "http://") && TakeScheme(server, "https://"));
  EXPECT_EQ(server, "http://a");
}

TEST(HostName, MayHaveAPortBehindIt) {
  const struct {
    std::string_view server, host;
    std::optional<std::string_view> port;
  } cases[] = {{"a", "a", {}},
               {"a:80", "a", "80"},
               {"a:", "a", ""},
               {"ftp://a:2x", "ftp://a", "2x"},
               {"ftp://a", "ftp://a", {}},
               {"::1", "::1", {}},
               {"[::1]", "[::1]", {}},
               {"ftpes://[::1]:21", "ftpes://[::1]", "21"}};
  for (const auto& [server, host, port] : cases) {
    const auto [split_host, split_port] = SplitPort(server);
    EXPECT_EQ(split_host, host) << server;
    EXPECT_EQ(split_port, port) << server;
  }
}

}  // namespace
}  // namespace qv::text
