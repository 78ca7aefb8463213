// zrString: the scanner's grammar and its edges, views that share the source's characters,
// searches, comparisons, the added zero of GetCString, and splitting.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"
#include "zr/zr.h"

namespace {

using zr_test::BadParametersText;
using K = zrString::TOKEN;
constexpr K kIdent = zrString::TOKEN_IDENT, kInt = zrString::TOKEN_INT,
            kReal = zrString::TOKEN_REAL, kString = zrString::TOKEN_STRING,
            kSymbol = zrString::TOKEN_SYMBOL, kEnd = zrString::TOKEN_END;

std::string Text(const zrString& s) { return s.Len() ? std::string(s.GetPointer(), s.Len()) : ""; }

// The characters on the heap in a buffer of exactly their size, so that the sanitizer
// sees any read past the last one.
std::vector<char> Exact(const std::string& text) { return {text.begin(), text.end()}; }
// (The vector's characters are writable heap memory; only the view is taken through const.)
zrString View(const std::vector<char>& chars) {
  return zrString(const_cast<char*>(chars.data()), static_cast<int>(chars.size()));
}

using Token = std::pair<K, std::string>;

// Every token up to TOKEN_END; each must lie in the source's characters, just before pos.
std::vector<Token> Scan(const zrString& s) {
  std::vector<Token> out;
  zrString token;
  for (int pos = 0;;) {
    const K kind = s.GetToken(pos, token);
    if (kind == kEnd) return out;
    EXPECT_EQ(token.GetPointer() + token.Len(), s.GetPointer() + pos) << Text(token);
    out.push_back({kind, Text(token)});
  }
}

// The tokens, each followed by '|'.
std::string Joined(const zrSimpleArray<zrString>& tokens) {
  std::string s;
  for (const zrString& t : tokens) s += Text(t) + "|";
  return s;
}

int BlockCount(const zrPArray& a) { return zr::detail::BlockCount(a.GetMem()); }

}  // namespace

TEST(StringToken, ScansIntoTheSourcesCharactersByTheGrammar) {
  const std::vector<char> chars = Exact("alpha_1 = 3.25e-2, \"x y\" -7  ");
  const zrString view = View(chars);
  const std::vector<Token> expected = {
      {kIdent, "alpha_1"},  {kSymbol, "="}, {kReal, "3.25e-2"}, {kSymbol, ","},
      {kString, "\"x y\""}, {kSymbol, "-"}, {kInt, "7"}};
  EXPECT_EQ(Scan(view), expected);

  // Over an owning string the token holds its block, counted. Trailing white space gives
  // END with pos at the length and the last token left alone; a further call empties it.
  const zrString owned = view + zrString();
  zrString token;
  int pos = 26;
  EXPECT_TRUE(owned.GetToken(pos, token) == kInt && token.GetMem() == owned.GetMem());
  EXPECT_TRUE(owned.GetToken(pos, token) == kEnd && pos == 29 && token == "7");
  EXPECT_TRUE(owned.GetToken(pos, token) == kEnd && token.Len() == 0 && !token.GetMem());

  zrString self("  abc+");  // the token may be the string itself
  pos = 0;
  EXPECT_TRUE(self.GetToken(pos, self) == kIdent && self == "abc");

  // Numbers leave what does not complete them to the next call.
  const std::pair<const char*, Token> cases[] = {
      {"12.", {kInt, "12"}},       {"12.x", {kInt, "12"}},   {"1e-", {kReal, "1"}},
      {"12e", {kReal, "12"}},      {"12e+1", {kReal, "12"}}, {"3.5e-x", {kReal, "3.5"}},
      {"7e-3", {kReal, "7e-3"}},   {"1E5", {kInt, "1"}},     {"12abc", {kInt, "12"}},
      {"-7", {kSymbol, "-"}},      {"+7", {kSymbol, "+"}},   {"_a1.b", {kIdent, "_a1"}},
      {"\"\"x", {kString, "\"\""}}};
  // Exact's characters live to the end of the full expression, past the scan.
  for (const auto& c : cases) EXPECT_EQ(Scan(View(Exact(c.first))).front(), c.second) << c.first;
  EXPECT_EQ(Scan(zrString("12.")), (std::vector<Token>{{kInt, "12"}, {kSymbol, "."}}));

  // Every single byte is classified; an open quote fails.
  for (int b = 0; b < 256; ++b) {
    const bool letter = (b >= 'a' && b <= 'z') || (b >= 'A' && b <= 'Z') || b == '_';
    const bool space = b == ' ' || (b >= '\t' && b <= '\r');
    const K kind = letter ? kIdent : (b >= '0' && b <= '9') ? kInt : space ? kEnd : kSymbol;
    const std::vector<char> one(1, static_cast<char>(b));
    EXPECT_TRUE(b == '"' || (View(one).GetToken(pos = 0, token) == kind && pos == 1)) << b;
  }
  const std::string quote = "Invalid parameters : syntax error : expected '\"'";
  for (const char* text : {"\"", "ab \"x y", "\"\"\""})
    EXPECT_EQ(BadParametersText([&] { Scan(View(Exact(text))); }), quote) << text;
  pos = -1;
  EXPECT_EQ(BadParametersText([&] { self.GetToken(pos, token); }),
            "Invalid parameters : zrString::GetToken: pos < 0");
}

TEST(String, ConstructionAndSlicesViewOrOwn) {
  char text[] = "abc";
  const zrString view(text);
  EXPECT_TRUE(view.GetPointer() == text && view.Len() == 3 && view.GetMem() == nullptr);
  for (const zrString& empty : {zrString(static_cast<char*>(nullptr)), zrString(""),
                                zrString(text, 0), zrString("ab", 0), zrString(0)})
    EXPECT_TRUE(empty.Len() == 0 && empty.GetPointer() == nullptr);

  // Const text is copied into a block of its own, zeros included, so that the in-place
  // writes of an equal-length assignment, Fill or a checked read never reach a literal.
  const char* const literal = "xyz";
  zrString owning(literal);
  EXPECT_TRUE(owning.GetPointer() != literal && BlockCount(owning) == 3 && owning == "xyz");
  EXPECT_TRUE(zrString("a\0b", 3) == zrString(std::string("a\0b", 3).data(), 3));
  owning = zrString(text);
  owning.Fill('q');
  EXPECT_TRUE(owning == "qqq" && std::strcmp(literal, "xyz") == 0);
  EXPECT_EQ(BadParametersText([] { zrString(-1); }), "Invalid parameters : zrNewWithRef : n <= 0 ");

  // Slices view the source uncounted.
  zrString owned = zrString("hello") + zrString();
  zrString mid = owned.Mid(1, 3);
  EXPECT_TRUE(mid.GetPointer() == owned.GetPointer() + 1 && mid.GetMem() == nullptr);
  EXPECT_EQ(owned.GetNumOfRef(), 0);
  mid[0] = 'a';
  EXPECT_TRUE(owned == "hallo" && owned.Right(2).GetPointer() == owned.GetPointer() + 3);
  const std::string where = "Invalid parameters : zrSimpleArray<T>::", range = ": Out of Range";
  EXPECT_EQ(BadParametersText([&] { owned.Left(0); }), where + "Left" + range);
  EXPECT_EQ(BadParametersText([&] { owned.Right(6); }), where + "Right" + range);
  for (const auto& r : {std::pair(-1, 2), std::pair(0, 0), std::pair(3, 3)})
    EXPECT_EQ(BadParametersText([&] { owned.Mid(r.first, r.second); }), where + "Mid" + range);
}

TEST(String, FindAndCompare) {
  const zrString s("abcabc");
  EXPECT_TRUE(s.Find('c') == 2 && s.Find('c', 3) == 5 && s.Find('x') == -1);
  EXPECT_TRUE(s.Find('c', 6) == -1 && s.Find('c', 10) == 10);  // kept: beyond the length, k
  EXPECT_TRUE(s.Find(zrString("bc"), 2) == 4 && s.Find(zrString("abcabcd")) == -1 &&
              s.Find(zrString("bc"), 10) == -1);
  EXPECT_TRUE(s.Find(zrString(), 6) == 6 && s.Find(zrString(), 7) == -1);
  EXPECT_EQ(BadParametersText([&] { s.Find('a', -1); }),
            "Invalid parameters : zrString::Find:char: k < 0 ");
  EXPECT_EQ(BadParametersText([&] { s.Find(zrString("a"), -1); }),
            "Invalid parameters : zrString::Find:str: k < 0 ");

  const zrString ab("ab");
  EXPECT_TRUE(ab == "ab" && ab != "a" && ab != "abc" && zrString() == "" && zrString() == nullptr);
  // A zero byte inside never equals a C string.
  EXPECT_TRUE(zrString("a\0b", 3) != "a" && zrString("a\0", 2) != "a");
  EXPECT_TRUE(ab < zrString("abc") && !(ab == zrString("abc")));  // a prefix is less
  EXPECT_EQ(zrString("\xE9") < zrString("a"), 1);                 // signed bytes
  EXPECT_TRUE(zrString("abd") > zrString("abc") && ab <= ab && !(ab >= zrString("b")));
}

// GetCString adds the zero only when it is missing; counting, joining and the flat form.
TEST(String, CStringJoinsAndFlatForm) {
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
  EXPECT_TRUE(std::strcmp(view.GetCString(), "xyz") == 0 && BlockCount(view) == 4);
  block.ReSet(3);  // no room: the byte after the block is not looked at
  EXPECT_TRUE(std::strcmp(block.GetCString(), "abc") == 0 && BlockCount(block) == 4);
  EXPECT_STREQ(zrString().GetCString(), "");

  EXPECT_TRUE(zrString("a\nb\nc").GetNumberOfString() == 2 && zrString().GetNumberOfString() == 0);

  zrString s(const_cast<char*>("abc"));  // viewed read-only text: += must not write into it
  s += zrString();
  s += s;
  EXPECT_EQ(s, "abcabc");

  // The flat form is the array's: the length, then the bytes, no zero.
  unsigned char buffer[8] = {};
  EXPECT_TRUE(zrMemSize(zrString("ab")) == 6 && zrToMem(buffer, zrString("ab")) == 6 &&
              std::memcmp(buffer, "\2\0\0\0ab\0", 8) == 0);
  zrString back;
  EXPECT_TRUE(zrFromMem(buffer, back) == 6 && back == "ab");
}

TEST(String, TokenizeViewsTheSourceAndReusesItsOutput) {
  const std::vector<char> chars = Exact(",,a,;,bc\xFF");
  zrSimpleArray<zrString> out;
  View(chars).Tokenize(out, zrString(",;\xFF"));
  ASSERT_EQ(out.Len(), 2);
  EXPECT_TRUE(out[0].GetPointer() == chars.data() + 2 && out[1] == "bc" && !out[1].GetMem());

  // The tokens view their source uncounted, so each source here outlives its tokens.
  zrString* const strings = out.GetPointer();
  const zrString xy(" x y");
  xy.Tokenize(out, zrString(" "));  // same count: the same elements
  EXPECT_TRUE(out.GetPointer() == strings && Joined(out) == "x|y|" && !out[0].GetMem());

  const zrString zeros("a\0b", 3), commas(",,,"), abc("abc");
  zeros.Tokenize(out, zrString("\0", 1));
  EXPECT_EQ(Joined(out), "a|b|");
  commas.Tokenize(out, zrString(","));
  EXPECT_TRUE(out.Len() == 0 && out.GetMem() == nullptr);
  abc.Tokenize(out, zrString());
  EXPECT_EQ(Joined(out), "abc|");

  // Editing an array of tokens exchanges them, never assigns one over another.
  char text[] = "ab,cd,ef";
  zrString(text).Tokenize(out, zrString(","));
  out.InverseOrder();
  out.CycleLeftShift(1);
  out.Insert(zrString("xy"), 1);
  out.Remove(0);
  EXPECT_STREQ(text, "ab,cd,ef");
  EXPECT_EQ(Joined(out), "xy|ab|ef|");
}

// Splitting into the array that holds the source gives what splitting a copy gives, and
// the tokens stay valid: they hold the copy's block between them.
TEST(String, TokenizeIntoTheArrayHoldingTheSource) {
  const zrString comma(",");
  const std::pair<const char*, const char*> cases[] = {
      {"single", "single|"}, {"a,bb,ccc", "a|bb|ccc|"}, {",,", ""}};
  for (const auto& c : cases) {
    for (int len : {1, 2, 3}) {  // the count differs or not, so out is resized or reused
      zrSimpleArray<zrString> out(len);
      out[0] = zrString(c.first);                 // an owning source, the sole holder of its block
      if (len > 1) out[len - 1] = zrString(",");  // the delimiters in out as well
      out[0].Tokenize(out, len > 1 ? out[len - 1] : comma);
      EXPECT_EQ(Joined(out), c.second) << len;
    }
  }

  // A source viewing the characters of a block only an element of out holds.
  zrSimpleArray<zrString> out(2);
  out[1] = zrString("p q r");
  out[1].Mid(0, 5).Tokenize(out, zrString(" "));
  EXPECT_EQ(Joined(out), "p|q|r|");
}
