// The complex discrete Fourier transform behind the cosine transforms: a plan for one
// length that computes X_k = sum_j x_j exp(-2 pi i j k / n). Library source, not
// installed.
//
// Lengths whose prime factors are all 64 or less run through a self-sorting (Stockham)
// mixed-radix pass per factor: radix 4, 2, 3 and 5 butterflies and a plain one for other
// small primes. Any other length goes through Bluestein's chirp: the transform becomes a
// cyclic convolution of a power-of-two length, done with a plan of that length. Every
// twiddle is a root of unity exp(-i pi j / (2 N)) for an integer j, computed in long double
// on the first octant and mapped by symmetry, so each is the double nearest the true value
// (or a hair from it).
//
// A plan owns its tables and its work space: one plan serves one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "zr/core/memory.h"
#include "zr/core/using_new.h"

namespace zr::detail {

struct Cx {
  double re;
  double im;
};

// n elements of T from zrMalloc, released with the buffer; raw until written.
template <class T>
class FftBuffer {
 public:
  FftBuffer() = default;
  explicit FftBuffer(std::ptrdiff_t n) { Reset(n); }
  FftBuffer(const FftBuffer&) = delete;
  FftBuffer& operator=(const FftBuffer&) = delete;
  ~FftBuffer() { zrFree(p_); }
  void Reset(std::ptrdiff_t n) {
    T* p = static_cast<T*>(zrMalloc(static_cast<std::uint64_t>(n > 0 ? n : 1) * sizeof(T)));
    zrFree(p_);
    p_ = p;
  }
  T* get() const { return p_; }
  T& operator[](std::ptrdiff_t i) const { return p_[i]; }

 private:
  T* p_ = nullptr;
};

// exp(-i pi j / (2 n)) in long double for any integer j and n >= 1: j is reduced to a
// quarter turn and an angle of at most pi / 4 before the sine and cosine are taken.
void RootOfUnity(std::int64_t j, std::int64_t n, long double& re, long double& im);

class Fft : public zrUsingNew {
 public:
  // n >= 1.
  explicit Fft(std::ptrdiff_t n);
  Fft(const Fft&) = delete;
  Fft& operator=(const Fft&) = delete;
  ~Fft() override;

  std::ptrdiff_t Len() const { return n_; }
  // Transforms data (n elements); work has n elements too. Returns the one of the two that
  // holds the result; the other is overwritten.
  Cx* Forward(Cx* data, Cx* work) const;

 private:
  struct Stage {
    int radix;
    std::ptrdiff_t m;       // the length of each sub-transform after this pass
    std::ptrdiff_t stride;  // the number of interleaved sub-transforms before it
    Cx* twiddles;           // (radix - 1) per q = 0 ... m - 1: exp(-2 pi i q r / (m radix))
    Cx* roots;              // generic radix: exp(-2 pi i k / radix), k < radix
  };

  void Plan(std::ptrdiff_t n);
  void Bluestein(std::ptrdiff_t n);
  Cx* Stockham(Cx* x, Cx* y) const;

  std::ptrdiff_t n_ = 0;
  int stages_ = 0;
  Stage stage_[64] = {};
  FftBuffer<Cx> twiddles_;

  // Bluestein: the chirp exp(-i pi k^2 / n), the transformed convolution kernel (scaled by
  // 1 / m) and the power-of-two plan with its two buffers.
  std::unique_ptr<Fft> inner_;
  FftBuffer<Cx> chirp_;
  FftBuffer<Cx> kernel_;
  FftBuffer<Cx> a_;
  FftBuffer<Cx> b_;
};

}  // namespace zr::detail
