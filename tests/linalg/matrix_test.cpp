#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "zr/linalg/linalg.h"

namespace {

using zr_test::BadParametersText;
using M = zrMatrix<double>;
using C = zrComplex;
using V3 = zrTVec3<double>;

// Keeps the element type out of deduction, so that Rows({{1, 2}}) is a double matrix.
template <class TT>
struct Same {
  using type = TT;
};

template <class TT = double>
zrMatrix<TT> Rows(std::initializer_list<std::initializer_list<typename Same<TT>::type>> rows) {
  zrMatrix<TT> m(static_cast<int>(rows.size()), static_cast<int>(rows.begin()->size()));
  int i = 0;
  for (const auto& row : rows) {
    int j = 0;
    for (const TT& x : row) m(i, j++) = x;
    ++i;
  }
  return m;
}

template <class TT>
std::vector<TT> Elements(const zrMatrix<TT>& m) {
  std::vector<TT> r;
  for (int i = 0; i < m.ColumnLen(); ++i) {
    for (int j = 0; j < m.LineLen(); ++j) r.push_back(m(i, j));
  }
  return r;
}

template <class TT>
zrColumnVector<TT> Column(std::initializer_list<typename Same<TT>::type> xs) {
  zrColumnVector<TT> v(static_cast<int>(xs.size()));
  int i = 0;
  for (const TT& x : xs) v[i++] = x;
  return v;
}

// The Windows-1251 bytes of a Russian text written in UTF-8 (А..я map to C0..FF).
std::string Cp1251(const char* utf8) {
  std::string r;
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(utf8); *p;) {
    if (*p < 0x80) {
      r += static_cast<char>(*p++);
    } else {
      const int code = ((p[0] & 0x1F) << 6) | (p[1] & 0x3F);
      r += static_cast<char>(code - 0x410 + 0xC0);
      p += 2;
    }
  }
  return r;
}

const std::string kPrefix = "Invalid parameters : ";

// Reaches the elimination that leaves this matrix eliminated.
class Exposed : public M {
 public:
  using M::Inverse1;
  using M::operator=;
};

}  // namespace

TEST(Matrix, ViewsShareAndAssignmentCopiesValues) {
  M m = Rows({{1, 2, 3}, {4, 5, 6}});
  M t = m.T();
  ASSERT_EQ(t.ColumnLen() * 10 + t.LineLen(), 32);
  t(2, 1) = 60;
  EXPECT_EQ(m(1, 2), 60);

  M sub;
  sub.Set(m, 0, 1, 2, 2);
  zrLineVector<double> line;
  zrColumnVector<double> column;
  sub.GetLine(line, 1);
  t.GetColumn(column, 0);  // row 0 of m, read through the transpose's step
  line[0] = 50;
  column[2] = 30;
  EXPECT_EQ(Elements(m), (std::vector<double>{1, 2, 30, 4, 50, 60}));
  EXPECT_EQ(m.GetNumOfRef(), 4);

  M sharer(m);
  sub = Rows({{7, 8}, {9, 10}});  // equal size: written into m, seen by every sharer
  EXPECT_EQ(Elements(sharer), (std::vector<double>{1, 7, 8, 4, 9, 10}));
  sub = Rows({{1}});  // another size: fresh storage
  EXPECT_EQ(sharer(0, 1), 7);

  M copy(t);
  copy.Copy();  // private, stored by rows
  EXPECT_EQ(copy.TabInLine() * 10 + copy.TabInColumn(), 12);
  copy(0, 0) = -1;
  EXPECT_EQ(m(0, 0), 1);
  EXPECT_EQ(t.CheckPointer(), 1);

  // The lenient in-place forms re-create the target and keep no old contents.
  M target(m);
  target -= Rows({{1}, {2}, {3}});
  EXPECT_EQ(Elements(target), (std::vector<double>{-1, -2, -3}));
  EXPECT_EQ(m(1, 2), 10);
}

TEST(Matrix, ArithmeticAndProducts) {
  M a = Rows({{1, 2, 3}, {4, 5, 6}});
  M b = Rows({{1, 0}, {2, 1}, {0, 3}});
  EXPECT_EQ(Elements(a * b), (std::vector<double>{5, 11, 14, 23}));
  // A strided operand gives the same product as a stored one.
  EXPECT_EQ(Elements(a * a.T()), Elements(a * Rows({{1, 4}, {2, 5}, {3, 6}})));
  EXPECT_EQ(Elements(-(a - a * 2.0) + 1.0), Elements(a + 1.0));

  zrColumnVector<double> v = a * Column<double>({1, 1, 1});
  EXPECT_EQ(v[1], 15);
  zrLineVector<double> l(2);
  l[0] = 1;
  l[1] = -1;
  zrLineVector<double> lm = l * a;
  EXPECT_EQ(lm[2], -3);

  M ata;
  a.SelfTMulSelf(ata);
  EXPECT_EQ(Elements(ata), Elements(a.T() * a));
  M self = Rows({{1, 2}, {3, 4}});
  self.SelfTMulSelf(self);  // into itself
  EXPECT_EQ(Elements(self), (std::vector<double>{10, 14, 14, 20}));

  EXPECT_EQ(BadParametersText([&] { (void)(a * a); }), kPrefix + "different size.");
  EXPECT_EQ(BadParametersText([&] { (void)(a + b); }), kPrefix + "different size.");
  EXPECT_EQ(BadParametersText([&] { (void)(a * Column<double>({1})); }),
            kPrefix + "different length.");
  EXPECT_EQ(BadParametersText([&] { (void)(l * b); }), kPrefix + "different length.");
  M e(3, 2);
  e.SetE();
  EXPECT_EQ(Elements(e), (std::vector<double>{1, 0, 0, 1, 0, 0}));
}

TEST(Matrix, DeterminantKeepsTheEliminationRules) {
  EXPECT_EQ(Rows({{4, 0}, {2, 3}}).Det(), 6);  // 1/l scaling not compensated
  EXPECT_EQ(Rows({{0, 1}, {1, 0}}).Det(), 1);  // no sign for the exchange
  EXPECT_EQ(Rows({{1, 2}, {2, 4}}).Det(), 0);
  // Exchanging during the scan gives -12; finding the largest first would give 12.
  M m = Rows({{1, 0, 4}, {2, 0, 0}, {3, 1, 3}});
  EXPECT_EQ(m.Det(), -12);
  EXPECT_EQ(m(2, 2), 3);  // Det works on a copy
  EXPECT_EQ(BadParametersText([] { (void)M(2, 3).Det(); }),
            kPrefix + "Det: Matrix must be square.");
  EXPECT_EQ(M().Det(), 1);
}

TEST(Matrix, GaussSolverAndInverse) {
  M a = Rows({{1, 2}, {3, 4}});
  zrColumnVector<double> b = Column<double>({5, 6});
  zrColumnVector<double> x;
  a.SolveEquationGaussMethod(x, b);
  EXPECT_DOUBLE_EQ(x[0], -4);
  EXPECT_DOUBLE_EQ(x[1], 4.5);
  // The rows stay in their places: row 1 was the pivot, normalised by 1/3 past column 0.
  EXPECT_EQ(a(1, 0), 3);
  EXPECT_EQ(a(1, 1), 4 * (1.0 / 3));
  EXPECT_EQ(a(0, 1), 1.0 / 1 * 2 - 4 * (1.0 / 3));
  EXPECT_EQ(b[1], 6 * (1.0 / 3));

  const std::string not_unique = kPrefix + Cp1251("Система имеет не единственное решение.");
  const std::string inconsistent = kPrefix + Cp1251("Система не совместна.");
  M singular = Rows({{1, 2}, {2, 4}});
  zrColumnVector<double> keep = Column<double>({9, 9});
  EXPECT_EQ(BadParametersText([&] {
              zrColumnVector<double> rhs = Column<double>({1, 2});
              singular.SolveEquationGaussMethod(keep, rhs);
            }),
            not_unique);
  EXPECT_EQ(keep[0], 9);
  EXPECT_EQ(BadParametersText([] {
              zrColumnVector<double> rhs = Column<double>({1, 2, 3});
              zrColumnVector<double> y;
              Rows({{1, 0}, {0, 1}, {1, 1}}).SolveEquationGaussMethod(y, rhs);
            }),
            inconsistent);
  zrColumnVector<double> three(3);
  EXPECT_EQ(BadParametersText([&] { a.SolveEquationGaussMethod(x, three); }),
            kPrefix + "different size.");
}

TEST(Matrix, InverseLeavesTheSourceAlone) {
  M a = Rows({{4, 0}, {2, 3}});
  const double inv = 1 / 1.5;  // the second pivot, 0.5 * 3 - 0
  EXPECT_EQ(Elements(a.Inverse()), (std::vector<double>{0.25, 0, -0.25 * inv, 0.5 * inv}));
  EXPECT_EQ(Elements(a), (std::vector<double>{4, 0, 2, 3}));
  Exposed e;
  e = a;
  e.Inverse1();
  EXPECT_EQ(e(1, 1), 1.5);  // eliminated in place
  EXPECT_EQ(BadParametersText([] { (void)M(2, 3).Inverse(); }), kPrefix + "Matrix must be square.");
  EXPECT_EQ(BadParametersText([] {
              (void)Rows({{1, 2}, {2, 4}}).Inverse();
            }),
            kPrefix + Cp1251("Система имеет не единственное решение."));
}

TEST(Matrix, ValueElementTypes) {
  // Unit-modulus pivots, where the library's complex quotient is the true one.
  zrMatrix<C> z = Rows<C>({{C(0, 1), C(0)}, {C(0), C(1)}});
  zrColumnVector<C> zb = Column<C>({C(1), C(2)});
  zrColumnVector<C> zx;
  z.SolveEquationGaussMethod(zx, zb);
  EXPECT_EQ(zx[0], C(0, -1));
  EXPECT_EQ(zx[1], C(2));
  EXPECT_EQ(Rows<C>({{C(0, 1), C(0)}, {C(0), C(0, 1)}}).Det(), C(-1, 0));

  // Three coordinate systems whose pivots agree solve as three double systems.
  const double a00[] = {1, 2, 1}, a01[] = {2, 1, 1}, a10[] = {3, 5, 2}, a11[] = {4, 3, 3};
  const double b0[] = {5, 1, 2}, b1[] = {6, 2, 3};
  const auto vec = [](const double* c) { return V3(c[0], c[1], c[2]); };
  zrMatrix<V3> p = Rows<V3>({{vec(a00), vec(a01)}, {vec(a10), vec(a11)}});
  zrColumnVector<V3> pb = Column<V3>({vec(b0), vec(b1)});
  zrColumnVector<V3> px;
  p.SolveEquationGaussMethod(px, pb);
  for (int c = 0; c < 3; ++c) {
    M d = Rows({{a00[c], a01[c]}, {a10[c], a11[c]}});
    zrColumnVector<double> db = Column<double>({b0[c], b1[c]});
    zrColumnVector<double> dx;
    d.SolveEquationGaussMethod(dx, db);
    EXPECT_EQ(px[0][c], dx[0]) << c;
    EXPECT_EQ(px[1][c], dx[1]) << c;
  }
  // A pivot with one zero coordinate counts as zero.
  EXPECT_EQ(BadParametersText([] {
              zrMatrix<V3> q = Rows<V3>({{V3(1, 1, 1), V3(0, 0, 0)}, {V3(0, 0, 0), V3(1, 0, 1)}});
              zrColumnVector<V3> rhs = Column<V3>({V3(1, 1, 1), V3(1, 1, 1)});
              zrColumnVector<V3> y;
              q.SolveEquationGaussMethod(y, rhs);
            }),
            kPrefix + Cp1251("Система имеет не единственное решение."));
}

TEST(Matrix, FlatFormAndArrays) {
  M m = Rows({{1, 2}, {3, 4}, {5, 6}});
  M t = m.T();
  std::vector<unsigned char> buf(static_cast<std::size_t>(t.MemSize()));
  ASSERT_EQ(t.MemSize(), 8 + 6 * 8);
  EXPECT_EQ(t.ToMem(buf.data()), t.MemSize());
  const double rows[] = {1, 3, 5, 2, 4, 6};
  EXPECT_EQ(std::vector<unsigned char>(buf.begin(), buf.begin() + 8),
            (std::vector<unsigned char>{2, 0, 0, 0, 3, 0, 0, 0}));
  std::vector<unsigned char> raw(sizeof rows);
  std::memcpy(raw.data(), rows, sizeof rows);
  EXPECT_EQ(std::vector<unsigned char>(buf.begin() + 8, buf.end()), raw);
  M back;
  EXPECT_EQ(back.FromMem(buf.data()), t.MemSize());
  EXPECT_EQ(Elements(back), Elements(t));
  EXPECT_EQ(back.TabInColumn(), 3);

  zrSimpleArray<M> arr(2);
  arr[0].Set(m, 1, 0, 2, 2);  // a view of m
  arr[1] = Rows({{9}});
  arr.InverseOrder();  // handles exchanged: m is not written
  EXPECT_EQ(Elements(m), (std::vector<double>{1, 2, 3, 4, 5, 6}));
  arr[1](0, 0) = 30;
  EXPECT_EQ(m(1, 0), 30);
  zrSimpleArray<M> copy(arr);
  copy[1](0, 1) = 40;
  EXPECT_EQ(m(1, 1), 4);
}
