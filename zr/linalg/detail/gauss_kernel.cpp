#include "zr/linalg/detail/gauss_kernel.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "zr/linalg/detail/lanes.h"
#include "zr/linalg/matrix.h"

namespace zr::detail {
namespace {

// A row of C vectors of a tile, read from and written back to a row that may end before
// the last vector does (w columns).
template <class W, int C>
void ReadRow(typename W::V (&v)[C], const double* p, int w) {
  constexpr int L = W::kLanes;
  if (w == C * L) {
    for (int c = 0; c < C; ++c) W::Load(v[c], p + c * L);
    return;
  }
  double t[C * L] = {};
  std::memcpy(t, p, sizeof(double) * static_cast<unsigned>(w));
  for (int c = 0; c < C; ++c) W::Load(v[c], t + c * L);
}

template <class W, int C>
void WriteRow(double* p, const typename W::V (&v)[C], int w) {
  constexpr int L = W::kLanes;
  if (w == C * L) {
    for (int c = 0; c < C; ++c) W::Store(p + c * L, v[c]);
    return;
  }
  double t[C * L];
  for (int c = 0; c < C; ++c) W::Store(t + c * L, v[c]);
  std::memcpy(p, t, sizeof(double) * static_cast<unsigned>(w));
}

// Forward steps on R rows: for k = 0 .. nk-1, x = lv[r][k] * x - u[k], u[k] = u + k * us
// (u padded to whole vectors); w columns.
template <class W, int R, int C>
void ForwardTile(const double* u, int us, int nk, int w, double* const* x,
                 const double* const* lv) {
  constexpr int L = W::kLanes;
  typename W::V t[R][C], uv[C], s, scaled;
  for (int r = 0; r < R; ++r) ReadRow<W, C>(t[r], x[r], w);
  for (int k = 0; k < nk; ++k) {
    const double* const uk = u + static_cast<long>(k) * us;
    for (int c = 0; c < C; ++c) W::Load(uv[c], uk + c * L);
    for (int r = 0; r < R; ++r) {
      W::Set(s, lv[r][k]);
      for (int c = 0; c < C; ++c) {
        W::Mul(scaled, s, t[r][c]);
        W::Sub(t[r][c], scaled, uv[c]);
      }
    }
  }
  for (int r = 0; r < R; ++r) WriteRow<W, C>(x[r], t[r], w);
}

// Back substitution of the inverse on rows i0 .. i0+R-1 of r, columns c0 .. c0+w-1: from
// the rows of e, r(i, c) = r(i, c) - r(m, c) * a(i, m) for m from n-1 down to i+1, where
// the finished rows m are in the strip (sw doubles a row) and in the tile itself.
template <class W, int R, int C>
void BackTile(int i0, int n, long step, double* const* a, double* const* e, double* r,
              double* strip, int sw, int c0, int w) {
  constexpr int L = W::kLanes;
  typename W::V t[R][C], uv[C], s, prod;
  for (int q = 0; q < R; ++q) ReadRow<W, C>(t[q], e[i0 + q] + c0, w);
  for (int m = n - 1; m >= i0 + R; --m) {
    const double* const um = strip + static_cast<long>(m) * sw;
    for (int c = 0; c < C; ++c) W::Load(uv[c], um + c * L);
    for (int q = 0; q < R; ++q) {
      W::Set(s, a[i0 + q][m * step]);
      for (int c = 0; c < C; ++c) {
        W::Mul(prod, uv[c], s);
        W::Sub(t[q][c], t[q][c], prod);
      }
    }
  }
  for (int d = R - 1; d >= 0; --d) {
    const int i = i0 + d;
    WriteRow<W, C>(r + static_cast<long>(i) * n + c0, t[d], w);
    for (int c = 0; c < C; ++c) W::Store(strip + static_cast<long>(i) * sw + c * L, t[d][c]);
    for (int q = 0; q < d; ++q) {
      W::Set(s, a[i0 + q][i * step]);
      for (int c = 0; c < C; ++c) {
        W::Mul(prod, t[d][c], s);
        W::Sub(t[q][c], t[q][c], prod);
      }
    }
  }
}

// f(rows, vectors) with the shape of a tile of rn <= R rows and cn <= C vectors as
// constants, so that the tiles at the edges of the matrix keep constant bounds too.
template <int R, int C, class F>
void Shaped(int rn, int cn, F f) {
  if constexpr (R > 1) {
    if (rn < R) return Shaped<R - 1, C>(rn, cn, f);
  }
  if constexpr (C > 1) {
    if (cn < C) return Shaped<R, C - 1>(rn, cn, f);
  }
  f(std::integral_constant<int, R>{}, std::integral_constant<int, C>{});
}

// nrows rows x[i] (at their first column) with multipliers lv[i] (at the first step) get
// the nk steps whose pivot rows are packed in u, over w columns, in column strips of C
// vectors.
template <class W, int R, int C>
void ApplyImpl(const double* u, int us, int nk, int w, double* const* x, const double* const* lv,
               int nrows) {
  constexpr int L = W::kLanes;
  constexpr int kW = C * L;
  double* xt[R];
  const double* lt[R];
  for (int r0 = 0; r0 < nrows; r0 += R) {
    const int rn = nrows - r0 < R ? nrows - r0 : R;
    const int next = r0 + R + R <= nrows ? R : nrows - r0 - R;
    for (int c0 = 0; c0 < w; c0 += kW) {
      const int cw = w - c0 < kW ? w - c0 : kW;
      for (int i = 0; i < rn; ++i) {
        xt[i] = x[r0 + i] + c0;
        lt[i] = lv[r0 + i];
      }
      // The next tile's rows come from far away; ask for them while this one computes.
      for (int i = 0; i < next; ++i) {
        for (int c = 0; c < cw; c += 8) Prefetch(x[r0 + R + i] + c0 + c, true);
      }
      Shaped<R, C>(rn, (cw + L - 1) / L, [&](auto r, auto c) {
        ForwardTile<W, decltype(r)::value, decltype(c)::value>(u + c0, us, nk, cw, xt, lt);
      });
    }
  }
}

// The whole back substitution of the inverse, a column strip of C vectors at a time and
// within it tiles of R rows from the bottom. strip holds n x (C * lanes) doubles.
template <class W, int R, int C>
void BackImpl(double* const* a, int n, int step, double* const* e, double* r, double* strip) {
  constexpr int L = W::kLanes;
  constexpr int kW = C * L;
  for (int c0 = 0; c0 < n; c0 += kW) {
    const int cw = n - c0 < kW ? n - c0 : kW;
    for (int i1 = n; i1 > 0;) {
      const int rn = i1 < R ? i1 : R;
      const int i0 = i1 - rn;
      Shaped<R, C>(rn, (cw + L - 1) / L, [&](auto rows, auto vectors) {
        BackTile<W, decltype(rows)::value, decltype(vectors)::value>(i0, n, step, a, e, r, strip,
                                                                     kW, c0, cw);
      });
      i1 = i0;
    }
  }
}

struct Kernels;

// Steps held back and applied together, columns of one packed block, and the width of
// the panel factored step by step.
constexpr int kStepChunk = 64;
constexpr int kColumnBlock = 256;
constexpr int kBase = 8;    // a panel's zero bits stay in one word
constexpr int kSmall = 64;  // systems of at most this many rows go step by step
static_assert(64 % kBase == 0, "panels must not straddle a word of zero bits");

struct State {
  int n = 0;
  int* perm = nullptr;     // place -> physical row
  double** a = nullptr;    // physical row -> its elements, contiguous
  double* linv = nullptr;  // 1 / l of physical row j at step k: linv[j * ldl + k]
  long ldl = 0;
  std::uint64_t* zero = nullptr;  // bit k of row j: l was zero at step k (row left alone)
  long ldz = 0;
  double* inv = nullptr;    // 1 / p of step k
  double* pack = nullptr;   // kStepChunk x kColumnBlock finished pivot rows
  double* panel = nullptr;  // kBase columns of the rows below a panel, by place
  double** xs = nullptr;
  const double** ls = nullptr;
  const Kernels* ker = nullptr;
};

// The steps k0 .. k1-1 (at most kBase) one by one on the columns k0 .. k1-1, in a copy of
// those columns taken by place so that the scans, reciprocals and updates run down
// contiguous columns. Returns the step of a zero pivot, or k1.
template <class W>
int PanelImpl(State& s, int k0, int k1) {
  constexpr int L = W::kLanes;
  typename W::V one, l, q, x, pm, next;
  W::Set(one, 1.0);
  const int count = s.n - k0;
  const int bw = k1 - k0;
  const long ld = (count + L - 1) / L * L;
  double* const t = s.panel;
  for (int i = 0; i < count; ++i) {
    const double* const row = s.a[s.perm[k0 + i]] + k0;
    for (int c = 0; c < bw; ++c) t[c * ld + i] = row[c];
  }
  int stop = k1;
  for (int k = k0; k < k1; ++k) {
    const int kc = k - k0;
    double* const col = t + kc * ld;
    // The exchange is made during the scan. A whole vector of magnitudes none of which
    // exceeds the best so far holds no exchange and is passed over.
    double best = std::fabs(col[kc]);
    W::Set(pm, best);
    for (int i = kc + 1; i < count;) {
      if (i + L <= count) {
        W::Load(x, col + i);
        if (!W::AnyAbsAbove(x, pm)) {
          i += L;
          continue;
        }
      }
      for (const int end = i + L < count ? i + L : count; i < end; ++i) {
        const double v = std::fabs(col[i]);
        if (v > best) {
          std::swap(s.perm[k], s.perm[k0 + i]);
          for (int c = 0; c < bw; ++c) {
            std::swap(t[c * ld + kc], t[c * ld + i]);
            std::swap(t[(kBase + c) * ld + kc], t[(kBase + c) * ld + i]);
          }
          best = v;
        }
      }
      W::Set(pm, best);
    }
    const double p = col[kc];
    if (p == 0) {
      stop = k;
      break;
    }
    const double inv = 1.0 / p;
    s.inv[k] = inv;
    for (int c = kc + 1; c < bw; ++c) t[c * ld + kc] = t[c * ld + kc] * inv;
    // 1 / l of the rows below, in the copy beside the columns (moved by later exchanges
    // with them) and kept by physical row at the end; a zero l leaves its row alone.
    double* const r = t + (kBase + kc) * ld;
    int i = kc + 1;
    for (; i + L <= count; i += L) {
      W::Load(l, col + i);
      W::Div(q, one, l);
      W::Store(r + i, q);
    }
    for (; i < count; ++i) r[i] = 1.0 / col[i];
    for (int c = kc + 1; c < bw; ++c) {
      double* const xc = t + c * ld;
      W::Set(pm, xc[kc]);
      for (i = kc + 1; i + L <= count; i += L) {
        W::Load(x, xc + i);
        W::Load(l, col + i);
        W::Load(q, r + i);
        W::Mul(next, q, x);
        W::Sub(next, next, pm);
        W::SetWhereNonZero(x, l, next);
        W::Store(xc + i, x);
      }
      for (; i < count; ++i) {
        if (col[i] != 0) {
          const double scaled = r[i] * xc[i];
          xc[i] = scaled - xc[kc];
        }
      }
    }
  }
  for (int i = 0; i < count; ++i) {
    const long j = s.perm[k0 + i];
    double* const row = s.a[j] + k0;
    for (int c = 0; c < bw; ++c) row[c] = t[c * ld + i];
    double* const lrow = s.linv + j * s.ldl + k0;
    std::uint64_t zeros = 0;
    for (int c = 0; c < stop - k0 && c < i; ++c) {
      if (t[c * ld + i] == 0) {
        zeros |= std::uint64_t{1} << c;
      } else {
        lrow[c] = t[(kBase + c) * ld + i];
      }
    }
    s.zero[j * s.ldz + (k0 >> 6)] |= zeros << (k0 & 63);
  }
  return stop;
}

// x = linv * x - u over w elements (with u), or x = x * linv (without).
template <class W>
void RowStep(double* x, const double* u, double linv, int w) {
  constexpr int L = W::kLanes;
  typename W::V xv, uv, s;
  W::Set(s, linv);
  int m = 0;
  for (; m + L <= w; m += L) {
    W::Load(xv, x + m);
    if (u) {
      W::Load(uv, u + m);
      W::Mul(xv, s, xv);
      W::Sub(xv, xv, uv);
    } else {
      W::Mul(xv, xv, s);
    }
    W::Store(x + m, xv);
  }
  for (; m < w; ++m) {
    if (u) {
      const double scaled = linv * x[m];
      x[m] = scaled - u[m];
    } else {
      x[m] = x[m] * linv;
    }
  }
}

// The whole elimination step by step, as the class's loops do it but a vector at a time
// along the rows: for small systems, where holding steps back does not pay. Columns
// 0 .. last-1 are searched, cols columns updated, b and e (by physical row) as well.
// Returns the step of a zero pivot, or last.
template <class W>
int SmallImpl(State& s, int last, int cols, double* const* b, double* const* e, int en) {
  const int n = s.n;
  for (int k = 0; k < last; ++k) {
    double best = std::fabs(s.a[s.perm[k]][k]);
    for (int i = k + 1; i < n; ++i) {
      const double v = std::fabs(s.a[s.perm[i]][k]);
      if (v > best) {
        std::swap(s.perm[k], s.perm[i]);
        best = v;
      }
    }
    const int pk = s.perm[k];
    double* const prow = s.a[pk];
    const double p = prow[k];
    if (p == 0) return k;
    const double inv = 1.0 / p;
    const int w = cols - k - 1;
    RowStep<W>(prow + k + 1, nullptr, inv, w);
    if (b) *b[pk] = *b[pk] * inv;
    if (e) RowStep<W>(e[pk], nullptr, inv, en);
    for (int i = k + 1; i < n; ++i) {
      const int j = s.perm[i];
      double* const x = s.a[j];
      const double l = x[k];
      if (l == 0) continue;
      const double linv = 1.0 / l;
      RowStep<W>(x + k + 1, prow + k + 1, linv, w);
      if (b) *b[j] = linv * *b[j] - *b[pk];
      if (e) RowStep<W>(e[j], e[pk], linv, en);
    }
  }
  return last;
}

using ApplyFn = void (*)(const double*, int, int, int, double* const*, const double* const*, int);
using BackFn = void (*)(double* const*, int, int, double* const*, double*, double*);
using PanelFn = int (*)(State&, int, int);
using SmallFn = int (*)(State&, int, int, double* const*, double* const*, int);

// One level's kernels.
struct Kernels {
  ApplyFn apply;
  BackFn back;
  PanelFn panel;
  SmallFn small;
  int strip;  // the doubles of a row of BackFn's strip
};

// The entries of each level, compiled for its instruction set: its vectors W and the tile
// of R rows by C vectors for Apply and Back.
#define ZR_DETAIL_GAUSS_ENTRIES(Name, Target, W, R, C)                                            \
  Target ZR_KERNEL_ENTRY void Apply##Name(const double* u, int us, int nk, int w,                 \
                                          double* const* x, const double* const* lv, int nrows) { \
    ApplyImpl<W, R, C>(u, us, nk, w, x, lv, nrows);                                               \
  }                                                                                               \
  Target ZR_KERNEL_ENTRY void Back##Name(double* const* a, int n, int step, double* const* e,     \
                                         double* r, double* strip) {                              \
    BackImpl<W, R, C>(a, n, step, e, r, strip);                                                   \
  }                                                                                               \
  Target ZR_KERNEL_ENTRY int Panel##Name(State& s, int k0, int k1) {                              \
    return PanelImpl<W>(s, k0, k1);                                                               \
  }                                                                                               \
  Target ZR_KERNEL_ENTRY int Small##Name(State& s, int last, int cols, double* const* b,          \
                                         double* const* e, int en) {                              \
    return SmallImpl<W>(s, last, cols, b, e, en);                                                 \
  }                                                                                               \
  constexpr Kernels k##Name = {Apply##Name, Back##Name, Panel##Name, Small##Name, C * W::kLanes};

ZR_DETAIL_GAUSS_ENTRIES(Portable, , Portable, 4, 2)
#if ZR_X86_KERNELS
ZR_DETAIL_GAUSS_ENTRIES(Avx2, ZR_TARGET_AVX2, Avx2, 4, 3)
ZR_DETAIL_GAUSS_ENTRIES(Avx512, ZR_TARGET_AVX512, Avx512, 6, 4)
#endif
#undef ZR_DETAIL_GAUSS_ENTRIES

// The kernels of the current level, or null at the plain level.
const Kernels* CurrentKernels() {
  switch (CurrentLevel()) {
    case Level::kPlain:
      return nullptr;
#if ZR_X86_KERNELS
    case Level::kAvx512:
      return &kAvx512;
    case Level::kAvx2:
      return &kAvx2;
#endif
    default:
      return &kPortable;
  }
}

bool ZeroAt(const std::uint64_t* z, int k) { return ((z[k >> 6] >> (k & 63)) & 1u) != 0; }

bool AnyZero(const std::uint64_t* z, int sa, int sb) {
  for (int w = sa >> 6; w <= (sb - 1) >> 6; ++w) {
    std::uint64_t bits = z[w];
    if (w == sa >> 6) bits &= ~std::uint64_t{0} << (sa & 63);
    if (w == (sb - 1) >> 6 && (sb & 63) != 0) bits &= (std::uint64_t{1} << (sb & 63)) - 1;
    if (bits) return true;
  }
  return false;
}

// The steps sa .. sb-1, whose finished pivot rows are packed in u (us doubles a row, row
// 0 for step sa), applied to the rows at places pa .. pb-1 in the columns c0 .. c0+w-1 of
// the row set rowp. A row whose l is zero at a step is left alone at that step.
void Apply(State& s, int sa, int sb, int pa, int pb, double* const* rowp, int c0, int w,
           const double* u, int us) {
  if (sa >= sb || pa >= pb || w <= 0) return;
  int count = 0;
  for (int place = pa; place < pb; ++place) {
    const int j = s.perm[place];
    double* x = rowp[j] + c0;
    const double* const lv = s.linv + j * s.ldl;
    const std::uint64_t* const z = s.zero + j * s.ldz;
    if (!AnyZero(z, sa, sb)) {
      s.xs[count] = x;
      s.ls[count] = lv + sa;
      ++count;
      continue;
    }
    for (int k = sa; k < sb;) {
      while (k < sb && ZeroAt(z, k)) ++k;
      int end = k;
      while (end < sb && !ZeroAt(z, end)) ++end;
      if (end > k) {
        const double* l = lv + k;
        s.ker->apply(u + static_cast<long>(k - sa) * us, us, end - k, w, &x, &l, 1);
      }
      k = end;
    }
  }
  s.ker->apply(u, us, sb - sa, w, s.xs, s.ls, count);
}

// Finishes, in the columns b0 .. b0+w-1, the pivot rows of the steps a .. b-1, which have
// had the steps s0 .. a-1 already: their remaining steps, then the scaling by 1/p; each is
// packed (row k - s0) for the rows below. Halves are split off so that most of the work
// runs in tiles of several rows.
void Finish(State& s, int s0, int a, int b, double* const* rowp, int b0, int w, int us) {
  const double* const u = s.pack + static_cast<long>(a - s0) * us;
  if (b - a > kBase) {
    const int mid = a + (b - a) / 2;
    Finish(s, s0, a, mid, rowp, b0, w, us);
    Apply(s, a, mid, mid, b, rowp, b0, w, u, us);
    Finish(s, s0, mid, b, rowp, b0, w, us);
    return;
  }
  for (int k = a; k < b; ++k) {
    Apply(s, a, k, k, k + 1, rowp, b0, w, u, us);
    double* const x = rowp[s.perm[k]] + b0;
    double* const dst = s.pack + static_cast<long>(k - s0) * us;
    const double inv = s.inv[k];
    for (int m = 0; m < w; ++m) {
      x[m] = x[m] * inv;
      dst[m] = x[m];
    }
    for (int m = w; m < us; ++m) dst[m] = 0;
  }
}

// The steps ka .. kb-1 (factored already) applied to the columns c0 .. c1-1 of the row set
// rowp: the pivot rows are finished (their earlier steps, then the scaling by 1/p) and the
// rows below them updated, kStepChunk steps at a time.
void Update(State& s, int ka, int kb, double* const* rowp, int c0, int c1) {
  for (int s0 = ka; s0 < kb; s0 += kStepChunk) {
    const int s1 = kb - s0 < kStepChunk ? kb : s0 + kStepChunk;
    for (int b0 = c0; b0 < c1; b0 += kColumnBlock) {
      const int w = c1 - b0 < kColumnBlock ? c1 - b0 : kColumnBlock;
      const int us = (w + 7) & ~7;
      Finish(s, s0, s0, s1, rowp, b0, w, us);
      Apply(s, s0, s1, s1, s.n, rowp, b0, w, s.pack, us);
    }
  }
}

// The steps k0 .. k1-1 on the columns below k1, recursively: the left half, its steps held
// back and applied to the right half, then the right half. Returns the step of a zero
// pivot, or k1.
int Factor(State& s, int k0, int k1) {
  if (k1 - k0 <= kBase) return s.ker->panel(s, k0, k1);
  const int half = (k1 - k0) / 2;
  const int mid = k0 + (half + kBase - 1) / kBase * kBase;
  const int stop = Factor(s, k0, mid);
  Update(s, k0, stop, s.a, mid, k1);
  if (stop < mid) return stop;
  return Factor(s, mid, k1);
}

// The elimination of the rows of a (b and e may be null; e's rows are contiguous, en long)
// with the kernels ker; perm (place -> row) starts as the identity. Returns the step of
// the first zero pivot, or the number of rows when none stopped it.
int Eliminate(const Kernels& ker, zrMatrix<double>& a, zrVector<double>* b, zrMatrix<double>* e,
              int* perm) {
  const int n = a.ColumnLen();
  const int cols = a.LineLen();
  const int step = a.TabInLine();
  const int en = e ? e->LineLen() : 0;
  const int last = n < cols ? n : cols;
  const auto un = static_cast<std::uint64_t>(n);
  const long ldw = (cols + 7) & ~7;
  // Small systems go step by step; the blocked elimination needs its tables.
  const bool small = n <= kSmall;
  const long ldl = small ? 0 : last;
  const long ldz = (ldl + 63) / 64;
  const std::uint64_t big = small ? 0 : un;
  const Scratch<double*> rows(3 * un), xs(big);
  const Scratch<const double*> ls(big);
  const Scratch<double> work(step == 1 ? 0 : un * static_cast<std::uint64_t>(ldw));
  const Scratch<double> linv(big * static_cast<std::uint64_t>(ldl));
  const Scratch<std::uint64_t> zero(big * static_cast<std::uint64_t>(ldz));
  const Scratch<double> inv(static_cast<std::uint64_t>(ldl));
  const Scratch<double> pack(small ? 0 : static_cast<std::uint64_t>(kStepChunk) * kColumnBlock);
  const Scratch<double> panel(static_cast<std::uint64_t>(2 * kBase) * (big + 8));

  // By physical row: its elements (contiguous, in place or copied), b's and e's.
  double** const ra = rows.get();
  double** const rb = ra + n;
  double** const re = rb + n;
  for (int i = 0; i < n; ++i) {
    rb[i] = b ? &(*b)[i] : nullptr;
    re[i] = e ? &(*e)(i, 0) : nullptr;
    if (step == 1) {
      ra[i] = &a(i, 0);
    } else {
      ra[i] = work.get() + i * ldw;
      for (int m = 0; m < cols; ++m) ra[i][m] = a(i, m);
    }
  }
  if (!small) std::memset(zero.get(), 0, un * static_cast<std::uint64_t>(ldz) * 8);

  State s;
  s.n = n;
  s.perm = perm;
  s.a = ra;
  s.linv = linv.get();
  s.ldl = ldl;
  s.zero = zero.get();
  s.ldz = ldz;
  s.inv = inv.get();
  s.pack = pack.get();
  s.panel = panel.get();
  s.xs = xs.get();
  s.ls = ls.get();
  s.ker = &ker;

  int stop = 0;
  if (small) {
    stop = ker.small(s, last, cols, b ? rb : nullptr, e ? re : nullptr, en);
  } else {
    stop = last > 0 ? Factor(s, 0, last) : 0;
    if (cols > last) Update(s, 0, stop, ra, last, cols);
    if (b) Update(s, 0, stop, rb, 0, 1);
    if (e && en > 0) Update(s, 0, stop, re, 0, en);
  }
  if (step != 1) {
    for (int i = 0; i < n; ++i) {
      for (int m = 0; m < cols; ++m) a(i, m) = ra[i][m];
    }
  }
  return stop < last ? stop : n;
}

}  // namespace

bool GaussSeparate(const double* a, int rows, int cols, int sl, int sc, const double* b, int bn,
                   int bstep) {
  if (rows > 1 && cols > 1) {
    const long long s1 = sl < 0 ? -static_cast<long long>(sl) : sl;
    const long long s2 = sc < 0 ? -static_cast<long long>(sc) : sc;
    const bool ok = s1 <= s2 ? s1 >= 1 && s2 >= s1 * cols : s2 >= 1 && s1 >= s2 * rows;
    if (!ok) return false;
  } else if (rows > 1 && sc == 0) {
    return false;
  } else if (cols > 1 && sl == 0) {
    return false;
  }
  if (!b || bn <= 0) return true;
  if (bn > 1 && bstep == 0) return false;
  if (rows <= 0 || cols <= 0) return true;
  // The spans in bytes, compared as integers.
  const auto span = [](const double* p, long long count, long long step, std::uintptr_t& lo,
                       std::uintptr_t& hi) {
    const long long far = (count - 1) * step * static_cast<long long>(sizeof(double));
    const auto base = reinterpret_cast<std::uintptr_t>(p);
    lo = far < 0 ? base - static_cast<std::uintptr_t>(-far) : base;
    hi = far < 0 ? base : base + static_cast<std::uintptr_t>(far);
  };
  std::uintptr_t r_lo = 0, r_hi = 0, c_lo = 0, c_hi = 0, b_lo = 0, b_hi = 0;
  span(a, cols, sl, r_lo, r_hi);
  span(reinterpret_cast<const double*>(r_lo), rows, sc, c_lo, c_hi);
  const std::uintptr_t a_lo = c_lo;
  const std::uintptr_t a_hi = c_hi + (r_hi - r_lo) + sizeof(double);
  span(b, bn, bstep, b_lo, b_hi);
  return b_hi + sizeof(double) <= a_lo || b_lo >= a_hi;
}

bool MatrixKernels<double>::Eliminate(zrMatrix<double>& a, zrVector<double>* b, zrMatrix<double>* e,
                                      int* perm, int& stop) {
  const Kernels* const ker = CurrentKernels();
  if (!ker || a.ColumnLen() < 1 ||
      !GaussSeparate(a.GetPointer(), a.ColumnLen(), a.LineLen(), a.TabInLine(), a.TabInColumn(),
                     b ? b->GetPointer() : nullptr, b ? b->Len() : 0, b ? b->Tab() : 0))
    return false;
  stop = zr::detail::Eliminate(*ker, a, b, e, perm);
  return true;
}

bool MatrixKernels<double>::BackInverse(const zrMatrix<double>& a, const int* perm,
                                        const zrMatrix<double>& e, zrMatrix<double>& r) {
  const Kernels* const ker = CurrentKernels();
  const int n = a.ColumnLen();
  if (!ker || n < 1) return false;
  const auto un = static_cast<std::uint64_t>(n);
  const Scratch<double*> rows(2 * un);
  const Scratch<double> strip(un * static_cast<std::uint64_t>(ker->strip));
  for (int i = 0; i < n; ++i) {
    rows[i] = &a(perm[i], 0);
    rows[n + i] = &e(perm[i], 0);
  }
  ker->back(rows.get(), n, a.TabInLine(), rows.get() + n, r.GetPointer(), strip.get());
  return true;
}

}  // namespace zr::detail
