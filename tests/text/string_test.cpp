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
constexpr K kIdent = zrString::TOKEN_IDENT, kInt = zrString::TOKEN_INT, kEnd = zrString::TOKEN_END;

std::string Text(const zrString& s) { return s.Len() ? std::string(s.GetPointer(), s.Len()) : ""; }
int BlockCount(const zrPArray& a) { return zr::detail::BlockCount(a.GetMem()); }

// Every token of text up to TOKEN_END as "kind:token ", the kinds I(dent), N(umber),
// R(eal), S(tring) and Y (symbol). The characters lie on the heap in a buffer of exactly
// their size, so that the sanitizer sees any read past the last one; each token must end
// in them just before pos.
std::string Scan(const std::string& text) {
  std::vector<char> chars(text.begin(), text.end());
  const zrString s(chars.data(), static_cast<int>(chars.size()));
  std::string out;
  zrString token;
  for (int pos = 0;;) {
    const K kind = s.GetToken(pos, token);
    if (kind == kEnd) return out;
    EXPECT_EQ(token.GetPointer() + token.Len(), s.GetPointer() + pos) << Text(token);
    out += std::string(1, "INRSY"[kind]) + ":" + Text(token) + " ";
  }
}

// The tokens, each followed by '|'.
std::string Joined(const zrSimpleArray<zrString>& tokens) {
  std::string s;
  for (const zrString& t : tokens) s += Text(t) + "|";
  return s;
}

}  // namespace

TEST(StringToken, ScansIntoTheSourcesCharactersByTheGrammar) {
  // Numbers leave what does not complete them to the next call, in the text and at its end.
  std::string scans;
  for (const char* text :
       {"alpha_1 = 3.25e-2, \"x y\" -7  12.x 12e+1 3.5e-x 1E5_", "12.", "1e-", "12e", "7e-3"})
    scans += Scan(text) + "| ";
  EXPECT_EQ(scans,
            "I:alpha_1 Y:= R:3.25e-2 Y:, S:\"x y\" Y:- N:7 N:12 Y:. I:x R:12 I:e Y:+ N:1 R:3.5 I:e "
            "Y:- I:x N:1 I:E5_ | N:12 Y:. | R:1 I:e Y:- | R:12 I:e | R:7e-3 | ");
  // Every single byte is classified; an open quote fails.
  for (int b = 0; b < 256; ++b) {
    const bool letter = (b >= 'a' && b <= 'z') || (b >= 'A' && b <= 'Z') || b == '_';
    const bool space = b == ' ' || (b >= '\t' && b <= '\r');
    const char* kind = letter ? "I:" : (b >= '0' && b <= '9') ? "N:" : space ? "" : "Y:";
    const std::string one(1, static_cast<char>(b));
    if (b == '"') continue;
    EXPECT_EQ(Scan(one), *kind ? kind + one + " " : "") << b;
  }
  EXPECT_EQ(BadParametersText([] { Scan("ab \"x y"); }),
            "Invalid parameters : syntax error : expected '\"'");

  // Over an owning string the token holds its block. Trailing white space gives END with
  // pos at the length and the last token left alone; a further call empties it.
  const zrString owned("7  ");
  zrString token;
  int pos = 0;
  EXPECT_TRUE(owned.GetToken(pos, token) == kInt && token.GetMem() == owned.GetMem());
  EXPECT_TRUE(owned.GetToken(pos, token) == kEnd && pos == 3 && token == "7");
  EXPECT_TRUE(owned.GetToken(pos, token) == kEnd && token.Len() == 0 && !token.GetMem());
  zrString self("  abc+");  // the token may be the string itself
  EXPECT_TRUE(self.GetToken(pos = 0, self) == kIdent && self == "abc");
  EXPECT_EQ(BadParametersText([&] { owned.GetToken(pos = -1, token); }),
            "Invalid parameters : zrString::GetToken: pos < 0");
}

TEST(String, ConstructionSlicesSearchesComparisonsAndTheAddedZero) {
  char text[] = "abc";
  for (const zrString& empty : {zrString(static_cast<char*>(nullptr)), zrString(""),
                                zrString(text, 0), zrString("ab", 0), zrString(0)})
    EXPECT_TRUE(empty.Len() == 0 && empty.GetPointer() == nullptr);
  EXPECT_EQ(BadParametersText([] { zrString(-1); }), "Invalid parameters : zrNewWithRef : n <= 0 ");

  // Slices view the source uncounted; const text is copied into a block of its own, so that
  // writes through them never reach a literal.
  zrString owned("hello");
  zrString mid = owned.Mid(1, 3);
  EXPECT_TRUE(mid.GetPointer() == owned.GetPointer() + 1 && mid.GetMem() == nullptr);
  mid[0] = 'a';
  EXPECT_TRUE(owned == "hallo" && owned.Right(2).GetPointer() == owned.GetPointer() + 3);
  const std::string where = "Invalid parameters : zrSimpleArray<T>::", range = ": Out of Range";
  EXPECT_EQ(BadParametersText([&] { owned.Left(0); }), where + "Left" + range);
  EXPECT_EQ(BadParametersText([&] { owned.Right(6); }), where + "Right" + range);
  for (const auto& r : {std::pair(-1, 2), std::pair(0, 0), std::pair(3, 3)})
    EXPECT_EQ(BadParametersText([&] { owned.Mid(r.first, r.second); }), where + "Mid" + range);

  const zrString s("abcabc");
  EXPECT_TRUE(s.Find('c') == 2 && s.Find('c', 3) == 5 && s.Find('x') == -1);
  EXPECT_TRUE(s.Find('c', 6) == -1 && s.Find('c', 10) == 10);  // kept: beyond the length, k
  EXPECT_TRUE(s.Find(zrString("bc"), 2) == 4 && s.Find(zrString(), 6) == 6 &&
              s.Find(zrString(), 7) == -1);
  EXPECT_EQ(BadParametersText([&] { s.Find('a', -1); }),
            "Invalid parameters : zrString::Find:char: k < 0 ");
  EXPECT_EQ(BadParametersText([&] { s.Find(zrString("a"), -1); }),
            "Invalid parameters : zrString::Find:str: k < 0 ");

  // A zero byte inside never equals a C string; a prefix is less; bytes compare signed.
  const zrString ab("ab");
  EXPECT_TRUE(ab == "ab" && ab != "a" && ab != "abc" && zrString("a\0", 2) != "a" &&
              zrString() == nullptr);
  EXPECT_TRUE(ab < zrString("abc") && zrString("\xE9") < zrString("a") &&
              zrString("abd") > zrString("abc") && ab <= ab && !(ab >= zrString("b")));

  // GetCString adds the zero only when it is missing.
  zrString block("abc", 4);  // the zero included
  zrString window;
  window.SetSubWindow(block, 0, 3);  // room and a zero after it: as is
  EXPECT_TRUE(window.GetCString() == block.GetPointer() && window.GetMem() == block.GetMem());
  window.SetSubWindow(block, 0, 2);  // 'c' after it: a private block of 3, length 2
  char* const c = window.GetCString();
  EXPECT_STREQ(c, "ab");
  EXPECT_TRUE(window.GetMem() != block.GetMem() && BlockCount(window) == 3 && window.Len() == 2);
  EXPECT_EQ(window.GetCString(), c);  // now in place
  // A view has no block; an exact block has no room: the byte after it is not looked at.
  zrString view(text), exact("xyz");
  EXPECT_TRUE(std::strcmp(view.GetCString(), "abc") == 0 && BlockCount(view) == 4);
  EXPECT_TRUE(std::strcmp(exact.GetCString(), "xyz") == 0 && BlockCount(exact) == 4);

  EXPECT_TRUE(zrString("a\nb\nc").GetNumberOfString() == 2 && zrString().GetNumberOfString() == 0);
  zrString joined(const_cast<char*>("abc"));  // viewed read-only text: += must not write into it
  joined += zrString();
  EXPECT_TRUE((joined += joined) == "abcabc");

  // The flat form is the array's: the length, then the bytes, no zero.
  unsigned char buffer[8] = {};
  EXPECT_EQ(zrToMem(buffer, zrString("ab")), 6);
  EXPECT_EQ(std::memcmp(buffer, "\2\0\0\0ab\0", 8), 0);
}

TEST(String, TokenizeViewsTheSourceUnlessItSplitsIntoItself) {
  char chars[] = ",,a,;,bc\xFF";
  zrSimpleArray<zrString> out;
  zrString(chars).Tokenize(out, zrString(",;\xFF"));
  EXPECT_TRUE(Joined(out) == "a|bc|" && out[0].GetPointer() == chars + 2 && !out[1].GetMem());

  // The tokens view their source uncounted, so each source here outlives its tokens. The
  // same count reuses the same elements.
  zrString* const strings = out.GetPointer();
  const zrString xy(" x y"), commas(",,,");
  xy.Tokenize(out, zrString(" "));
  EXPECT_TRUE(out.GetPointer() == strings && Joined(out) == "x|y|" && !out[0].GetMem());
  commas.Tokenize(out, zrString(","));  // no token: out is emptied
  EXPECT_TRUE(out.Len() == 0 && out.GetMem() == nullptr);

  // Editing an array of tokens exchanges them, never assigns one over another.
  char text[] = "ab,cd,ef";
  zrString(text).Tokenize(out, zrString(","));
  out.InverseOrder();
  out.CycleLeftShift(1);
  out.Insert(zrString("xy"), 1);
  out.Remove(0);
  EXPECT_TRUE(std::strcmp(text, "ab,cd,ef") == 0 && Joined(out) == "xy|ab|ef|");

  // Splitting into the array that holds the source gives what splitting a copy gives, and
  // the tokens stay valid: they hold the copy's block between them.
  const zrString comma(",");
  for (int len : {1, 2, 3}) {  // out is resized or reused for the three tokens
    zrSimpleArray<zrString> in(len);
    in[0] = zrString("a,bb,ccc");              // an owning source, the sole holder of its block
    if (len > 1) in[len - 1] = zrString(",");  // the delimiters in it as well
    in[0].Tokenize(in, len > 1 ? in[len - 1] : comma);
    EXPECT_EQ(Joined(in), "a|bb|ccc|") << len;
  }
  // A source viewing the characters of a block only an element of out holds.
  zrSimpleArray<zrString> held(2);
  held[1] = zrString("p q r");
  held[1].Mid(0, 5).Tokenize(held, zrString(" "));
  EXPECT_EQ(Joined(held), "p|q|r|");
}
