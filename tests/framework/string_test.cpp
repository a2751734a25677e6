#include "qvnetcall/framework/String.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "qvnetcall/framework/InvalidArgException.h"

namespace {

static_assert(std::is_nothrow_move_constructible_v<CString>);

TEST(String, ReadsNullAsEmpty) {
  const char* nothing = nullptr;
  CString text(nothing);
  text += nothing;
  EXPECT_TRUE(text.IsEmpty() && text == nothing && text.CompareNoCase(nothing) == 0);
  EXPECT_TRUE(text.Find(nothing) == -1 && text.Replace(nothing, "x") == 0);
  EXPECT_TRUE(CString(nothing, 3).IsEmpty() && CString("abc", -1).IsEmpty());
}

TEST(String, MixesWithLiteralsWithoutAmbiguity) {
  const CString s("abc");
  EXPECT_TRUE(s == "abc" && "abc" == s && s == CString("abc") && s != "abd" && "abd" != s);
  EXPECT_TRUE(s < "abd" && "abb" < s && s > CString("ab"));
  EXPECT_EQ("x" + s + 'y' + "z" + s, "xabcyzabc");
  EXPECT_TRUE(s[0] == 'a' && s[2U] == 'c' && s[std::strlen(s)] == '\0');
  EXPECT_THROW(static_cast<void>(s[4]), CInvalidArgException);
  EXPECT_THROW(static_cast<void>(s[SIZE_MAX]), CInvalidArgException);
  CString copy = s;
  copy += copy;
  copy = static_cast<const char*>(copy) + 1;
  EXPECT_EQ(copy, "bcabc");
  EXPECT_THROW(copy.SetAt(5, 'x'), CInvalidArgException);
  copy = {};
  EXPECT_TRUE(copy.IsEmpty());
}

TEST(String, ComparesBytesUnsignedAndOnlyAsciiWithoutCase) {
  EXPECT_TRUE(CString("\x80").Compare("a") == 1 && CString("\x80").CompareNoCase("a") == 1);
  EXPECT_EQ(CString("_").CompareNoCase("a"), -1);  // lies between the cases
  EXPECT_EQ(CString("NAME").CompareNoCase("name"), 0);
  EXPECT_NE(CString("\xc4").CompareNoCase("\xe4"), 0);
  EXPECT_EQ(CString("a\0b", 3).Compare(CString("a\0a", 3)), 1);
  EXPECT_EQ(CString("\xc4[`Az{@").MakeLower(), "\xc4[`az{@");
  EXPECT_EQ(CString("\xe4[`aZ{@").MakeUpper(), "\xe4[`AZ{@");
}

TEST(String, FormatsAnyLengthAndItself) {
  const CString big('x', 100000);
  CString text;
  text.Format("%s|%d|%5.1f", big, -7, 2.25);
  EXPECT_EQ(text, big + "|-7|  2.2");
  text = "a";
  text.Format("%s%s", text, static_cast<const char*>(nullptr));
  text.AppendFormat("%s%%", static_cast<const char*>(text));
  EXPECT_EQ(text, "a(null)a(null)%");
}

TEST(String, ClampsParts) {
  const CString s("hello");
  EXPECT_EQ(s.Left(2) + s.Left(-1) + s.Left(INT_MAX), "hehello");
  EXPECT_EQ(s.Right(2) + s.Right(-1) + s.Right(INT_MAX), "lohello");
  EXPECT_EQ(s.Mid(3) + s.Mid(9) + s.Mid(-2, 2) + s.Mid(1, INT_MAX) + s.Mid(1, -1), "loheello");
}

TEST(String, FindsReplacesAndTrims) {
  CString s("a.b.c");
  EXPECT_TRUE(s.Find('.') == 1 && s.Find(".", 2) == 3 && s.ReverseFind('.') == 3);
  EXPECT_TRUE(s.Find('.', 4) == -1 && s.Find('a', -1) == -1 && s.Find("a", 99) == -1);
  EXPECT_EQ(s.Replace('.', '/'), 2);
  EXPECT_EQ(s.Replace("/", "//"), 2);  // what was put in is not searched again
  EXPECT_EQ(s.Replace("//b", "") + s.Replace("", "x"), 1);
  EXPECT_EQ(s.Replace(s, s + s), 1);
  EXPECT_EQ(s, "a//ca//c");
  EXPECT_EQ(CString(" \t\n\v\f\r a b \r").Trim(), "a b");
  EXPECT_EQ(CString(" a ").TrimLeft() + CString(" a ").TrimRight(), "a  a");
  EXPECT_EQ(CString(" \t ").Trim() + CString("\xa0x").Trim(), "\xa0x");
  EXPECT_EQ(CString("--a-").Trim('-') + CString("xya").TrimLeft("yx"), "aa");
}

}  // namespace
