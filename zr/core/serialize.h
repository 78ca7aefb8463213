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
///
/// The checked reader. zrFromMem(buffer, size, object) is the entry point for bytes that
/// come from outside: it reads the same form as zrFromMem(buffer, object) and gives the
/// same result, but first walks the form within the size bytes given, without
/// allocating anything and without touching the object. It refuses, with
/// BadParameters("zrFromMem: the buffer does not hold a valid flat form"), a form that
///   - needs more bytes than size, a count included (a truncated form);
///   - declares counts whose byte total overflows 64 bits or exceeds INT_MAX (the
///     protocol counts bytes in an int);
///   - declares counts the type cannot take: a negative length of an array, a negative
///     matrix or N-dimensional size, an N-dimensional element count over INT_MAX, or
///     whatever the type's own header lists.
/// A refused object is left exactly as it was, and nothing is allocated on the way to
/// the refusal. Once the walk succeeds the unchecked reader runs, so an allocation
/// failure there still throws zrErrNoMemory as it always does. Every serialisable type
/// has the checked reader; the walk that checks its form is zr::detail::FlatWalk, one
/// overload per type beside the type's other flat-form functions.
#pragma once

#include <climits>
#include <cstddef>
#include <cstring>
#include <utility>

#include "zr/core/exceptions.h"
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

// A read-only position inside a buffer of known size, for walking a flat form before it
// is read. Every step is checked against the bytes that remain; nothing is allocated.
class FlatCursor {
 public:
  FlatCursor(const unsigned char* buffer, std::size_t size) : at_(buffer), left_(size) {}

  // Passes over `bytes` bytes; false (and no move) when fewer remain.
  bool Skip(std::uint64_t bytes) {
    if (bytes > left_) return false;
    at_ += bytes;
    left_ -= static_cast<std::size_t>(bytes);
    used_ += bytes;
    return true;
  }
  // Passes over count items of `each` bytes; false when fewer remain, the product
  // overflow included.
  bool SkipItems(std::uint64_t count, std::uint64_t each) {
    if (each != 0 && count > left_ / each) return false;
    return Skip(count * each);
  }
  // Reads a 32-bit count of the form and passes over it.
  bool ReadCount(std::int32_t& count) {
    if (left_ < sizeof(count)) return false;
    RawFromMem(at_, count);
    return Skip(sizeof(count));
  }
  // Bytes passed over so far.
  std::uint64_t Used() const { return used_; }

 private:
  const unsigned char* at_;
  std::size_t left_;
  std::uint64_t used_ = 0;
};

[[noreturn]] inline void ThrowBadFlatForm() {
  throw BadParameters("zrFromMem: the buffer does not hold a valid flat form");
}

// The walk of a type whose form has a fixed size.
template <class T>
bool FixedFlatWalk(FlatCursor& cursor, const T& value) {
  return cursor.Skip(static_cast<std::uint64_t>(zrMemSize(value)));
}

}  // namespace zr::detail

#define ZR_DETAIL_RAW_FORM(T)                                            \
  inline int zrMemSize(const T&) { return zr::detail::RawMemSize<T>(); } \
  inline int zrToMem(unsigned char* buffer, const T& v) {                \
    return zr::detail::RawToMem(buffer, v);                              \
  }                                                                      \
  inline int zrFromMem(const unsigned char* buffer, T& v) {              \
    return zr::detail::RawFromMem(buffer, v);                            \
  }
ZR_FOR_EACH_SCALAR(ZR_DETAIL_RAW_FORM)
#if LONG_MAX == LLONG_MAX
ZR_DETAIL_RAW_FORM(long)
#endif
#undef ZR_DETAIL_RAW_FORM

namespace zr::detail {
#define ZR_DETAIL_RAW_WALK(T) \
  inline bool FlatWalk(FlatCursor& cursor, const T&) { return cursor.Skip(sizeof(T)); }
ZR_FOR_EACH_SCALAR(ZR_DETAIL_RAW_WALK)
#if LONG_MAX == LLONG_MAX
ZR_DETAIL_RAW_WALK(long)
#endif
#undef ZR_DETAIL_RAW_WALK
}  // namespace zr::detail

/// The checked reader (see the top of this file): reads the flat form of object from the
/// size bytes at buffer and returns the bytes read, or throws BadParameters("zrFromMem:
/// the buffer does not hold a valid flat form") and leaves object as it was. buffer may
/// be null when size is 0.
template <class T>
int zrFromMem(const unsigned char* buffer, std::size_t size, T& object) {
  zr::detail::FlatCursor cursor(buffer, size);
  // The walk of the type is found next to it (argument-dependent lookup), wherever it is
  // declared.
  if (!FlatWalk(cursor, std::as_const(object)) || cursor.Used() > INT_MAX)
    zr::detail::ThrowBadFlatForm();
  return zrFromMem(buffer, object);
}
