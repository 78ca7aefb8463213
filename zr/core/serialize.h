/// \file
/// The flat byte form.
///
/// Any serialisable value or object is written to, and read back from, a buffer the
/// caller provides: zrMemSize gives the byte count, zrToMem writes and zrFromMem reads,
/// each returning the bytes it handled, so that several values can be written back to
/// back by advancing the buffer by each result. Objects with the virtual MemSize, ToMem
/// and FromMem (the arrays, zr/arrays/parray.h) get free functions that forward to them,
/// so the free functions are the one entry point for every kind of type.
///
/// The form is the machine's native one: little-endian integers, IEEE-754 binary32 and
/// binary64, fields in declaration order, no padding, no alignment, no tag, no version and
/// no checksum. The reader must know what it reads, and the buffer must hold at least
/// MemSize bytes: nothing is checked.
///
/// This header gives the scalar types their form (their raw bytes); fixed-size value
/// types build on zr::detail::RawMemSize and friends in the same way.
#pragma once

#include <cstring>

#include "zr/core/traits.h"

namespace zr::detail {

// The raw bytes of a trivially copyable value. The buffer need not be aligned.
template <class T>
constexpr int RawMemSize() {
  return static_cast<int>(sizeof(T));
}
template <class T>
int RawToMem(unsigned char* buffer, const T& value) {
  std::memcpy(buffer, &value, sizeof(T));
  return RawMemSize<T>();
}
template <class T>
int RawFromMem(const unsigned char* buffer, T& value) {
  std::memcpy(&value, buffer, sizeof(T));
  return RawMemSize<T>();
}

}  // namespace zr::detail

#define ZR_DETAIL_RAW_FORM(T)                                            \
  inline int zrMemSize(const T&) { return zr::detail::RawMemSize<T>(); } \
  inline int zrToMem(unsigned char* buffer, const T& v) {                \
    return zr::detail::RawToMem(buffer, v);                              \
  }                                                                      \
  inline int zrFromMem(const unsigned char* buffer, T& v) { return zr::detail::RawFromMem(buffer, v); }
ZR_FOR_EACH_SCALAR(ZR_DETAIL_RAW_FORM)
#if LONG_MAX == LLONG_MAX
ZR_DETAIL_RAW_FORM(long)
#endif
#undef ZR_DETAIL_RAW_FORM
