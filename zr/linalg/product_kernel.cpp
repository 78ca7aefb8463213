#include "zr/linalg/product_kernel.h"

#include <cstdint>

#include "zr/core/memory.h"

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define ZR_PRODUCT_X86 1
#include <immintrin.h>
#else
#define ZR_PRODUCT_X86 0
#endif

// Loops over the register block are unrolled whole, so that its accumulators stay in registers.
#if defined(__GNUC__) || defined(__clang__)
#define ZR_PRAGMA(text) _Pragma(#text)
#define ZR_UNROLL(n) ZR_PRAGMA(GCC unroll n)
#else
#define ZR_UNROLL(n)
#endif

namespace zr::detail {
namespace {

// Portable: SSE2 (part of every x86-64) or plain doubles the compiler may vectorise.
namespace portable {
#define ZR_KERNEL_TARGET
#if ZR_PRODUCT_X86
using V = __m128d;
constexpr int kWidth = 2;
inline V Load(const double* p) { return _mm_loadu_pd(p); }
inline void Store(double* p, V v) { _mm_storeu_pd(p, v); }
inline V Broadcast(const double* p) { return _mm_set1_pd(*p); }
inline V Mul(V a, V b) { return _mm_mul_pd(a, b); }
inline V Add(V a, V b) { return _mm_add_pd(a, b); }
constexpr int kMR = 4;
constexpr int kNV = 2;
#else
using V = double;
constexpr int kWidth = 1;
inline V Load(const double* p) { return *p; }
inline void Store(double* p, V v) { *p = v; }
inline V Broadcast(const double* p) { return *p; }
inline V Mul(V a, V b) { return a * b; }
inline V Add(V a, V b) { return a + b; }
constexpr int kMR = 4;
constexpr int kNV = 4;
#endif
#include "zr/linalg/product_kernel.inc"
#undef ZR_KERNEL_TARGET
}  // namespace portable

#if ZR_PRODUCT_X86
namespace avx2 {
#define ZR_KERNEL_TARGET __attribute__((target("avx2")))
using V = __m256d;
constexpr int kWidth = 4;
ZR_KERNEL_TARGET inline V Load(const double* p) { return _mm256_loadu_pd(p); }
ZR_KERNEL_TARGET inline void Store(double* p, V v) { _mm256_storeu_pd(p, v); }
ZR_KERNEL_TARGET inline V Broadcast(const double* p) { return _mm256_broadcast_sd(p); }
ZR_KERNEL_TARGET inline V Mul(V a, V b) { return _mm256_mul_pd(a, b); }
ZR_KERNEL_TARGET inline V Add(V a, V b) { return _mm256_add_pd(a, b); }
// 12 accumulators, 2 columns of b, a broadcast and a product: the 16 registers.
constexpr int kMR = 6;
constexpr int kNV = 2;
#include "zr/linalg/product_kernel.inc"
#undef ZR_KERNEL_TARGET
}  // namespace avx2

namespace avx512 {
#define ZR_KERNEL_TARGET __attribute__((target("avx512f")))
using V = __m512d;
constexpr int kWidth = 8;
ZR_KERNEL_TARGET inline V Load(const double* p) { return _mm512_loadu_pd(p); }
ZR_KERNEL_TARGET inline void Store(double* p, V v) { _mm512_storeu_pd(p, v); }
ZR_KERNEL_TARGET inline V Broadcast(const double* p) { return _mm512_set1_pd(*p); }
ZR_KERNEL_TARGET inline V Mul(V a, V b) { return _mm512_mul_pd(a, b); }
ZR_KERNEL_TARGET inline V Add(V a, V b) { return _mm512_add_pd(a, b); }
// 24 accumulators and 3 columns of b leave 5 of the 32 registers for products.
constexpr int kMR = 8;
constexpr int kNV = 3;
#include "zr/linalg/product_kernel.inc"
#undef ZR_KERNEL_TARGET
}  // namespace avx512
#endif

void PlainProduct(int m, int n, int k, const ProductOperand& a, const ProductOperand& b, double* c,
                  long long ldc, bool upper) {
  for (int i = 0; i < m; ++i) {
    const double* ai = a.p + i * a.row_step;
    for (int j = upper ? i : 0; j < n; ++j) {
      const double* bj = b.p + j * b.col_step;
      double sum = ai[0] * bj[0];
      for (int p = 1; p < k; ++p) sum = sum + ai[p * a.col_step] * bj[p * b.row_step];
      c[i * ldc + j] = sum;
    }
  }
}

// zrMalloc'd work space aligned to 64 bytes, released with the object.
class Work {
 public:
  explicit Work(long long doubles)
      : raw_(zrMalloc(static_cast<std::uint64_t>(doubles) * sizeof(double) + 64)) {}
  Work(const Work&) = delete;
  Work& operator=(const Work&) = delete;
  ~Work() { zrFree(raw_); }
  double* get() const {
    const auto at = reinterpret_cast<std::uintptr_t>(raw_);
    return reinterpret_cast<double*>((at + 63) & ~static_cast<std::uintptr_t>(63));
  }

 private:
  void* raw_;
};

template <void (*RunSet)(int, int, int, const ProductOperand&, const ProductOperand&, double*,
                         long long, bool, double*),
          long long (*WorkspaceSet)(int, int, int)>
void Blocked(int m, int n, int k, const ProductOperand& a, const ProductOperand& b, double* c,
             long long ldc, bool upper) {
  const Work work(WorkspaceSet(m, n, k));
  RunSet(m, n, k, a, b, c, ldc, upper, work.get());
}

ProductVariant Best() {
#if ZR_PRODUCT_X86
  __builtin_cpu_init();
  if (__builtin_cpu_supports("avx512f")) return ProductVariant::kAvx512;
  if (__builtin_cpu_supports("avx2")) return ProductVariant::kAvx2;
#endif
  return ProductVariant::kPortable;
}

// Below this many multiply-adds the packing costs more than it saves.
constexpr long long kSmallProduct = 12 * 12 * 12;

// The product; with upper only the elements with j >= i.
void Compute(ProductVariant variant, int m, int n, int k, const ProductOperand& a,
             const ProductOperand& b, double* c, long long ldc, bool upper) {
  if (m <= 0 || n <= 0) return;
  if (k <= 0) {
    for (int i = 0; i < m; ++i) {
      for (int j = 0; j < n; ++j) c[i * ldc + j] = 0.0;
    }
    return;
  }
  if (variant == ProductVariant::kAuto) {
    static const ProductVariant best = Best();
    const bool small = static_cast<long long>(m) * n * k < kSmallProduct;
    variant = small ? ProductVariant::kPlain : best;
  }
  switch (variant) {
#if ZR_PRODUCT_X86
    case ProductVariant::kAvx512:
      Blocked<avx512::Run, avx512::Workspace>(m, n, k, a, b, c, ldc, upper);
      return;
    case ProductVariant::kAvx2:
      Blocked<avx2::Run, avx2::Workspace>(m, n, k, a, b, c, ldc, upper);
      return;
#endif
    case ProductVariant::kPortable:
      Blocked<portable::Run, portable::Workspace>(m, n, k, a, b, c, ldc, upper);
      return;
    default:
      PlainProduct(m, n, k, a, b, c, ldc, upper);
      return;
  }
}

// c(j, i) = c(i, j) for j > i, tile by tile so that the column writes stay in cache.
void MirrorUpper(int n, double* c, long long ldc) {
  constexpr int kTile = 8;
  for (int i0 = 0; i0 < n; i0 += kTile) {
    const int i1 = n - i0 < kTile ? n : i0 + kTile;
    for (int j0 = i0; j0 < n; j0 += kTile) {
      const int j1 = n - j0 < kTile ? n : j0 + kTile;
      for (int i = i0; i < i1; ++i) {
        for (int j = j0 > i + 1 ? j0 : i + 1; j < j1; ++j) c[j * ldc + i] = c[i * ldc + j];
      }
    }
  }
}

}  // namespace

bool ProductVariantAvailable(ProductVariant variant) {
  switch (variant) {
    case ProductVariant::kAvx2:
      return Best() == ProductVariant::kAvx2 || Best() == ProductVariant::kAvx512;
    case ProductVariant::kAvx512:
      return Best() == ProductVariant::kAvx512;
    default:
      return true;
  }
}

void Product(ProductVariant variant, int m, int n, int k, ProductOperand a, ProductOperand b,
             double* c, long long ldc, bool mirror) {
  const bool upper = mirror && m == n;
  Compute(variant, m, n, k, a, b, c, ldc, upper);
  if (upper) MirrorUpper(n, c, ldc);
}

}  // namespace zr::detail
