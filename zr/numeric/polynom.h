/// \file
/// zrPolynom<TT>: a polynomial in one variable about a centre x0, held as its column of
/// coefficients. Only zrPolynom<double> exists.
///
/// The polynomial IS its coefficient vector: a zrColumnVector<TT> whose n elements are
/// c[0] ... c[n-1], with the coefficient form and the centre added. With t = x + (0 - x0):
///   PowerKoef   c[0]*t^(n-1) + c[1]*t^(n-2) + ... + c[n-1]   (c[0] is the highest power)
///   TaylorKoef  sum c[i] * t^(n-1-i) / (n-1-i)!               (c[n-1] is the value at x0,
///                                                              c[n-2] the slope, ...)
/// Both are evaluated by a nested scheme from c[0], in this order and no other:
///   PowerKoef   p = c[0]; p = p*t + c[i]          for i = 1 ... n-1
///   TaylorKoef  p = c[0]; p = p*t / (n - i) + c[i] for i = 1 ... n-1
///
/// Sharing follows the vector: the copy constructor and the constructor from a coefficient
/// column SHARE the coefficients (writes through either are seen by both); operator= and
/// SetKoef copy the coefficient VALUES into this polynomial's storage (in place when the
/// lengths agree, so every sharer of that storage sees them). Form and centre are plain
/// fields, always copied. swap exchanges handles, form and centre, so arrays of
/// polynomials move their elements without writing one into another.
///
/// The flat form (MemSize, ToMem, FromMem) is the vector's: the coefficients only, not the
/// form or the centre.
///
/// Choices where the definition leaves room:
///   - the default and size constructors set the form to PowerKoef and the centre to 0;
///   - a polynomial with no coefficients has the value 0 everywhere (after the form check);
///   - Derivative with m < 0 throws "zrPolynom : wrong derivative order".
///
/// Errors (BadParameters): "zrPolynom : wrong KoefType" from operator() and from
/// Derivative (there only when m < n: a derivative of order n or more is 0 whatever the
/// form says) when the form is neither PowerKoef nor TaylorKoef.
///
/// The template parameter is TT because T() is an inherited member.
#pragma once

#include <cstdint>

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/linalg/linalg.h"

/// A polynomial of TT in one variable about a centre x0, in power or Taylor coefficients,
/// with its value and derivatives; only zrPolynom<double> exists.
/// Who shares: the polynomial is its zrColumnVector of coefficients, so the copy
/// constructor and the constructor from a coefficient column SHARE the coefficients;
/// operator= and SetKoef copy values (see polynom.h). See the example
/// docs/examples.md#guide_numeric.
template <class TT>
class ZR_API zrPolynom : public zrColumnVector<TT> {
  ZR_TYPE_IDENTITY
 public:
  /// The coefficient form; stored as a 32-bit enumeration.
  enum KoefType : std::int32_t { PowerKoef = 0, TaylorKoef = 1 };

  /// No coefficients, PowerKoef about 0.
  zrPolynom() = default;
  /// n uninitialised coefficients, PowerKoef about 0.
  explicit zrPolynom(int n) : zrColumnVector<TT>(n) {}
  /// SHARES koef's coefficients.
  zrPolynom(const zrColumnVector<TT>& koef, TT x0, KoefType type)
      : zrColumnVector<TT>(koef), type_(type), x0_(x0) {}
  /// SHARES other's coefficients; copies form and centre.
  zrPolynom(const zrPolynom& other)
      : zrColumnVector<TT>(other), type_(other.type_), x0_(other.x0_) {}
  /// Copies the coefficient values (vector assignment), the form and the centre.
  zrPolynom& operator=(const zrPolynom& other);
  ~zrPolynom() override;

  /// Exchanges the coefficient handles, forms and centres; no coefficient is copied.
  void swap(zrPolynom& other);

  /// Copies koef's values into this polynomial (vector assignment), then sets form and
  /// centre.
  void SetKoef(const zrColumnVector<TT>& koef, TT x0, KoefType type);

  KoefType GetKoefType() const { return type_; }
  TT GetX0() const { return x0_; }

  /// The value at x.
  TT operator()(TT x) const;
  /// The m-th derivative at x (m = 0: the value). m >= n gives 0 at once.
  ///   PowerKoef: c[i], i = 0 ... n-1-m, of degree d = n-1-i, is weighted by the falling
  ///     factorial f = d*(d-1)*...*(d-m+1) (formed first, then c[i]*f), and the weights
  ///     go through the power scheme: p = w[0]; p = p*t + w[i], i = 1 ... n-1-m.
  ///   TaylorKoef: the Taylor form of the first n - m coefficients:
  ///     p = c[0]; p = p*t / (n - m - i) + c[i], i = 1 ... n-1-m.
  TT Derivative(TT x, int m) const;

 private:
  KoefType type_ = PowerKoef;  // how the coefficients are read
  TT x0_ = TT{};               // the centre
};

namespace zr::detail {

// The m-th derivative (0 <= m < n) at t = x - centre of the power-form coefficients
// c[0] ... c[n-1] (highest degree first): each c[i] weighted by the falling factorial of
// its degree d = n-1-i over m factors, then Horner's rule over the n - m that survive.
// Shared by zrPolynom and the spline's flat segment records.
template <class TT, class Coefficients>
TT PowerDerivative(const Coefficients& c, int n, TT t, int m) {
  auto weighted = [&](int i) {
    const int d = n - 1 - i;
    TT f = static_cast<TT>(1);
    for (int j = 0; j < m; ++j) f = f * static_cast<TT>(d - j);
    return c[i] * f;
  };
  TT p = weighted(0);
  for (int i = 1; i < n - m; ++i) p = p * t + weighted(i);
  return p;
}

}  // namespace zr::detail

ZR_EXTERN_TEMPLATE(class, zrPolynom<double>);
/// Arrays of polynomials (the segments of a spline). Copying such an array copies the
/// coefficient values into new polynomials; moving elements inside it exchanges handles.
ZR_EXTERN_TEMPLATE(class, zrSimpleArray<zrPolynom<double>>);
