// The blocked elimination of zrMatrix<double> against the plain loops it replaces: the same
// bits in the solution, the inverse, the determinant and everything left in the storage,
// and the same errors, for every kernel set this processor runs.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"
#include "zr/linalg/gauss_kernel.h"
#include "zr/linalg/linalg.h"

namespace {

using zr_test::Bits;
using M = zrMatrix<double>;
using Col = zrColumnVector<double>;

// Inverse1 leaves the eliminated matrix behind; it is reached through a derived class.
struct Open : M {
  using M::Inverse1;
};

double& At(double* row, int m, int step) { return row[static_cast<long long>(m) * step]; }

// The elimination as the library has always written it.
int PlainForward(double** rows, int n, int cols, int step, double** b, double** e, int en) {
  const int last = n < cols ? n : cols;
  int completed = n;
  for (int k = 0; k < last; ++k) {
    double best = std::fabs(At(rows[k], k, step));
    for (int i = k + 1; i < n; ++i) {
      const double v = std::fabs(At(rows[i], k, step));
      if (v > best) {
        std::swap(rows[k], rows[i]);
        if (b) std::swap(b[k], b[i]);
        if (e) std::swap(e[k], e[i]);
        best = v;
      }
    }
    const double p = At(rows[k], k, step);
    if (p == 0) {
      completed = k;
      break;
    }
    const double inv = 1.0 / p;
    for (int m = k + 1; m < cols; ++m) At(rows[k], m, step) = At(rows[k], m, step) * inv;
    if (b) *b[k] = *b[k] * inv;
    if (e)
      for (int m = 0; m < en; ++m) e[k][m] = e[k][m] * inv;
    for (int j = k + 1; j < n; ++j) {
      const double l = At(rows[j], k, step);
      if (l == 0) continue;
      const double linv = 1.0 / l;
      for (int m = k + 1; m < cols; ++m)
        At(rows[j], m, step) = linv * At(rows[j], m, step) - At(rows[k], m, step);
      if (b) *b[j] = linv * *b[j] - *b[k];
      if (e)
        for (int m = 0; m < en; ++m) e[j][m] = linv * e[j][m] - e[k][m];
    }
  }
  if (n > cols) throw BadParameters(ZR_TEXT_SYSTEM_INCONSISTENT);
  return completed;
}

// A matrix (and right-hand side) laid out in storage of the test's own, so that the plain
// loops can run on a twin with exactly the same layout and sharing.
struct System {
  std::vector<double> store, bstore;
  long a_off = 0;
  int rows = 0, cols = 0, sl = 1, sc = 0;
  bool b_in_store = false;
  long b_off = 0;
  int bstep = 1;

  double* A() { return store.data() + a_off; }
  double* B() { return (b_in_store ? store.data() : bstore.data()) + b_off; }
  double& operator()(int i, int j) {
    return A()[static_cast<long long>(i) * sc + static_cast<long long>(j) * sl];
  }
  double Get(int i, int j) const {
    return store[a_off + static_cast<long long>(i) * sc + static_cast<long long>(j) * sl];
  }
};

struct Outcome {
  std::vector<std::uint64_t> store, bstore, result;
  std::string error;
};

std::vector<std::uint64_t> BitsOf(const std::vector<double>& v) {
  std::vector<std::uint64_t> r;
  for (double d : v) r.push_back(Bits(d));
  return r;
}

void Finish(Outcome& o, const System& s) {
  o.store = BitsOf(s.store);
  o.bstore = BitsOf(s.bstore);
}

Outcome PlainSolve(System s) {
  Outcome o;
  const int n = s.rows;
  std::vector<double*> rows(n), bp(n);
  for (int i = 0; i < n; ++i) {
    rows[i] = &s(i, 0);
    bp[i] = s.B() + static_cast<long long>(i) * s.bstep;
  }
  try {
    PlainForward(rows.data(), n, s.cols, s.sl, bp.data(), nullptr, 0);
    std::vector<double> r(n);
    for (int i = n - 1; i >= 0; --i) {
      double xi = *bp[i];
      for (int m = n - 1; m > i; --m) xi = xi - r[m] * At(rows[i], m, s.sl);
      r[i] = xi;
      if (At(rows[i], i, s.sl) == 0) throw BadParameters(ZR_TEXT_SYSTEM_NOT_UNIQUE);
    }
    o.result = BitsOf(r);
  } catch (const BadParameters& e) {
    o.error = e.GetMessageText();
  }
  Finish(o, s);
  return o;
}

Outcome LibrarySolve(System s) {
  Outcome o;
  M a;
  a.SetDirectly(s.A(), s.rows, s.cols, s.sl, s.sc);
  Col b, x;
  b.SetDirectly(s.B(), s.rows, s.bstep);
  try {
    a.SolveEquationGaussMethod(x, b);
    for (int i = 0; i < x.Len(); ++i) o.result.push_back(Bits(x[i]));
  } catch (const BadParameters& e) {
    o.error = e.GetMessageText();
  }
  Finish(o, s);
  return o;
}

Outcome PlainInverse(System s) {
  Outcome o;
  const int n = s.rows;
  std::vector<double> e(static_cast<size_t>(n) * n, 0.0), r(e.size());
  std::vector<double*> rows(n), er(n);
  for (int i = 0; i < n; ++i) {
    e[static_cast<size_t>(i) * n + i] = 1;
    rows[i] = &s(i, 0);
    er[i] = &e[static_cast<size_t>(i) * n];
  }
  try {
    PlainForward(rows.data(), n, s.cols, s.sl, nullptr, er.data(), n);
    for (int i = n - 1; i >= 0; --i) {
      for (int c = 0; c < n; ++c) r[static_cast<size_t>(i) * n + c] = er[i][c];
      for (int m = n - 1; m > i; --m) {
        const double a = At(rows[i], m, s.sl);
        for (int c = 0; c < n; ++c) {
          double& t = r[static_cast<size_t>(i) * n + c];
          t = t - r[static_cast<size_t>(m) * n + c] * a;
        }
      }
      if (At(rows[i], i, s.sl) == 0) throw BadParameters(ZR_TEXT_SYSTEM_NOT_UNIQUE);
    }
    o.result = BitsOf(r);
  } catch (const BadParameters& e) {
    o.error = e.GetMessageText();
  }
  Finish(o, s);
  return o;
}

Outcome LibraryInverse(System s) {
  Outcome o;
  Open a;
  a.SetDirectly(s.A(), s.rows, s.cols, s.sl, s.sc);
  try {
    const M r = a.Inverse1();
    for (int i = 0; i < r.ColumnLen(); ++i)
      for (int j = 0; j < r.LineLen(); ++j) o.result.push_back(Bits(r(i, j)));
  } catch (const BadParameters& e) {
    o.error = e.GetMessageText();
  }
  Finish(o, s);
  return o;
}

// The determinant works on a copy: the product of the eliminated diagonal.
std::uint64_t PlainDet(System s) {
  const int n = s.rows;
  std::vector<double*> rows(n);
  for (int i = 0; i < n; ++i) rows[i] = &s(i, 0);
  PlainForward(rows.data(), n, n, s.sl, nullptr, nullptr, 0);
  double det = At(rows[0], 0, s.sl);
  for (int i = 1; i < n; ++i) det = det * At(rows[i], i, s.sl);
  return Bits(det);
}

std::uint64_t LibraryDet(System s) {
  M a;
  a.SetDirectly(s.A(), s.rows, s.cols, s.sl, s.sc);
  return Bits(a.Det());
}

// The first difference, for a readable failure.
std::string Differs(const Outcome& a, const Outcome& b) {
  if (a.error != b.error) return "error '" + a.error + "' vs '" + b.error + "'";
  const auto first = [](const std::vector<std::uint64_t>& x, const std::vector<std::uint64_t>& y,
                        const char* what) -> std::string {
    if (x.size() != y.size()) return std::string(what) + " sizes differ";
    for (size_t i = 0; i < x.size(); ++i)
      if (x[i] != y[i]) return std::string(what) + " differs at " + std::to_string(i);
    return {};
  };
  std::string d = first(a.result, b.result, "result");
  if (d.empty()) d = first(a.store, b.store, "matrix storage");
  if (d.empty()) d = first(a.bstore, b.bstore, "right-hand side storage");
  return d;
}

using Fill = std::function<double(std::mt19937_64&, int, int)>;

double Uniform(std::mt19937_64& g, int, int) {
  return std::uniform_real_distribution<double>(-1, 1)(g);
}
// Small integers, a third of them zero: exact zeros of l during the elimination, ties in
// the pivot search, zero pivots.
double Sparse(std::mt19937_64& g, int, int) {
  const int v = static_cast<int>(g() % 9) - 4;
  return v % 3 == 0 ? 0.0 : v;
}
// Magnitudes from 1e-310 to 1e300: infinite reciprocals and NaNs appear on the way.
double Wide(std::mt19937_64& g, int, int) {
  const double e = std::uniform_real_distribution<double>(-310, 300)(g);
  return (g() & 1 ? -1 : 1) * std::pow(10.0, e);
}

// rows x cols stored by rows in storage of its own, b (rows long) in storage of its own.
System Plain(int rows, int cols, const Fill& f, unsigned seed) {
  std::mt19937_64 g(seed);
  System s;
  s.rows = rows;
  s.cols = cols;
  s.sc = cols;
  s.store.resize(static_cast<size_t>(rows) * cols);
  for (int i = 0; i < rows; ++i)
    for (int j = 0; j < cols; ++j) s(i, j) = f(g, i, j);
  s.bstore.resize(rows);
  for (double& v : s.bstore) v = f(g, -1, -1);
  return s;
}

// The same values laid out in another storage: sl and sc steps, a margin of untouched
// elements around them.
System Relaid(const System& p, int sl, int sc, long off, size_t size) {
  System s = p;
  s.store.assign(size, 7.5);
  s.a_off = off;
  s.sl = sl;
  s.sc = sc;
  for (int i = 0; i < p.rows; ++i)
    for (int j = 0; j < p.cols; ++j) s(i, j) = p.Get(i, j);
  return s;
}

class GaussKernels : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    if (GetParam() > zr::detail::GaussKernelLevels()) GTEST_SKIP() << "not on this processor";
    zr::detail::GaussUseKernelLevel(GetParam());
  }
  void TearDown() override { zr::detail::GaussUseKernelLevel(-1); }

  static void ExpectSolveSame(const System& s, const std::string& what) {
    EXPECT_EQ(Differs(LibrarySolve(s), PlainSolve(s)), "") << what;
  }
  static void ExpectInverseSame(const System& s, const std::string& what) {
    EXPECT_EQ(Differs(LibraryInverse(s), PlainInverse(s)), "") << what;
  }
};

const std::vector<std::pair<const char*, Fill>>& Fills() {
  static const std::vector<std::pair<const char*, Fill>> fills = {
      {"uniform", Uniform}, {"sparse", Sparse}, {"wide", Wide}};
  return fills;
}

TEST_P(GaussKernels, SolveAndDeterminantAcrossBlockSizes) {
  unsigned seed = 1;
  for (const int n : {1, 2, 3, 7, 8, 9, 16, 17, 33, 63, 64, 65, 66, 100, 129, 200}) {
    for (const auto& [name, fill] : Fills()) {
      const System s = Plain(n, n, fill, seed++);
      const std::string what = std::string(name) + " n=" + std::to_string(n);
      ExpectSolveSame(s, what);
      EXPECT_EQ(LibraryDet(s), PlainDet(s)) << what;
    }
  }
}

TEST_P(GaussKernels, InverseAcrossBlockSizes) {
  unsigned seed = 100;
  for (const int n : {1, 2, 5, 8, 9, 31, 32, 33, 65, 97, 130}) {
    for (const auto& [name, fill] : Fills()) {
      ExpectInverseSame(Plain(n, n, fill, seed++), std::string(name) + " n=" + std::to_string(n));
    }
  }
}

TEST_P(GaussKernels, ZeroPivotsAndSingularMatrices) {
  for (const int n : {4, 12, 70, 150}) {
    // A zero column stops the elimination at its step.
    for (const int k : {0, n / 3, n - 1}) {
      System s = Plain(n, n, Uniform, 200 + n + k);
      for (int i = 0; i < n; ++i) s(i, k) = 0;
      ExpectSolveSame(s, "zero column " + std::to_string(k) + " n=" + std::to_string(n));
      ExpectInverseSame(s, "zero column " + std::to_string(k) + " n=" + std::to_string(n));
      EXPECT_EQ(LibraryDet(s), PlainDet(s));
    }
    // Two equal rows cancel exactly.
    System s = Plain(n, n, Uniform, 300 + n);
    for (int j = 0; j < n; ++j) s(n - 1, j) = s(n / 2, j);
    ExpectSolveSame(s, "equal rows n=" + std::to_string(n));
    ExpectInverseSame(s, "equal rows n=" + std::to_string(n));
    // Columns of one value: every pivot search meets ties.
    System t = Plain(n, n, Uniform, 400 + n);
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n / 2; ++j) t(i, j) = (i + j) % 2 ? 1.0 : -1.0;
    ExpectSolveSame(t, "ties n=" + std::to_string(n));
  }
}

TEST_P(GaussKernels, RectangularSystems) {
  for (const auto& [rows, cols] : std::vector<std::pair<int, int>>{
           {3, 5}, {40, 300}, {70, 80}, {5, 3}, {80, 70}, {1, 9}, {9, 1}}) {
    for (const auto& [name, fill] : Fills()) {
      ExpectSolveSame(Plain(rows, cols, fill, 500 + rows * cols),
                      std::string(name) + " " + std::to_string(rows) + "x" + std::to_string(cols));
    }
  }
  // More rows than columns with a zero pivot before the last column.
  System s = Plain(30, 20, Uniform, 600);
  for (int i = 0; i < 30; ++i) s(i, 10) = 0;
  ExpectSolveSame(s, "30x20 zero column");
}

TEST_P(GaussKernels, ViewsAndSharedStorage) {
  for (const int n : {6, 40, 90}) {
    for (const auto& [name, fill] : Fills()) {
      const System p = Plain(n, n, fill, 700 + n);
      const std::string what = std::string(name) + " n=" + std::to_string(n);
      const size_t nn = static_cast<size_t>(n) * n;
      // Transposed, a window of a wider matrix, every other element.
      const System views[] = {Relaid(p, n, 1, 0, nn),
                              Relaid(p, 1, n + 7, 2 * (n + 7) + 3, nn + 10 * n + 100),
                              Relaid(p, 2, 2 * n + 1, 1, 2 * nn + 3 * n)};
      for (const System& v : views) {
        ExpectSolveSame(v, what + " sl=" + std::to_string(v.sl));
        ExpectInverseSame(v, what + " sl=" + std::to_string(v.sl));
      }
      // A right-hand side with a step, and one that is a column of the matrix itself.
      System b = p;
      b.bstore.assign(3 * static_cast<size_t>(n), 0.25);
      b.bstep = -3;
      b.b_off = 3 * (n - 1);
      for (int i = 0; i < n; ++i) b.bstore[3 * static_cast<size_t>(i)] = p.bstore[i];
      ExpectSolveSame(b, what + " b with step -3");
      System c = p;
      c.b_in_store = true;
      c.b_off = n / 2;
      c.bstep = n;
      ExpectSolveSame(c, what + " b is a column");
      // Rows that overlap in storage.
      System o = Relaid(p, 1, n / 2 + 1, 0, nn);
      ExpectSolveSame(o, what + " overlapping rows");
    }
  }
}

std::string LevelName(const ::testing::TestParamInfo<int>& info) {
  static const char* const names[] = {"Portable", "Avx2", "Avx512"};
  return names[info.param];
}

INSTANTIATE_TEST_SUITE_P(Levels, GaussKernels, ::testing::Values(0, 1, 2), LevelName);

}  // namespace
