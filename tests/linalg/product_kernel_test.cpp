#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "zr/linalg/linalg.h"
#include "zr/linalg/product_kernel.h"

namespace {

using M = zrMatrix<double>;
using zr::detail::Product;
using zr::detail::ProductOperand;
using zr::detail::ProductVariant;

constexpr double kInf = std::numeric_limits<double>::infinity();

std::uint64_t Bits(double x) {
  std::uint64_t u;
  std::memcpy(&u, &x, sizeof u);
  return u;
}

// Equal bits; any two NaNs match (which operand's payload survives an add is the compiler's
// choice even in the plain loop).
bool Same(double x, double y) { return (std::isnan(x) && std::isnan(y)) || Bits(x) == Bits(y); }

// The element order every variant must reproduce.
double Ordered(const M& a, const M& b, int i, int j) {
  double sum = a(i, 0) * b(0, j);
  for (int k = 1; k < a.LineLen(); ++k) sum = sum + a(i, k) * b(k, j);
  return sum;
}

// Values over many magnitudes, so that a changed summation order changes the bits, with
// now and then a signed zero, an infinity, a NaN or a subnormal.
void Fill(M& m, std::mt19937_64& rng, bool specials) {
  std::uniform_real_distribution<double> mant(-1.0, 1.0);
  std::uniform_int_distribution<int> exp(-30, 30);
  std::uniform_int_distribution<int> pick(0, 199);
  const double special[] = {0.0, -0.0, kInf, -kInf, std::nan(""), 3e-310, -5e-320};
  for (int i = 0; i < m.ColumnLen(); ++i) {
    for (int j = 0; j < m.LineLen(); ++j) {
      const int s = pick(rng);
      m(i, j) = specials && s < 7 ? special[s] : std::ldexp(mant(rng), exp(rng));
    }
  }
}

ProductOperand Operand(const M& m) { return {m.GetPointer(), m.TabInColumn(), m.TabInLine()}; }

const ProductVariant kVariants[] = {ProductVariant::kAuto, ProductVariant::kPlain,
                                    ProductVariant::kPortable, ProductVariant::kAvx2,
                                    ProductVariant::kAvx512};

// Every available variant against the ordered loop, c rows padded to catch writes past n.
// With mirror (T() * a) the elements below the diagonal are those above.
void ExpectAllVariants(const M& a, const M& b, bool mirror = false) {
  const int m = a.ColumnLen(), n = b.LineLen(), k = a.LineLen();
  const long long ldc = n + 3;
  const double guard = -12345.0;
  for (const ProductVariant v : kVariants) {
    if (!zr::detail::ProductVariantAvailable(v)) continue;
    SCOPED_TRACE("variant " + std::to_string(static_cast<int>(v)) + ", " + std::to_string(m) +
                 " x " + std::to_string(k) + " x " + std::to_string(n));
    std::vector<double> c(static_cast<std::size_t>(m > 0 ? m : 1) * ldc, guard);
    Product(v, m, n, k, Operand(a), Operand(b), c.data(), ldc, mirror);
    int wrong = 0;
    for (int i = 0; i < m; ++i) {
      for (int j = 0; j < ldc; ++j) {
        const double got = c[i * ldc + j];
        if (j >= n) {
          wrong += Bits(got) != Bits(guard);
        } else if (k == 0) {
          wrong += Bits(got) != Bits(0.0);
        } else {
          wrong += !Same(got, mirror && j < i ? Ordered(a, b, j, i) : Ordered(a, b, i, j));
        }
      }
    }
    EXPECT_EQ(wrong, 0);
  }
}

void ExpectProduct(int m, int n, int k, std::mt19937_64& rng, bool specials) {
  M a(m, k), b(k, n);
  Fill(a, rng, specials);
  Fill(b, rng, specials);
  ExpectAllVariants(a, b);
}

// Every edge of the register blocks (4 x 4, 6 x 8, 8 x 24) and of the k blocks (256), sizes
// of 0 and 1, and rows and columns past one block of a and of b.
TEST(ProductKernel, SizesAtEveryBlockEdgeMatchTheOrderedLoop) {
  std::mt19937_64 rng(7);
  const int mn[][3] = {{1, 1, 1},     {1, 1, 2},       {3, 5, 7},     {5, 7, 9},    {6, 8, 1},
                       {7, 23, 255},  {9, 25, 257},    {8, 24, 256},  {7, 9, 513},  {13, 47, 300},
                       {130, 97, 70}, {200, 121, 260}, {97, 131, 33}, {4, 4100, 3}, {0, 5, 3},
                       {5, 0, 3},     {4, 6, 0},       {0, 0, 0}};
  for (const auto& s : mn) ExpectProduct(s[0], s[1], s[2], rng, false);
  for (const auto& s : mn) ExpectProduct(s[0], s[1], s[2], rng, true);
}

TEST(ProductKernel, SignedZerosKeepTheFirstProductsSign) {
  // -0 * x + -0 * y stays -0: a sum started at +0 would give +0.
  M a(9, 30), b(30, 25);
  for (int i = 0; i < 9; ++i) {
    for (int k = 0; k < 30; ++k) a(i, k) = (i + k) % 3 == 0 ? 0.0 : -0.0;
  }
  for (int k = 0; k < 30; ++k) {
    for (int j = 0; j < 25; ++j) b(k, j) = (j % 2 ? 1.5 : 0.0) * (k % 4 ? 1 : -1);
  }
  ExpectAllVariants(a, b);
  a.Fill(-0.0);
  b.Fill(2.0);
  const M c = a * b;
  EXPECT_EQ(Bits(c(8, 24)), Bits(-0.0));
}

TEST(ProductKernel, ViewsWithStepsTransposesAndReversedLines) {
  std::mt19937_64 rng(11);
  M big(70, 90);
  Fill(big, rng, true);
  M window;
  window.Set(big, 3, 5, 33, 29);  // steps 1 and 90
  const M t = big.T();            // steps 90 and 1
  M tw;
  tw.Set(t, 2, 1, 29, 41);
  ExpectAllVariants(window, tw);
  ExpectAllVariants(tw.T(), window.T());
  // Reversed lines: step in line -1.
  std::vector<double> store(40 * 30);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  for (double& x : store) x = std::ldexp(u(rng), 5);
  M rev;
  rev.SetDirectly(store.data() + 29, 40, 30, -1, 30);
  M tall;
  tall.Set(t, 0, 0, 30, 27);
  ExpectAllVariants(rev, tall);
}

// T() * a computed for k <= m and mirrored (SelfTMulSelf), then the public operations.
TEST(ProductKernel, SelfTransposedProductAndThePublicOperations) {
  std::mt19937_64 rng(5);
  for (const int rows : {1, 9, 257}) {
    for (const int cols : {1, 7, 26, 131}) {
      M a(rows, cols);
      Fill(a, rng, rows > 1);
      ExpectAllVariants(a.T(), a, true);
      M s;
      a.SelfTMulSelf(s);
      const M at = a.T();
      int wrong = 0;
      for (int k = 0; k < cols; ++k) {
        for (int m = 0; m < cols; ++m) {
          wrong += !Same(s(k, m), k <= m ? Ordered(at, a, k, m) : Ordered(at, a, m, k));
        }
      }
      EXPECT_EQ(wrong, 0) << rows << " x " << cols;
      const M p = at * a;
      for (int k = 0; k < cols; ++k) {
        for (int m = 0; m < cols; ++m) wrong += !Same(p(k, m), Ordered(at, a, k, m));
      }
      EXPECT_EQ(wrong, 0) << rows << " x " << cols;
    }
  }
  // Into the matrix itself, and with no rows: a cols x cols matrix of +0.
  M a(40, 40);
  Fill(a, rng, false);
  M copy(40, 40);
  copy = a;
  copy.SelfTMulSelf(copy);
  EXPECT_TRUE(Same(copy(3, 17), Ordered(a.T(), a, 3, 17)));
  EXPECT_TRUE(Same(copy(17, 3), copy(3, 17)));
  M none;
  none.SetDirectly(a.GetPointer(), 0, 3, 1, 3);
  M zero;
  none.SelfTMulSelf(zero);
  ASSERT_EQ(zero.ColumnLen(), 3);
  EXPECT_EQ(Bits(zero(2, 1)), Bits(0.0));
}

TEST(ProductKernel, SelfTransposedProductKeepsTheSharingRules) {
  std::mt19937_64 rng(9);
  M a(30, 20);
  Fill(a, rng, false);
  const double a00 = a(0, 0);
  // Another size: out gets storage of its own and lets a's block go.
  M out(a);
  a.SelfTMulSelf(out);
  ASSERT_EQ(out.ColumnLen(), 20);
  EXPECT_EQ(out.TabInColumn(), 20);
  out(0, 0) = 1.0;
  EXPECT_EQ(a(0, 0), a00);
  EXPECT_EQ(a.GetNumOfRef(), 0);
  // The same size: written in place, so a sharer sees the values.
  M same(20, 20);
  const M sharer(same);
  a.SelfTMulSelf(same);
  EXPECT_TRUE(Same(sharer(4, 7), Ordered(a.T(), a, 4, 7)));
  EXPECT_TRUE(Same(sharer(7, 4), sharer(4, 7)));
}

}  // namespace
