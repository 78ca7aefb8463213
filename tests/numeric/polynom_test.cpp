#include <gtest/gtest.h>

#include "support/array_builders.h"
#include "support/test_support.h"
#include "zr/numeric/numeric.h"

namespace {

using P = zrPolynom<double>;
using Col = zrColumnVector<double>;

const auto Koef = zr_test::Of<Col>;

TEST(PolynomTest, ValuesAndDerivativesInBothFormsOrTheirTexts) {
  // 3t^4 - 2t^3 + t - 5 about -2 at t = 0.5; the fourth derivative is 72.
  const P q(Koef({3, -2, 0, 1, -5}), -2.0, P::PowerKoef);
  const double t = 0.5;
  EXPECT_EQ(3 * t * t * t * t - 2 * t * t * t + t - 5, q(-1.5));
  EXPECT_TRUE(36 * t * t - 12 * t == q.Derivative(-1.5, 2) && 72 == q.Derivative(-1.5, 4));
  const P taylor(Koef({2, 3, 5}), 0.0, P::TaylorKoef);  // 5 + 3x + x^2
  EXPECT_TRUE(taylor(2.0) == 15 && taylor.Derivative(2.0, 1) == 7);
  // The same cubic in both forms about 1: x^3 - x = t^3 + 3t^2 + 2t.
  const P power3(Koef({1, 3, 2, 0}), 1.0, P::PowerKoef);
  const P taylor3(Koef({6, 6, 2, 0}), 1.0, P::TaylorKoef);
  for (double x : {-1.0, 0.25, 1.0, 3.0})
    for (int m = 0; m < 5; ++m) EXPECT_EQ(power3.Derivative(x, m), taylor3.Derivative(x, m));
  // No coefficients: 0 everywhere. The sized form is PowerKoef about 0.
  EXPECT_TRUE(P()(3.0) == 0 && P().Derivative(3.0, 0) == 0);
  P sized(3);
  sized[0] = 1, sized[1] = 1, sized[2] = 1;
  EXPECT_EQ(13.0, sized(3.0));  // the Taylor form would give 8.5

  const P bad(Koef({1, 2}), 0.0, static_cast<P::KoefType>(7));
  const std::string wrong = "Invalid parameters : zrPolynom : wrong KoefType";
  EXPECT_EQ(wrong, zr_test::BadParametersText([&] { bad(1.0); }));
  EXPECT_EQ(wrong, zr_test::BadParametersText([&] { bad.Derivative(1.0, 1); }));
  EXPECT_EQ(0.0, bad.Derivative(1.0, 2));  // m >= n answers before the form is read
  EXPECT_EQ("Invalid parameters : zrPolynom : wrong derivative order",
            zr_test::BadParametersText([&] { bad.Derivative(1.0, -1); }));
}

TEST(PolynomTest, SharingAndCopying) {
  Col c = Koef({1, 2});
  P shared(c, 1.0, P::TaylorKoef);
  P copy(shared);
  c[1] = 5;  // both see the caller's write
  EXPECT_TRUE(shared(1.0) == 5 && copy(1.0) == 5 && copy.GetKoefType() == P::TaylorKoef);
  P assigned(2);
  assigned = shared;  // values, form and centre; no sharing
  c[1] = 7;
  EXPECT_TRUE(assigned(1.0) == 5 && assigned.GetX0() == 1);
  P set(2);
  set.SetKoef(c, -1.0, P::PowerKoef);
  c[0] = 100;
  EXPECT_EQ(1.0 * 2.0 + 7.0, set(1.0));  // (x + 1) + 7 at x = 1

  P a(Koef({1}), 2.0, P::TaylorKoef), b(Koef({4, 5}), 3.0, P::PowerKoef);
  const double* pa = a.GetPointer();
  a.swap(b);
  EXPECT_TRUE(pa == b.GetPointer() && b.GetX0() == 2 && a.GetKoefType() == P::PowerKoef);
  EXPECT_EQ(4.0 * 1.0 + 5.0, a(4.0));
}

}  // namespace
