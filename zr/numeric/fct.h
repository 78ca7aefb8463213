/// \file
/// zrFCTT and zrFCTTC: fast cosine transforms of real and complex data, for every length.
///
/// A transform object is a plan for one length n >= 1: it prepares its tables once (the
/// twiddles, the factorisation of the Fourier transform it runs on, and for lengths with
/// a prime factor above 64 the chirp of Bluestein's method) and is then applied to any
/// number of vectors of that length, each in O(n log n).
///
/// The transforms (j, k = 0 ... n - 1):
///   Forward, the DCT-II:   X_k = s_k * sum_j x_j cos(pi k (2j + 1) / (2n))
///   Inverse, the DCT-III:  x_j = sum_k t_k X_k cos(pi k (2j + 1) / (2n))
/// with the scale the plan was made with:
///   Plain        s_k = 1;  t_0 = 1 / n, t_k = 2 / n for k >= 1
///   Orthonormal  s_0 = t_0 = sqrt(1 / n), s_k = t_k = sqrt(2 / n) for k >= 1
/// so Inverse undoes Forward in both, up to rounding; the orthonormal pair are each
/// other's transposes and keep the Euclidean norm. Plain X_0 is the sum of the data.
///
/// The work is one complex Fourier transform of length n / 2 for even n (the data
/// reordered as x_0, x_2, x_4, ..., x_5, x_3, x_1, packed into complex pairs) and of
/// length n for odd n, with a twiddle per coefficient around it. The Fourier transform
/// runs mixed-radix passes for lengths whose prime factors are at most 64 and Bluestein's
/// convolution (of a power-of-two length below 4n) for the others. The error is a few
/// units of rounding times log n relative to the largest coefficient. zrFCTTC transforms
/// the real and the imaginary parts as two real vectors.
///
/// Inputs and outputs, who shares and who copies:
///   - the input is read whole before any output is written, so the output may be the
///     input itself or any view overlapping it;
///   - a zrVector is read and written through its step (any sign, windows included);
///   - an output of length n is written in place: every vector or array that shares its
///     block sees the result. An output of another length first takes fresh storage of
///     length n (zrVector::Set, zrSimpleArray::Set), and its old sharers keep the old
///     elements;
///   - the one-argument forms transform in place.
///
/// A plan keeps the work space of its calls: use one plan from one thread at a time (make
/// a plan per thread to transform in parallel). Plans are not copied and have no flat
/// form; make another of the same length instead.
///
/// Errors (BadParameters): "zrFCTT: the length must be at least 1." for a plan of length
/// n < 1, and "zrFCTT: the data's length differs from the transform's." for an input of
/// another length than the plan's (zrFCTTC likewise, with its own name). Nothing is
/// changed when they are thrown. Values are not checked: a NaN or an infinity spreads to
/// the coefficients it touches.
#pragma once

#include "zr/arrays/arrays.h"
#include "zr/core/core.h"
#include "zr/linalg/linalg.h"
#include "zr/values/values.h"

namespace zr::detail {
class Dct;
}  // namespace zr::detail

/// The scale of a cosine transform plan (see fct.h): Plain (the bare DCT-II, whose inverse
/// divides by n) or Orthonormal (both directions scaled to keep the norm).
enum class zrFCTScale { Plain, Orthonormal };

/// The fast cosine transform of real data: a plan for one length that computes the DCT-II
/// (Forward) and its exact inverse, the DCT-III with the matching scale (Inverse), in
/// O(n log n) for every n >= 1. Works on zrVector<double> (any step) and zrArray<double>;
/// outputs of the plan's length are written in place and reach every sharer (see fct.h).
/// See the example docs/examples.md#guide_numeric.
class ZR_API zrFCTT : public zrUsingNew {
  ZR_TYPE_IDENTITY
 public:
  /// A plan for length n; n < 1 throws "zrFCTT: the length must be at least 1.".
  explicit zrFCTT(int n, zrFCTScale scale = zrFCTScale::Plain);
  zrFCTT(const zrFCTT&) = delete;
  zrFCTT& operator=(const zrFCTT&) = delete;
  ~zrFCTT() override;

  int Len() const { return n_; }
  zrFCTScale Scale() const { return scale_; }

  /// The DCT-II of x into out (out may be x or overlap it; see fct.h for who sees the
  /// result). x of another length than the plan's throws "zrFCTT: the data's length
  /// differs from the transform's.".
  void Forward(const zrVector<double>& x, zrVector<double>& out);
  void Forward(const zrArray<double>& x, zrArray<double>& out);
  /// In place.
  void Forward(zrVector<double>& x);
  void Forward(zrArray<double>& x);
  /// The DCT-III with the plan's scale: the inverse of Forward. Same rules.
  void Inverse(const zrVector<double>& x, zrVector<double>& out);
  void Inverse(const zrArray<double>& x, zrArray<double>& out);
  void Inverse(zrVector<double>& x);
  void Inverse(zrArray<double>& x);

 private:
  int n_;
  zrFCTScale scale_;
  zr::detail::Dct* dct_;
};

/// The fast cosine transform of complex data: zrFCTT applied to the real and the imaginary
/// parts, on zrVector<zrComplex> (any step) and zrArray<zrComplex>, with the same scales,
/// sharing rules and errors (named "zrFCTTC: ..."). See the example
/// docs/examples.md#guide_numeric.
class ZR_API zrFCTTC : public zrUsingNew {
  ZR_TYPE_IDENTITY
 public:
  /// A plan for length n; n < 1 throws "zrFCTTC: the length must be at least 1.".
  explicit zrFCTTC(int n, zrFCTScale scale = zrFCTScale::Plain);
  zrFCTTC(const zrFCTTC&) = delete;
  zrFCTTC& operator=(const zrFCTTC&) = delete;
  ~zrFCTTC() override;

  int Len() const { return n_; }
  zrFCTScale Scale() const { return scale_; }

  /// The DCT-II of x into out, the real and imaginary parts each transformed. x of another
  /// length than the plan's throws "zrFCTTC: the data's length differs from the
  /// transform's.".
  void Forward(const zrVector<zrComplex>& x, zrVector<zrComplex>& out);
  void Forward(const zrArray<zrComplex>& x, zrArray<zrComplex>& out);
  void Forward(zrVector<zrComplex>& x);
  void Forward(zrArray<zrComplex>& x);
  /// The DCT-III with the plan's scale: the inverse of Forward.
  void Inverse(const zrVector<zrComplex>& x, zrVector<zrComplex>& out);
  void Inverse(const zrArray<zrComplex>& x, zrArray<zrComplex>& out);
  void Inverse(zrVector<zrComplex>& x);
  void Inverse(zrArray<zrComplex>& x);

 private:
  int n_;
  zrFCTScale scale_;
  zr::detail::Dct* dct_;
};
