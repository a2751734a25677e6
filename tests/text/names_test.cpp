// Names of files and of hosts.
#include <gtest/gtest.h>

#include <string>

#include "base/text/DeviceNames.h"
#include "base/text/HostName.h"

namespace qv::text {
namespace {

// The same in every width of characters; `name` is ASCII.
template <class Char>
bool IsPortable(std::string_view name) {
  const std::basic_string<Char> wide(name.begin(), name.end());
  return IsPortableName(std::basic_string_view<Char>(wide));
}

TEST(PortableName, MeansNothingElseOnAnySystem) {
  const std::pair<std::string_view, bool> cases[] = {
      {"a", true},       {".a", true},     {"a.b c", true},     {"COM", true},
      {"COM10", true},   {"LPTx", true},   {"xNUL", true},      {"CON1", true},
      {"a.CON", true},   {"CLOCK", true},  {"", false},         {".", false},
      {"..", false},     {"a.", false},    {"a ", false},       {"a/b", false},
      {"a\\b", false},   {"a:b", false},   {"a*", false},       {"a?", false},
      {"\"a", false},    {"<a", false},    {"a>", false},       {"a|b", false},
      {"a\nb", false},   {"a\x7F", false}, {"CON", false},      {"nul.txt", false},
      {"Aux .x", false}, {"prn", false},   {"conin$", false},   {"CONOUT$.a", false},
      {"clock$", false}, {"COM0", false},  {"com9.a.b", false}, {"lpt1 ", false}};
  for (const auto& [name, is_portable] : cases) {
    EXPECT_EQ(IsPortable<char>(name), is_portable) << name;
    EXPECT_EQ(IsPortable<char16_t>(name), is_portable) << name;
    EXPECT_EQ(IsPortable<wchar_t>(name), is_portable) << name;
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
  const std::pair<std::string, std::string> hosts[] = {
      {"Files.Example", "files.example"},
      {"a_b-1.", "a_b-1."},
      {"10.0.0.1", "10.0.0.1"},
      {"::1", "[::1]"},
      {"[::FFFF:1.2.3.4]", "[::ffff:1.2.3.4]"},
      {std::string(255, 'a'), std::string(255, 'a')}};
  for (const auto& [name, host] : hosts) EXPECT_EQ(HostForUrl(name), host) << name;
  for (const std::string& name :
       {std::string(),       std::string("http://a"), std::string("a:80"),
        std::string("a/b"),  std::string("u@a"),      std::string("a?b"),
        std::string("a#b"),  std::string("a b"),      std::string("a%41"),
        std::string("a\nb"), std::string("a\0b", 3),  std::string("[::1"),
        std::string("::1]"), std::string("[a]"),      std::string("[127.0.0.1]"),
        std::string("[]"),   std::string("[::1]:80"), std::string("fe80::1%eth0"),
        std::string("-a"),   std::string("."),        std::string("_a"),
        std::string("图"),   std::string(256, 'a')}) {
    EXPECT_EQ(HostForUrl(name), std::nullopt) << name;
  }
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
