#include <gtest/gtest.h>

#include "support/test_support.h"
#include "zr/numeric/numeric.h"

namespace {

using P = zrPolynom<double>;
using Col = zrColumnVector<double>;

Col Koef(std::initializer_list<double> values) {
  Col c(static_cast<int>(values.size()));
  int i = 0;
  for (double v : values) c[i++] = v;
  return c;
}

TEST(PolynomTest, PowerFormValueAndDerivatives) {
  const P p(Koef({2, 0, 1}), 1.0, P::PowerKoef);  // 2(x-1)^2 + 1
  EXPECT_EQ(3.0, p(2.0));
  EXPECT_EQ(4.0, p.Derivative(2.0, 1));
  EXPECT_EQ(4.0, p.Derivative(2.0, 2));
  EXPECT_EQ(0.0, p.Derivative(2.0, 3));
  EXPECT_EQ(p(-0.75), p.Derivative(-0.75, 0));
  // Higher degree: 3t^4 - 2t^3 + t - 5 about -2; the fourth derivative is 72.
  const P q(Koef({3, -2, 0, 1, -5}), -2.0, P::PowerKoef);
  const double t = 0.5;  // x = -1.5
  EXPECT_EQ(3 * t * t * t * t - 2 * t * t * t + t - 5, q(-1.5));
  EXPECT_EQ(36 * t * t - 12 * t, q.Derivative(-1.5, 2));
  EXPECT_EQ(72.0, q.Derivative(-1.5, 4));
}

TEST(PolynomTest, TaylorFormValueAndDerivatives) {
  const P p(Koef({2, 3, 5}), 0.0, P::TaylorKoef);  // 5 + 3x + x^2
  EXPECT_EQ(5.0, p(0.0));
  EXPECT_EQ(3.0, p.Derivative(0.0, 1));
  EXPECT_EQ(2.0, p.Derivative(0.0, 2));
  EXPECT_EQ(5.0 + 3.0 * 2.0 + 4.0, p(2.0));
  EXPECT_EQ(3.0 + 2.0 * 2.0, p.Derivative(2.0, 1));
  // The same cubic in both forms about 1: x^3 - x = t^3 + 3t^2 + 2t.
  const P power(Koef({1, 3, 2, 0}), 1.0, P::PowerKoef);
  const P taylor(Koef({6, 6, 2, 0}), 1.0, P::TaylorKoef);
  for (double x : {-1.0, 0.25, 1.0, 3.0})
    for (int m = 0; m < 5; ++m) EXPECT_EQ(power.Derivative(x, m), taylor.Derivative(x, m));
}

TEST(PolynomTest, DefaultsAndEmpty) {
  P empty;
  EXPECT_EQ(P::PowerKoef, empty.GetKoefType());
  EXPECT_EQ(0.0, empty.GetX0());
  EXPECT_EQ(0.0, empty(3.0));
  EXPECT_EQ(0.0, empty.Derivative(3.0, 0));
  P sized(2);
  sized[0] = 1;
  sized[1] = 1;
  EXPECT_EQ(P::PowerKoef, sized.GetKoefType());
  EXPECT_EQ(4.0, sized(3.0));  // centred at 0
  EXPECT_STREQ("zrPolynom", sized.GetTypeString());
}

TEST(PolynomTest, WrongArgumentsThrowExactTexts) {
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
  EXPECT_EQ(5.0, shared(1.0));
  EXPECT_EQ(5.0, copy(1.0));
  EXPECT_EQ(P::TaylorKoef, copy.GetKoefType());

  P assigned(2);
  assigned = shared;  // values, form and centre; no sharing
  EXPECT_EQ(1.0, assigned.GetX0());
  c[1] = 7;
  EXPECT_EQ(5.0, assigned(1.0));

  P set(2);
  set.SetKoef(c, -1.0, P::PowerKoef);
  c[0] = 100;
  EXPECT_EQ(1.0 * 2.0 + 7.0, set(1.0));  // (x + 1) + 7 at x = 1

  P a(Koef({1}), 2.0, P::TaylorKoef), b(Koef({4, 5}), 3.0, P::PowerKoef);
  const double* pa = a.GetPointer();
  a.swap(b);
  EXPECT_EQ(pa, b.GetPointer());
  EXPECT_EQ(2.0, b.GetX0());
  EXPECT_EQ(P::PowerKoef, a.GetKoefType());
  EXPECT_EQ(4.0 * 1.0 + 5.0, a(4.0));
}

TEST(PolynomTest, ArrayMovesElementsByHandle) {
  Col c = Koef({1, 2});
  zrSimpleArray<P> polys(3);
  polys[0] = P(Koef({1}), 0.0, P::PowerKoef);
  polys[1] = P(Koef({2}), 1.0, P::TaylorKoef);
  polys[2] = P(Koef({3}), 2.0, P::PowerKoef);
  // An element that views the caller's storage must not be written by the reversal.
  polys[0].Set(c, 0, 1);
  polys.InverseOrder();
  EXPECT_EQ(1.0, c[0]);
  EXPECT_EQ(1.0, polys[2](0.0));
  EXPECT_EQ(3.0, polys[0](0.0));
  EXPECT_EQ(2.0, polys[0].GetX0());
  EXPECT_EQ(P::TaylorKoef, polys[1].GetKoefType());
  zrSimpleArray<P> copy(polys);
  copy[1][0] = 9;
  EXPECT_EQ(2.0, polys[1](1.0));
}

}  // namespace
