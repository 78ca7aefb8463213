// The kernels of zrMatrix<double> (the product, the elimination behind the solver, Inverse1
// and Det) at every level against the plain level: the same bits in the results and in
// everything left in the storage, for layouts that reach every edge of the blocking,
// negative and mixed steps, and storage the kernels must decline.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "support/levels.h"
#include "support/linalg_values.h"
#include "zr/linalg/detail/gauss_kernel.h"
#include "zr/linalg/linalg.h"

namespace {

using M = zrMatrix<double>;
using Col = zrColumnVector<double>;
using zr_test::ExpectLevelsAgree, zr_test::Layout, zr_test::Left, zr_test::Values;

// Inverse1 leaves the eliminated matrix behind; a derived class reaches it.
struct Open : M {
  using M::Inverse1;
};

using Laid = zr_test::Laid<Open>;
using zr_test::Fill, zr_test::kMixed, zr_test::kSparse, zr_test::kWide, zr_test::kZeros;

// The solution, and for a square view the inverse and the determinant, of the laid matrix
// after edit.
void ExpectEliminationsAgree(
    const Layout& l, Fill fill, std::uint64_t seed,
    const std::function<void(M&)>& edit = [](M&) {}) {
  SCOPED_TRACE(testing::Message() << l.rows << "x" << l.cols << " steps " << l.sl << ", " << l.sc
                                  << ", " << l.bstep << (l.inside ? " inside" : "") << " " << fill);
  for (int what = 0; what < (l.rows == l.cols ? 3 : 1); ++what) {
    ExpectLevelsAgree([&] {
      Laid s(l, fill, seed);
      edit(s.m);
      if (what == 2) return std::vector<double>{s.m.Det()};
      return Left(s, [&] {
        if (what == 1) return Values(s.m.Inverse1());
        Col x;
        s.m.SolveEquationGaussMethod(x, s.b);
        return Values(x);
      });
    });
  }
}

// Orders at each edge of the step-by-step size (64), the panels (8) and the tiles; wide and
// tall systems, with columns past a block of 256.
TEST(MatrixKernels, EliminationAcrossBlockSizesZeroPivotsAndTies) {
  std::uint64_t seed = 1;
  for (const int n : {1, 2, 3, 7, 8, 9, 17, 33, 63, 64, 65, 66, 100, 129})
    for (const Fill fill : {kMixed, kSparse, kWide})
      ExpectEliminationsAgree({n, n, 1, n}, fill, ++seed);
  for (const auto& [rows, cols] : std::vector<std::pair<int, int>>{
           {3, 5}, {5, 3}, {40, 300}, {70, 80}, {80, 70}, {1, 9}, {9, 1}, {66, 65}})
    for (const Fill fill : {kMixed, kSparse})
      ExpectEliminationsAgree({rows, cols, 1, cols}, fill, ++seed);

  // A zero column (the first, a middle one, the last) stops the elimination at its step;
  // two equal rows cancel exactly; a column of one magnitude makes the pivot search meet ties.
  for (const int n : {4, 12, 70, 150}) {
    ExpectEliminationsAgree({n, n, 1, n}, kZeros, 200 + n);
    for (int edit = 0; edit < 5; ++edit)
      ExpectEliminationsAgree({n, n, 1, n}, kMixed, 300 + n, [&](M& m) {
        for (int i = 0; i < n; ++i) {
          if (edit < 3) m(i, edit * (n - 1) / 2) = 0;
          if (edit == 3) m(n - 1, i) = m(n / 2, i);
          if (edit == 4) m(i, 1) = i % 2 ? 1.0 : -1.0;
        }
      });
  }
}

// Views with every sign of step, windows and every other element; a right-hand side with
// a negative step, right after the matrix's span, and one on a column of the matrix (the
// kernel declines); rows that overlap in storage (it declines too).
TEST(MatrixKernels, LayoutsStepsAndSeparateStorage) {
  for (const int n : {6, 40, 90}) {
    const Layout layouts[] = {{n, n, n, 1},         {n, n, 1, n + 7},      {n, n, 2, 2 * n + 1},
                              {n, n, -1, n},        {n, n, 1, -n},         {n, n, -1, -n},
                              {n, n, -n, -1},       {n, n, -n - 2, 1},     {n, n, 1, n, -3},
                              {n, n, -1, -n, -1},   {n, n, 1, n, 1, true}, {n, n, -1, -n, 1, true},
                              {n, n, 1, n / 2 + 1}, {n, n, -1, -(n - 1)},  {n, n, n - 1, -1}};
    for (const Layout& l : layouts) ExpectEliminationsAgree(l, n == 40 ? kSparse : kMixed, 700 + n);
  }

  // The layouts the elimination kernel takes and those it must decline, at each edge: a
  // 3 x 4 view at a (no right-hand side when bn is 0), a right-hand side at a + b.
  double s[64];
  double* const a = s + 20;
  const int cases[][8] = {
      // rows, cols, sl, sc, b, bn, bstep, separate
      {3, 4, 1, 4, 0, 0, 0, 1},     {3, 4, 1, 3, 0, 0, 0, 0},    {3, 4, -1, -4, 0, 0, 0, 1},
      {3, 4, -1, 3, 0, 0, 0, 0},    {3, 4, 3, -1, 0, 0, 0, 1},   {3, 4, -2, 1, 0, 0, 0, 0},
      {3, 4, 0, 4, 0, 0, 0, 0},     {3, 1, 0, 4, 0, 0, 0, 1},    {3, 1, 5, 0, 0, 0, 0, 0},
      {1, 3, 0, 5, 0, 0, 0, 0},     {3, 4, 1, 4, 12, 3, 1, 1},   {3, 4, 1, 4, 11, 3, 1, 0},
      {3, 4, 1, 4, -1, 3, -1, 1},   {3, 4, 1, 4, 0, 3, -1, 0},   {3, 4, -1, -4, -12, 3, 1, 0},
      {3, 4, -1, -4, -14, 3, 1, 1}, {3, 4, -1, -4, 5, 3, -2, 1}, {3, 4, -1, -4, 4, 3, -2, 0},
      {3, 4, 1, 4, 12, 2, 0, 0},    {3, 4, 1, 4, 12, 1, 0, 1},   {0, 4, 1, 4, 0, 3, 1, 1}};
  for (const auto& c : cases)
    EXPECT_EQ(zr::detail::GaussSeparate(a, c[0], c[1], c[2], c[3], a + c[4], c[5], c[6]), c[7] == 1)
        << "case " << &c - cases;
}

// a * b for sizes at every edge of the register blocks (4 x 4, 6 x 8, 6 x 32), across the
// packed blocks, whose sizes follow the caches (k from 64 to 256, rows of a up to 1020,
// 680 .. 4096 columns of b), with one row or column, and with operands of other layouts.
TEST(MatrixKernels, ProductsAcrossBlockSizesAndLayouts) {
  const int sizes[][3] = {{1, 1, 2000},  {7, 23, 255}, {9, 25, 257},    {8, 24, 256},
                          {6, 8, 40},    {7, 9, 513},  {13, 47, 300},   {130, 97, 70},
                          {97, 131, 33}, {4, 4100, 3}, {200, 121, 260}, {65, 5, 7},
                          {1, 700, 5},   {1030, 5, 9}};
  for (const auto& s : sizes)
    for (const Fill fill : {kMixed, kWide, kZeros})
      ExpectLevelsAgree([&] {
        const std::uint64_t seed = 8 * (&s - sizes) + 2 * fill;
        return Values(Laid({s[0], s[2], 1, s[2]}, fill, seed).m *
                      Laid({s[2], s[1], 1, s[1]}, fill, seed + 1).m);
      });
  for (const int n : {14, 33, 70}) {
    const int k = n + 3;
    for (const Layout& l : {Layout{n, k, 1, k + 2}, Layout{n, k, n, 1}, Layout{n, k, -1, k},
                            Layout{n, k, 2, -2 * k - 1}})
      for (const Layout& r : {Layout{k, n - 1, k, 1}, Layout{k, n - 1, 1, n},
                              Layout{k, n - 1, -1, -n}, Layout{k, n - 1, -k, 1}})
        ExpectLevelsAgree([&] { return Values(Laid(l, kMixed, n).m * Laid(r, kMixed, 7).m); });
  }

  // T() * a, computed above the diagonal and mirrored (built aside, so where it goes is the
  // class's business, not the kernel's).
  for (const int rows : {1, 9, 257})
    for (const int cols : {1, 7, 26, 131})
      for (const Layout& l : {Layout{rows, cols, 1, cols}, Layout{rows, cols, -rows, 1}})
        ExpectLevelsAgree([&] {
          M out;
          Laid(l, kWide, rows + cols).m.SelfTMulSelf(out);
          return Values(out);
        });
}

}  // namespace
