// Every class family under allocation failure. Each entry of the table below runs an
// operation on a freshly built World while the harness fails the 1st, 2nd, ... allocation,
// once and then from that allocation on, until the operation gets through. At every
// failure point the operation must throw zrErrNoMemory and leave the world as it was
// (every object's flat form, or what it computes, unchanged); once the world is gone
// every block it took must be back. Run under the fault preset, AddressSanitizer catches what
// the counts cannot (a block freed twice, a dangling view after a rollback).
#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <cstdio>
#include <string>
#include <tuple>

#include "support/array_builders.h"
#include "zr/core/detail/fault_injection.h"
#include "zr/zr.h"

namespace {

using namespace zr::testing;
using zr_test::Of;

// (operation, failure point) pairs of this process, a point counted once for each mode
// (failing once, failing from then on), and the points alone.
long total_pairs = 0;
long total_points = 0;

// No sane operation here makes this many allocations; more means the loop never ends.
constexpr long kMaxAllocations = 100000;

// ---------------------------------------------------------------------------------------
// What an object holds, as bytes: its flat form, or for the classes without one what it
// computes. Reading it walks every element, so a dangling block shows under ASan.

template <class T>
auto Image(const T& x) -> decltype(zrMemSize(x), std::string()) {
  std::string s(static_cast<std::size_t>(zrMemSize(x)), '\0');
  zrToMem(reinterpret_cast<unsigned char*>(&s[0]), x);
  return s;
}
template <class T>
std::string Image(const zrSimpleArray<T>& a) {
  std::string s = Image(a.Len());
  for (const T& e : a) s += Image(e);
  return s;
}
std::string Image(const zrSimpleArray2D<double>& a) {
  return Image(a.GetHeight()) + Image(a.GetWidth()) + Image<double>(a);
}
std::string Image(const BetaCurve& c) { return Image(c(0.0)) + Image(c(0.3)) + Image(c(0.8)); }
std::string Image(const BetaTube& t) { return Image(t(0.0, 0.3)) + Image(t(0.4, 1.0)); }
std::string Image(const zrSpline<double>& p) { return Image(p(3.7)) + Image(p.Derivative(6, 1)); }
std::string Image(const zrSplineCurve2D& c) { return Image(c.GetLengthOfCurve()); }
std::string Image(zrSimpleGraph& g) { return Image(g.GetMaxPath(nullptr)); }
std::string Image(const zrList1kHead& l) { return Image(l.Len()); }
std::string Image(const zrList2kHead& l) { return Image(l.Len()); }

// An object that cannot compute (an empty spline) shows the text it throws.
template <class T>
std::string Shown(T& x) {
  try {
    return Image(x);
  } catch (const zrExceptionWithMessage& e) {
    return e.GetMessageText();
  }
}

// ---------------------------------------------------------------------------------------
// The objects the operations work on, built with every allocation allowed.

using Col = zrColumnVector<double>;
using V3 = zrTVec3<double>;
using M3 = zrMatrix3Diag<double>;
using P = zrPolynom<double>;
using A = zrArrayND<double>;
using Node = zrSimpleGraphNodeHead;
using C2 = zrSimpleContour2D;

// The flat form of x, for FromMem.
template <class T>
const unsigned char* Flat(const T& x, std::string&& image = {}) {
  image = Image(x);
  return reinterpret_cast<const unsigned char*>(image.data());
}
// Objects an operation makes and drops at once.
template <class... T>
void Made(const T&...) {}
// A copy of a view made to own its elements.
template <class T>
T Detached(T view) {
  view.Copy();
  return view;
}
zrMatrix<V3> Net(int m, int k) {
  zrMatrix<V3> net(m, k);
  for (int i = 0; i < m; ++i)
    for (int j = 0; j < k; ++j)
      net(i, j) = V3(i + std::cos(2 * M_PI * j / k), std::sin(2 * M_PI * j / k), 2.0 * i);
  return net;
}
zrVector<V3> Helix(int n) {
  zrVector<V3> p(n);
  for (int i = 0; i < n; ++i) p[i] = V3(std::cos(i * 0.7), std::sin(i * 0.7), 0.3 * i);
  return p;
}
zrArray<int> Dims(std::initializer_list<int> d) { return Of<zrArray<int>>(d); }
zrSimpleArray<Col> CurvePoints(double last) {
  zrSimpleArray<Col> p(8);
  for (int i = 0; i < 8; ++i) p[i] = Of<Col>({double(i), i < 7 ? std::sin(i) : last});
  return p;
}
// A diagonally dominant n x n band: 4 on the diagonal, 1 and -1 beside it.
M3 Band(int n) {
  const auto line = [](int k, double x) { return zrVector<double>(zrSimpleArray<double>(k, x)); };
  return M3(line(n - 1, 1.0), line(n, 4.0), line(n - 1, -1.0));
}

struct World {
  zrArray<double> a{50, 1.5}, b = Of<zrArray<double>>({0, 1, 2, 3, 4, 5, 6}), bwin = b.Left(3);
  zrSimpleArray2D<double> wide{3, 7, 3.0};
  zrSimpleArray<zrString> many{12, zrString("word")}, few{5, zrString("other")}, tokens;
  zrString s1{"alpha beta,, gamma"}, s2{" delta epsilon"}, token{"previous"};
  zrString line{"alpha = 12.5e3 + \"quoted\" - beta7"};
  zrMatrix<double> m = Band(6).GetMatrix(), m2 = Band(2).GetMatrix(), mwin, B = Band(7).GetMatrix();
  Col rhs = Of<Col>({1, 2, 3, 4, 5, 6}), b7 = Of<Col>({1, 2, 3, 4, 5, 6, 7});
  Col origin = Of<Col>({1, 2}), axis = Of<Col>({0, 3}), col{3};
  M3 band = Band(7), band9 = Band(9), band2 = Band(2), bandwin;
  zrVector<double> up2{zrSimpleArray<double>(5, 0.5)}, down2{zrSimpleArray<double>(5, 0.25)};
  P power{Of<Col>({1.0, -2.0, 3.0, 0.5}), 1.0, P::PowerKoef};
  P p2{2};
  zrSimpleArray<Col> points = CurvePoints(std::sin(7)), closed = CurvePoints(0);
  zrSpline<double> spline{points}, period{closed}, unset;
  A cube{Dims({4, 5, 6})}, nd{Dims({2, 3})}, pair{Dims({2, 2})}, ndwin, ndflip;
  zrArray<int> range = Dims({2, 3}), tab = Dims({1, 2});
  zrRoundArrayND round{range, tab};
  C2 square = Of<C2>({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
  C2 hexagon = Of<C2>({{0, 0}, {3, 0}, {4, 2}, {3, 4}, {0, 4}, {-1, 2}});
  C2 turned = Of<C2>({{3, 0}, {0, 0}, {-1, 2}, {0, 4}, {3, 4}, {4, 2}}), viewed = turned;
  C2 star{40}, star2{40};  // large enough for the alignments' searches
  zrArray<zrVec2> view;
  zrCurve2D loop = hexagon, arc = Of<zrCurve2D>({{0, 0}, {1, 0.1}, {2, 0.4}, {3, 0.9}, {4, 1.6}});
  zrSplineCurve2D arc_spline{arc, 1};
  zrVector<V3> helix = Helix(9);
  zrMatrix<V3> net = Net(4, 6);
  BetaTube tube{Net(3, 5)}, tube2{Net(4, 6)}, tube0{1.0, 0.0};
  BetaCurve curve{Helix(5)}, curve9{Helix(9)};
  BetaContour contour{Helix(9)};
  zrSimpleArray<C2> cuts = Of<zrSimpleArray<C2>>({square, hexagon, turned});
  zrSimpleArray<double> zs = Of<zrSimpleArray<double>>({0.0, 2.0, 4.0});
  zrSimpleGraph graph;  // the path n0-n1-n2-n3-n4 with a branch n2-n5; it owns them
  Node* n[6];
  zrListQueue<Node*> queue;
  zrList1kHead ring1;
  zrList2kHead ring2;  // the heads delete the nodes linked to them

  World() {
    line.Tokenize(tokens, " ");
    mwin.Set(m, 1, 2, 3, 3);
    bandwin.Set(band9, 1, 7);
    period.MkPeriodSpline3();
    ndwin.SetSubWindow(cube, Dims({1, 1, 1}), Dims({2, 3, 4}));
    ndflip.Set(cube);
    ndflip.Flip(1);
    ndflip.SwapAxis(0, 2);
    view = viewed.Left(6);
    cube.Fill(1.0);
    nd.Fill(2.0);
    pair.Fill(3.0);
    loop.push_back(loop[0]);
    for (auto*& p : n) graph.Add(p = new Node);
    for (int i = 0; i < 4; ++i) graph.Add(new zrSimpleGraphBranchHead(n[i], n[i + 1], 0));
    graph.Add(new zrSimpleGraphBranchHead(n[2], n[5], 0));
    for (int i = 0; i < 3; ++i) queue.Put(nullptr);
    for (int i = 0; i < 40; ++i) {
      star[i] = zrVec2(std::cos(i * 0.157), std::sin(i * 0.157)) * (i % 2 ? 3.0 : 5.0);
      star2[i] = star[(i + 7) % 40] * 1.1;
    }
  }
  auto Tie() {
    return std::tie(a, b, bwin, wide, many, few, tokens, s1, s2, token, line, m, m2, mwin, B, rhs,
                    b7, origin, axis, col, band, band9, band2, bandwin, up2, down2, power, p2,
                    points, closed, spline, period, unset, cube, nd, pair, ndwin, ndflip, range,
                    tab, round, square, hexagon, turned, viewed, star, star2, view, loop, arc,
                    arc_spline, helix, net, tube, tube2, tube0, curve, curve9, contour, cuts, zs,
                    graph, queue, ring1, ring2);
  }
  std::string Image() {
    return std::apply([](auto&... m) { return (std::string() + ... + Shown(m)); }, Tie());
  }
};

// An operation on the world. After a failure the world must be as it was, or, where the
// operation promises less (strong false), whole.
struct Entry {
  const char* name;
  void (*op)(World&);
  bool strong = true;
};
void PrintTo(const Entry& e, std::ostream* os) { *os << e.name; }

const Entry kEntries[] = {
    // Operations that make objects and drop them, area by area: the world stays as it was.
    {"arrays and strings: constructions, copies, window Copy, products, GetUnion",
     [](World& s) {
       Made(zrArray<double>(1000, 1.0), zrSimpleArray2D<double>(20, 30), zrString("some text"),
            A(Dims({3, 4, 5})), P(5), zrArray<double>(s.a), s.a * 2.0, Detached(s.a.Mid(3, 20)),
            zrSimpleArray2D<double>(s.wide), zrSimpleArray<zrString>(s.many),
            Detached(s.many.Mid(2, 5)), s.s1.GetUnion(s.s2), s.s1 + s.s2,
            zrString(s.s1.Mid(6, 4).GetCString()));
     }},
    {"matrices: window Copy, products, Inverse, Det, band copies and sweeps, zrTransformCoord",
     [](World& s) {
       Made(Detached(s.mwin), s.m * s.m, s.m * s.rhs, s.m.Inverse(), s.m.Det());
       Made(Detached(M3(s.band)), Detached(s.bandwin), s.band.T().GetMatrix(), s.band * s.band,
            s.band * s.b7, s.band + s.band * 2.0);
       zrTransformCoord t(s.origin, s.axis, 1);
       Made(t.GetCoord(s.axis), t.GetScale(zrVector<double>(s.origin)));
       // The band sweeps, plain, cyclic and five-diagonal; each solution is re-created with
       // another length.
       Col x(3), z, f, g;
       zrMatrix<double> X(2, 2);
       s.band.SolveEquationChaserMethod(x, s.b7);
       s.band.SolveEquationChaserMethod(X, s.B);
       s.band.SolveEquationCycleChaserMethod(z, s.b7, 0.5, 0.5);
       s.band.SolveEquationFactorizeMethod(s.up2, s.down2, f, s.b7);
       s.band.SolveEquationCycleFactorizeMethod(s.up2, s.down2, 0.1, 0.2, 0.1, 0.2, 0.1, 0.2, g,
                                                s.b7);
     }},
    {"splines and nd arrays: construction, copies, window Copy, stepping",
     [](World& s) {
       zrSpline<double> p(s.closed);
       p.MkPeriodSpline3();
       Made(zrSpline<double>(s.points), zrSpline<double>(s.spline));
       Made(A(s.cube), Detached(s.ndwin), Detached(s.ndflip));
       delete s.cube.GetReduceDimArrayND(1, 2);
       zrRoundArrayND r(s.cube), t(s.range, s.tab), c(s.round);
       zrArray<int> at = Dims({1, 1, 1});
       t = r;
       r.SetPos(at);
       Made(++r, --r);
     }},
    {"curves and graphs: cuts, copies, spline curves, beta curves, GetMaxPath",
     [](World& s) {
       Made(s.square.CutByStraightLine(zrGeom::StraightLine2D({0.5, 1}, {0.5, 0})));
       Made(zrCurve2D(s.loop), zrCurve2D(static_cast<const zrArray<zrVec2>&>(s.arc)),
            zrSplineCurve2D(s.loop), zrSplineCurve2D(s.arc, 2), zrSplineCurve2D(s.arc_spline));
       Made(BetaCurve(s.helix, 1.2, 0.5), BetaContour(s.helix), BetaTube(s.net, 1.0, 0.5),
            BetaTube(s.tube));
       zrList2kHead out, from;
       Made(s.graph.GetMaxPath(&out), s.graph.GetMaxPath(s.n[0], &from));
     }},
    {"zrArray ReSet with a window held", [](World& s) { s.b.ReSet(200); }},
    {"zrArray Replace", [](World& s) { s.b.Replace(5, 2, s.a); }},
    {"zrArray assignment", [](World& s) { s.b = s.a; }},
    {"zrArray FromMem", [](World& s) { s.b.FromMem(Flat(s.a)); }},
    {"zrSimpleArray of strings Insert", [](World& s) { s.many.Insert(zrString("new"), 3); }, false},
    {"zrSimpleArray of strings Replace", [](World& s) { s.many.Replace(2, 4, s.few); }, false},
    {"zrSimpleArray of strings ReSet", [](World& s) { s.many.ReSet(40); }},
    {"zrSimpleArray of strings assignment", [](World& s) { s.few = s.many; }, false},
    // The tokens are strings an earlier Tokenize made.
    {"zrString Tokenize", [](World& s) { s.s1.Tokenize(s.tokens, " ,"); }, false},
    {"zrString GetToken",
     [](World& s) {
       for (int pos = 0; s.line.GetToken(pos, s.token) != zrString::TOKEN_END;)
         Made(zrString(s.token));
     },
     false},
    // Solving eliminates in place.
    {"zrMatrix Gauss solve", [](World& s) { s.m.SolveEquationGaussMethod(s.col, s.rhs); }, false},
    {"zrMatrix SelfTMulSelf", [](World& s) { s.m.SelfTMulSelf(s.m2); }},
    {"zrMatrix assignment", [](World& s) { s.m2 = s.m; }},
    {"zrMatrix FromMem", [](World& s) { s.m2.FromMem(Flat(s.m)); }},
    {"zrVector ReSet", [](World& s) { s.rhs.ReSet(30); }},
    {"zrColumnVector FromMem", [](World& s) { s.origin.FromMem(Flat(s.rhs)); }},
    {"zrMatrix3Diag assignment", [](World& s) { s.band = s.band9; }},
    {"zrMatrix3Diag FromMem", [](World& s) { s.band2.FromMem(Flat(s.band)); }},
    {"zrMatrix3Diag Set", [](World& s) { s.band2.Set(4); }},
    {"zrPolynom assignment", [](World& s) { s.p2 = s.power; }},
    {"zrPolynom SetKoef", [](World& s) { s.p2.SetKoef(s.rhs, 2.0, P::PowerKoef); }},
    {"zrSpline Make", [](World& s) { s.spline.Make(1, zrSimpleArray<int>(), zrMatrix<double>()); }},
    {"zrSpline assignment", [](World& s) { s.spline = s.period; }},
    {"zrSpline assignment to an empty spline", [](World& s) { s.unset = s.spline; }},
    {"zrArrayND assignment", [](World& s) { s.nd = s.cube; }},
    {"zrArrayND FromMem", [](World& s) { s.pair.FromMem(Flat(s.cube)); }},
    {"zrSimpleContour2D MakeCoherentS", [](World& s) { s.turned.MakeCoherentS(s.hexagon); }, false},
    {"zrCurve2D GetIndexOfMaxDistance, 40 points",
     [](World& s) {
       int k = 0;
       s.star.GetIndexOfMaxDistance(k, s.star2);
     }},
    {"zrSimpleContour2D MakeCoherent, 40 points", [](World& s) { s.star.MakeCoherent(s.star2); },
     false},
    {"zrSimpleContour2D MakeCoherentS, 40 points", [](World& s) { s.star2.MakeCoherentS(s.star); },
     false},
    {"zrSimpleContour2D MakeCoherentS with a window held",
     [](World& s) { s.viewed.MakeCoherentS(s.hexagon); }, false},
    {"zrSplineCurve2D assignment", [](World& s) { s.arc_spline = zrSplineCurve2D(s.loop); }, false},
    {"BetaTube assignment", [](World& s) { s.tube = s.tube2; }},
    {"BetaTube MakeInterpolation", [](World& s) { s.tube0.MakeInterpolation(s.cuts, s.zs); }},
    {"BetaCurve Rebuild", [](World& s) { s.curve.Rebuild(12); }},
    {"BetaContour Rebuild", [](World& s) { s.contour.Rebuild(7); }},
    {"BetaCurve assignment", [](World& s) { s.curve = s.curve9; }},
    {"zrSimpleGraph Add", [](World& s) { s.graph.Add(new Node); }},
    {"zrSimpleGraph Wave", [](World& s) { s.graph.Wave(s.n[0], zrSimpleGraph::PathLen, nullptr); }},
    {"zrListQueue Put", [](World& s) { s.queue.Put(nullptr); }},
    {"zrSimpleList1k Add", [](World& s) { s.ring1.Add(new zrSimpleList1k<Node*>(nullptr)); }},
    {"zrSimpleList2k AddBefore",
     [](World& s) { s.ring2.AddBefore(new zrSimpleList2k<Node*>(nullptr)); }},
};

// ---------------------------------------------------------------------------------------

// Prints the number of (operation, failure point) pairs when the program ends. ctest runs
// every case as a process of its own, so each prints its own count there; the ctest entry
// zr_fault_all_pairs runs the whole program once, and its line is the full total.
struct PairCount : ::testing::Environment {
  void TearDown() override {
    std::printf(
        "allocation-failure pairs: %ld (%ld failure points, each failed once and from "
        "then on; %d test cases)\n",
        total_pairs, total_points, ::testing::UnitTest::GetInstance()->test_to_run_count());
  }
};
const auto* const registered = ::testing::AddGlobalTestEnvironment(new PairCount);

class FaultInjection : public ::testing::TestWithParam<Entry> {};

TEST_P(FaultInjection, EveryAllocationFailsInTurn) {
  const Entry& e = GetParam();
  long points = 0;
  for (const bool persistent : {false, true}) {
    for (long n = 1;; ++n) {
      ASSERT_LE(n, kMaxAllocations) << e.name << ": never completed";
      const std::string at = std::string(e.name) + ", allocation " + std::to_string(n) +
                             (persistent ? " (from then on): " : " (once): ");
      const long baseline = LiveAllocations();
      bool threw = false;
      {
        World w;
        const std::string before = w.Image();
        FailAllocation(n, persistent);
        try {
          e.op(w);
        } catch (const zrErrNoMemory&) {
          threw = true;
        } catch (...) {
          threw = true;
          ADD_FAILURE() << at << "threw another error than zrErrNoMemory";
        }
        EXPECT_EQ(InjectedFailures() > 0, threw) << at << "failure injected and exception differ";
        ClearFailure();
        const std::string after = w.Image();  // read whole in any case
        EXPECT_TRUE(!threw || !e.strong || after == before) << at << "the objects changed";
      }
      EXPECT_EQ(LiveAllocations() - baseline, 0) << at << "blocks not given back";
      if (!threw) break;
      ++total_pairs;
      if (!persistent) ++points, ++total_points;
    }
  }
  EXPECT_GT(points, 0) << e.name << " allocates nothing";
  std::printf("%s: %s failure points\n", e.name, std::to_string(points).c_str());
}

INSTANTIATE_TEST_SUITE_P(All, FaultInjection, ::testing::ValuesIn(kEntries),
                         [](const ::testing::TestParamInfo<Entry>& info) {
                           std::string name = info.param.name;
                           for (char& c : name) c = std::isalnum(c) ? c : '_';
                           return name;
                         });

}  // namespace
