/// \file
/// Element-type traits.
///
/// zrType<T> names and classifies the element types the library instantiates its
/// templates for. The type codes are part of the interface and fixed: 8, 9 and 10 are
/// reserved between the 64-bit integer and the floating types.
///
///   T                GetValueTypeName  GetTypeCode  IsSigned  GetUHightBit
///   unsigned char    "UInt8"            1           false     0x80
///   char             "Int8"             2           true      0x40
///   unsigned short   "UInt16"           3           false     0x8000
///   short            "Int16"            4           true      0x4000
///   unsigned int     "UInt32"           5           false     0x80000000
///   int              "Int32"            6           true      0x40000000
///   64-bit integer   "Int64"            7           true      0x4000000000000000
///   float            "Real32"          11           true      -
///   double           "Real64"          12           true      -
///   zrComplex        "Complex"          -           -         -
///
/// GetUHightBit, which only the integer types have, is the highest bit that carries
/// magnitude: the top bit of an unsigned type, the bit below the sign of a signed one.
/// char is "Int8" and signed whatever the platform's char is.
#pragma once

#include <climits>
#include <cstdint>

/// The scalar element types, written once: X(type) for each. Drives the flat forms of
/// zr/core/serialize.h and the tests.
#define ZR_FOR_EACH_INTEGER(X) \
  X(unsigned char)             \
  X(char)                      \
  X(unsigned short)            \
  X(short)                     \
  X(unsigned int)              \
  X(int)                       \
  X(long long)
#define ZR_FOR_EACH_FLOATING(X) \
  X(float)                      \
  X(double)
#define ZR_FOR_EACH_SCALAR(X) ZR_FOR_EACH_INTEGER(X) ZR_FOR_EACH_FLOATING(X)

class zrComplex;

/// The traits of an element type: its name (GetValueTypeName), its fixed type code, its
/// sign and, for the integers, the highest magnitude bit. Defined for the scalar types of
/// the table in traits.h and, by name only, for zrComplex; a plain class of static
/// functions. See the example docs/examples.md#guide_core for the core subsystem.
template <class T>
class zrType;  // defined for the listed types only

namespace zr::detail {

template <class T, int Code, bool Signed>
class IntegerType {
 public:
  static constexpr int GetTypeCode() { return Code; }
  static constexpr bool IsSigned() { return Signed; }
  static constexpr T GetUHightBit() {
    return static_cast<T>(static_cast<unsigned long long>(1)
                          << (sizeof(T) * CHAR_BIT - 1 - Signed));
  }
};

template <class T, int Code>
class FloatingType {
 public:
  static constexpr int GetTypeCode() { return Code; }
  static constexpr bool IsSigned() { return true; }
};

}  // namespace zr::detail

#define ZR_DETAIL_TYPE_TRAITS(T, name, ...)                          \
  template <>                                                        \
  class zrType<T> : public __VA_ARGS__ {                             \
   public:                                                           \
    static constexpr const char* GetValueTypeName() { return name; } \
  };

ZR_DETAIL_TYPE_TRAITS(unsigned char, "UInt8", zr::detail::IntegerType<unsigned char, 1, false>)
ZR_DETAIL_TYPE_TRAITS(char, "Int8", zr::detail::IntegerType<char, 2, true>)
ZR_DETAIL_TYPE_TRAITS(unsigned short, "UInt16", zr::detail::IntegerType<unsigned short, 3, false>)
ZR_DETAIL_TYPE_TRAITS(short, "Int16", zr::detail::IntegerType<short, 4, true>)
ZR_DETAIL_TYPE_TRAITS(unsigned int, "UInt32", zr::detail::IntegerType<unsigned int, 5, false>)
ZR_DETAIL_TYPE_TRAITS(int, "Int32", zr::detail::IntegerType<int, 6, true>)
ZR_DETAIL_TYPE_TRAITS(long long, "Int64", zr::detail::IntegerType<long long, 7, true>)
#if LONG_MAX == LLONG_MAX
/// Where long is 64 bits wide (std::int64_t is long on LP64 systems) it is "Int64" too.
ZR_DETAIL_TYPE_TRAITS(long, "Int64", zr::detail::IntegerType<long, 7, true>)
#endif
ZR_DETAIL_TYPE_TRAITS(float, "Real32", zr::detail::FloatingType<float, 11>)
ZR_DETAIL_TYPE_TRAITS(double, "Real64", zr::detail::FloatingType<double, 12>)

/// The complex number has its name only.
/// See zrType for the scalar types, and the example docs/examples.md#guide_core for the core
/// subsystem.
template <>
class zrType<zrComplex> {
 public:
  static constexpr const char* GetValueTypeName() { return "Complex"; }
};

#undef ZR_DETAIL_TYPE_TRAITS
