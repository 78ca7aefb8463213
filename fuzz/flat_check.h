// Shared by the flat-form fuzz targets: one input through the checked reader, and what
// must hold whether it is accepted or refused.
//
// Accepted: the bytes read are at most the input and exactly what the object now
// writes back (zrMemSize); rewritten, the form is the input's own bytes (compared as
// bytes, so NaN payloads count) or, for the few forms the library writes back in a
// normal form, that normal form, which reads back to itself; the same bytes read again
// into the filled object give the same object; one byte fewer is refused and leaves the
// object as it was. Refused: only BadParameters with the reader's one text, the object
// untouched. Any other exception escapes and libFuzzer reports it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "check.h"
#include "zr/core/core.h"

namespace zr_fuzz {

using Bytes = std::vector<unsigned char>;

inline const char kRefusedText[] =
    "Invalid parameters : zrFromMem: the buffer does not hold a valid flat form";

template <class T>
Bytes Flat(const T& object) {
  Bytes out(static_cast<std::size_t>(zrMemSize(object)));
  ZR_FUZZ_CHECK(zrToMem(out.data(), object) == static_cast<int>(out.size()));
  return out;
}

// The checked read; -1 when refused, after checking the refusal and that the object
// kept its form.
template <class T>
int Read(const unsigned char* data, std::size_t size, T& object) {
  const Bytes before = Flat(object);
  try {
    const int n = zrFromMem(data, size, object);
    ZR_FUZZ_CHECK(n >= 0 && static_cast<std::size_t>(n) <= size);
    return n;
  } catch (const BadParameters& e) {
    ZR_FUZZ_CHECK(std::strcmp(e.GetMessageText(), kRefusedText) == 0);
  }
  ZR_FUZZ_CHECK(Flat(object) == before);
  return -1;
}

// Runs the checks above for one type. `exact(data, n)` tells whether the n bytes read
// must come back byte for byte; where it says no, the rewrite must be a fixed point.
template <class T, class Exact>
void CheckFlat(const unsigned char* data, std::size_t size, T& object, Exact exact) {
  const int n = Read(data, size, object);
  if (n < 0) return;
  const Bytes out = Flat(object);
  ZR_FUZZ_CHECK(static_cast<int>(out.size()) == zrMemSize(object));
  if (exact(data, n)) {
    ZR_FUZZ_CHECK(out.size() == static_cast<std::size_t>(n));
    ZR_FUZZ_CHECK(std::memcmp(out.data(), data, out.size()) == 0);
  } else {
    T again{};
    ZR_FUZZ_CHECK(Read(out.data(), out.size(), again) == static_cast<int>(out.size()));
    ZR_FUZZ_CHECK(Flat(again) == out);
  }
  // Into the filled object (the equal-size paths read in place).
  ZR_FUZZ_CHECK(Read(data, static_cast<std::size_t>(n), object) == n);
  ZR_FUZZ_CHECK(Flat(object) == out);
  if (n > 0) ZR_FUZZ_CHECK(Read(data, static_cast<std::size_t>(n) - 1, object) == -1);
}

template <class T>
void CheckFlat(const unsigned char* data, std::size_t size) {
  T object{};
  CheckFlat(data, size, object, [](const unsigned char*, int) { return true; });
}

// The 32-bit count at data + at (the caller has checked that it is there).
inline std::int32_t CountAt(const unsigned char* data, int at) {
  std::int32_t n;
  std::memcpy(&n, data + at, sizeof n);
  return n;
}

}  // namespace zr_fuzz
