#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "support/linalg_values.h"
#include "support/test_support.h"
#include "zr/linalg/linalg.h"

namespace {

using zr_test::ExpectElements, zr_test::ExpectRefused;

TEST(Matrix2x2, ArithmeticTurnsFlatFormAndConversions) {
  const zrMatrix2x2 a(1, 2, 3, 4);
  EXPECT_EQ(zrVec2(1, 2) * a, zrVec2(7, 10));  // row times matrix
  EXPECT_EQ(a * zrVec2(1, 2), zrVec2(5, 11));  // matrix times column
  ExpectElements(a * zrMatrix2x2(0, 1, 1, 0), {2, 1, 4, 3});
  EXPECT_TRUE(std::signbit((-(a - a))(0, 0)));
  ExpectElements(a.Inverse(), {-2, 1, 1.5, -0.5});
  // The threshold is absolute: det 1e-61 is refused, det 1e-59 inverted.
  ExpectRefused("zrMatrix2x2::Inverse : det = 0 ", [] { zrMatrix2x2(1e-61, 0, 0, 1).Inverse(); });
  EXPECT_DOUBLE_EQ(zrMatrix2x2(1e-59, 0, 0, 1).Inverse()(0, 0), 1e59);

  zrMatrix2x2 v;
  v.SetTurn(zrVec2(1, 0), zrVec2(0, 2));
  ExpectElements(v, {0, -1, 1, 0});
  // The axis forms turn the x axis (0) or the y axis (any other value) onto v.
  v.SetTurn(zrVec2(3, 4), 0);
  ExpectElements(v, {0.6, -0.8, 0.8, 0.6});
  v.SetTurn(zrVec2(3, 4), 7);
  ExpectElements(v, {0.8, 0.6, -0.6, 0.8});
  v.SetTurn(zrVec2(0, 0), zrVec2(1, 0));
  EXPECT_TRUE(std::isnan(v(0, 0)));

  unsigned char buf[32];
  const double order[4] = {1, 2, 3, 4};
  zrMatrix2x2 b;
  EXPECT_TRUE(zrToMem(buf, a) == 32 && std::memcmp(buf, order, 32) == 0 && zrFromMem(buf, b) == 32);
  ExpectElements(b, order);

  // To a dense matrix stored by rows, and back from a strided view (the transpose).
  ExpectElements(zrMatrix2x2(zrMatrix<double>(a).T()), {1, 3, 2, 4});
  ExpectRefused("zrMatrix2x2::zrMatrix2x2( const zrMatrix<double> & m ) : Matrix m != 2x2 ",
                [] { zrMatrix2x2 x(zrMatrix<double>(2, 3)); });

  zrVector<double> four = zr_test::Of({1, 2, 3, 4}), w;
  w.Set(four, 1, 2, 2);  // elements 2 and 4
  EXPECT_EQ(zrToVec2(w), zrVec2(2, 4));
  ExpectRefused("zrVec2: Dim must be equal 2 ", [&] { zrToVec2(four); });
}

TEST(Matrix3x3, ArithmeticCopyInverseAndTurns) {
  zrTMatrix3x3<double> a;
  for (int i = 0; i < 9; ++i) a.GetPointer()[i] = i < 8 ? i + 1 : 10;
  const zrTVec3<double> v(1, 2, 3);
  EXPECT_EQ(a * v, zrTVec3<double>(14, 32, 53));
  EXPECT_EQ(v * a, zrTVec3<double>(30, 36, 45));
  EXPECT_EQ(a.Det(), -3.0);
  ExpectElements(a * a.Inverse(), {1, 0, 0, 0, 1, 0, 0, 0, 1}, 1e-14);
  ExpectRefused(zr::text::kSystemNotUnique, [] { zrTMatrix3x3<double>(1.0).Inverse(); });

  // Copy leaves row n and column n alone.
  const zrMatrix2x2 m(11, 12, 21, 22);
  zrTMatrix3x3<double> c(1.0);
  c.Copy(m, 1);
  ExpectElements(c, {11, 1, 12, 1, 1, 1, 21, 1, 22});
  ExpectRefused("zrTMatrix3x3<TT>::Copy: n != {0,1,2}.", [&] { c.Copy(m, 3); });

  ExpectElements(zrTMatrix3x3<double>(zrMatrix<double>(a).T()), {1, 4, 7, 2, 5, 8, 3, 6, 10});
  ExpectRefused("zrTMatrix3x3<TT>::zrTMatrix3x3<TT>( const zrMatrix<TT> & m ) : Matrix m != 3x3 ",
                [] { zrTMatrix3x3<double> x(zrMatrix<double>(3, 2)); });

  const zrTVec3<double> ex(1, 0, 0), ey(0, 1, 0), ez(0, 0, 1);
  zrTMatrix3x3<double> r, rx, ry, rz;
  // Euler angles compose as Rz(c) * Ry(b) * Rx(a).
  rx.SetTurn(0.3, ex), ry.SetTurn(-1.1, ey), rz.SetTurn(2.0, ez), r.SetTurn(0.3, -1.1, 2.0);
  for (int i = 0; i < 9; ++i) EXPECT_NEAR(r.GetPointer()[i], (rz * ry * rx).GetPointer()[i], 1e-15);

  // From one direction to another: the turn about their common normal n, which takes n x from
  // to n x to as well; opposite ones turn half about the normal of `from` nearest the
  // coordinate axis farthest from it (here x: n = (0, 1, -3)); parallel ones not at all; a
  // zero vector NaNs.
  const zrTVec3<double> from(1, -2, 0.5), to(0.3, 1, -2), n = from.VectorMul(to), d(0, 3, 1);
  r.SetTurn(from * 3.0, to);
  EXPECT_NEAR((r * (from / from.Norm()) - to / to.Norm()).Norm(), 0, 1e-14);
  EXPECT_NEAR((r * n - n).Norm(), 0, 1e-14);
  EXPECT_NEAR((r * n.VectorMul(from) / from.Norm() - n.VectorMul(to) / to.Norm()).Norm(), 0, 1e-14);
  r.SetTurn(d, -d);
  ExpectElements(r, {-1, 0, 0, 0, -0.8, -0.6, 0, -0.6, 0.8}, 1e-15);
  r.SetTurn(d, d * 2.0);
  ExpectElements(r, {1, 0, 0, 0, 1, 0, 0, 0, 1});
  r.SetTurn(zrTVec3<double>(0, 0, 0), d);
  EXPECT_TRUE(std::isnan(r(0, 0)));
}

}  // namespace
