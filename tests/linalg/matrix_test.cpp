#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/linalg_values.h"
#include "support/test_support.h"
#include "zr/linalg/linalg.h"

namespace {

using zr_test::BadParametersText, zr_test::ExpectRefused, zr_test::SolveText;
using zr_test::kInconsistent, zr_test::kNotUnique, zr_test::Of, zr_test::Rows, zr_test::Values;
using M = zrMatrix<double>;
using Col = zrColumnVector<double>;
using C = zrComplex;
using V3 = zrTVec3<double>;
using D = std::vector<double>;

}  // namespace

TEST(Matrix, ViewsShareAndAssignmentCopiesValues) {
  M m = Rows({{1, 2, 3}, {4, 5, 6}});
  M t = m.T();
  t(2, 1) = 60;

  M sub;
  sub.Set(m, 0, 1, 2, 2);
  zrLineVector<double> line;
  Col column;
  sub.GetLine(line, 1);
  t.GetColumn(column, 0);  // row 0 of m, read through the transpose's step
  line[0] = 50;
  column[2] = 30;
  EXPECT_TRUE(Values(m) == (D{1, 2, 30, 4, 50, 60}) && m.GetNumOfRef() == 4);

  M resized(2, 2);
  resized.Init(2, 3);  // one dimension differs: fresh storage of the new size
  EXPECT_TRUE(resized.ColumnLen() == 2 && resized.LineLen() == 3);
  const M sharer(m);
  sub = Rows({{7, 8}, {9, 10}});  // equal size: written into m, seen by every sharer
  EXPECT_EQ(Values(sharer), (D{1, 7, 8, 4, 9, 10}));

  M copy(t);
  copy.Copy();  // private
  copy(0, 0) = -1;
  // The lenient in-place forms re-create the target and keep no old contents.
  M target(m);
  target -= Rows({{1}, {2}, {3}});
  EXPECT_EQ(Values(target), (D{-1, -2, -3}));
  target += Rows({{1, 2}});
  EXPECT_EQ(Values(target), (D{1, 2}));
  EXPECT_TRUE(m(1, 2) == 10 && m(0, 0) == 1);

  // SelfTMulSelf into a matrix of another size gives it storage of its own, stored by
  // rows; into one of its size it writes in place.
  M a = Rows({{1, 2}, {3, 4}, {5, 6}}), out(a), same(2, 2), seen(same);
  a.SelfTMulSelf(out);
  EXPECT_TRUE(out.TabInColumn() == 2 && a.GetNumOfRef() == 0 && Values(out) == (D{35, 44, 44, 56}));
  a.SelfTMulSelf(same);
  EXPECT_EQ(Values(seen), (D{35, 44, 44, 56}));
}

TEST(Matrix, ArithmeticAndProducts) {
  M a = Rows({{1, 2, 3}, {4, 5, 6}});
  M b = Rows({{1, 0}, {2, 1}, {0, 3}});
  EXPECT_EQ(Values(a * b), (D{5, 11, 14, 23}));
  EXPECT_EQ(Values(a * Of<Col>({1, 1, -1})), (D{0, 3}));
  EXPECT_EQ(Values(Of<zrLineVector<double>>({1, -1}) * a), (D{-3, -3, -3}));
  // Column times line is the outer product (empty with an empty factor), line times
  // column the scalar product.
  EXPECT_EQ(Values(Of<Col>({1, 2}) * Of<zrLineVector<double>>({10, 20, 30})),
            (D{10, 20, 30, 20, 40, 60}));
  EXPECT_EQ((Col() * Of<zrLineVector<double>>({10})).LineLen(), 0);
  EXPECT_EQ(Of<zrLineVector<double>>({1, 2}) * Of<Col>({3, 4}), 11);
  // Every sum of products starts from its first product: -0 stays -0; none gives +0.
  EXPECT_TRUE(std::signbit((Rows({{-0.0, -0.0}}) * Rows({{2}, {3}}))(0, 0)));
  double cell[2] = {1, 2};
  M no_columns, no_rows, z;
  no_columns.SetDirectly(cell, 2, 0, 1, 1);
  no_rows.SetDirectly(cell, 0, 2, 1, 1);
  no_rows.SelfTMulSelf(z);
  EXPECT_TRUE(Values(no_columns * no_rows) == (D{0, 0, 0, 0}) && Values(z) == (D{0, 0, 0, 0}));

  M self = Rows({{1, 2}, {3, 4}});
  self.SelfTMulSelf(self);  // into itself
  EXPECT_EQ(Values(self), (D{10, 14, 14, 20}));

  const M s = Rows({{1, -2}});
  M c(s), e(2, 3);
  c.Copy();
  ((((c *= 2.0) += 1.0) -= 4.0) /= 2.0);
  e.SetE();
  const M results[] = {s + 1.0, s - 1.0, s * 3.0, s / 4.0, -s, s + s - Rows({{3, 3}}), c, e};
  const D want[] = {{2, -1}, {0, -3},  {3, -6},      {0.25, -0.5},
                    {-1, 2}, {-1, -7}, {-0.5, -3.5}, {1, 0, 0, 0, 1, 0}};
  for (int k = 0; k < 8; ++k) EXPECT_EQ(Values(results[k]), want[k]) << k;

  const zrLineVector<double> one = Of<zrLineVector<double>>({1});
  const std::string size = "different size.", len = "different length.";
  const std::pair<std::function<void()>, std::string> errors[] = {
      {[&] { (void)(a + b); }, size},  {[&] { (void)(a - b); }, size},
      {[&] { (void)(a * a); }, size},  {[&] { (void)(a * Of<Col>({1})); }, len},
      {[&] { (void)(one * a); }, len}, {[&] { (void)(one * Of<Col>({3, 4})); }, len}};
  for (const auto& [f, text] : errors) ExpectRefused(text, f);
}

TEST(Matrix, DetGaussSolverAndInverseKeepTheEliminationRules) {
  EXPECT_EQ(Rows({{4, 0}, {2, 3}}).Det(), 6);  // 1/l scaling not compensated
  EXPECT_EQ(Rows({{0, 1}, {1, 0}}).Det(), 1);  // no sign for the exchange
  EXPECT_EQ(Rows({{1, 2}, {2, 4}}).Det(), 0);
  // Exchanging during the scan gives -12; finding the largest first would give 12.
  M m = Rows({{1, 0, 4}, {2, 0, 0}, {3, 1, 3}});
  EXPECT_EQ(m.Det(), -12);
  EXPECT_EQ(m(2, 2), 3);  // Det works on a copy
  ExpectRefused("Det: Matrix must be square.", [] { (void)M(2, 3).Det(); });
  EXPECT_EQ(M().Det(), 1);

  M a = Rows({{1, 2}, {3, 4}});
  Col b = Of<Col>({5, 6}), x;
  a.SolveEquationGaussMethod(x, b);
  EXPECT_TRUE(std::fabs(x[0] + 4) < 1e-14 && std::fabs(x[1] - 4.5) < 1e-14);
  // The rows stay in their places: row 1 was the pivot, normalised by 1/3 past column 0.
  EXPECT_EQ(Values(a), (D{1, 1.0 / 1 * 2 - 4 * (1.0 / 3), 3, 4 * (1.0 / 3)}));
  EXPECT_EQ(b[1], 6 * (1.0 / 3));

  Col keep = Of<Col>({9, 9});
  EXPECT_TRUE(SolveText(Rows({{1, 2}, {2, 4}}), Of<Col>({1, 2}), keep) == kNotUnique &&
              keep[0] == 9);
  EXPECT_EQ(SolveText(Rows({{1, 0}, {0, 1}, {1, 1}}), Of<Col>({1, 2, 3}), x), kInconsistent);
  // A zero pivot before the last column does not let a tall system through to a back
  // substitution that would read past its rows.
  EXPECT_EQ(SolveText(Rows({{1, 0}, {2, 0}, {3, 0}}), Of<Col>({1, 2, 3}), x), kInconsistent);
  EXPECT_EQ(SolveText(Rows({{1, 0}}), Of<Col>({1, 2}), x), zr_test::kInvalid + "different size.");

  M c = Rows({{4, 0}, {2, 3}});
  // The second pivot is 0.5 * 3 - 0 = 1.5.
  EXPECT_EQ(Values(c.Inverse()), (D{0.25, 0, -0.25 * (1 / 1.5), 0.5 * (1 / 1.5)}));
  EXPECT_EQ(Values(c), (D{4, 0, 2, 3}));
  EXPECT_EQ(BadParametersText([] { (void)Rows({{1, 2}, {2, 4}}).Inverse(); }), kNotUnique);
  ExpectRefused("Matrix must be square.", [] { (void)M(2, 3).Inverse(); });

  // Unit-modulus pivots, where the library's complex quotient is the true one.
  zrColumnVector<C> zb = Of<zrColumnVector<C>>({C(1), C(2)}), zx;
  Rows<C>({{C(0, 1), C(0)}, {C(0), C(1)}}).SolveEquationGaussMethod(zx, zb);
  EXPECT_TRUE(zx[0] == C(0, -1) && zx[1] == C(2));
  EXPECT_EQ(Rows<C>({{C(0, 1), C(0)}, {C(0), C(0, 1)}}).Det(), C(-1, 0));
}

// Pivots whose coordinates disagree: a candidate must beat the running maximum in all
// three coordinates to be exchanged, a pivot with any coordinate 0 stops the elimination,
// and a multiplier 0 in one coordinate leaves that coordinate of its row alone.
TEST(Matrix, Vec3PivotsCoordinateByCoordinate) {
  const V3 o(0, 0, 0), i(1, 1, 1);
  // (2, 3, 0.5) beats (1, 0, 1) in two coordinates only: no exchange; (1, 0, 1) stops
  // at once, so Det is the product of the diagonal as it stands.
  EXPECT_EQ(Rows<V3>({{V3(1, 0, 1), i}, {V3(2, 3, 0.5), V3(5, 6, 7)}}).Det(), V3(5, 0, 7));
  // An exchange when all three are greater: the pivot is then (2, 3, 4).
  EXPECT_EQ(Rows<V3>({{i, i}, {V3(2, 3, 4), i}}).Det(),
            V3(2 * (1 - 0.5), 3 * (1 - 1.0 / 3), 4 * (1 - 0.25)));
  // l = (0, 4, 4): x keeps 3, y and z become 8 / 4 - 1 and 12 / 4 - 1 (q = (2, 2, 2) / p).
  EXPECT_EQ(Rows<V3>({{V3(2, 2, 2), V3(2, 2, 2)}, {V3(0, 4, 4), V3(3, 8, 12)}}).Det(), V3(6, 2, 4));
  zrColumnVector<V3> x;
  EXPECT_EQ(SolveText(Rows<V3>({{i, o}, {o, V3(1, 0, 1)}}), Of<zrColumnVector<V3>>({i, i}), x),
            kNotUnique);
  EXPECT_EQ(SolveText(Rows<V3>({{V3(1, 0, 1), i}, {i, i}}), Of<zrColumnVector<V3>>({i, i}), x),
            kNotUnique);
}

TEST(Matrix, FlatFormOfATransposedView) {
  const M t = Rows({{1, 2}, {3, 4}, {5, 6}}).T();
  std::vector<unsigned char> buf(static_cast<std::size_t>(t.MemSize()));
  EXPECT_EQ(t.ToMem(buf.data()), t.MemSize());
  const int sizes[] = {2, 3};  // lines, then line length; then the elements by lines
  const double rows[] = {1, 3, 5, 2, 4, 6};
  EXPECT_TRUE(std::memcmp(buf.data(), sizes, 8) == 0 && std::memcmp(&buf[8], rows, 48) == 0);
  M back;
  EXPECT_EQ(back.FromMem(buf.data()), t.MemSize());
  EXPECT_TRUE(Values(back) == Values(t) && back.TabInColumn() == 3);
}

TEST(Matrix, AssignmentFromAnOverlappingViewReadsTheSourceFirst) {
  // A square matrix is transposed in place: its sharers see the transpose.
  M m = Rows({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
  M sharer(m);
  m = m.T();
  EXPECT_EQ(Values(sharer), (D{1, 4, 7, 2, 5, 8, 3, 6, 9}));

  // A non-square one changes size, so it takes fresh storage; its old sharers keep the
  // old values.
  M wide = Rows({{1, 2, 3}, {4, 5, 6}}), old(wide);
  wide = wide.T();
  EXPECT_TRUE(wide.ColumnLen() == 3 && Values(wide) == (D{1, 4, 2, 5, 3, 6}) &&
              wide.GetNumOfRef() == 0);
  EXPECT_EQ(Values(old), (D{1, 2, 3, 4, 5, 6}));

  // Windows of one block shifted down and right.
  M big(4, 4), to, from;
  for (int i = 0; i < 16; ++i) big.GetPointer()[i] = i;
  to.Set(big, 1, 1, 3, 3);
  from.Set(big, 0, 0, 3, 3);
  to = from;
  EXPECT_EQ(Values(big), (D{0, 1, 2, 3, 4, 0, 1, 2, 8, 4, 5, 6, 12, 8, 9, 10}));

  // The in-place sum with a transposed view of itself.
  M s = Rows({{1, 2}, {3, 4}});
  s += s.T();
  EXPECT_EQ(Values(s), (D{2, 5, 5, 8}));
}

// A sub-matrix of a matrix with a block lies inside that block, transposed or not, and every
// run of a view fits in 32 bits (the steps are what would overflow: each view spans few real
// elements); one row or column past either end is refused and leaves the target as it was.
TEST(Matrix, ViewsStayInsideTheirBlockAndThirtyTwoBits) {
  double cell[4] = {1, 2, 3, 4};
  const int big = 1 << 30, third = INT_MAX / 3;
  M m(3, 4), inner, w, huge;
  for (int i = 0; i < 12; ++i) m.GetPointer()[i] = i;
  inner.Set(m, 1, 1, 1, 2);  // the block reaches beyond it on every side
  const M t = m.T();
  huge.SetDirectly(cell, 1, 1, big, big);  // one element: runs of 2^30
  struct Window {
    const M* src;
    int row, col, rows, cols;
    bool inside;
  };
  // The last four at offsets of 2^31, of a negative size, of rows * step 2^31.
  for (const Window& c : {Window{&inner, -1, -1, 3, 4, true}, Window{&inner, -2, -1, 1, 4, false},
                          Window{&inner, -1, -1, 3, 5, false}, Window{&inner, 1, 3, 0, 0, true},
                          Window{&t, 0, 0, 4, 3, true}, Window{&t, 0, 1, 4, 3, false},
                          Window{&huge, 2, 0, 1, 1, false}, Window{&huge, 1, 1, 1, 1, false},
                          Window{&huge, 0, 0, -1, 1, false}, Window{&huge, 0, 0, 2, 1, false}}) {
    SCOPED_TRACE(testing::Message() << c.row << " " << c.col << " " << c.rows << " " << c.cols);
    w = Rows({{7}});
    const auto set = [&] { w.Set(*c.src, c.row, c.col, c.rows, c.cols); };
    c.inside ? set() : ExpectRefused("zrMatrix<T>::Set : out of range.", set);
    EXPECT_TRUE(c.inside ? w.GetMem() == m.GetMem() && w.LineLen() == c.cols : w(0, 0) == 7);
  }
  // Runs past 32 bits either way, and runs that each fit but add up past 32 bits.
  const int directs[][4] = {{1, 2, big, 1}, {2, 1, 1, -big - big}, {3, 3, third, third}};
  for (const auto& s : directs)
    ExpectRefused("zrMatrix<T>::SetDirectly : out of range.",
                  [&] { w.SetDirectly(cell, s[0], s[1], s[2], s[3]); });
  EXPECT_EQ(w(0, 0), 7);

  // Within 32 bits the views are made, and their row and column vectors too.
  w.SetDirectly(cell, 2, 2, big / 2, big / 2);
  zrLineVector<double> row;
  w.T().GetLine(row, 0);
  EXPECT_TRUE(w.PositiveLength() == big + 1 && row.Len() == 2 && row.PositiveLength() == big &&
              row[0] == 1);
  w.SetDirectly(cell + 3, 2, 2, -big / 2, -big / 2);
  EXPECT_EQ(w.NegativeLength(), -big);
}
