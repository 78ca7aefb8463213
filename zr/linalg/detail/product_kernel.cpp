// The blocked dense product behind zrMatrix<double>::operator* and SelfTMulSelf.
//
// c = a * b with c stored by rows: every element is the sum of its k products in index
// order, the first product starting it (no 0 + ...), each multiply and add rounded on its
// own, which are the bits of the class template's loop. The k loop runs in index order
// inside the micro-kernel, and between blocks of k the partial sums go through c itself.
#include <cstdint>

#include "zr/linalg/detail/lanes.h"
#include "zr/linalg/matrix.h"

// Loops over the register block are unrolled whole, so that its accumulators stay in
// registers.
#if defined(__GNUC__) || defined(__clang__)
#define ZR_PRAGMA(text) _Pragma(#text)
#define ZR_UNROLL(n) ZR_PRAGMA(GCC unroll n)
#else
#define ZR_UNROLL(n)
#endif

namespace zr::detail {
namespace {

// An m x k (or k x n) operand of any layout: element (i, j) is p[i * row_step + j * col_step].
struct Operand {
  const double* p;
  long long row_step;
  long long col_step;
};

// Below this many multiply-adds the packing costs more than it saves: the class's loop runs.
constexpr long long kSmallProduct = 12 * 12 * 12;

// The product on W's vectors with a register block of c of kMR rows by kNV vectors.
template <class W, int kMR, int kNV>
struct Blocked {
  using V = typename W::V;
  static constexpr int kWidth = W::kLanes;
  static constexpr int kNR = kNV * kWidth;
  static constexpr int kNC = 170 * kNR < 4096 ? 170 * kNR : 4096 / kNR * kNR;

  // The block sizes, from the caches of the core (found once). A kc x kNR panel of packed
  // b is reused while the micro-kernel runs over an mc x kc block of packed a that fills
  // half the second-level cache; kNC columns of b make a block for the third. The panel of
  // b may exceed the first level by a third: what misses streams from the second level at
  // about 11 bytes a cycle, well under its bandwidth, and a longer k passes c fewer times
  // (on a 48 KiB first level, k = 256 ran 2-5% faster than 96 or 128); k stays at most 256,
  // where the narrower blocks always were. The sizes decide only where partial sums pass
  // through c, never the order of the sums.
  struct Sizes {
    int kc, mc;
  };
  static const Sizes& Block() {
    static const Sizes sizes = [] {
      const CoreInfo& core = ThisCore();
      const long kc = Clamp(core.l1d * 4 / 3 / (kNR * 8L) / 8 * 8, 64, 256);
      const long mc = Clamp(core.l2 / 2 / (kc * 8) / kMR * kMR, kMR, 1024 / kMR * kMR);
      return Sizes{static_cast<int>(kc), static_cast<int>(mc)};
    }();
    return sizes;
  }
  static long Clamp(long v, long lo, long hi) { return v < lo ? lo : v > hi ? hi : v; }

  // c(i, j) (i < kMR, j < kNR, c rows ldc apart) from kc products of the packed panels:
  // pa holds kMR values per k step, pb kNR. With first the sum starts at the first
  // product, otherwise at the value c holds.
  static void MicroKernel(int kc, const double* pa, const double* pb, double* c, long long ldc,
                          bool first) {
    V acc[kMR][kNV];
    V b[kNV];
    V ai;
    V prod;
    // One k step: the products start the sums (start) or are added to them.
    const auto step = [&](int p, bool start) {
      const double* ap = pa + static_cast<long long>(p) * kMR;
      const double* bp = pb + static_cast<long long>(p) * kNR;
      ZR_UNROLL(4)
      for (int v = 0; v < kNV; ++v) W::Load(b[v], bp + v * kWidth);
      ZR_UNROLL(16)
      for (int i = 0; i < kMR; ++i) {
        W::Set(ai, ap[i]);
        ZR_UNROLL(4)
        for (int v = 0; v < kNV; ++v) {
          W::Mul(prod, ai, b[v]);
          if (start) {
            acc[i][v] = prod;
          } else {
            W::Add(acc[i][v], acc[i][v], prod);
          }
        }
      }
    };
    if (first) {
      step(0, true);
    } else {
      ZR_UNROLL(16)
      for (int i = 0; i < kMR; ++i) {
        ZR_UNROLL(4)
        for (int v = 0; v < kNV; ++v) W::Load(acc[i][v], c + i * ldc + v * kWidth);
      }
    }
    ZR_UNROLL(2)
    for (int p = first ? 1 : 0; p < kc; ++p) step(p, false);
    ZR_UNROLL(16)
    for (int i = 0; i < kMR; ++i) {
      ZR_UNROLL(4)
      for (int v = 0; v < kNV; ++v) W::Store(c + i * ldc + v * kWidth, acc[i][v]);
    }
  }

  // Rows [i0, i0 + mc) and k steps [p0, p0 + kc) of a into panels of kMR rows, each
  // stored k step by k step; rows past mc are zero.
  static void PackA(const Operand& a, int i0, int mc, int p0, int kc, double* out) {
    const long long step = a.col_step;
    for (int ir = 0; ir < mc; ir += kMR) {
      const int rows = mc - ir < kMR ? mc - ir : kMR;
      const double* src[kMR];
      for (int r = 0; r < kMR; ++r) {
        src[r] = r < rows ? a.p + (i0 + ir + r) * a.row_step + p0 * step : nullptr;
      }
      if (rows < kMR) {
        for (int p = 0; p < kc; ++p, out += kMR) {
          for (int r = 0; r < kMR; ++r) out[r] = r < rows ? src[r][p * step] : 0.0;
        }
      } else if (a.row_step == 1) {
        // The panel's rows lie side by side (a transposed operand).
        for (int p = 0; p < kc; ++p, out += kMR) {
          ZR_UNROLL(16)
          for (int r = 0; r < kMR; ++r) out[r] = src[0][p * step + r];
        }
      } else {
        for (int p = 0; p < kc; ++p, out += kMR) {
          ZR_UNROLL(16)
          for (int r = 0; r < kMR; ++r) out[r] = src[r][p * step];
        }
      }
    }
  }

  // k steps [p0, p0 + kc) and columns [j0, j0 + nc) of b into panels of kNR columns, each
  // stored k step by k step; columns past nc are zero. b is read row by row.
  static void PackB(const Operand& b, int p0, int kc, int j0, int nc, double* out) {
    const int full = nc / kNR * kNR;
    const long long panel = static_cast<long long>(kNR) * kc;
    V v4;
    for (int p = 0; p < kc; ++p) {
      const double* src = b.p + (p0 + p) * b.row_step + j0 * b.col_step;
      double* dst = out + static_cast<long long>(p) * kNR;
      int j = 0;
      if (b.col_step == 1) {
        for (; j < full; j += kNR, dst += panel) {
          ZR_UNROLL(4)
          for (int v = 0; v < kNV; ++v) {
            W::Load(v4, src + j + v * kWidth);
            W::Store(dst + v * kWidth, v4);
          }
        }
      } else {
        for (; j < full; j += kNR, dst += panel) {
          for (int q = 0; q < kNR; ++q) dst[q] = src[(j + q) * b.col_step];
        }
      }
      if (j < nc) {
        for (int q = 0; q < kNR; ++q) dst[q] = j + q < nc ? src[(j + q) * b.col_step] : 0.0;
      }
    }
  }

  // The doubles of packed a Run needs, then those of packed b.
  static long long PackedA(int m, int k, const Sizes& z) {
    const int mc = m < z.mc ? m : z.mc;
    return static_cast<long long>((mc + kMR - 1) / kMR * kMR) * (k < z.kc ? k : z.kc);
  }
  static long long Workspace(int m, int n, int k, const Sizes& z) {
    const int nc = n < kNC ? n : kNC;
    return PackedA(m, k, z) +
           static_cast<long long>((nc + kNR - 1) / kNR * kNR) * (k < z.kc ? k : z.kc);
  }

  // The product on m, n, k >= 1 into c (rows ldc apart); with upper only the elements
  // with j >= i.
  static void Run(int m, int n, int k, const Operand& a, const Operand& b, double* c, long long ldc,
                  bool upper) {
    const Sizes& z = Block();
    const Scratch<double> work(static_cast<std::uint64_t>(Workspace(m, n, k, z)));
    double* const packed_a = work.get();
    double* const packed_b = packed_a + PackedA(m, k, z);
    alignas(64) double edge[kMR * kNR] = {};
    for (int jc = 0; jc < n; jc += kNC) {
      const int nc = n - jc < kNC ? n - jc : kNC;
      // With upper, no row below the block's last column is needed.
      const int m_end = upper && jc + nc < m ? jc + nc : m;
      for (int pc = 0; pc < k; pc += z.kc) {
        const int kc = k - pc < z.kc ? k - pc : z.kc;
        const bool first = pc == 0;
        PackB(b, pc, kc, jc, nc, packed_b);
        for (int ic = 0; ic < m_end; ic += z.mc) {
          const int mc = m_end - ic < z.mc ? m_end - ic : z.mc;
          PackA(a, ic, mc, pc, kc, packed_a);
          for (int jr = 0; jr < nc; jr += kNR) {
            const int cols = nc - jr < kNR ? nc - jr : kNR;
            const double* pb = packed_b + static_cast<long long>(jr) * kc;
            for (int ir = 0; ir < mc; ir += kMR) {
              // A block wholly below the diagonal is skipped.
              if (upper && ic + ir > jc + jr + cols - 1) break;
              const int rows = mc - ir < kMR ? mc - ir : kMR;
              const double* pa = packed_a + static_cast<long long>(ir) * kc;
              double* cij = c + (ic + ir) * ldc + (jc + jr);
              if (rows == kMR && cols == kNR) {
                MicroKernel(kc, pa, pb, cij, ldc, first);
                continue;
              }
              // An edge block goes through a full one and back.
              for (int i = 0; i < rows && !first; ++i) {
                for (int j = 0; j < cols; ++j) edge[i * kNR + j] = cij[i * ldc + j];
              }
              MicroKernel(kc, pa, pb, edge, kNR, first);
              for (int i = 0; i < rows; ++i) {
                for (int j = 0; j < cols; ++j) cij[i * ldc + j] = edge[i * kNR + j];
              }
            }
          }
        }
      }
    }
  }
};

using RunFn = void (*)(int, int, int, const Operand&, const Operand&, double*, long long, bool);

ZR_KERNEL_ENTRY void RunPortable(int m, int n, int k, const Operand& a, const Operand& b, double* c,
                                 long long ldc, bool upper) {
  Blocked<Portable, 4, 2>::Run(m, n, k, a, b, c, ldc, upper);
}

#if ZR_X86_KERNELS
// 12 accumulators, 2 vectors of b, a broadcast and a product: the 16 registers.
ZR_TARGET_AVX2 ZR_KERNEL_ENTRY void RunAvx2(int m, int n, int k, const Operand& a, const Operand& b,
                                            double* c, long long ldc, bool upper) {
  Blocked<Avx2, 6, 2>::Run(m, n, k, a, b, c, ldc, upper);
}
// 24 accumulators, 4 vectors of b, a broadcast and a product: 30 of the 32 registers.
// Six broadcasts feed 24 multiplies, where 8 rows by 3 vectors needed eight.
ZR_TARGET_AVX512 ZR_KERNEL_ENTRY void RunAvx512(int m, int n, int k, const Operand& a,
                                                const Operand& b, double* c, long long ldc,
                                                bool upper) {
  Blocked<Avx512, 6, 4>::Run(m, n, k, a, b, c, ldc, upper);
}
#endif

// The product at the current level into c (stored by rows, ldc apart); false, with
// nothing written, at the plain level and for products too small to repay the packing.
bool Compute(int m, int n, int k, const Operand& a, const Operand& b, double* c, long long ldc,
             bool upper) {
  const Level level = CurrentLevel();
  if (level == Level::kPlain || m < 1 || n < 1 || k < 1 ||
      static_cast<long long>(m) * n * k < kSmallProduct)
    return false;
  RunFn run = RunPortable;
#if ZR_X86_KERNELS
  if (level == Level::kAvx512) run = RunAvx512;
  if (level == Level::kAvx2) run = RunAvx2;
#endif
  run(m, n, k, a, b, c, ldc, upper);
  return true;
}

}  // namespace

bool MatrixKernels<double>::Product(const zrMatrix<double>& a, const zrMatrix<double>& b,
                                    zrMatrix<double>& r) {
  return Compute(
      a.ColumnLen(), b.LineLen(), a.LineLen(), {a.GetPointer(), a.TabInColumn(), a.TabInLine()},
      {b.GetPointer(), b.TabInColumn(), b.TabInLine()}, r.GetPointer(), r.TabInColumn(), false);
}

bool MatrixKernels<double>::SelfTMulSelf(const zrMatrix<double>& a, zrMatrix<double>& r) {
  const int n = a.LineLen();
  double* const c = r.GetPointer();
  const long long ldc = r.TabInColumn();
  // T() * a for the elements with column >= row.
  if (!Compute(n, n, a.ColumnLen(), {a.GetPointer(), a.TabInLine(), a.TabInColumn()},
               {a.GetPointer(), a.TabInColumn(), a.TabInLine()}, c, ldc, true))
    return false;
  // c(j, i) = c(i, j) for j > i, tile by tile so that the column writes stay in cache.
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
  return true;
}

}  // namespace zr::detail
