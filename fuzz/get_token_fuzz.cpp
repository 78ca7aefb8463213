// Scans arbitrary bytes with zrString::GetToken from position 0 to the end.
//
// What every caller of the scanner relies on is checked on each call: the token is a
// window of the scanned string, pos moves forward and ends on the token's end, only white
// space lies between tokens (so tokens and skipped space put together are the input), each
// kind has the form it promises and is as long as that form allows, and the scan ends
// with TOKEN_END exactly at the end or with the one documented error, an unterminated
// quote. The scan runs twice: over a view of the caller's bytes, held in a buffer of
// exactly their size so that a read past the end is caught, and over a string that owns
// its block, whose last token must keep that block alive after the string is gone.
#include <cctype>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "check.h"
#include "zr/text/text.h"

namespace {

using zr_fuzz::Offset;

// The scanner's classes. In the C locale no byte above 127 belongs to any of them,
// whichever sign it is read with.
bool Space(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
bool Digit(char c) { return c >= '0' && c <= '9'; }
bool IdentStart(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool IdentChar(char c) { return IdentStart(c) || Digit(c); }

// The number of digits from i on.
int Digits(const char* b, int n, int i) {
  int j = i;
  while (j < n && Digit(b[j])) ++j;
  return j - i;
}

// The token [s, e) of b[0, n) has the form of its kind and stops where that form must.
void CheckForm(zrString::TOKEN kind, const char* b, int n, int s, int e) {
  switch (kind) {
    case zrString::TOKEN_IDENT:
      ZR_FUZZ_CHECK(IdentStart(b[s]));
      for (int i = s; i < e; ++i) ZR_FUZZ_CHECK(IdentChar(b[i]));
      ZR_FUZZ_CHECK(e == n || !IdentChar(b[e]));
      break;
    case zrString::TOKEN_INT:
      // Digits up to a byte that cannot go on with a number: an e would make it real,
      // and a point is left out only when no digit follows it.
      ZR_FUZZ_CHECK(Digits(b, n, s) == e - s);
      ZR_FUZZ_CHECK(e == n || b[e] != 'e');
      ZR_FUZZ_CHECK(e == n || b[e] != '.' || e + 1 == n || !Digit(b[e + 1]));
      break;
    case zrString::TOKEN_REAL: {
      // digits [. digits] [e [-] digits]; each run of digits is read to its end, so
      // i == e also says the token did not stop inside one.
      int i = s + Digits(b, n, s);
      ZR_FUZZ_CHECK(i > s);
      bool fraction = false;
      bool exponent = false;
      if (i < e && b[i] == '.') {
        const int d = Digits(b, n, i + 1);
        ZR_FUZZ_CHECK(d > 0);
        i += 1 + d;
        fraction = true;
      }
      if (i < e && b[i] == 'e') {
        int j = i + 1;
        if (j < e && b[j] == '-') ++j;
        const int d = Digits(b, n, j);
        ZR_FUZZ_CHECK(d > 0);
        i = j + d;
        exponent = true;
      }
      ZR_FUZZ_CHECK(i == e);
      if (!exponent) {
        // Without fraction or exponent it is real only because an e without exponent
        // digits follows; that e (and a minus after it) stays outside the token.
        if (!fraction) ZR_FUZZ_CHECK(e < n && b[e] == 'e');
        if (e < n && b[e] == 'e') {
          ZR_FUZZ_CHECK(e + 1 == n || !Digit(b[e + 1]));
          ZR_FUZZ_CHECK(e + 2 >= n || b[e + 1] != '-' || !Digit(b[e + 2]));
        }
      }
      break;
    }
    case zrString::TOKEN_STRING:
      ZR_FUZZ_CHECK(e - s >= 2 && b[s] == '"' && b[e - 1] == '"');
      ZR_FUZZ_CHECK(std::memchr(b + s + 1, '"', static_cast<size_t>(e - s - 2)) == nullptr);
      break;
    case zrString::TOKEN_SYMBOL:
      ZR_FUZZ_CHECK(e - s == 1 && !Space(b[s]) && !IdentChar(b[s]) && b[s] != '"');
      break;
    default:
      ZR_FUZZ_CHECK(!"unknown token kind");
  }
}

struct Token {
  zrString::TOKEN kind;
  int start;
  int len;
  bool operator==(const Token& o) const {
    return kind == o.kind && start == o.start && len == o.len;
  }
};

struct Scan {
  std::vector<Token> tokens;
  bool unterminated = false;  // ended on the unterminated-quote error
};

// Scans text, whose n bytes are at b, from 0 to the end into token. Each token found is
// swapped into last, so the next call finds a window it must let go of in token.
Scan ScanAll(zrString& text, const char* b, int n, zrString& token, zrString& last) {
  Scan scan;
  int pos = 0;
  // Every call but the last takes at least one byte.
  for (int calls = 0;; ++calls) {
    ZR_FUZZ_CHECK(calls <= n + 1);
    const int before = pos;
    zrString::TOKEN kind;
    try {
      kind = text.GetToken(pos, token);
    } catch (const BadParameters& e) {
      // Only a quote with no other quote after it, once the white space is skipped.
      ZR_FUZZ_CHECK(std::strcmp(e.GetMessageText(),
                                "Invalid parameters : syntax error : expected '\"'") == 0);
      int q = before;
      while (q < n && Space(b[q])) ++q;
      ZR_FUZZ_CHECK(q < n && b[q] == '"');
      ZR_FUZZ_CHECK(std::memchr(b + q + 1, '"', static_cast<size_t>(n - q - 1)) == nullptr);
      scan.unterminated = true;
      break;
    }
    // Scanning leaves the string as it was (an empty one may hold no pointer at all).
    ZR_FUZZ_CHECK(text.Len() == n && (n == 0 || text.GetPointer() == b));
    ZR_FUZZ_CHECK(pos >= before && pos <= n);
    if (kind == zrString::TOKEN_END) {
      ZR_FUZZ_CHECK(pos == n);
      for (int i = before; i < n; ++i) ZR_FUZZ_CHECK(Space(b[i]));
      // Called at the end itself, the token is emptied; after trailing white space it
      // is left as it was.
      if (before == n) ZR_FUZZ_CHECK(token.Len() == 0);
      break;
    }
    const std::int64_t s = Offset(token.GetPointer(), b);
    const int len = token.Len();
    ZR_FUZZ_CHECK(len >= 1 && s >= before && s + len == pos);
    for (int i = before; i < s; ++i) ZR_FUZZ_CHECK(Space(b[i]));
    CheckForm(kind, b, n, static_cast<int>(s), pos);
    scan.tokens.push_back({kind, static_cast<int>(s), len});
    last.swap(token);
  }
  return scan;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
  if (size > (1u << 20)) return 0;
  const int n = static_cast<int>(size);

  // A view of bytes the string does not own, in a buffer of exactly their size.
  std::unique_ptr<char[]> buf(new char[size]);
  if (size != 0) std::memcpy(buf.get(), data, size);
  zrString view(buf.get(), n);
  zrString token;
  zrString last;
  const Scan first = ScanAll(view, buf.get(), n, token, last);
  ZR_FUZZ_CHECK(size == 0 || std::memcmp(buf.get(), data, size) == 0);

  // The same bytes in a block of the string's own. The tokens share that block, so the
  // last one still reads the bytes after the string is gone.
  {
    zrString owned(n);
    if (size != 0) std::memcpy(owned.GetPointer(), data, size);
    const Scan second = ScanAll(owned, owned.GetPointer(), n, token, last);
    ZR_FUZZ_CHECK(second.unterminated == first.unterminated && second.tokens == first.tokens);
  }
  if (!first.tokens.empty()) {
    const Token& t = first.tokens.back();
    ZR_FUZZ_CHECK(last.Len() == t.len &&
                  std::memcmp(last.GetPointer(), data + t.start, static_cast<size_t>(t.len)) == 0);
  }
  return 0;
}
