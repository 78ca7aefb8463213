// The vector types the linear-algebra kernels are written over, one trait per level:
// Portable (two doubles in plain C++), and under ZR_X86_KERNELS Avx2 (__m256d) and Avx512
// (__m512d). A kernel is a template over the trait; its entry for a level is a function
// marked with that level's target (and ZR_KERNEL_ENTRY, so that the template and the
// trait's operations are inlined into it).
//
// Every operation takes and gives its vectors by reference, so that a template compiled
// without the instruction set never passes one by value. Each is one rounded IEEE
// operation per lane, never fused: the plain loops multiply and then add.
#pragma once

#include "zr/core/detail/machine.h"

#if ZR_X86_KERNELS
#include <immintrin.h>
#define ZR_KERNEL_ENTRY __attribute__((flatten))
#else
#define ZR_KERNEL_ENTRY
#endif

namespace zr::detail {

struct Portable {
  static constexpr int kLanes = 2;
  struct V {
    double d[kLanes];
  };
  static void Load(V& v, const double* p) {
    for (int i = 0; i < kLanes; ++i) v.d[i] = p[i];
  }
  static void Store(double* p, const V& v) {
    for (int i = 0; i < kLanes; ++i) p[i] = v.d[i];
  }
  static void Set(V& v, double x) {
    for (double& d : v.d) d = x;
  }
  static void Mul(V& r, const V& a, const V& b) {
    for (int i = 0; i < kLanes; ++i) r.d[i] = a.d[i] * b.d[i];
  }
  static void Add(V& r, const V& a, const V& b) {
    for (int i = 0; i < kLanes; ++i) r.d[i] = a.d[i] + b.d[i];
  }
  static void Sub(V& r, const V& a, const V& b) {
    for (int i = 0; i < kLanes; ++i) r.d[i] = a.d[i] - b.d[i];
  }
  static void Div(V& r, const V& a, const V& b) {
    for (int i = 0; i < kLanes; ++i) r.d[i] = a.d[i] / b.d[i];
  }
  // x = y where l is not 0 (a NaN is not 0), lane by lane.
  static void SetWhereNonZero(V& x, const V& l, const V& y) {
    for (int i = 0; i < kLanes; ++i) x.d[i] = l.d[i] != 0 ? y.d[i] : x.d[i];
  }
  // Whether some lane's magnitude compares greater than the same lane of b (never for NaN).
  static bool AnyAbsAbove(const V& v, const V& b) {
    bool any = false;
    for (int i = 0; i < kLanes; ++i) any |= (v.d[i] < 0 ? -v.d[i] : v.d[i]) > b.d[i];
    return any;
  }
};

#if ZR_X86_KERNELS
// The operations both widths spell alike, each with its own intrinsics' prefix.
#define ZR_DETAIL_LANES(Target, mm)                                               \
  Target static void Load(V& v, const double* p) { v = mm##_loadu_pd(p); }        \
  Target static void Store(double* p, const V& v) { mm##_storeu_pd(p, v); }       \
  Target static void Set(V& v, double x) { v = mm##_set1_pd(x); }                 \
  Target static void Mul(V& r, const V& a, const V& b) { r = mm##_mul_pd(a, b); } \
  Target static void Add(V& r, const V& a, const V& b) { r = mm##_add_pd(a, b); } \
  Target static void Sub(V& r, const V& a, const V& b) { r = mm##_sub_pd(a, b); } \
  Target static void Div(V& r, const V& a, const V& b) { r = mm##_div_pd(a, b); }

struct Avx2 {
  static constexpr int kLanes = 4;
  using V = __m256d;
  ZR_DETAIL_LANES(ZR_TARGET_AVX2, _mm256)
  ZR_TARGET_AVX2 static void SetWhereNonZero(V& x, const V& l, const V& y) {
    x = _mm256_blendv_pd(x, y, _mm256_cmp_pd(l, _mm256_setzero_pd(), _CMP_NEQ_UQ));
  }
  ZR_TARGET_AVX2 static bool AnyAbsAbove(const V& v, const V& b) {
    const V abs = _mm256_andnot_pd(_mm256_set1_pd(-0.0), v);
    return _mm256_movemask_pd(_mm256_cmp_pd(abs, b, _CMP_GT_OQ)) != 0;
  }
};

struct Avx512 {
  static constexpr int kLanes = 8;
  using V = __m512d;
  ZR_DETAIL_LANES(ZR_TARGET_AVX512, _mm512)
  ZR_TARGET_AVX512 static void SetWhereNonZero(V& x, const V& l, const V& y) {
    x = _mm512_mask_blend_pd(_mm512_cmp_pd_mask(l, _mm512_setzero_pd(), _CMP_NEQ_UQ), x, y);
  }
  ZR_TARGET_AVX512 static bool AnyAbsAbove(const V& v, const V& b) {
    return _mm512_cmp_pd_mask(_mm512_abs_pd(v), b, _CMP_GT_OQ) != 0;
  }
};
#undef ZR_DETAIL_LANES
#endif

}  // namespace zr::detail
