// Letters, numbers, percent codes and UTF-8.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "base/text/Letters.h"
#include "base/text/Numbers.h"
#include "base/text/Percent.h"
#include "base/text/Utf8.h"

namespace qv::text {
namespace {

TEST(Letters, HaveCaseInAsciiOnly) {
  EXPECT_EQ(ToLower("\xC4[`AZaz{@"), "\xC4[`azaz{@");
  EXPECT_EQ(ToUpper('z'), 'Z');
  EXPECT_EQ(ToUpper('{') + ToUpper('`'), '{' + '`');
  const struct {
    std::string_view a, b;
    int order;
  } cases[] = {{"NAME", "name", 0}, {"", "", 0},    {"a", "aB", -1},
               {"\x80", "Z", 1},    {"_", "A", -1},  // lies between the cases
               {"\xC4", "\xE4", -1}};
  for (const auto& [a, b, order] : cases) {
    EXPECT_EQ(CompareIgnoringCase(a, b) <=> 0, order <=> 0) << a << ' ' << b;
    EXPECT_EQ(CompareIgnoringCase(b, a) <=> 0, 0 <=> order) << a << ' ' << b;
    EXPECT_EQ(EqualIgnoringCase(a, b), order == 0) << a << ' ' << b;
  }
  EXPECT_TRUE(StartsWithIgnoringCase("HTTP://x", "http://"));
  EXPECT_FALSE(StartsWithIgnoringCase("http", "http:"));
  EXPECT_EQ(FindIgnoringCase("a DRIVER=Driver", "driver"), 2U);
  EXPECT_EQ(FindIgnoringCase("a DRIVER=Driver", "driver", 3), 9U);
  EXPECT_EQ(FindIgnoringCase("driver", "driver", 7), std::string_view::npos);
  EXPECT_EQ(FindIgnoringCase("drive", "driver"), std::string_view::npos);
}

TEST(Letters, AreToldFromBlanksAndControls) {
  EXPECT_EQ(Trimmed(" \t\n\v\f\r a b \r\n"), "a b");
  EXPECT_EQ(Trimmed(" \t "), "");
  EXPECT_EQ(Trimmed("\xA0x"), "\xA0x");
  for (const char c : {'\0', '\x1F', '\x7F'}) EXPECT_TRUE(HasControls({&c, 1}));
  EXPECT_FALSE(HasControls(" ~\x80\xFF"));
  EXPECT_TRUE(IsAscii("\x7F") && !IsAscii("a\x80"));
  EXPECT_TRUE(IsVisible("!~") && IsVisible(""));
  for (const char c : {' ', '\n', '\x7F', '\x80'}) EXPECT_FALSE(IsVisible({&c, 1})) << int{c};
  EXPECT_TRUE(IsLetterOrDigit('0') && IsLetterOrDigit('z') && !IsLetterOrDigit('_'));
}

TEST(Utf8, IsCutBetweenCharacters) {
  const std::tuple<const char*, std::size_t, const char*> cases[] = {
      {"abc", 3, "abc"},
      {"abc", 2, "ab"},
      {"a图b", 4, "a图"},
      {"a图b", 3, "a"},
      {"图", 2, ""},
      {"图", 0, ""},
      {"\x80\x80\x80\x80\x80", 4, "\x80"}};
  for (const auto& [text, longest, expected] : cases) {
    EXPECT_EQ(BeginningOf(text, longest), expected) << text << ' ' << longest;
  }
}

TEST(Numbers, OfThePlatformSaturate) {
  for (const char* const none : {"", "-", "a12", "- 1", "--1"}) EXPECT_EQ(DecimalToInt32(none), 0);
  EXPECT_EQ(DecimalToInt32(" \t\n\v\f\r+00000000000012a3"), 12);
  EXPECT_EQ(DecimalToInt32("-2147483648"), INT32_MIN);
  for (const char* const most : {"2147483647", "2147483648", "99999999999999999999"}) {
    EXPECT_EQ(DecimalToInt32(most), INT32_MAX) << most;
    EXPECT_LE(DecimalToInt32("-" + std::string(most)), -INT32_MAX) << most;
  }
  EXPECT_EQ(DecimalToInt64(" -9223372036854775808x"), INT64_MIN);
  for (const char* const most : {"9223372036854775807", "9223372036854775808",
                                 "18446744073709551616", "99999999999999999999999"}) {
    EXPECT_EQ(DecimalToInt64(most), INT64_MAX) << most;
    EXPECT_LE(DecimalToInt64("-" + std::string(most)), -INT64_MAX) << most;
  }
  EXPECT_EQ(DecimalToInt64("-9223372036854775806"), -9223372036854775806);
  EXPECT_EQ(SaturatedTo32Bits(UINT64_MAX), INT32_MAX);
  EXPECT_EQ(SaturatedTo32Bits(INT64_MIN), INT32_MIN);
  EXPECT_EQ(SaturatedTo32Bits(std::int64_t{-5}), -5);
}

TEST(Numbers, AreReadWholeOrNotAtAll) {
  EXPECT_EQ(ParseNumber<std::int32_t>("-2147483648"), INT32_MIN);
  EXPECT_EQ(ParseNumber<std::uint16_t>("65535"), 65535);
  EXPECT_EQ(ParseNumber<std::uint32_t>("DEADbeef", 16), 0xDEADBEEF);
  for (const std::string_view text : {"", " 1", "1 ", "+1", "-1", "0x1", "1.0", "65536"}) {
    EXPECT_FALSE(ParseNumber<std::uint16_t>(text)) << text;
  }
  EXPECT_EQ(HexOf(std::string_view("\0\x9F\xFA", 3)), "009ffa");
  EXPECT_TRUE(HexDigitValue('a') == 10 && HexDigitValue('F') == 15 && HexDigitValue('0') == 0);
  for (const char c : {'g', 'G', '/', ':', '`', '@'}) EXPECT_EQ(HexDigitValue(c), -1) << c;
}

TEST(Percent, CodesAllButPlainCharacters) {
  EXPECT_EQ(PercentEncoded("Az09-._~ /+%\xE5"), "Az09-._~%20%2F%2B%25%E5");
  EXPECT_EQ(PercentEncoded("a/b?", "/"), "a/b%3F");
  const std::pair<const char*, const char*> cases[] = {
      {"a%2Fb+%25%", "a/b %%"}, {"%e5%2", "\xE5%2"}, {"%G0%0G", "%G0%0G"}, {"%%41", "%A"}};
  for (const auto& [encoded, text] : cases) EXPECT_EQ(PercentDecoded(encoded), text) << encoded;
}

TEST(Utf8, TakesWellFormedCharactersOnly) {
  for (const char32_t value :
       {0x0U, 0x7FU, 0x80U, 0x7FFU, 0x800U, 0xD7FFU, 0xE000U, 0xFFFFU, 0x10000U, 0x10FFFFU}) {
    std::string text;
    AppendUtf8(value, text);
    EXPECT_EQ(text.size(), value < 0x80 ? 1U : value < 0x800 ? 2U : value < 0x10000 ? 3U : 4U);
    const DecodedChar decoded = DecodeUtf8(text + "\x80");
    EXPECT_TRUE(decoded.valid && decoded.value == value && decoded.bytes == text.size()) << text;
    EXPECT_TRUE(IsUtf8(text + text));
  }
  std::string letters;
  for (const char32_t letter : std::u32string_view(U"aé图\U0001F600")) AppendUtf8(letter, letters);
  EXPECT_EQ(letters, "aé图\U0001F600");
  // Continuations alone, longer than necessary, halves of pairs, beyond the last one, cut.
  for (const std::string_view text :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xED\xBF\xBF",
        "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xC2", "\xC2x",
        "\xE5\x9B", "\xE5\x9Bx", "\xF0\x90\x80"}) {
    const DecodedChar decoded = DecodeUtf8(text);
    EXPECT_TRUE(!decoded.valid && decoded.bytes == 1) << text;
    EXPECT_EQ(decoded.value, static_cast<unsigned char>(text.front()));
    EXPECT_FALSE(IsUtf8("a" + std::string(text))) << text;
  }
  std::string replaced;
  for (const char32_t none : {0xD800U, 0xDFFFU, 0x110000U}) AppendUtf8(none, replaced);
  EXPECT_EQ(replaced,
            std::string(kReplacement) + std::string(kReplacement) + std::string(kReplacement));
  EXPECT_TRUE(ContinuesCharacter('\xBF') && !ContinuesCharacter('\xC2'));
}

TEST(Utf8, TellsWhatIsNotToBeShown) {
  const struct {
    char32_t first, last;
  } hidden[] = {{0, 0x1F},        {0x7F, 0x9F},     {0x61C, 0x61C},
                {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};
  for (const auto& [first, last] : hidden) {
    EXPECT_TRUE(IsControlCharacter(first) && IsControlCharacter(last)) << std::uint32_t{first};
    EXPECT_FALSE(first != 0 && IsControlCharacter(first - 1)) << std::uint32_t{first};
    EXPECT_FALSE(IsControlCharacter(last + 1)) << std::uint32_t{last};
  }
}

}  // namespace
}  // namespace qv::text
