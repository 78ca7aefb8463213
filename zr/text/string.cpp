#include "zr/text/string.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>

#include "zr/arrays/simple_array_impl.h"

namespace zr::detail {
namespace {

// The "C" locale's classes, decided on the char itself: a byte above 127 is outside every
// range below whether char is signed or not.
bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }  // \t \n \v \f \r
bool IsWordChar(char c) { return IsLetter(c) || IsDigit(c) || c == '_'; }

// The scanner's states, numbered as they always were (4 is "just after the point").
enum ScanState {
  kBetween = 0,    // between tokens
  kIdent = 1,      // identifier
  kInteger = 2,    // integer part
  kFraction = 3,   // fraction digits
  kPoint = 4,      // just after the point
  kExponent = 7,   // just after 'e'
  kExpMinus = 8,   // just after "e-"
  kExpDigits = 9,  // exponent digits
  kQuoted = 10,    // inside quotes
};

[[noreturn]] void ThrowInnerError() { throw BadParameters("zrString::GetToken: inner error"); }

}  // namespace
}  // namespace zr::detail

ZR_DEFINE_TYPE_IDENTITY(zrString)

zrString::zrString(char* s) {
  if (s && *s) SetDirectly(s, static_cast<int>(std::strlen(s)));
}

zrString::zrString(char* s, int n) {
  if (s && n > 0) SetDirectly(s, n);
}

zrString::zrString(const char* s) : zrString(s, s ? static_cast<int>(std::strlen(s)) : 0) {}

zrString::zrString(const char* s, int n) {
  if (!s || n <= 0) return;
  Set(n);
  std::memcpy(GetPointer(), s, static_cast<std::size_t>(n));
}

zrString::zrString(int n) {
  if (n != 0) Set(n);
}

zrString::~zrString() = default;

char* zrString::GetCString() {
  const int n = Len();
  char* const p = GetPointer();
  const void* const block = GetMem();
  if (block && p) {
    const std::int64_t end = (p - static_cast<const char*>(block)) + std::int64_t{n};
    if (end < zr::detail::BlockCount(block) && p[n] == 0) return p;
  }
  ReSet(zr::detail::GrownLength(std::int64_t{n} + 1, 1));
  GetPointer()[n] = 0;
  SetSubWindow(*this, 0, n);  // same block: only the length goes back
  return GetPointer();
}

int zrString::GetNumberOfString() const {
  return static_cast<int>(std::count(begin(), end(), '\n'));
}

int zrString::Find(char c, int k) const {
  if (k < 0) throw BadParameters("zrString::Find:char: k < 0 ");
  const int n = Len();
  const char* const s = GetPointer();
  int i = k;
  while (i < n && s[i] != c) ++i;
  return i == n ? -1 : i;
}

int zrString::Find(const zrString& s, int k) const {
  if (k < 0) throw BadParameters("zrString::Find:str: k < 0 ");
  const char* const a = GetPointer();
  const char* const b = s.GetPointer();
  const int m = s.Len();
  const std::int64_t last = std::int64_t{Len()} - m;  // the last start where s fits
  for (int p = k; p <= last; ++p) {
    int j = 0;
    while (j < m && a[p + j] == b[j]) ++j;
    if (j == m) return p;
  }
  return -1;
}

int zrString::operator==(const zrString& other) const { return zrArray<char>::operator==(other); }

int zrString::operator!=(const zrString& other) const { return !(*this == other); }

int zrString::operator==(const char* s) const {
  const char* const t = s ? s : "";
  const int n = Len();
  const char* const p = GetPointer();
  for (int i = 0; i < n; ++i) {
    if (t[i] == 0 || t[i] != p[i]) return 0;  // t ends early, or differs
  }
  return t[n] == 0;
}

int zrString::operator!=(const char* s) const { return !(*this == s); }

int zrString::Compare(const zrString& other) const {
  const int n = Len();
  const int m = other.Len();
  const char* const a = GetPointer();
  const char* const b = other.GetPointer();
  for (int i = 0, common = std::min(n, m); i < common; ++i) {
    const auto x = static_cast<signed char>(a[i]);
    const auto y = static_cast<signed char>(b[i]);
    if (x != y) return x < y ? -1 : 1;
  }
  return n == m ? 0 : (n < m ? -1 : 1);
}

int zrString::operator<(const zrString& other) const { return Compare(other) < 0; }
int zrString::operator>(const zrString& other) const { return Compare(other) > 0; }
int zrString::operator<=(const zrString& other) const { return Compare(other) <= 0; }
int zrString::operator>=(const zrString& other) const { return Compare(other) >= 0; }

zrString zrString::GetUnion(const zrString& b) const {
  const int n = Len();
  const int m = b.Len();
  zrString u(zr::detail::GrownLength(std::int64_t{n} + m, 1));
  if (n > 0) std::memcpy(u.GetPointer(), GetPointer(), static_cast<std::size_t>(n));
  if (m > 0) std::memcpy(u.GetPointer() + n, b.GetPointer(), static_cast<std::size_t>(m));
  return u;
}

zrString zrString::operator+(const zrString& b) const { return GetUnion(b); }

zrString& zrString::operator+=(const zrString& b) {
  // Taken over rather than assigned: an assignment of equal length (b empty) would write
  // into the current characters, which may be a caller's read-only text.
  zrString u = GetUnion(b);
  Move(u);
  return *this;
}

zrString zrString::Left(int n) const {
  if (n < 1 || n > Len()) throw BadParameters("zrSimpleArray<T>::Left: Out of Range");
  zrString view;
  view.SetDirectly(GetPointer(), n);
  return view;
}

zrString zrString::Right(int n) const {
  if (n < 1 || n > Len()) throw BadParameters("zrSimpleArray<T>::Right: Out of Range");
  zrString view;
  view.SetDirectly(GetPointer() + (Len() - n), n);
  return view;
}

zrString zrString::Mid(int start, int n) const {
  if (start < 0 || n < 1 || start > Len() - n)
    throw BadParameters("zrSimpleArray<T>::Mid: Out of Range");
  zrString view;
  view.SetDirectly(GetPointer() + start, n);
  return view;
}

namespace zr::detail {
namespace {

// Whether writing tokens into out may free or move the characters of s before they are
// read: s is one of out's elements, or its characters lie in a block an element holds.
bool SplitsIntoItself(const zrString& s, const zrSimpleArray<zrString>& out) {
  const std::less<const void*> before;
  const zrString* const first = out.GetPointer();
  if (first && !before(&s, first) && before(&s, first + out.Len())) return true;
  const char* const p = s.GetPointer();
  if (!p) return false;
  for (const zrString& e : out) {
    const char* const block = static_cast<const char*>(e.GetMem());
    if (block && !before(p, block) && before(p, block + BlockCount(block))) return true;
  }
  return false;
}

// Splits s into out (see zrString::Tokenize); holder, when given, is the block the tokens
// hold between them.
void Split(const zrString& s, zrSimpleArray<zrString>& out, const bool (&is_delimiter)[256],
           const zrString* holder) {
  char* const p = s.GetPointer();
  const int n = s.Len();
  const auto delimiter = [&](int i) { return is_delimiter[static_cast<unsigned char>(p[i])]; };

  int count = 0;
  for (int i = 0; i < n;) {
    while (i < n && delimiter(i)) ++i;
    if (i == n) break;
    ++count;
    while (i < n && !delimiter(i)) ++i;
  }
  if (count == 0) {
    out.Clear();
    return;
  }
  out.Init(count);
  int t = 0;
  for (int i = 0; i < n;) {
    while (i < n && delimiter(i)) ++i;
    if (i == n) break;
    const int start = i;
    while (i < n && !delimiter(i)) ++i;
    if (holder)
      out[t++].SetDirectly(p + start, i - start, *holder);
    else
      out[t++].SetDirectly(p + start, i - start);
  }
}

}  // namespace
}  // namespace zr::detail

void zrString::Tokenize(zrSimpleArray<zrString>& out, const zrString& delimiters) const {
  // A character is a delimiter when delimiters holds it; a table answers that in one look.
  // It is filled first: delimiters may be an element of out as well.
  bool is_delimiter[256] = {};
  for (const char c : delimiters) is_delimiter[static_cast<unsigned char>(c)] = true;
  if (zr::detail::SplitsIntoItself(*this, out)) {
    const zrString copy(*this);
    zr::detail::Split(copy, out, is_delimiter, &copy);
  } else {
    zr::detail::Split(*this, out, is_delimiter, nullptr);
  }
}

zrString::TOKEN zrString::GetToken(int& pos, zrString& token) const {
  using namespace zr::detail;
  if (pos < 0) throw BadParameters("zrString::GetToken: pos < 0");
  const int n = Len();
  if (pos >= n) {
    token.Clear();
    return TOKEN_END;
  }
  const char* const s = GetPointer();
  // token = [pos, end) of this string, pos = end. Nothing of this string is read after
  // it, since token may be this string itself.
  const auto take = [&](int end, TOKEN kind) {
    token.SetSubWindow(*this, pos, end - pos);
    pos = end;
    return kind;
  };

  ScanState state = kBetween;
  for (int i = pos; i < n; ++i) {
    const char c = s[i];
    switch (state) {
      case kBetween:
        if (IsLetter(c) || c == '_') {
          state = kIdent;
        } else if (IsDigit(c)) {
          state = kInteger;
        } else if (c == '"') {
          state = kQuoted;
        } else if (IsSpace(c)) {
          pos = i + 1;  // the token starts after it
        } else {
          pos = i;
          return take(i + 1, TOKEN_SYMBOL);
        }
        break;
      case kIdent:
        if (!IsWordChar(c)) return take(i, TOKEN_IDENT);
        break;
      case kInteger:
        if (c == '.') {
          state = kPoint;
        } else if (c == 'e') {
          state = kExponent;
        } else if (!IsDigit(c)) {
          return take(i, TOKEN_INT);
        }
        break;
      case kPoint:  // a point without a digit after it is not the number's
        if (!IsDigit(c)) return take(i - 1, TOKEN_INT);
        state = kFraction;
        break;
      case kFraction:
        if (c == 'e') {
          state = kExponent;
        } else if (!IsDigit(c)) {
          return take(i, TOKEN_REAL);
        }
        break;
      case kExponent:  // nor is an 'e' without exponent digits
        if (IsDigit(c)) {
          state = kExpDigits;
        } else if (c == '-') {
          state = kExpMinus;
        } else {
          return take(i - 1, TOKEN_REAL);
        }
        break;
      case kExpMinus:  // nor "e-"
        if (!IsDigit(c)) return take(i - 2, TOKEN_REAL);
        state = kExpDigits;
        break;
      case kExpDigits:
        if (!IsDigit(c)) return take(i, TOKEN_REAL);
        break;
      case kQuoted:
        if (c == '"') return take(i + 1, TOKEN_STRING);
        break;
      default:
        ThrowInnerError();
    }
  }

  // The end of the text, by the state it came in.
  switch (state) {
    case kBetween:
      return TOKEN_END;
    case kIdent:
      return take(n, TOKEN_IDENT);
    case kInteger:
      return take(n, TOKEN_INT);
    case kFraction:
    case kExpDigits:
      return take(n, TOKEN_REAL);
    case kPoint:
      return take(n - 1, TOKEN_INT);
    case kExponent:
      return take(n - 1, TOKEN_REAL);
    case kExpMinus:
      return take(n - 2, TOKEN_REAL);
    case kQuoted:
      throw BadParameters("syntax error : expected '\"'");
    default:
      ThrowInnerError();
  }
}

ZR_INSTANTIATE_TEMPLATE(class, zrSimpleArray<zrString>);
