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

#include "zr/core/fault_injection.h"
#include "zr/zr.h"

namespace {

using zr::testing::ClearFailure;
using zr::testing::FailAllocation;
using zr::testing::InjectedFailures;
using zr::testing::LiveAllocations;

long total_pairs = 0;  // (operation, failure point) pairs of this process

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
          if (!persistent) ++points;
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

// Prints the total when the program ends; under ctest each test is a process of its own.
class PairCount : public ::testing::Environment {
 public:
  void TearDown() override {
    std::printf("(operation, failure point) pairs exercised: %s\n",
                std::to_string(total_pairs).c_str());
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
