// Every class family under allocation failure. Exercise fails the 1st, 2nd, ... allocation
// of an operation, once and then from that allocation on, until the operation gets
// through. At every failure point the operation must throw zrErrNoMemory, the objects it
// worked on must stay usable, and once they are gone every block they took must be back.
// Run under the fault preset, AddressSanitizer catches what the counts cannot (a block
// freed twice, a dangling view after a rollback).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "zr/core/detail/fault_injection.h"
#include "zr/zr.h"

namespace {

using zr::testing::ClearFailure;
using zr::testing::FailAllocation;
using zr::testing::InjectedFailures;
using zr::testing::LiveAllocations;

// (operation, failure point) pairs of this process, a point counted once for each mode
// (failing once, failing from then on), and the points alone.
long total_pairs = 0;
long total_points = 0;

// No sane operation here makes this many allocations; more means the loop never ends.
constexpr long kMaxAllocations = 100000;

// make() builds the objects with every allocation allowed; op(state) runs with the N-th
// allocation failing; use(state) runs after the failure is cleared and must find the
// objects usable. Returns the number of failure points seen in the "once" mode.
template <class Make, class Op, class Use>
long Exercise(const char* name, Make make, Op op, Use use) {
  long points = 0;
  for (const bool persistent : {false, true}) {
    const char* const mode = persistent ? "from then on" : "once";
    for (long n = 1;; ++n) {
      if (n > kMaxAllocations) {
        ADD_FAILURE() << name << ": never completed";
        break;
      }
      const std::string at =
          std::string(name) + ", allocation " + std::to_string(n) + " (" + mode + "): ";
      const long baseline = LiveAllocations();
      bool threw = false;
      {
        auto state = make();
        FailAllocation(n, persistent);
        try {
          op(state);
        } catch (const zrErrNoMemory&) {
          threw = true;
        } catch (const zrExceptionWithMessage& e) {
          threw = true;
          ADD_FAILURE() << at << "threw another error: " << e.GetMessageText();
        } catch (...) {
          threw = true;
          ADD_FAILURE() << at << "threw something that is not a library error";
        }
        const long injected = InjectedFailures();
        ClearFailure();
        if (threw) {
          EXPECT_GT(injected, 0) << at << "threw with no failure injected";
          ++total_pairs;
          if (!persistent) {
            ++points;
            ++total_points;
          }
          use(state);
        } else {
          EXPECT_EQ(injected, 0) << at << "an injected failure was swallowed";
        }
      }
      EXPECT_EQ(LiveAllocations() - baseline, 0) << at << "blocks not given back";
      if (!threw) break;
    }
  }
  std::printf("%s: %s failure points\n", name, std::to_string(points).c_str());
  return points;
}

// Prints the number of (operation, failure point) pairs when the program ends. ctest runs
// every case as a process of its own, so each prints its own count there; the ctest entry
// zr_fault_all_pairs runs the whole program once, and its line is the full total.
class PairCount : public ::testing::Environment {
 public:
  void TearDown() override {
    const int cases = ::testing::UnitTest::GetInstance()->test_to_run_count();
    std::printf(
        "allocation-failure pairs: %s (%s failure points, each failed once and from "
        "then on; %s test cases)\n",
        std::to_string(total_pairs).c_str(), std::to_string(total_points).c_str(),
        std::to_string(cases).c_str());
  }
};
const auto* const registered = ::testing::AddGlobalTestEnvironment(new PairCount);

// ---------------------------------------------------------------------------------------
// Values the checks compare with.

zrArray<double> Ramp(int n) {
  zrArray<double> a(n);
  for (int i = 0; i < n; ++i) a[i] = i;
  return a;
}

double Sum(const zrSimpleArray<double>& a) {
  double s = 0;
  for (int i = 0; i < a.Len(); ++i) s += a[i];
  return s;
}

zrSimpleArray<zrString> Words(int n) {
  zrSimpleArray<zrString> w(n);
  for (int i = 0; i < n; ++i) w[i] = zrString(("word" + std::to_string(i)).c_str());
  return w;
}

// Reads every string and copies the array: a dangling element shows under ASan.
void UseWords(const zrSimpleArray<zrString>& w) {
  zrSimpleArray<zrString> copy(w);
  for (int i = 0; i < w.Len(); ++i)
    for (int j = 0; j < w[i].Len(); ++j) EXPECT_NE(w[i][j], '\0');
  EXPECT_EQ(copy.Len(), w.Len());
}

zrMatrix<double> Hilbertish(int n) {
  zrMatrix<double> m(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) m(i, j) = 1.0 / (i + j + 1) + (i == j ? 1.0 : 0.0);
  return m;
}

// An array of class A holding the values listed.
template <class A, class T>
A Of(std::initializer_list<T> values) {
  A r(static_cast<int>(values.size()));
  int i = 0;
  for (const T& v : values) r[i++] = v;
  return r;
}

zrSimpleContour2D Polygon(std::initializer_list<zrVec2> p) { return Of<zrSimpleContour2D>(p); }

zrSimpleContour2D Ellipse(int n, double rx, double ry) {
  zrSimpleContour2D c(n);
  for (int i = 0; i < n; ++i) {
    const double a = 2 * M_PI * i / n;
    c[i] = zrVec2(rx * std::cos(a), ry * std::sin(a));
  }
  return c;
}

using V3 = zrTVec3<double>;

zrMatrix<V3> Net(int m, int k) {
  zrMatrix<V3> net(m, k);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < k; ++j) {
      const double a = 2 * M_PI * j / k;
      net(i, j) = V3(i + std::cos(a), std::sin(a), 2.0 * i);
    }
  return net;
}

zrVector<V3> Helix(int n) {
  zrVector<V3> p(n);
  for (int i = 0; i < n; ++i) p[i] = V3(std::cos(i * 0.7), std::sin(i * 0.7), 0.3 * i);
  return p;
}

zrArray<int> Dims(std::initializer_list<int> d) { return Of<zrArray<int>>(d); }

using Points = zrSimpleArray<zrColumnVector<double>>;

Points CurvePoints() {
  Points p(8);
  for (int i = 0; i < 8; ++i) {
    p[i].Set(2);
    p[i][0] = i;
    p[i][1] = std::sin(i);
  }
  return p;
}

// FromMem into a target that already holds a block, from the flat image of src().
template <class T, class Src, class Target>
void ExerciseFromMem(const char* name, Src src, Target target) {
  struct F {
    T target;
    std::vector<unsigned char> flat;
  };
  Exercise(
      name,
      [&] {
        F f{target(), {}};
        const T from = src();
        f.flat.resize(from.MemSize());
        from.ToMem(f.flat.data());
        return f;
      },
      [](F& f) { f.target.FromMem(f.flat.data()); }, [](F& f) { T c(f.target); });
}

}  // namespace

// ---------------------------------------------------------------------------------------

TEST(FaultInjection, TheScheduleFailsTheChosenAllocationAndCountsBlocks) {
  const long live = LiveAllocations();
  void* a = zrMalloc(8);
  EXPECT_EQ(LiveAllocations(), live + 1);
  FailAllocation(2, false);
  void* b = zrMalloc(8);
  EXPECT_THROW(a = zrRealloc(a, 64), zrErrNoMemory);  // the old block stays the caller's
  void* c = zrRealloc(nullptr, 8);                    // the schedule fired once
  EXPECT_EQ(InjectedFailures(), 1);
  FailAllocation(1, true);
  EXPECT_THROW(zrMalloc(1), zrErrNoMemory);
  EXPECT_THROW(zrMalloc(1), zrErrNoMemory);
  EXPECT_EQ(InjectedFailures(), 2);
  ClearFailure();
  EXPECT_EQ(LiveAllocations(), live + 3);
  zrFree(a);
  zrFree(b);
  zrFree(c);
  zrFree(nullptr);
  EXPECT_EQ(LiveAllocations(), live);
}

TEST(FaultInjection, Arrays) {
  Exercise(
      "constructors", [] { return 0; },
      [](int&) {
        zrArray<double> a(1000, 1.0);
        zrSimpleArray2D<double> b(20, 30);
        zrSimpleArray2D<double> c(b);
        zrString s("some text");
        zrArrayND<double> n(Dims({3, 4, 5}));
      },
      [](int&) {});
  struct Two {
    zrArray<double> a = Ramp(50), b = Ramp(7);
  };
  // a is only read, b is changed.
  Exercise(
      "zrArray<double> copy, arithmetic, window Copy, ReSet, Insert, Concat, Replace, assignment",
      [] { return Two{}; },
      [](Two& s) {
        zrArray<double> c(s.a);
        zrArray<double> d = s.a * 2.0;
        s.a.Mid(3, 20).Copy();
        {
          zrArray<double> w = s.b.Left(3);
          s.b.ReSet(200);
        }
        s.b.Insert(-1, 10);
        s.b.Concat(s.a);
        s.b.Replace(5, 2, s.a);
        s.b = s.a;
      },
      [](Two& s) {
        EXPECT_EQ(s.a.Len(), 50);
        EXPECT_EQ(Sum(s.a), 49 * 50 / 2);
        (void)Sum(s.b);
      });
  ExerciseFromMem<zrArray<double>>(
      "zrArray<double> FromMem", [] { return Ramp(40); }, [] { return Ramp(3); });
}

TEST(FaultInjection, Strings) {
  struct S {
    zrString a{"alpha beta,, gamma"};
    zrString b{" delta epsilon"};
    zrSimpleArray<zrString> tokens;
    zrSimpleArray<zrString> many = Words(12), few = Words(5);
  };
  // The second Tokenize fills strings the first one made.
  Exercise(
      "zrString Tokenize, GetUnion, +=, window; zrSimpleArray<zrString> Insert, Concat, "
      "Replace, ReSet, assignment",
      [] { return S{}; },
      [](S& s) {
        s.b.Tokenize(s.tokens, " ");
        s.a.Tokenize(s.tokens, " ,");
        EXPECT_STREQ(s.a.Mid(6, 4).GetCString(), "beta");
        zrString c = s.a.GetUnion(s.b);
        s.b += s.a;
        s.many.Insert(zrString("new"), 3);
        s.many.Concat(s.few);
        s.many.Replace(2, 4, s.few);
        s.many.ReSet(40);
        s.few = s.many;
      },
      [](S& s) {
        EXPECT_EQ(s.a, "alpha beta,, gamma");
        for (const auto* w : {&s.tokens, &s.many, &s.few}) UseWords(*w);
        zrString c = s.a + s.b;
        EXPECT_EQ(c.Len(), s.a.Len() + s.b.Len());
      });
}

TEST(FaultInjection, LinearAlgebra) {
  struct S {
    zrMatrix<double> a = Hilbertish(6), b = Hilbertish(6);
    zrColumnVector<double> x, rhs = Of<zrColumnVector<double>>({1, 2, 3, 4, 5, 6});
  };
  Exercise(
      "zrMatrix copies, products, Inverse, Det, SolveEquationGaussMethod; zrVector ReSet, Insert",
      [] { return S{}; },
      [](S& s) {
        zrMatrix<double> w;
        w.Set(s.a, 1, 2, 3, 3);
        w.Copy();
        zrMatrix<double> c = s.a * s.b;
        zrColumnVector<double> y = s.a * s.rhs;
        zrMatrix<double> inv = s.a.Inverse();
        (void)s.a.Det();
        s.a.SolveEquationGaussMethod(s.x, s.rhs);
        s.a.SelfTMulSelf(s.b);
        s.x.ReSet(30);
        s.x.Insert(1.0, 4);
      },
      [](S& s) {
        EXPECT_EQ(zrMatrix<double>(s.a).ColumnLen(), 6);
        zrVector<double> x(s.x);
      });
  ExerciseFromMem<zrMatrix<double>>(
      "zrMatrix FromMem", [] { return Hilbertish(5); }, [] { return Hilbertish(2); });
}

TEST(FaultInjection, Contours) {
  struct S {
    zrSimpleContour2D square = Polygon({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    zrSimpleContour2D hexagon = Polygon({{0, 0}, {3, 0}, {4, 2}, {3, 4}, {0, 4}, {-1, 2}});
    zrSimpleContour2D turned, viewed;
  };
  Exercise(
      "zrSimpleContour2D CutByStraightLine, MakeCoherentS, MakeCoherentS with a window",
      [] {
        S s;
        s.turned = s.hexagon;
        s.turned.CycleLeftShift(2);
        s.turned.InverseOrder();
        s.viewed = s.turned;
        s.viewed.Copy();
        return s;
      },
      [](S& s) {
        zrSimpleContour2D left =
            s.square.CutByStraightLine(zrGeom::StraightLine2D({0.5, 1}, {0.5, 0}));
        s.turned.MakeCoherentS(s.hexagon);
        zrArray<zrVec2> view = s.viewed.Left(6);
        s.viewed.MakeCoherentS(s.hexagon);
      },
      [](S& s) {
        for (const auto* c : {&s.turned, &s.viewed}) EXPECT_EQ(zrSimpleContour2D(*c).Len(), 6);
        EXPECT_EQ(s.square.Len(), 4);
      });
}

TEST(FaultInjection, BetaSplines) {
  struct B {
    zrVector<V3> helix = Helix(9);
    zrMatrix<V3> net = Net(4, 6);
    BetaTube tube{Net(3, 5)};
  };
  Exercise(
      "BetaCurve, BetaContour, BetaTube from a net, BetaTube copy", [] { return B{}; },
      [](B& s) {
        BetaCurve c(s.helix, 1.2, 0.5);
        BetaContour d(s.helix);
        BetaTube t(s.net, 1.0, 0.5);
        BetaTube u(s.tube);
      },
      [](B& s) {
        (void)BetaCurve(s.helix)(0.5);
        (void)s.tube(0.3, 0.4);
      });
}

TEST(FaultInjection, ArraysND) {
  using A = zrArrayND<double>;
  const auto cube = [] {
    A a(Dims({4, 5, 6}));
    a.Fill(1.0);
    return a;
  };
  Exercise(
      "zrArrayND copy, window Copy, flipped Copy, slice, arithmetic", cube,
      [](A& a) {
        A c(a);
        A w;
        w.SetSubWindow(a, Dims({1, 1, 1}), Dims({2, 3, 4}));
        w.Copy();
        A f;
        f.Set(a);
        f.Flip(1);
        f.SwapAxis(0, 2);
        f.Copy();
        delete a.GetReduceDimArrayND(1, 2);
        a += a;
      },
      [](A& a) { EXPECT_EQ(A(a).GetSize(), a.GetSize()); });
  ExerciseFromMem<A>("zrArrayND FromMem", cube, [] { return A(Dims({2, 2})); });
}

TEST(FaultInjection, Graph) {
  // A path a-b-c-d-e with a branch c-f: the graph owns everything it is given.
  struct G {
    zrSimpleGraph g;
    zrSimpleGraphNodeHead* first = nullptr;
  };
  // first is set once the graph is whole.
  Exercise(
      "zrSimpleGraph building, Wave, GetMaxPath, copy", [] { return G{}; },
      [](G& s) {
        zrSimpleGraphNodeHead* n[6];
        for (auto*& p : n) {
          p = new zrSimpleGraphNodeHead;
          s.g.Add(p);
        }
        for (int i = 0; i < 4; ++i) s.g.Add(new zrSimpleGraphBranchHead(n[i], n[i + 1], 0));
        s.g.Add(new zrSimpleGraphBranchHead(n[2], n[5], 0));
        s.first = n[0];
        s.g.Wave(s.first, zrSimpleGraph::PathLen, nullptr);
        zrList2kHead out;
        s.g.GetMaxPath(&out);
        zrSimpleGraph c(s.g);
      },
      [](G& s) {
        const auto len = s.g.GetMaxPath(nullptr);
        if (s.first) {
          EXPECT_EQ(len, 5);
        }
      });
}

// Copies of arrays of class-type elements: an element copy that fails part way must
// free the new block and the elements already made.
TEST(FaultInjection, CopiesOfArraysOfClassElements) {
  Exercise(
      "zrSimpleArray<zrString> copy and window Copy", [] { return Words(12); },
      [](zrSimpleArray<zrString>& a) {
        zrSimpleArray<zrString> c(a);
        a.Mid(2, 5).Copy();
      },
      [](zrSimpleArray<zrString>& a) { UseWords(a); });
  struct S {
    Points points = CurvePoints();
    zrSpline<double> s{CurvePoints()};
    zrSimpleArray<int> codes = Of<zrSimpleArray<int>>({0, 3});
    zrMatrix<double> values{2, 2};
  };
  Exercise(
      "zrSpline from points, MkSpline3, copy",
      [] {
        S s;
        s.values.Fill(0.0);
        return s;
      },
      [](S& s) {
        zrSpline<double> t(s.points);
        s.s.MkSpline3(s.codes, s.values);
        zrSpline<double> c(s.s);
      },
      [](S& s) {
        Points c(s.points);
        zrSpline<double> d(s.s);
      });

  struct Sections {
    zrSimpleArray<zrSimpleContour2D> contours = Of<zrSimpleArray<zrSimpleContour2D>>(
        {Ellipse(10, 3, 2), Ellipse(10, 2, 2), Ellipse(12, 3, 1)});
    zrSimpleArray<double> heights = Of<zrSimpleArray<double>>({0.0, 2.0, 4.0});
    BetaTube tube{1.0, 0.0};
  };
  Exercise(
      "BetaTube interpolation through contours", [] { return Sections{}; },
      [](Sections& s) { s.tube.MakeInterpolation(s.contours, s.heights); },
      [](Sections& s) {
        EXPECT_EQ(s.contours[0].Len(), 10);
        BetaTube c(s.tube);
      });
}

TEST(FaultInjection, TridiagonalSolvers) {
  using M3 = zrMatrix3Diag<double>;
  using Col = zrColumnVector<double>;
  using Vec = zrVector<double>;
  // A diagonally dominant n x n band: 4 on the diagonal, 1 and -1 beside it.
  const auto band = [](int n) {
    Vec up(n - 1), diag(n), down(n - 1);
    up.Fill(1.0);
    diag.Fill(4.0);
    down.Fill(-1.0);
    return M3(up, diag, down);
  };
  struct S {
    M3 a, view;
    Vec up2, down2;
    Col x, b;
    zrMatrix<double> X, B;
  };
  const auto make = [band] {
    S s{band(7),
        band(9),
        Vec(5),
        Vec(5),
        Col(3),
        Col(7),
        zrMatrix<double>(2, 2),
        zrMatrix<double>(7, 3)};
    s.up2.Fill(0.5);
    s.down2.Fill(0.25);
    for (int i = 0; i < 7; ++i) {
      s.b[i] = i + 1.0;
      for (int j = 0; j < 3; ++j) s.B(i, j) = i - j;
    }
    return s;
  };
  // Every solver re-creates a solution of another length; the band is also copied,
  // windowed and multiplied.
  Exercise(
      "zrMatrix3Diag copy, window Copy, T, GetMatrix, products, arithmetic, sweep of one "
      "and many right sides, cyclic sweep, five-diagonal, cyclic five-diagonal",
      make,
      [](S& s) {
        M3 c(s.a);
        c.Copy();
        M3 w;
        w.Set(s.view, 1, 7);
        w.Copy();
        zrMatrix<double> dense = s.a.T().GetMatrix();
        zrMatrix<double> p = s.a * s.a;
        Col y = s.a * s.b;
        M3 sum = s.a + s.a * 2.0;
        s.a.SolveEquationChaserMethod(s.x, s.b);
        s.a.SolveEquationChaserMethod(s.X, s.B);
        Col z;
        s.a.SolveEquationCycleChaserMethod(z, s.b, 0.5, 0.5);
        Col f;
        s.a.SolveEquationFactorizeMethod(s.up2, s.down2, f, s.b);
        Col g;
        s.a.SolveEquationCycleFactorizeMethod(s.up2, s.down2, 0.1, 0.2, 0.1, 0.2, 0.1, 0.2, g, s.b);
        s.a = s.view;  // another size: new diagonals
      },
      [](S& s) {
        // Whatever size it has, the matrix must be whole.
        const int n = s.a.LineLen();
        EXPECT_TRUE(n == 7 || n == 9) << n;
        Col b(n), x;
        b.Fill(1.0);
        s.a.SolveEquationChaserMethod(x, b);
        EXPECT_EQ(zrMatrix<double>(s.a.GetMatrix()).LineLen(), n);
        zrMatrix<double> X(s.X);
      });
  // Reading another size: the three diagonals must keep one size between them.
  struct F {
    M3 target;
    std::vector<unsigned char> flat;
  };
  Exercise(
      "zrMatrix3Diag FromMem, Set(n)",
      [band] {
        F f{band(2), {}};
        const M3 from = band(6);
        f.flat.resize(from.MemSize());
        from.ToMem(f.flat.data());
        return f;
      },
      [](F& f) {
        f.target.FromMem(f.flat.data());
        f.target.Set(4);
      },
      [](F& f) {
        const int n = f.target.LineLen();
        EXPECT_EQ(f.target.Up().Len(), n - 1);
        EXPECT_EQ(f.target.Down().Len(), n - 1);
      });
}

TEST(FaultInjection, Polynomials) {
  using P = zrPolynom<double>;
  using Col = zrColumnVector<double>;
  struct S {
    Col koef = Of<Col>({1.0, -2.0, 3.0, 0.5});
    P power{koef, 1.0, P::PowerKoef};
    P taylor{Of<Col>({2.0, 1.0, 0.0, -1.0, 3.0}), 0.5, P::TaylorKoef};
    zrSimpleArray<P> many{3};
  };
  Exercise(
      "zrPolynom construction, copy, assignment, SetKoef, both evaluation forms, "
      "Derivative, array of polynomials",
      [] { return S{}; },
      [](S& s) {
        P a(s.koef, 0.0, P::TaylorKoef);
        P b(5);
        b = s.power;
        P c(s.taylor);
        c.SetKoef(Of<Col>({1.0, 2.0, 3.0, 4.0, 5.0, 6.0}), 2.0, P::PowerKoef);
        (void)(s.power(2.0) + s.taylor(2.0));
        for (int m = 0; m < 5; ++m)
          (void)(s.power.Derivative(1.5, m) + s.taylor.Derivative(1.5, m));
        s.many[1] = s.power;
        zrSimpleArray<P> copy(s.many);
        s.many.Insert(s.taylor, 0);
      },
      [](S& s) {
        EXPECT_EQ(s.power(1.0), 0.5);
        zrSimpleArray<P> copy(s.many);
        for (int i = 0; i < copy.Len(); ++i) (void)copy[i](0.0);
      });
}

TEST(FaultInjection, SplineBuilders) {
  struct S {
    Points points = CurvePoints(), closed = CurvePoints();
    zrSpline<double> s{CurvePoints()};
    zrSimpleArray<int> codes = Of<zrSimpleArray<int>>({0, 3}), none;
    zrMatrix<double> values{2, 2}, empty;
  };
  Exercise(
      "zrSpline MkPeriodSpline3, Make(1), Make(3), assignment",
      [] {
        S s;
        s.values.Fill(0.0);
        s.closed[7][1] = s.closed[0][1];
        return s;
      },
      [](S& s) {
        zrSpline<double> p(s.closed);
        p.MkPeriodSpline3();
        s.s.Make(1, s.none, s.empty);
        s.s.Make(3, s.codes, s.values);
        zrSpline<double> t;
        t = s.s;
        s.s = p;
        (void)(t(2.5) + t.Derivative(2.5, 2));
      },
      [](S& s) {
        for (double x = 0; x <= 7; x += 0.5) (void)(s.s(x) + s.s.Derivative(x, 1));
        zrSpline<double> d(s.s);
        d.MkSpline3(s.codes, s.values);
        (void)d(3.0);
      });
}

TEST(FaultInjection, Curves) {
  // A closed loop (its last point repeats the first) and an open arc.
  const auto loop = [] {
    zrCurve2D c(9);
    for (int i = 0; i < 8; ++i) c[i] = zrVec2(std::cos(i * M_PI / 4), 2 * std::sin(i * M_PI / 4));
    c[8] = c[0];
    return c;
  };
  struct S {
    zrCurve2D closed, open;
    zrSplineCurve2D spline;
  };
  Exercise(
      "zrCurve2D copy, assignment, measures; zrSplineCurve2D closed and open, copy, "
      "assignment, length",
      [loop] {
        zrCurve2D open(5);
        for (int i = 0; i < 5; ++i) open[i] = zrVec2(i, i * i * 0.1);
        return S{loop(), open, zrSplineCurve2D(open, 1)};
      },
      [](S& s) {
        zrCurve2D c(s.closed);
        zrCurve2D d(static_cast<const zrArray<zrVec2>&>(s.open));
        d = s.closed;
        double dist = 0;
        int at = 0;
        (void)c.GetCenter();
        (void)c.GetRect();
        (void)c.GetIndexOfMinDistance(dist, zrVec2(0.5, 0.5));
        (void)c.GetIndexOfMaxDistance(at, s.open);
        zrSplineCurve2D round(s.closed);
        zrSplineCurve2D ends(s.open, 2);
        zrSplineCurve2D copy(s.spline);
        s.spline = round;
        (void)s.spline.GetLengthOfCurve();
      },
      [](S& s) {
        zrSplineCurve2D copy(s.spline);
        EXPECT_GT(copy.GetLengthOfCurve(), 0.0);
        EXPECT_EQ(zrCurve2D(s.closed).Len(), 9);
      });

  struct B {
    BetaCurve curve{Helix(9)};
    BetaContour contour{Helix(9)};
  };
  Exercise(
      "BetaCurve and BetaContour Rebuild, assignment", [] { return B{}; },
      [](B& s) {
        s.curve.Rebuild(12);
        s.contour.Rebuild(7);
        BetaContour c;
        c = s.contour;
        BetaCurve d(0.5, 1.0);
        d = s.curve;
      },
      [](B& s) {
        BetaCurve c(s.curve);
        (void)(c(0.5) + s.contour(0.25));
        EXPECT_GE(s.contour.GetControlNumber(), 1);
      });
}

TEST(FaultInjection, ListsAndQueue) {
  using Node = zrSimpleGraphNodeHead*;
  struct S {
    zrListQueue<Node> queue;
    zrList1kHead ring1;
    zrList2kHead ring2;  // the heads delete the nodes linked to them
  };
  Exercise(
      "zrListQueue Put, Get; zrSimpleList1k and zrSimpleList2k rings", [] { return S{}; },
      [](S& s) {
        for (int i = 0; i < 6; ++i) {
          s.queue.Put(nullptr);
          s.ring1.Add(new zrSimpleList1k<Node>(nullptr));
          s.ring2.AddBefore(new zrSimpleList2k<Node>(nullptr));
        }
        (void)s.queue.Get();
      },
      [](S& s) {
        s.queue.Put(nullptr);
        EXPECT_LE(s.ring1.Len(), 7);
        EXPECT_LE(s.ring2.Len(), 7);
        while (!s.queue.IsEmpty()) (void)s.queue.Get();
      });
}

TEST(FaultInjection, GraphRemovalAndMaxPath) {
  // The path a-b-c-d with a branch b-e; every node and branch made before the failure.
  struct G {
    zrSimpleGraph g;
    zrSimpleGraphNodeHead* n[5] = {};
    zrSimpleGraphBranchHead* be = nullptr;
  };
  Exercise(
      "zrSimpleGraph Remove of a branch and of a node, GetMaxPath from a node, assignment",
      [] {
        G s;
        for (auto*& p : s.n) {
          p = new zrSimpleGraphNodeHead;
          s.g.Add(p);
        }
        for (int i = 0; i < 3; ++i) s.g.Add(new zrSimpleGraphBranchHead(s.n[i], s.n[i + 1], 0));
        s.be = new zrSimpleGraphBranchHead(s.n[1], s.n[4], 0);
        s.g.Add(s.be);
        return s;
      },
      [](G& s) {
        zrList2kHead out;
        (void)s.g.GetMaxPath(s.n[0], &out);
        s.g.Remove(s.be);
        s.g.Remove(s.n[3]);
        zrList2kHead again;
        (void)s.g.GetMaxPath(s.n[0], &again);
        zrSimpleGraph c;
        c = s.g;
      },
      [](G& s) {
        const int len = s.g.GetMaxPath(nullptr);
        EXPECT_GE(len, 3);
        zrSimpleGraph c(s.g);
      });
}

TEST(FaultInjection, RoundArrayAndTokens) {
  struct R {
    zrArrayND<double> a{Dims({3, 4, 2})};
    zrArray<int> range = Dims({2, 3}), tab = Dims({1, 2});
  };
  Exercise(
      "zrRoundArrayND construction, copy, assignment, stepping", [] { return R{}; },
      [](R& s) {
        zrRoundArrayND r(s.a);
        zrRoundArrayND t(s.range, s.tab);
        zrRoundArrayND c(r);
        t = c;
        zrArray<int> at = Dims({1, 1, 1});
        r.SetPos(at);
        ++r;
        --r;
      },
      [](R& s) {
        zrRoundArrayND r(s.range, s.tab);
        EXPECT_EQ(++r, 1);
      });

  struct T {
    zrString text{"alpha = 12.5e3 + \"quoted\" - beta7"};
    zrString token{"previous"};
  };
  Exercise(
      "zrString GetToken over a line", [] { return T{}; },
      [](T& s) {
        for (int pos = 0; s.text.GetToken(pos, s.token) != zrString::TOKEN_END;) {
          zrString copy(s.token);
        }
      },
      [](T& s) {
        zrString c = s.token + s.text;
        EXPECT_EQ(c.Len(), s.token.Len() + s.text.Len());
      });
}

TEST(FaultInjection, FlatFormsAndFrames) {
  using Col = zrColumnVector<double>;
  ExerciseFromMem<zrString>(
      "zrString FromMem", [] { return zrString("a longer line of text"); },
      [] { return zrString("short"); });
  ExerciseFromMem<Col>(
      "zrColumnVector FromMem",
      [] {
        return Of<Col>({1.0, 2.0, 3.0, 4.0});
      },
      [] {
        return Of<Col>({5.0, 6.0});
      });
  ExerciseFromMem<zrPolynom<double>>(
      "zrPolynom FromMem",
      [] {
        return zrPolynom<double>(Of<Col>({1.0, 2.0, 3.0}), 0.0, zrPolynom<double>::PowerKoef);
      },
      [] { return zrPolynom<double>(4); });
  struct S {
    Col origin = Of<Col>({1.0, 2.0}), axis = Of<Col>({0.0, 3.0});
  };
  Exercise(
      "zrTransformCoord construction, GetCoord, GetScale", [] { return S{}; },
      [](S& s) {
        zrTransformCoord t(s.origin, s.axis, 1);
        Col p = t.GetCoord(s.axis);
        Col d = t.GetScale(zrVector<double>(s.origin));
      },
      [](S& s) { EXPECT_EQ(Col(s.origin).Len(), 2); });
}

// Assignments that change an object's size replace several members; a failure part way
// must not leave them of different sizes. use() reads every element.
TEST(FaultInjection, AssignmentsOfAnotherSize) {
  struct S {
    zrMatrix<double> m = Hilbertish(3), big = Hilbertish(5);
    zrArrayND<double> a{Dims({2, 3})}, cube{Dims({3, 4, 2})};
    zrSimpleArray2D<double> t{2, 2}, wide{3, 7};
    BetaTube tube{Net(3, 5)}, other{Net(4, 6)};
    BetaCurve curve{Helix(5)}, longer{Helix(9)};
  };
  Exercise(
      "zrMatrix, zrArrayND, zrSimpleArray2D, BetaTube, BetaCurve assignment of another size",
      [] {
        S s;
        s.a.Fill(1.0);
        s.cube.Fill(2.0);
        s.wide.Fill(3.0);
        s.t.Fill(4.0);
        return s;
      },
      [](S& s) {
        s.m = s.big;
        s.a = s.cube;
        s.t = s.wide;
        s.tube = s.other;
        s.curve = s.longer;
      },
      [](S& s) {
        double sum = 0;
        for (int i = 0; i < s.m.ColumnLen(); ++i)
          for (int j = 0; j < s.m.LineLen(); ++j) sum += s.m(i, j);
        for (const double v : s.a) sum += v;
        for (int y = 0; y < s.t.GetHeight(); ++y)
          for (int x = 0; x < s.t.GetWidth(); ++x) sum += s.t(y, x);
        EXPECT_FALSE(std::isnan(sum));
        (void)s.tube(0.5, 0.5);
        (void)s.curve(0.5);
        zrArrayND<double> c(s.a);
        EXPECT_EQ(c.GetSize(), s.a.GetSize());
      });
}
