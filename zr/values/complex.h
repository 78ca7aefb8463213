/// \file
/// zrComplex: the library's complex number, a plain value of two doubles.
///
/// Laid out as the real part then the imaginary part, exactly like zrVec2 (x, y); the two
/// share their addition, subtraction, negation, equality, assignment and flat form.
/// No base class, no virtual operations, no heap storage: the value is trivially
/// copyable and its default constructor leaves both parts uninitialised, as the other
/// value types do, so that arrays of them cost nothing to create.
///
/// Three rules of the library are kept as they stand although they are not textbook
/// complex arithmetic, because results computed with them must stay the same:
///   - a / b divides by the modulus |b|, not by |b|^2, so the quotient comes out |b|
///     times the mathematical one (exact only for |b| == 1); /= does the same;
///   - a *= b ADDS b to a, like +=; only operator* multiplies;
///   - <, >, <= and >= compare moduli: values of equal modulus are neither < nor > each
///     other but both <= and >=, and a NaN modulus makes all four false.
/// A zero divisor is not checked: it gives IEEE infinities or NaNs.
///
/// Formulas that sum products (*, /, zrAbs, zrComplexNormSqrt) are compiled in the
/// library, where contraction into fused multiply-adds is off, so that a caller's
/// compiler flags cannot change their bits. The rest is inline.
#pragma once

#include <type_traits>

#include "zr/core/export.h"
#include "zr/core/serialize.h"

namespace zr::detail {

// The 16-byte flat form of zrComplex and zrVec2: two doubles, first then second, each
// as its 8 raw bytes.
inline constexpr int kPairMemSize = 2 * RawMemSize<double>();
inline int PairToMem(unsigned char* buffer, const double& first, const double& second) {
  const int n = RawToMem(buffer, first);
  return n + RawToMem(buffer + n, second);
}
inline int PairFromMem(const unsigned char* buffer, double& first, double& second) {
  const int n = RawFromMem(buffer, first);
  return n + RawFromMem(buffer + n, second);
}

}  // namespace zr::detail

/// The library's complex number: a plain value of two doubles, the real part then the
/// imaginary part, copied whole by copy and assignment (no block, nothing shared). Its
/// division, its *= and its ordering follow the library's own rules, not textbook
/// arithmetic (see complex.h). See the example docs/examples.md#guide_values and
/// examples/persistence.cpp.
class ZR_API zrComplex {
 public:
  /// Both parts uninitialised.
  zrComplex() = default;
  /// A real number: the imaginary part is +0.0. Implicit, so that a double may stand
  /// wherever a complex operand is expected.
  zrComplex(double re) : re_(re), im_(0.0) {}  // NOLINT(google-explicit-constructor)
  zrComplex(double re, double im) : re_(re), im_(im) {}

  /// The parts, by reference.
  double& Re() { return re_; }
  const double& Re() const { return re_; }
  double& Im() { return im_; }
  const double& Im() const { return im_; }

  zrComplex operator+(const zrComplex& b) const { return zrComplex(re_ + b.re_, im_ + b.im_); }
  zrComplex operator-(const zrComplex& b) const { return zrComplex(re_ - b.re_, im_ - b.im_); }
  /// Computed as -0.0 - part, so that the sign of a zero part flips too.
  zrComplex operator-() const { return zrComplex(-0.0 - re_, -0.0 - im_); }
  /// (a.re*b.re - a.im*b.im, a.re*b.im + a.im*b.re).
  zrComplex operator*(const zrComplex& b) const;
  /// With r = zrAbs(b): ((a.re*b.re + a.im*b.im) / r, (b.re*a.im - a.re*b.im) / r).
  zrComplex operator/(const zrComplex& b) const;

  zrComplex& operator+=(const zrComplex& b) {
    re_ += b.re_;
    im_ += b.im_;
    return *this;
  }
  zrComplex& operator-=(const zrComplex& b) {
    re_ -= b.re_;
    im_ -= b.im_;
    return *this;
  }
  /// Adds, as += does (see above).
  zrComplex& operator*=(const zrComplex& b) {
    const zrComplex sum = *this + b;
    *this = sum;
    return *this;
  }
  /// By the rule of operator/; a /= a is fine.
  zrComplex& operator/=(const zrComplex& b);

  /// Exact comparison of both parts; a NaN part makes two values unequal.
  int operator==(const zrComplex& b) const { return re_ == b.re_ && im_ == b.im_; }
  int operator!=(const zrComplex& b) const { return re_ != b.re_ || im_ != b.im_; }
  /// By modulus (see above).
  int operator<(const zrComplex& b) const;
  int operator>(const zrComplex& b) const;
  int operator<=(const zrComplex& b) const;
  int operator>=(const zrComplex& b) const;

 private:
  double re_;  // real part, then
  double im_;  // imaginary part: the flat form's order
};

static_assert(std::is_trivially_default_constructible_v<zrComplex>);
static_assert(std::is_trivially_copyable_v<zrComplex>);
static_assert(std::is_standard_layout_v<zrComplex> && sizeof(zrComplex) == 16);

/// The modulus sqrt(re*re + im*im), computed directly: no scaling, so parts beyond about
/// 1e154 overflow to infinity.
ZR_API double zrAbs(const zrComplex& z);

/// The square root the norm of a complex vector takes. It is the library's fixed rule,
/// not the principal square root, and is kept so that norms stay the same:
///   r = zrAbs(z); r == 0 gives z itself; otherwise, with x = z.im / r,
///   (r * sqrt((1 - x) * 0.5), r * sqrt((1 + x) * 0.5)).
/// It scales by r rather than sqrt(r) and takes its angle from the imaginary part:
/// (0, 4) gives (0, 4) and (4, 0) gives (4*sqrt(0.5), 4*sqrt(0.5)).
ZR_API zrComplex zrComplexNormSqrt(const zrComplex& z);

inline int zrComplex::operator<(const zrComplex& b) const { return zrAbs(b) > zrAbs(*this); }
inline int zrComplex::operator>(const zrComplex& b) const { return zrAbs(*this) > zrAbs(b); }
inline int zrComplex::operator<=(const zrComplex& b) const { return zrAbs(b) >= zrAbs(*this); }
inline int zrComplex::operator>=(const zrComplex& b) const { return zrAbs(*this) >= zrAbs(b); }

/// The flat form: the real part then the imaginary part, 16 bytes.
inline int zrMemSize(const zrComplex&) { return zr::detail::kPairMemSize; }
inline int zrToMem(unsigned char* buffer, const zrComplex& c) {
  return zr::detail::PairToMem(buffer, c.Re(), c.Im());
}
inline int zrFromMem(const unsigned char* buffer, zrComplex& c) {
  return zr::detail::PairFromMem(buffer, c.Re(), c.Im());
}
namespace zr::detail {
inline bool FlatWalk(FlatCursor& cursor, const zrComplex& v) { return FixedFlatWalk(cursor, v); }
}  // namespace zr::detail
