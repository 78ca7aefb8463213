// zrString: the scanner's grammar and its edges, views that share the source's characters,
// searches, comparisons, the added zero of GetCString, and splitting.
#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;
using K = zrString::TOKEN;

std::string Text(const zrString& s) { return s.Len() ? std::string(s.GetPointer(), s.Len()) : ""; }

// The characters on the heap in a buffer of exactly their size, so that the sanitizer
// sees any read past the last one.
std::vector<char> Exact(const std::string& text) { return {text.begin(), text.end()}; }
zrString View(const std::vector<char>& chars) {
  return zrString(chars.data(), static_cast<int>(chars.size()));
}

struct Token {
  K kind;
  std::string text;
  bool operator==(const Token& o) const { return kind == o.kind && text == o.text; }
};

// Every token up to TOKEN_END; each must lie in the source's characters, just before pos.
std::vector<Token> Scan(const zrString& s) {
  std::vector<Token> out;
  zrString token;
  for (int pos = 0;;) {
    const K kind = s.GetToken(pos, token);
    if (kind == zrString::TOKEN_END) return out;
    EXPECT_EQ(token.GetPointer() + token.Len(), s.GetPointer() + pos) << Text(token);
    out.push_back({kind, Text(token)});
  }
}

int BlockCount(const zrPArray& a) { return zr::detail::BlockCount(a.GetMem()); }

}  // namespace

TEST(StringToken, ScansAMixedLineIntoTheSourcesCharacters) {
  const std::vector<char> chars = Exact("alpha_1 = 3.25e-2, \"x y\" -7  ");
  const std::vector<Token> expected = {
      {zrString::TOKEN_IDENT, "alpha_1"},  {zrString::TOKEN_SYMBOL, "="},
      {zrString::TOKEN_REAL, "3.25e-2"},   {zrString::TOKEN_SYMBOL, ","},
      {zrString::TOKEN_STRING, "\"x y\""}, {zrString::TOKEN_SYMBOL, "-"},
      {zrString::TOKEN_INT, "7"}};
  const zrString view = View(chars);
  EXPECT_EQ(Scan(view), expected);

  // Over an owning string the token holds its block, counted. Trailing white space gives
  // END with pos at the length and the last token left alone; a further call empties it.
  const zrString owned = view + zrString();
  zrString token;
  int pos = 26;
  EXPECT_EQ(owned.GetToken(pos, token), zrString::TOKEN_INT);
  EXPECT_EQ(token.GetMem(), owned.GetMem());
  EXPECT_EQ(owned.GetToken(pos, token), zrString::TOKEN_END);
  EXPECT_TRUE(pos == 29 && token == "7");
  EXPECT_EQ(owned.GetToken(pos, token), zrString::TOKEN_END);
  EXPECT_TRUE(token.Len() == 0 && token.GetMem() == nullptr);

  // The token may be the string itself.
  zrString self("  abc+");
  pos = 0;
  EXPECT_EQ(self.GetToken(pos, self), zrString::TOKEN_IDENT);
  EXPECT_EQ(self, "abc");
}

TEST(StringToken, NumbersLeaveWhatDoesNotCompleteToTheNextCall) {
  struct Case {
    const char* text;
    const char* token;
    K kind;
    int pos;
  } const cases[] = {
      {"12.", "12", zrString::TOKEN_INT, 2},       {"12.x", "12", zrString::TOKEN_INT, 2},
      {"1e-", "1", zrString::TOKEN_REAL, 1},       {"12e", "12", zrString::TOKEN_REAL, 2},
      {"12e+1", "12", zrString::TOKEN_REAL, 2},    {"3.5e-x", "3.5", zrString::TOKEN_REAL, 3},
      {"7e-3", "7e-3", zrString::TOKEN_REAL, 4},   {"1E5", "1", zrString::TOKEN_INT, 1},
      {"12abc", "12", zrString::TOKEN_INT, 2},     {"-7", "-", zrString::TOKEN_SYMBOL, 1},
      {"+7", "+", zrString::TOKEN_SYMBOL, 1},      {"_a1.b", "_a1", zrString::TOKEN_IDENT, 3},
      {"\"\"x", "\"\"", zrString::TOKEN_STRING, 2}};
  for (const Case& c : cases) {
    const std::vector<char> chars = Exact(c.text);
    zrString token;
    int pos = 0;
    EXPECT_EQ(View(chars).GetToken(pos, token), c.kind) << c.text;
    EXPECT_EQ(Text(token), c.token) << c.text;
    EXPECT_EQ(pos, c.pos) << c.text;
  }
  const std::vector<Token> rest = {{zrString::TOKEN_INT, "12"}, {zrString::TOKEN_SYMBOL, "."}};
  EXPECT_EQ(Scan(zrString("12.")), rest);
}

TEST(StringToken, ClassifiesEveryByteAndFailsOnAnOpenQuote) {
  for (int b = 0; b < 256; ++b) {
    if (b == '"') continue;
    const std::vector<char> chars(1, static_cast<char>(b));
    zrString token;
    int pos = 0;
    const bool letter = (b >= 'a' && b <= 'z') || (b >= 'A' && b <= 'Z') || b == '_';
    const bool space = b == ' ' || (b >= '\t' && b <= '\r');
    const K expected = letter                   ? zrString::TOKEN_IDENT
                       : (b >= '0' && b <= '9') ? zrString::TOKEN_INT
                       : space                  ? zrString::TOKEN_END
                                                : zrString::TOKEN_SYMBOL;
    EXPECT_EQ(View(chars).GetToken(pos, token), expected) << b;
    EXPECT_EQ(pos, 1) << b;
  }
  const std::string quote = "Invalid parameters : syntax error : expected '\"'";
  for (const char* text : {"\"", "ab \"x y", "\"\"\""}) {
    const std::vector<char> chars = Exact(text);
    EXPECT_EQ(BadParametersText([&] { Scan(View(chars)); }), quote) << text;
  }
  int pos = -1;
  zrString token;
  EXPECT_EQ(BadParametersText([&] { zrString("a").GetToken(pos, token); }),
            "Invalid parameters : zrString::GetToken: pos < 0");
}

TEST(String, ConstructionViewsOrOwns) {
  const char text[] = "abc";
  const zrString view(text);
  EXPECT_TRUE(view.GetPointer() == text && view.Len() == 3 && view.GetMem() == nullptr);
  for (const zrString& empty : {zrString(nullptr), zrString(""), zrString(text, 0), zrString(0)})
    EXPECT_TRUE(empty.Len() == 0 && empty.GetPointer() == nullptr);
  const zrString copy(view);  // a private block
  EXPECT_TRUE(copy.GetPointer() != text && copy == view);
  EXPECT_EQ(BlockCount(zrString(5)), 5);
  EXPECT_EQ(BadParametersText([] { zrString(-1); }), "Invalid parameters : zrNewWithRef : n <= 0 ");
  EXPECT_STREQ(view.GetTypeString(), "zrString");
}

TEST(String, SlicesViewTheSourceUncounted) {
  zrString owned = zrString("hello") + zrString();
  zrString mid = owned.Mid(1, 3);
  EXPECT_TRUE(mid.GetPointer() == owned.GetPointer() + 1 && mid.GetMem() == nullptr);
  EXPECT_EQ(owned.GetNumOfRef(), 0);
  mid[0] = 'a';
  EXPECT_EQ(owned, "hallo");
  EXPECT_EQ(owned.Left(2), "ha");
  EXPECT_EQ(owned.Right(2).GetPointer(), owned.GetPointer() + 3);

  const auto text = [](const char* name) {
    return std::string("Invalid parameters : zrSimpleArray<T>::") + name + ": Out of Range";
  };
  EXPECT_EQ(BadParametersText([&] { owned.Left(0); }), text("Left"));
  EXPECT_EQ(BadParametersText([&] { owned.Left(6); }), text("Left"));
  EXPECT_EQ(BadParametersText([&] { owned.Right(6); }), text("Right"));
  for (const auto& range : {std::pair(-1, 2), std::pair(0, 0), std::pair(3, 3)})
    EXPECT_EQ(BadParametersText([&] { owned.Mid(range.first, range.second); }), text("Mid"));
}

TEST(String, FindKeepsItsRulesForK) {
  const zrString s("abcabc");
  EXPECT_TRUE(s.Find('c') == 2 && s.Find('c', 3) == 5 && s.Find('x') == -1);
  EXPECT_EQ(s.Find('c', 6), -1);
  EXPECT_EQ(s.Find('c', 10), 10);  // kept: beyond the length k comes back
  EXPECT_TRUE(s.Find(zrString("bc"), 2) == 4 && s.Find(zrString("abcabcd")) == -1);
  EXPECT_EQ(s.Find(zrString("bc"), 10), -1);
  EXPECT_TRUE(s.Find(zrString(), 6) == 6 && s.Find(zrString(), 7) == -1);
  EXPECT_EQ(BadParametersText([&] { s.Find('a', -1); }),
            "Invalid parameters : zrString::Find:char: k < 0 ");
  EXPECT_EQ(BadParametersText([&] { s.Find(zrString("a"), -1); }),
            "Invalid parameters : zrString::Find:str: k < 0 ");
}

TEST(String, ComparesWithStringsAndCStrings) {
  const zrString ab("ab");
  EXPECT_TRUE(ab == "ab" && ab != "a" && ab != "abc" && zrString() == "" && zrString() == nullptr);
  // A zero byte inside never equals a C string.
  EXPECT_TRUE(zrString("a\0b", 3) != "a" && zrString("a\0", 2) != "a");

  EXPECT_EQ(ab == zrString("abc"), 0);
  EXPECT_EQ(ab < zrString("abc"), 1);              // a prefix is less
  EXPECT_EQ(zrString("\xE9") < zrString("a"), 1);  // signed bytes
  EXPECT_TRUE(zrString("abd") > zrString("abc") && ab <= ab && !(ab >= zrString("b")));
}

TEST(String, GetCStringAddsTheZeroOnlyWhenItIsMissing) {
  zrString block(4);
  std::memcpy(block.GetPointer(), "abc", 4);  // the zero included
  zrString window;
  window.SetSubWindow(block, 0, 3);  // room and a zero after it: as is
  EXPECT_TRUE(window.GetCString() == block.GetPointer() && window.GetMem() == block.GetMem());

  window.SetSubWindow(block, 0, 2);  // 'c' after it: a private block of 3, length 2
  char* const c = window.GetCString();
  EXPECT_STREQ(c, "ab");
  EXPECT_TRUE(window.GetMem() != block.GetMem() && BlockCount(window) == 3 && window.Len() == 2);
  EXPECT_EQ(window.GetCString(), c);  // now in place
  EXPECT_STREQ(block.GetPointer(), "abc");

  zrString view("xyz");  // no block: copied, with the zero
  EXPECT_STREQ(view.GetCString(), "xyz");
  EXPECT_EQ(BlockCount(view), 4);
  block.ReSet(3);  // no room: the byte after the block is not looked at
  EXPECT_STREQ(block.GetCString(), "abc");
  EXPECT_EQ(BlockCount(block), 4);
  zrString empty;
  EXPECT_STREQ(empty.GetCString(), "");
}

TEST(String, CountsLineFeedsAndJoins) {
  EXPECT_EQ(zrString("a\nb\nc").GetNumberOfString(), 2);
  EXPECT_TRUE(zrString("\n\n\n").GetNumberOfString() == 3 && zrString().GetNumberOfString() == 0);

  zrString s("abc");  // a literal: += must not write into it
  s += zrString();
  EXPECT_NE(s.GetMem(), nullptr);
  s += s;
  EXPECT_EQ(s, "abcabc");
  EXPECT_EQ(zrString("ab") + zrString("cd"), "abcd");

  // The flat form is the array's: the length, then the bytes, no zero.
  unsigned char buffer[8] = {};
  EXPECT_EQ(zrMemSize(zrString("ab")), 6);
  EXPECT_EQ(zrToMem(buffer, zrString("ab")), 6);
  EXPECT_EQ(std::memcmp(buffer, "\2\0\0\0ab\0", 8), 0);
  zrString back;
  EXPECT_TRUE(zrFromMem(buffer, back) == 6 && back == "ab");
}

TEST(String, TokenizeViewsTheSourceAndReusesItsOutput) {
  const std::vector<char> chars = Exact(",,a,;,bc\xFF");
  const zrString s = View(chars);
  zrSimpleArray<zrString> out;
  s.Tokenize(out, zrString(",;\xFF"));
  ASSERT_EQ(out.Len(), 2);
  EXPECT_EQ(out[0].GetPointer(), chars.data() + 2);
  EXPECT_TRUE(out[1] == "bc" && out[1].GetMem() == nullptr);

  zrString* const strings = out.GetPointer();
  zrString(" x y").Tokenize(out, zrString(" "));  // same count: the same elements
  EXPECT_EQ(out.GetPointer(), strings);
  EXPECT_TRUE(out[0] == "x" && out[1] == "y");

  const char nul = 0;
  zrString("a\0b", 3).Tokenize(out, zrString(&nul, 1));
  EXPECT_TRUE(out.Len() == 2 && out[1] == "b");
  zrString(",,,").Tokenize(out, zrString(","));
  EXPECT_TRUE(out.Len() == 0 && out.GetMem() == nullptr);
  zrString("abc").Tokenize(out, zrString());
  EXPECT_TRUE(out.Len() == 1 && out[0] == "abc");
}

TEST(String, EditingAnArrayOfTokensLeavesTheirTextAlone) {
  char text[] = "ab,cd,ef";
  zrSimpleArray<zrString> out;
  zrString(text).Tokenize(out, zrString(","));
  out.InverseOrder();
  out.CycleLeftShift(1);
  out.Insert(zrString("xy"), 1);
  out.Remove(0);
  EXPECT_STREQ(text, "ab,cd,ef");  // tokens were exchanged, never assigned over each other
  ASSERT_EQ(out.Len(), 3);
  EXPECT_TRUE(out[0] == "xy");
  EXPECT_TRUE(out[1] == "ab");
  EXPECT_TRUE(out[2] == "ef");
}
