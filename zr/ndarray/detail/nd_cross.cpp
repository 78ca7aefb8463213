// Planes whose lines cross, in 8 x 8 blocks transposed in vector registers: a's elements
// (i, k) at a[i + k * a1], b's at b[k + i * b0]. Every element meets its partner exactly
// once and no two pairs share an element, so the order of the walk cannot change a
// result; the vector code applies the same single IEEE operation per element as the
// plain loop, the first operand first (never a fused multiply-add).
#include <cstddef>
#include <cstdint>

#include "zr/ndarray/detail/nd_walk.h"

#if ZR_X86_KERNELS
#include <immintrin.h>
#endif

namespace zr::detail {

#if ZR_X86_KERNELS
namespace {

using Block = void (*)(double* a, std::ptrdiff_t a1, const double* b, std::ptrdiff_t b0);
// A block cut short at an edge: h of b's lines (a's columns), w of a's lines.
using Part = void (*)(Block block, int h, int w, double* a, std::ptrdiff_t a1, const double* b,
                      std::ptrdiff_t b0);

// A block cut short at an edge goes through the block kernel on copies; the unused
// places hold ones.
void PartialBlock(Block block, int h, int w, double* a, std::ptrdiff_t a1, const double* b,
                  std::ptrdiff_t b0) {
  double ta[64];
  double tb[64];
  for (int q = 0; q < 64; ++q) ta[q] = tb[q] = 1.0;
  for (int q = 0; q < h; ++q)
    for (int c = 0; c < w; ++c) tb[c + 8 * q] = b[c + q * b0];
  for (int c = 0; c < w; ++c)
    for (int q = 0; q < h; ++q) ta[q + 8 * c] = a[q + c * a1];
  block(ta, 8, tb, 8);
  for (int c = 0; c < w; ++c)
    for (int q = 0; q < h; ++q) a[q + c * a1] = ta[q + 8 * c];
}

// [0, r) cut into a first piece up to an aligned start (first elements), then pieces of
// step elements, the last one shorter: f(start, count) for each.
template <class F>
void Pieces(int r, int first, int step, F f) {
  int p = first < r ? first : r;
  if (p > 0) f(0, p);
  for (; p < r; p += step) f(p, r - p < step ? r - p : step);
}

// The plane in 8 x 8 blocks, in block rows: the lines of one operand in a block row are
// read as streams, the other's are met one cache line per block. A plane that fits the
// caches goes one block a row along a's lines, b's lines prefetched 32 lines ahead, since
// more lines than the first-level cache has ways for one set evict each other when the
// strides are powers of two. A plane too big for the caches goes four blocks a row along
// b's lines, unprefetched: each visit to one of a's far-apart lines (and its page) then
// brings 256 bytes, and the memory keeps more of those visits in flight (a += b on 256 x 256
// planes 512 KiB apart: about 1.1 times as fast as four blocks along a's lines with b's
// prefetched, 1.3 times as fast as one block; 256 x 256 and 512 x 512 planes of a square
// array: 1.5 to 1.8 times as fast as along a's lines). The blocks start where a's lines meet a
// 64-byte boundary along them and where b's lines do along theirs, when the lines all share
// it, so that no vector access splits a cache line.
void CrossBlocks(Block block, Part part, int r0, int r1, double* a, std::ptrdiff_t a1,
                 const double* b, std::ptrdiff_t b0) {
  constexpr int kAhead = 32;  // rows of b prefetched ahead
  const auto start = [](const double* p, std::ptrdiff_t stride) {
    const auto mis = reinterpret_cast<std::uintptr_t>(p) % 64;
    return stride % 8 == 0 && mis % 8 == 0 ? static_cast<int>((64 - mis) % 64 / 8) : 0;
  };
  const int i0 = start(a, a1);
  const int k0 = start(b, b0);
  // The block of h of b's lines from line i, w of a's lines from line k.
  const auto at = [=](int i, int k, int h, int w) {
    double* const pa = a + i + k * a1;
    const double* const pb = b + k + i * b0;
    if (h == 8 && w == 8) {
      block(pa, a1, pb, b0);
    } else {
      part(block, h, w, pa, a1, pb, b0);
    }
  };
  if (static_cast<std::int64_t>(r0) * r1 >= (std::int64_t{1} << 15)) {
    Pieces(r0, i0, 32, [&](int i, int h) {
      Pieces(r1, k0, 8, [&](int k, int w) {
        for (int c = 0; c < h; c += 8) at(i + c, k, h - c < 8 ? h - c : 8, w);
      });
    });
    return;
  }
  Pieces(r1, k0, 8, [&](int k, int w) {
    Pieces(r0, i0, 8, [&](int i, int h) {
      if (h == 8 && i + 8 + kAhead <= r0)
        for (int q = i + kAhead; q < i + kAhead + 8; ++q) Prefetch(b + k + q * b0);
      at(i, k, h, w);
    });
  });
}

// The compiler's eight-wide shuffles start from an undefined register, which some
// versions of it report as uninitialised.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

template <NDOp op>
ZR_TARGET_AVX512 inline __m512d Apply512(__m512d x, __m512d y) {
  if constexpr (op == NDOp::kAdd) {
    return _mm512_add_pd(x, y);
  } else if constexpr (op == NDOp::kSub) {
    return _mm512_sub_pd(x, y);
  } else if constexpr (op == NDOp::kMul) {
    return _mm512_mul_pd(x, y);
  } else {
    return _mm512_div_pd(x, y);
  }
}

// One 8 x 8 block: b's eight lines transposed in registers, then a's eight lines. Cut
// short, h of b's lines are loaded, w elements each, and w of a's lines written, h
// elements each, under masks.
template <NDOp op, bool full>
ZR_TARGET_AVX512 inline void Transpose512(double* a, std::ptrdiff_t a1, const double* b,
                                          std::ptrdiff_t b0, int h, int w) {
  const __m512d ones = _mm512_set1_pd(1.0);
  const __mmask8 cols = static_cast<__mmask8>((1u << w) - 1);
  const __mmask8 rows = static_cast<__mmask8>((1u << h) - 1);
  __m512d r[8];
  __m512d t[8];
  for (int q = 0; q < 8; ++q)
    r[q] = full    ? _mm512_loadu_pd(b + q * b0)
           : q < h ? _mm512_mask_loadu_pd(ones, cols, b + q * b0)
                   : ones;
  for (int q = 0; q < 8; q += 2) {
    t[q] = _mm512_unpacklo_pd(r[q], r[q + 1]);
    t[q + 1] = _mm512_unpackhi_pd(r[q], r[q + 1]);
  }
  // Columns c and c + 4 of four rows: u[c] for rows 0-3, u[4 + c] for rows 4-7.
  const __m512i lo = _mm512_set_epi64(13, 12, 5, 4, 9, 8, 1, 0);
  const __m512i hi = _mm512_set_epi64(15, 14, 7, 6, 11, 10, 3, 2);
  for (int g = 0; g < 8; g += 4) {
    r[g] = _mm512_permutex2var_pd(t[g], lo, t[g + 2]);
    r[g + 2] = _mm512_permutex2var_pd(t[g], hi, t[g + 2]);
    r[g + 1] = _mm512_permutex2var_pd(t[g + 1], lo, t[g + 3]);
    r[g + 3] = _mm512_permutex2var_pd(t[g + 1], hi, t[g + 3]);
  }
  for (int c = 0; c < 4; ++c) {
    t[c] = _mm512_shuffle_f64x2(r[c], r[4 + c], 0x44);
    t[c + 4] = _mm512_shuffle_f64x2(r[c], r[4 + c], 0xEE);
  }
  for (int q = 0; q < (full ? 8 : w); ++q) {
    double* const la = a + q * a1;
    if constexpr (full) {
      if constexpr (op == NDOp::kAssign) {
        _mm512_storeu_pd(la, t[q]);
      } else {
        _mm512_storeu_pd(la, Apply512<op>(_mm512_loadu_pd(la), t[q]));
      }
    } else if constexpr (op == NDOp::kAssign) {
      _mm512_mask_storeu_pd(la, rows, t[q]);
    } else {
      _mm512_mask_storeu_pd(la, rows, Apply512<op>(_mm512_mask_loadu_pd(ones, rows, la), t[q]));
    }
  }
}

template <NDOp op>
ZR_TARGET_AVX512 void Block512(double* a, std::ptrdiff_t a1, const double* b, std::ptrdiff_t b0) {
  Transpose512<op, true>(a, a1, b, b0, 8, 8);
}

template <NDOp op>
ZR_TARGET_AVX512 void Part512(Block, int h, int w, double* a, std::ptrdiff_t a1, const double* b,
                              std::ptrdiff_t b0) {
  Transpose512<op, false>(a, a1, b, b0, h, w);
}

#pragma GCC diagnostic pop

template <NDOp op>
ZR_TARGET_AVX2 inline __m256d Apply256(__m256d x, __m256d y) {
  if constexpr (op == NDOp::kAdd) {
    return _mm256_add_pd(x, y);
  } else if constexpr (op == NDOp::kSub) {
    return _mm256_sub_pd(x, y);
  } else if constexpr (op == NDOp::kMul) {
    return _mm256_mul_pd(x, y);
  } else {
    return _mm256_div_pd(x, y);
  }
}

// One 8 x 8 block as four 4 x 4 transposes.
template <NDOp op>
ZR_TARGET_AVX2 void Block256(double* a, std::ptrdiff_t a1, const double* b, std::ptrdiff_t b0) {
  for (int bi = 0; bi < 8; bi += 4)
    for (int bk = 0; bk < 8; bk += 4) {
      const double* const lb = b + bk + bi * b0;
      const __m256d r0 = _mm256_loadu_pd(lb);
      const __m256d r1 = _mm256_loadu_pd(lb + b0);
      const __m256d r2 = _mm256_loadu_pd(lb + 2 * b0);
      const __m256d r3 = _mm256_loadu_pd(lb + 3 * b0);
      const __m256d t0 = _mm256_unpacklo_pd(r0, r1);
      const __m256d t1 = _mm256_unpackhi_pd(r0, r1);
      const __m256d t2 = _mm256_unpacklo_pd(r2, r3);
      const __m256d t3 = _mm256_unpackhi_pd(r2, r3);
      const __m256d c[4] = {
          _mm256_permute2f128_pd(t0, t2, 0x20), _mm256_permute2f128_pd(t1, t3, 0x20),
          _mm256_permute2f128_pd(t0, t2, 0x31), _mm256_permute2f128_pd(t1, t3, 0x31)};
      for (int q = 0; q < 4; ++q) {
        double* const la = a + bi + (bk + q) * a1;
        if constexpr (op == NDOp::kAssign) {
          _mm256_storeu_pd(la, c[q]);
        } else {
          _mm256_storeu_pd(la, Apply256<op>(_mm256_loadu_pd(la), c[q]));
        }
      }
    }
}

template <NDOp op>
bool CrossAt(Level level, int r0, int r1, double* a, std::ptrdiff_t a1, const double* b,
             std::ptrdiff_t b0) {
  if (level >= Level::kAvx512) {
    CrossBlocks(&Block512<op>, &Part512<op>, r0, r1, a, a1, b, b0);
  } else if (level >= Level::kAvx2) {
    CrossBlocks(&Block256<op>, &PartialBlock, r0, r1, a, a1, b, b0);
  } else {
    return false;
  }
  return true;
}

}  // namespace

bool CrossPlane(Level level, NDOp op, int r0, int r1, double* a, std::ptrdiff_t a1, const double* b,
                std::ptrdiff_t b0) {
  bool done = false;
  ByOp(op, [&](auto k) { done = CrossAt<decltype(k)::value>(level, r0, r1, a, a1, b, b0); });
  return done;
}

#else

bool CrossPlane(Level, NDOp, int, int, double*, std::ptrdiff_t, const double*, std::ptrdiff_t) {
  return false;
}

#endif

}  // namespace zr::detail
