// Splits arbitrary bytes with zrString::Tokenize.
//
// The first byte gives the number of delimiters (its value mod 4), the next bytes are the
// delimiters and the rest is the text; each lies in a buffer of exactly its size, so a
// read past either end is caught. The pieces must be windows of the text (nothing is
// copied), non-empty, free of delimiters, in order, and separated by delimiters only, with
// nothing but delimiters before the first and after the last. The text is split first at
// the first delimiter alone and then, into the same array, at all of them: the second split
// finds the array filled and must re-size it, reuse it, or empty it when nothing is left.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

#include "check.h"
#include "zr/text/text.h"

namespace {

using zr_fuzz::Offset;

bool IsDelimiter(char c, const char* d, int nd) {
  return nd != 0 && std::memchr(d, c, static_cast<size_t>(nd)) != nullptr;
}

void CheckPieces(const zrSimpleArray<zrString>& out, const char* t, int nt, const char* d, int nd) {
  ZR_FUZZ_CHECK(out.Len() >= 0 && out.Len() <= (nt + 1) / 2);
  std::int64_t at = 0;  // the end of the previous piece
  for (int k = 0; k < out.Len(); ++k) {
    const zrString& piece = out[k];
    const std::int64_t s = Offset(piece.GetPointer(), t);
    const int len = piece.Len();
    ZR_FUZZ_CHECK(len >= 1 && s >= at && s + len <= nt);
    // Two pieces with nothing between them would be one.
    ZR_FUZZ_CHECK(k == 0 || s > at);
    for (std::int64_t i = at; i < s; ++i) ZR_FUZZ_CHECK(IsDelimiter(t[i], d, nd));
    for (std::int64_t i = s; i < s + len; ++i) ZR_FUZZ_CHECK(!IsDelimiter(t[i], d, nd));
    at = s + len;
  }
  for (std::int64_t i = at; i < nt; ++i) ZR_FUZZ_CHECK(IsDelimiter(t[i], d, nd));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
  if (size == 0 || size > (1u << 20)) return 0;
  const size_t nd = std::min<size_t>(data[0] % 4, size - 1);
  const size_t nt = size - 1 - nd;

  std::unique_ptr<char[]> delimiters(new char[nd]);
  std::unique_ptr<char[]> text(new char[nt]);
  if (nd != 0) std::memcpy(delimiters.get(), data + 1, nd);
  if (nt != 0) std::memcpy(text.get(), data + 1 + nd, nt);
  const zrString d(delimiters.get(), static_cast<int>(nd));
  const zrString t(text.get(), static_cast<int>(nt));

  zrSimpleArray<zrString> out;
  const int n1 = nd != 0 ? 1 : 0;
  const zrString d1(delimiters.get(), n1);
  t.Tokenize(out, d1);
  CheckPieces(out, text.get(), static_cast<int>(nt), delimiters.get(), n1);

  t.Tokenize(out, d);
  CheckPieces(out, text.get(), static_cast<int>(nt), delimiters.get(), static_cast<int>(nd));

  ZR_FUZZ_CHECK(t.Len() == static_cast<int>(nt) && (nt == 0 || t.GetPointer() == text.get()));
  ZR_FUZZ_CHECK(nt == 0 || std::memcmp(text.get(), data + 1 + nd, nt) == 0);
  return 0;
}
