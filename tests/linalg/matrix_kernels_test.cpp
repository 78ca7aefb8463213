// The kernels of zrMatrix<double> (the product, the elimination behind the solver, Inverse1
// and Det) at every level against the plain level: the same bits in the results and in
// everything left in the storage, for layouts that reach every edge of the blocking,
// negative and mixed steps, and storage the kernels must decline.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "support/levels.h"
#include "zr/linalg/detail/gauss_kernel.h"
#include "zr/linalg/linalg.h"

namespace {

using M = zrMatrix<double>;
using Col = zrColumnVector<double>;
using zr_test::ExpectLevelsAgree;

// Inverse1 leaves the eliminated matrix behind; a derived class reaches it.
struct Open : M {
  using M::Inverse1;
};

// Values of mixed magnitude; small integers with many exact zeros (zero multipliers, ties
// and zero pivots); or spread from subnormal to huge, so that infinities and NaNs appear.
enum Fill { kMixed, kSparse, kWide, kZeros };

std::vector<double> Values(std::size_t n, Fill fill, std::uint64_t seed) {
  std::vector<double> v = zr_test::Mixed(n, seed);
  for (std::size_t i = 0; i < n; ++i) {
    if (fill == kSparse) v[i] = std::trunc(v[i] * 0.75);
    if (fill == kWide) v[i] = std::ldexp(v[i], static_cast<int>((i * 613) % 2040) - 1060);
    if (fill == kZeros) v[i] = i % 5 == 0 ? v[i] : (i % 2 ? 0.0 : -0.0);
  }
  return v;
}

// Storage of its own holding a rows x cols view with steps sl (in line) and sc (in column)
// and, when bn > 0, a right-hand side of bn elements at step bstep: past the matrix's last
// element, or, with inside, on the matrix's column 1. Every element is filled, the margins
// too, so that a kernel reading or writing the wrong one shows.
struct Layout {
  int rows, cols, sl, sc;
  int bstep = 1;
  bool inside = false;
};

struct Laid {
  std::vector<double> store;
  Open m;
  Col b;

  Laid(const Layout& l, Fill fill, std::uint64_t seed) {
    const long long along = static_cast<long long>(l.cols - 1) * l.sl;
    const long long down = static_cast<long long>(l.rows - 1) * l.sc;
    const long long low = (along < 0 ? along : 0) + (down < 0 ? down : 0);
    const long long high = (along > 0 ? along : 0) + (down > 0 ? down : 0);
    const long long bspan = static_cast<long long>(l.rows) * (l.bstep < 0 ? -l.bstep : l.bstep);
    store = Values(static_cast<std::size_t>(high - low + 1 + bspan + 8), fill, seed);
    m.SetDirectly(store.data() + 4 - low, l.rows, l.cols, l.sl, l.sc);
    double* const after = store.data() + 4 + (high - low) + 1;
    if (l.inside) {
      b.SetDirectly(&m(0, 1), l.rows, l.sc);
    } else {
      b.SetDirectly(l.bstep < 0 ? after + bspan + l.bstep : after, l.rows, l.bstep);
    }
  }
};

std::vector<double> Elements(const M& m) {
  std::vector<double> r;
  for (int i = 0; i < m.ColumnLen(); ++i)
    for (int j = 0; j < m.LineLen(); ++j) r.push_back(m(i, j));
  return r;
}

// What op left in the storage, then its results or the text it threw (a double a byte).
template <class F>
std::vector<double> Left(const std::vector<double>& store, F op) {
  std::vector<double> out;
  try {
    out = op();
  } catch (const BadParameters& e) {
    for (const char* c = e.GetMessageText(); *c; ++c) out.push_back(*c);
  }
  out.insert(out.end(), store.begin(), store.end());
  return out;
}

std::vector<double> Solved(Laid& s) {
  return Left(s.store, [&] {
    Col x;
    s.m.SolveEquationGaussMethod(x, s.b);
    return std::vector<double>(x.begin(), x.end());
  });
}

// The solution, the inverse (of a square view) and the determinant, each with the
// storage the elimination left; errors are compared by their texts.
void ExpectEliminationsAgree(const Layout& l, Fill fill, std::uint64_t seed) {
  SCOPED_TRACE(testing::Message() << l.rows << "x" << l.cols << " steps " << l.sl << ", " << l.sc
                                  << " b step " << l.bstep << (l.inside ? " inside" : "")
                                  << " fill " << fill);
  ExpectLevelsAgree([&] {
    Laid s(l, fill, seed);
    return Solved(s);
  });
  if (l.rows != l.cols) return;
  ExpectLevelsAgree([&] {
    Laid s(l, fill, seed);
    return Left(s.store, [&] { return Elements(s.m.Inverse1()); });
  });
  ExpectLevelsAgree([&] { return std::vector<double>{Laid(l, fill, seed).m.Det()}; });
}

TEST(MatrixKernels, EliminationAcrossBlockSizes) {
  std::uint64_t seed = 1;
  for (const int n : {1, 2, 3, 7, 8, 9, 17, 33, 63, 64, 65, 66, 100, 129}) {
    for (const Fill fill : {kMixed, kSparse, kWide})
      ExpectEliminationsAgree({n, n, 1, n}, fill, ++seed);
  }
  // Wide and tall systems: columns past a block of 256, rows past the step-by-step size.
  for (const auto& [rows, cols] : std::vector<std::pair<int, int>>{
           {3, 5}, {5, 3}, {40, 300}, {70, 80}, {80, 70}, {1, 9}, {9, 1}, {66, 65}}) {
    for (const Fill fill : {kMixed, kSparse})
      ExpectEliminationsAgree({rows, cols, 1, cols}, fill, ++seed);
  }
}

TEST(MatrixKernels, ZeroPivotsTiesAndEqualRows) {
  for (const int n : {4, 12, 70, 150}) {
    ExpectEliminationsAgree({n, n, 1, n}, kZeros, 200 + n);
    // A zero column (the first, a middle one, the last) stops the elimination at its
    // step, two equal rows cancel exactly, a column of one magnitude makes the pivot
    // search meet ties.
    for (int edit = 0; edit < 5; ++edit) {
      ExpectLevelsAgree([&] {
        Laid s({n, n, 1, n}, kMixed, 300 + n);
        for (int i = 0; i < n; ++i) {
          if (edit < 3) s.m(i, edit * (n - 1) / 2) = 0;
          if (edit == 3) s.m(n - 1, i) = s.m(n / 2, i);
          if (edit == 4) s.m(i, 1) = i % 2 ? 1.0 : -1.0;
        }
        const double det = M(s.m).Det();
        std::vector<double> out = Solved(s);
        out.push_back(det);
        return out;
      });
    }
  }
}

// Views with every sign of step, windows and every other element; a right-hand side with
// a negative step, right after the matrix's span, and one that is a column of the matrix
// (the kernel declines); rows that overlap in storage (it declines too).
TEST(MatrixKernels, LayoutsStepsAndSharedStorage) {
  for (const int n : {6, 40, 90}) {
    const Layout layouts[] = {{n, n, n, 1},         {n, n, 1, n + 7},      {n, n, 2, 2 * n + 1},
                              {n, n, -1, n},        {n, n, 1, -n},         {n, n, -1, -n},
                              {n, n, -n, -1},       {n, n, -n - 2, 1},     {n, n, 1, n, -3},
                              {n, n, -1, -n, -1},   {n, n, 1, n, 1, true}, {n, n, -1, -n, 1, true},
                              {n, n, 1, n / 2 + 1}, {n, n, -1, -(n - 1)},  {n, n, n - 1, -1}};
    for (const Layout& l : layouts) ExpectEliminationsAgree(l, n == 40 ? kSparse : kMixed, 700 + n);
  }
}

// The layouts the kernel takes and those it must decline, at the edges of each test.
TEST(MatrixKernels, SeparateStorage) {
  double s[64];
  double* const a = s + 20;
  struct Case {
    int rows, cols, sl, sc;
    const double* b;
    int bn, bstep;
    bool separate;
  };
  const Case cases[] = {
      {3, 4, 1, 4, nullptr, 0, 0, true},   {3, 4, 1, 3, nullptr, 0, 0, false},
      {3, 4, -1, -4, nullptr, 0, 0, true}, {3, 4, -1, 3, nullptr, 0, 0, false},
      {3, 4, 3, -1, nullptr, 0, 0, true},  {3, 4, -2, 1, nullptr, 0, 0, false},
      {3, 4, 0, 4, nullptr, 0, 0, false},  {3, 1, 0, 4, nullptr, 0, 0, true},
      {3, 1, 5, 0, nullptr, 0, 0, false},  {1, 3, 0, 5, nullptr, 0, 0, false},
      {3, 4, 1, 4, a + 12, 3, 1, true},    {3, 4, 1, 4, a + 11, 3, 1, false},
      {3, 4, 1, 4, a - 1, 3, -1, true},    {3, 4, 1, 4, a, 3, -1, false},
      {3, 4, -1, -4, a - 12, 3, 1, false}, {3, 4, -1, -4, a - 14, 3, 1, true},
      {3, 4, -1, -4, a + 5, 3, -2, true},  {3, 4, -1, -4, a + 4, 3, -2, false},
      {3, 4, 1, 4, a + 12, 2, 0, false},   {3, 4, 1, 4, a + 12, 1, 0, true},
      {0, 4, 1, 4, a, 3, 1, true},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(zr::detail::GaussSeparate(a, c.rows, c.cols, c.sl, c.sc, c.b, c.bn, c.bstep),
              c.separate)
        << c.rows << "x" << c.cols << " steps " << c.sl << ", " << c.sc << " b at "
        << (c.b ? c.b - a : 0) << " step " << c.bstep;
  }
}

// a * b for sizes at every edge of the register blocks (4 x 4, 6 x 8, 8 x 24), of the
// packed blocks of a (64, 96, 128 rows) and b (k 256, 680 .. 4080 columns), with one row
// or column, and with operands of other layouts.
TEST(MatrixKernels, ProductAcrossBlockSizesAndLayouts) {
  const int sizes[][3] = {{1, 1, 2000},    {7, 23, 255},  {9, 25, 257},  {8, 24, 256},
                          {6, 8, 40},      {7, 9, 513},   {13, 47, 300}, {130, 97, 70},
                          {200, 121, 260}, {97, 131, 33}, {4, 4100, 3},  {65, 5, 7},
                          {1, 700, 5}};
  std::uint64_t seed = 10;
  for (const auto& s : sizes) {
    for (const Fill fill : {kMixed, kWide, kZeros}) {
      const int m = s[0], n = s[1], k = s[2];
      ExpectLevelsAgree([&] {
        const Laid a({m, k, 1, k}, fill, seed), b({k, n, 1, n}, fill, seed + 1);
        return Elements(a.m * b.m);
      });
      seed += 2;
    }
  }
  for (const int n : {9, 33, 70}) {
    const Layout left[] = {
        {n, n + 3, 1, n + 5}, {n, n + 3, n, 1}, {n, n + 3, -1, n + 3}, {n, n + 3, 2, -2 * n - 7}};
    const Layout right[] = {{n + 3, n - 1, n + 3, 1},
                            {n + 3, n - 1, 1, n},
                            {n + 3, n - 1, -1, -n},
                            {n + 3, n - 1, -n - 3, 1}};
    for (const Layout& l : left) {
      for (const Layout& r : right)
        ExpectLevelsAgree([&] { return Elements(Laid(l, kMixed, n).m * Laid(r, kMixed, 7).m); });
    }
  }
}

// T() * a, computed above the diagonal and mirrored, into fresh storage and into the
// matrix itself.
TEST(MatrixKernels, SelfTransposedProduct) {
  for (const int rows : {1, 9, 257}) {
    for (const int cols : {1, 7, 26, 131}) {
      for (const Layout& l : {Layout{rows, cols, 1, cols}, Layout{rows, cols, -rows, 1}}) {
        ExpectLevelsAgree([&] {
          Laid a(l, kWide, rows + cols);
          M out;
          a.m.SelfTMulSelf(out);
          return Elements(out);
        });
      }
    }
  }
  ExpectLevelsAgree([] {
    Laid a({40, 40, 1, 40}, kMixed, 3);
    a.m.SelfTMulSelf(a.m);
    return a.store;
  });
}

}  // namespace
