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
      const long baseline = LiveAllocations();
      bool threw = false;
      long injected = 0;
      {
        auto state = make();
        FailAllocation(n, persistent);
        try {
          op(state);
        } catch (const zrErrNoMemory&) {
          threw = true;
        } catch (const zrExceptionWithMessage& e) {
          threw = true;
          ADD_FAILURE() << name << ", allocation " << n << " (" << mode
                        << "): threw another error: " << e.GetMessageText();
        } catch (...) {
          threw = true;
          ADD_FAILURE() << name << ", allocation " << n << " (" << mode
                        << "): threw something that is not a library error";
        }
        injected = InjectedFailures();
        ClearFailure();
        if (threw) {
          EXPECT_GT(injected, 0) << name << ", allocation " << n << " (" << mode
                                 << "): threw with no failure injected";
          ++total_pairs;
          if (!persistent) ++points;
          use(state);
        } else {
          EXPECT_EQ(injected, 0) << name << ", allocation " << n << " (" << mode
                                 << "): an injected failure was swallowed";
        }
      }
      EXPECT_EQ(LiveAllocations() - baseline, 0)
          << name << ", allocation " << n << " (" << mode << "): blocks not given back";
      if (!threw) break;
    }
  }
  std::printf("%s: %s failure points\n", name, std::to_string(points).c_str());
  return points;
}

// The same with objects that need no check afterwards beyond their destruction.
template <class Make, class Op>
long Exercise(const char* name, Make make, Op op) {
  return Exercise(name, make, op, [](auto&) {});
}

struct Nothing {};
Nothing None() { return {}; }

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
  for (int i = 0; i < w.Len(); ++i) {
    for (int j = 0; j < w[i].Len(); ++j) EXPECT_NE(w[i][j], '\0');
  }
  EXPECT_EQ(copy.Len(), w.Len());
}

zrMatrix<double> Hilbertish(int n) {
  zrMatrix<double> m(n, n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) m(i, j) = 1.0 / (i + j + 1) + (i == j ? 1.0 : 0.0);
  return m;
}

zrSimpleContour2D Polygon(std::initializer_list<zrVec2> points) {
  zrSimpleContour2D c(static_cast<int>(points.size()));
  int i = 0;
  for (const zrVec2& p : points) c[i++] = p;
  return c;
}

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

zrArray<int> Dims(std::initializer_list<int> d) {
  zrArray<int> r(static_cast<int>(d.size()));
  int i = 0;
  for (int v : d) r[i++] = v;
  return r;
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
  Exercise("zrArray<double>(n, value)", None, [](Nothing&) { zrArray<double> a(1000, 1.0); });
  struct Two {
    zrArray<double> a = Ramp(50);
    zrArray<double> b = Ramp(7);
  };
  const auto two = [] { return Two{}; };
  const auto intact = [](Two& s) {
    EXPECT_EQ(s.a.Len(), 50);
    EXPECT_EQ(Sum(s.a), 49 * 50 / 2);
    EXPECT_EQ(Sum(s.b), 21);
  };
  Exercise(
      "zrArray<double> copy", two, [](Two& s) { zrArray<double> c(s.a); }, intact);
  Exercise(
      "zrArray<double> assignment", two, [](Two& s) { s.b = s.a; }, [](Two& s) { (void)Sum(s.b); });
  Exercise(
      "zrArray<double> window Copy", two,
      [](Two& s) {
        zrArray<double> w = s.a.Mid(3, 20);
        w.Copy();
      },
      intact);
  Exercise(
      "zrArray<double> ReSet of a shared block", two,
      [](Two& s) {
        zrArray<double> w = s.a.Left(10);
        s.a.ReSet(200);
      },
      [](Two& s) { (void)Sum(s.a); });
  Exercise(
      "zrArray<double> Insert", two, [](Two& s) { s.a.Insert(-1, 10); },
      [](Two& s) { (void)Sum(s.a); });
  Exercise(
      "zrArray<double> Concat", two, [](Two& s) { s.a.Concat(s.b); },
      [](Two& s) { (void)Sum(s.a); });
  Exercise(
      "zrArray<double> Replace", two, [](Two& s) { s.a.Replace(5, 2, s.b); },
      [](Two& s) { (void)Sum(s.a); });
  Exercise(
      "zrArray<double> arithmetic", two, [](Two& s) { zrArray<double> c = s.a * 2.0; }, intact);
  Exercise(
      "zrArray<double> FromMem",
      [] {
        struct S {
          zrArray<double> target = Ramp(3);
          std::vector<unsigned char> flat;
        } s;
        const zrArray<double> src = Ramp(40);
        s.flat.resize(src.MemSize());
        src.ToMem(s.flat.data());
        return s;
      },
      [](auto& s) { s.target.FromMem(s.flat.data()); }, [](auto& s) { (void)Sum(s.target); });
  Exercise("zrSimpleArray2D", None, [](Nothing&) {
    zrSimpleArray2D<double> a(20, 30);
    zrSimpleArray2D<double> b(a);
  });
}

TEST(FaultInjection, ArraysOfStrings) {
  struct Two {
    zrSimpleArray<zrString> a = Words(12);
    zrSimpleArray<zrString> b = Words(5);
  };
  const auto two = [] { return Two{}; };
  const auto use = [](Two& s) {
    UseWords(s.a);
    UseWords(s.b);
  };
  Exercise(
      "zrSimpleArray<zrString> assignment", two, [](Two& s) { s.b = s.a; }, use);
  Exercise(
      "zrSimpleArray<zrString> ReSet", two, [](Two& s) { s.a.ReSet(40); }, use);
  Exercise(
      "zrSimpleArray<zrString> Insert", two, [](Two& s) { s.a.Insert(zrString("new"), 3); }, use);
  Exercise(
      "zrSimpleArray<zrString> Concat", two, [](Two& s) { s.a.Concat(s.b); }, use);
  Exercise(
      "zrSimpleArray<zrString> Replace", two, [](Two& s) { s.a.Replace(2, 4, s.b); }, use);
}

TEST(FaultInjection, Strings) {
  struct S {
    zrString a{"alpha beta,, gamma"};
    zrString b{" delta epsilon"};
    zrSimpleArray<zrString> tokens;
  };
  const auto make = [] { return S{}; };
  const auto use = [](S& s) {
    EXPECT_EQ(s.a, "alpha beta,, gamma");
    UseWords(s.tokens);
    zrString c = s.a + s.b;
    EXPECT_EQ(c.Len(), s.a.Len() + s.b.Len());
  };
  Exercise("zrString(const char*)", None, [](Nothing&) { zrString s("some text"); });
  Exercise(
      "zrString GetUnion", make, [](S& s) { zrString c = s.a.GetUnion(s.b); }, use);
  Exercise(
      "zrString +=", make, [](S& s) { s.b += s.a; }, [](S& s) { (void)s.b.Len(); });
  Exercise(
      "zrString Tokenize", make, [](S& s) { s.a.Tokenize(s.tokens, " ,"); }, use);
  Exercise(
      "zrString Tokenize into used strings",
      [] {
        S s;
        s.tokens = Words(2);
        return s;
      },
      [](S& s) { s.a.Tokenize(s.tokens, " ,"); }, use);
  Exercise(
      "zrString GetCString of a window", make,
      [](S& s) {
        zrString w = s.a.Mid(6, 4);
        EXPECT_STREQ(w.GetCString(), "beta");
      },
      use);
}

TEST(FaultInjection, LinearAlgebra) {
  struct S {
    zrMatrix<double> a = Hilbertish(6);
    zrMatrix<double> b = Hilbertish(6);
    zrColumnVector<double> x;
    zrColumnVector<double> rhs{6};
  };
  const auto make = [] {
    S s;
    for (int i = 0; i < 6; ++i) s.rhs[i] = i + 1;
    return s;
  };
  const auto use = [](S& s) {
    zrMatrix<double> c(s.a);
    EXPECT_EQ(c.ColumnLen(), 6);
    (void)s.x.Len();
  };
  Exercise(
      "zrMatrix copy", make, [](S& s) { zrMatrix<double> c(s.a); }, use);
  Exercise(
      "zrMatrix product", make, [](S& s) { zrMatrix<double> c = s.a * s.b; }, use);
  Exercise(
      "zrMatrix transpose product", make, [](S& s) { s.a.SelfTMulSelf(s.b); }, use);
  Exercise(
      "zrMatrix times column", make, [](S& s) { zrColumnVector<double> y = s.a * s.rhs; }, use);
  Exercise(
      "zrMatrix Inverse", make, [](S& s) { zrMatrix<double> inv = s.a.Inverse(); }, use);
  Exercise(
      "zrMatrix Det", make, [](S& s) { (void)s.a.Det(); }, use);
  Exercise(
      "zrMatrix SolveEquationGaussMethod", make,
      [](S& s) { s.a.SolveEquationGaussMethod(s.x, s.rhs); }, use);
  Exercise(
      "zrMatrix sub-matrix Copy", make,
      [](S& s) {
        zrMatrix<double> w;
        w.Set(s.a, 1, 2, 3, 3);
        w.Copy();
      },
      use);
  Exercise(
      "zrMatrix FromMem",
      [] {
        struct F {
          zrMatrix<double> target = Hilbertish(2);
          std::vector<unsigned char> flat;
        } f;
        const zrMatrix<double> src = Hilbertish(5);
        f.flat.resize(src.MemSize());
        src.ToMem(f.flat.data());
        return f;
      },
      [](auto& f) { f.target.FromMem(f.flat.data()); },
      [](auto& f) { zrMatrix<double> c(f.target); });
  Exercise(
      "zrVector ReSet and Insert", [] { return zrVector<double>(10); },
      [](zrVector<double>& v) {
        v.ReSet(30);
        v.Insert(1.0, 4);
      },
      [](zrVector<double>& v) { zrVector<double> c(v); });
}

TEST(FaultInjection, Splines) {
  using Points = zrSimpleArray<zrColumnVector<double>>;
  const auto points = [] {
    Points p(8);
    for (int i = 0; i < 8; ++i) {
      p[i].Set(2);
      p[i][0] = i;
      p[i][1] = std::sin(i);
    }
    return p;
  };
  struct S {
    zrSpline<double> s;
    zrSimpleArray<int> codes{2, 0};
    zrMatrix<double> values{2, 2};
  };
  const auto make = [points] {
    S s;
    s.s.Set(points());
    s.codes[1] = 3;
    s.values.Fill(0.0);
    return s;
  };
  Exercise(
      "zrSpline MkSpline3", make, [](S& s) { s.s.MkSpline3(s.codes, s.values); },
      [](S& s) { zrSpline<double> c(s.s); });
}

TEST(FaultInjection, Contours) {
  struct S {
    zrSimpleContour2D square = Polygon({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
    zrSimpleContour2D hexagon = Polygon({{0, 0}, {3, 0}, {4, 2}, {3, 4}, {0, 4}, {-1, 2}});
    zrSimpleContour2D turned;
  };
  const auto make = [] {
    S s;
    s.turned = s.hexagon;
    s.turned.CycleLeftShift(2);
    s.turned.InverseOrder();
    return s;
  };
  const auto use = [](S& s) {
    zrSimpleContour2D c(s.turned);
    EXPECT_EQ(c.Len(), 6);
    EXPECT_EQ(s.square.Len(), 4);
  };
  Exercise(
      "zrSimpleContour2D CutByStraightLine", make,
      [](S& s) {
        zrSimpleContour2D left =
            s.square.CutByStraightLine(zrGeom::StraightLine2D({0.5, 1}, {0.5, 0}));
      },
      use);
  Exercise(
      "zrSimpleContour2D MakeCoherentS", make, [](S& s) { s.turned.MakeCoherentS(s.hexagon); },
      use);
  Exercise(
      "zrSimpleContour2D MakeCoherentS with a window", make,
      [](S& s) {
        zrArray<zrVec2> view = s.turned.Left(6);
        s.turned.MakeCoherentS(s.hexagon);
      },
      use);
}

TEST(FaultInjection, BetaSplines) {
  Exercise(
      "BetaCurve interpolation", [] { return Helix(9); },
      [](zrVector<V3>& p) { BetaCurve c(p, 1.2, 0.5); },
      [](zrVector<V3>& p) {
        BetaCurve c(p);
        (void)c(0.5);
      });
  Exercise(
      "BetaContour interpolation", [] { return Helix(7); },
      [](zrVector<V3>& p) { BetaContour c(p); });
  Exercise(
      "BetaTube from a net", [] { return Net(4, 6); },
      [](zrMatrix<V3>& net) { BetaTube t(net, 1.0, 0.5); });
  Exercise(
      "BetaTube copy", [] { return BetaTube(Net(3, 5)); }, [](BetaTube& t) { BetaTube c(t); },
      [](BetaTube& t) { (void)t(0.3, 0.4); });
}

TEST(FaultInjection, ArraysND) {
  const auto cube = [] {
    zrArrayND<double> a(Dims({4, 5, 6}));
    a.Fill(1.0);
    return a;
  };
  const auto use = [](zrArrayND<double>& a) {
    zrArrayND<double> c(a);
    EXPECT_EQ(c.GetSize(), a.GetSize());
  };
  Exercise("zrArrayND(range)", None, [](Nothing&) { zrArrayND<double> a(Dims({3, 4, 5})); });
  Exercise(
      "zrArrayND copy", cube, [](zrArrayND<double>& a) { zrArrayND<double> c(a); }, use);
  Exercise(
      "zrArrayND window Copy", cube,
      [](zrArrayND<double>& a) {
        zrArrayND<double> w;
        w.SetSubWindow(a, Dims({1, 1, 1}), Dims({2, 3, 4}));
        w.Copy();
      },
      use);
  Exercise(
      "zrArrayND flipped Copy", cube,
      [](zrArrayND<double>& a) {
        zrArrayND<double> w;
        w.Set(a);
        w.Flip(1);
        w.SwapAxis(0, 2);
        w.Copy();
      },
      use);
  Exercise(
      "zrArrayND slice", cube,
      [](zrArrayND<double>& a) {
        zrArrayND<double>* s = a.GetReduceDimArrayND(1, 2);
        delete s;
      },
      use);
  Exercise(
      "zrArrayND arithmetic", cube, [](zrArrayND<double>& a) { a += a; }, use);
  Exercise(
      "zrArrayND FromMem",
      [cube] {
        struct F {
          zrArrayND<double> target{Dims({2, 2})};
          std::vector<unsigned char> flat;
        } f;
        const zrArrayND<double> src = cube();
        f.flat.resize(src.MemSize());
        src.ToMem(f.flat.data());
        return f;
      },
      [](auto& f) { f.target.FromMem(f.flat.data()); },
      [](auto& f) { zrArrayND<double> c(f.target); });
}

TEST(FaultInjection, Graph) {
  // A path a-b-c-d-e with a branch c-f: the graph owns everything it is given.
  struct G {
    zrSimpleGraph g;
    zrSimpleGraphNodeHead* first = nullptr;
  };
  const auto build = [](G& s) {
    zrSimpleGraphNodeHead* n[6];
    for (auto*& p : n) {
      p = new zrSimpleGraphNodeHead;
      s.g.Add(p);
    }
    for (int i = 0; i < 4; ++i) s.g.Add(new zrSimpleGraphBranchHead(n[i], n[i + 1], 0));
    s.g.Add(new zrSimpleGraphBranchHead(n[2], n[5], 0));
    s.first = n[0];
  };
  const auto make = [build] {
    G s;
    build(s);
    return s;
  };
  const auto use = [](G& s) { EXPECT_EQ(s.g.GetMaxPath(nullptr), 5); };
  Exercise(
      "zrSimpleGraph building", [] { return G{}; }, build,
      [](G& s) { (void)s.g.GetMaxPath(nullptr); });
  Exercise(
      "zrSimpleGraph Wave", make, [](G& s) { s.g.Wave(s.first, zrSimpleGraph::PathLen, nullptr); },
      use);
  Exercise(
      "zrSimpleGraph GetMaxPath", make,
      [](G& s) {
        zrList2kHead out;
        s.g.GetMaxPath(&out);
      },
      use);
  Exercise(
      "zrSimpleGraph copy", make, [](G& s) { zrSimpleGraph c(s.g); }, use);
}

// Copies of arrays of class-type elements: an element copy that fails part way must
// free the new block and the elements already made.
TEST(FaultInjection, CopiesOfArraysOfClassElements) {
  struct Two {
    zrSimpleArray<zrString> a = Words(12);
  };
  const auto two = [] { return Two{}; };
  const auto use = [](Two& s) { UseWords(s.a); };
  Exercise(
      "zrSimpleArray<zrString> copy", two, [](Two& s) { zrSimpleArray<zrString> c(s.a); }, use);
  Exercise(
      "zrSimpleArray<zrString> window Copy", two,
      [](Two& s) {
        zrSimpleArray<zrString> w = s.a.Mid(2, 5);
        w.Copy();
      },
      use);

  using Points = zrSimpleArray<zrColumnVector<double>>;
  const auto points = [] {
    Points p(8);
    for (int i = 0; i < 8; ++i) {
      p[i].Set(2);
      p[i][0] = i;
      p[i][1] = std::sin(i);
    }
    return p;
  };
  Exercise(
      "zrSpline from points", points, [](Points& p) { zrSpline<double> s(p); },
      [](Points& p) { Points c(p); });
  Exercise(
      "zrSpline copy",
      [points] {
        zrSimpleArray<int> codes(2, 0);
        codes[1] = 3;
        zrMatrix<double> values(2, 2);
        values.Fill(0.0);
        zrSpline<double> s(points());
        s.MkSpline3(codes, values);
        return s;
      },
      [](zrSpline<double>& s) { zrSpline<double> c(s); },
      [](zrSpline<double>& s) { (void)s(2.5); });

  struct Sections {
    zrSimpleArray<zrSimpleContour2D> contours{3};
    zrSimpleArray<double> heights{3};
    BetaTube tube{1.0, 0.0};
  };
  Exercise(
      "BetaTube interpolation through contours",
      [] {
        Sections s;
        s.contours[0] = Ellipse(10, 3, 2);
        s.contours[1] = Ellipse(10, 2, 2);
        s.contours[2] = Ellipse(12, 3, 1);
        for (int i = 0; i < 3; ++i) s.heights[i] = 2.0 * i;
        return s;
      },
      [](Sections& s) { s.tube.MakeInterpolation(s.contours, s.heights); },
      [](Sections& s) {
        EXPECT_EQ(s.contours[0].Len(), 10);
        BetaTube c(s.tube);
      });
}
