// How the public operations grow: each one timed at a size n and at 10n, then a table of
// the time ratio beside the ratio its work calls for (10 for linear work, 10 log(10n) /
// log(n) for n log n, 100 for the few whose definition is quadratic). A row whose ratio
// exceeds 2.5 times the expected one is flagged: somewhere a vector grows one element at a
// time, a list is walked again per element, or a dense method runs on a sparse problem.
// The margin is the caches': linear work whose data leaves a cache level between n and 10n
// (the flat forms, the banded solves) shows ratios up to about 2 times the expected one,
// while a quadratic cost shows 10 times.
//
// The usual benchmark options apply (--benchmark_filter=beta for one group); the table is
// printed after the runs, from the minimum over the repetitions. Each case runs 3
// repetitions of at least 0.05 s, so the whole program stays under a minute.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "zr/zr.h"

namespace {

using V3 = zrTVec3<double>;

// Expected growth of a case from n to 10n.
enum Growth { kLinear, kNLogN, kQuadratic };

struct Case {
  Growth growth;
  int n;
};
std::map<std::string, Case>& Cases() {
  static std::map<std::string, Case> cases;
  return cases;
}

// A smooth closed curve of n points: a rounded star, radius between 0.7 and 1.3.
V3 StarPoint(int i, int n) {
  const double t = 2.0 * M_PI * i / n;
  const double r = 1.0 + 0.3 * std::sin(5.0 * t);
  return V3(r * std::cos(t), r * std::sin(t), 0.0);
}

zrVector<V3> OpenPoints(int n) {
  zrVector<V3> q(n);
  for (int i = 0; i < n; ++i) q[i] = V3(i, std::sin(0.1 * i), std::cos(0.07 * i));
  return q;
}

zrVector<V3> ClosedPoints(int n) {
  zrVector<V3> q(n);
  for (int i = 0; i < n; ++i) q[i] = StarPoint(i, n);
  return q;
}

zrSimpleContour2D Star(int n, double scale, double shift) {
  zrSimpleContour2D c(n);
  for (int i = 0; i < n; ++i) {
    const V3 p = StarPoint(i, n);
    c[i] = zrVec2(scale * p.X() + shift, scale * p.Y() + shift);
  }
  return c;
}

// ---- curves --------------------------------------------------------------------------

void BetaCurveBuild(benchmark::State& state) {
  const zrVector<V3> q = OpenPoints(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    BetaCurve c(q, 1.2, 0.5);
    benchmark::DoNotOptimize(c(0.5));
  }
}

void BetaContourBuild(benchmark::State& state) {
  const zrVector<V3> q = ClosedPoints(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    BetaContour c(q, 1.2, 0.5);
    benchmark::DoNotOptimize(c(0.5));
  }
}

// Rebuild of a 50-point curve into n points.
void BetaCurveRebuild(benchmark::State& state) {
  const BetaCurve base(OpenPoints(50), 1.0, 0.0);
  for (auto _ : state) {
    BetaCurve c(base);
    c.Rebuild(static_cast<int>(state.range(0)));
    benchmark::DoNotOptimize(c.GetControlNumber());
  }
}

void BetaContourRebuild(benchmark::State& state) {
  const BetaContour base(ClosedPoints(50), 1.0, 0.0);
  for (auto _ : state) {
    BetaContour c(base);
    c.Rebuild(static_cast<int>(state.range(0)));
    benchmark::DoNotOptimize(c.GetControlNumber());
  }
}

// A tube of 4 rows of n points each.
void BetaTubeBuild(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  zrMatrix<V3> net(4, n);
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < n; ++j) net(i, j) = StarPoint(j, n) * (1.0 + 0.1 * i) + V3(0, 0, i);
  for (auto _ : state) {
    BetaTube t(net, 1.0, 0.0);
    benchmark::DoNotOptimize(t(0.5, 0.5));
  }
}

void ContourCut(benchmark::State& state) {
  const zrSimpleContour2D c = Star(static_cast<int>(state.range(0)), 10.0, 0.0);
  const zrGeom::StraightLine2D line(zrVec2(-20.0, 0.5), zrVec2(20.0, 0.3));
  for (auto _ : state) benchmark::DoNotOptimize(c.CutByStraightLine(line).Len());
}

void ContourToRange(benchmark::State& state) {
  const zrSimpleContour2D c = Star(static_cast<int>(state.range(0)), 10.0, 8.0);
  zrArray<int> range(2);
  range[0] = 15;
  range[1] = 16;
  for (auto _ : state) benchmark::DoNotOptimize(c.zrPolyLineToRange(range).Len());
}

// A turned, larger copy of a star aligned with the star by `align` (MakeCoherent or
// MakeCoherentS).
template <void (zrSimpleContour2D::*align)(const zrSimpleContour2D&)>
void ContourAlign(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const zrSimpleContour2D other = Star(n, 1.0, 0.0);
  for (auto _ : state) {
    zrSimpleContour2D c = Star(n, 1.1, 0.05);
    c.CycleLeftShift(n / 3);
    (c.*align)(other);
    benchmark::DoNotOptimize(c[0]);
  }
}

// ---- text, arrays, flat form ---------------------------------------------------------

void Tokenize(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::string s;
  for (int i = 0; i < n; ++i) s += "tok" + std::to_string(i % 1000) + (i % 3 ? " " : ", ");
  const zrString text(s.c_str());
  const zrString delimiters(" ,");
  for (auto _ : state) {
    zrSimpleArray<zrString> out;
    text.Tokenize(out, delimiters);
    benchmark::DoNotOptimize(out.Len());
  }
}

// n elements appended 100 at a time.
void ConcatBlocks(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const zrSimpleArray<double> block(100, 1.0);
  for (auto _ : state) {
    zrSimpleArray<double> a;
    for (int i = 0; i < n; i += 100) a.Concat(block);
    benchmark::DoNotOptimize(a.GetPointer());
  }
}

// Writing and reading back the flat form of obj.
template <class T>
void RoundTrip(benchmark::State& state, const T& obj) {
  std::vector<unsigned char> buffer(static_cast<std::size_t>(zrMemSize(obj)));
  T back;
  for (auto _ : state) {
    zrToMem(buffer.data(), obj);
    benchmark::DoNotOptimize(zrFromMem(buffer.data(), buffer.size(), back));
  }
}

void FlatArray(benchmark::State& state) {
  zrArray<double> a(static_cast<int>(state.range(0)));
  for (int i = 0; i < a.Len(); ++i) a[i] = 0.5 * i;
  RoundTrip(state, a);
}

void FlatMatrix(benchmark::State& state) {
  zrMatrix<double> m(static_cast<int>(state.range(0)) / 100, 100);
  m.Fill(0.25);
  RoundTrip(state, m);
}

void FlatArrayND(benchmark::State& state) {
  zrArray<int> range(3);
  range[0] = 10;
  range[1] = 10;
  range[2] = static_cast<int>(state.range(0)) / 100;
  zrArrayND<double> a(range);
  a.Fill(0.75);
  RoundTrip(state, a);
}

// ---- graph ---------------------------------------------------------------------------

// A ladder of n nodes (two rails of n / 2 with rungs): the walks reach every node.
struct Ladder {
  explicit Ladder(int n) {
    std::vector<zrSimpleGraphNodeHead*> nodes(n);
    for (auto& p : nodes) g.Add(p = new zrSimpleGraphNodeHead);
    for (int i = 0; i + 2 < n; ++i) g.Add(new zrSimpleGraphBranchHead(nodes[i], nodes[i + 2]));
    for (int i = 0; i + 1 < n; i += 2) g.Add(new zrSimpleGraphBranchHead(nodes[i], nodes[i + 1]));
    start = nodes[0];
  }
  zrSimpleGraph g;
  zrSimpleGraphNodeHead* start;
};

// Accepts a step into a node not reached yet.
int FirstReach(zrSimpleGraphNodeHead* from, zrSimpleGraphNodeHead* to, zrSimpleGraphBranchHead*,
               void* start) {
  return to != start && to->GetBack() == nullptr && from != nullptr;
}

void GraphWave(benchmark::State& state) {
  Ladder l(static_cast<int>(state.range(0)));
  for (auto _ : state) l.g.Wave(l.start, FirstReach, l.start);
}

void GraphMaxPath(benchmark::State& state) {
  Ladder l(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    zrList2kHead out;
    benchmark::DoNotOptimize(l.g.GetMaxPath(&out));
  }
}

// ---- spline --------------------------------------------------------------------------

zrSimpleArray<zrColumnVector<double>> SplineNodes(int n) {
  zrSimpleArray<zrColumnVector<double>> points(n);
  for (int i = 0; i < n; ++i) {
    points[i].Set(2);
    points[i][0] = i + 0.3 * std::sin(i);
    points[i][1] = std::cos(0.01 * i);
  }
  return points;
}

// Natural ends: zero second derivatives.
void Natural(zrSpline<double>& s) {
  zrSimpleArray<int> codes(2);
  codes[0] = 0;
  codes[1] = 3;
  zrMatrix<double> values(2, 2);
  values.Fill(0.0);
  s.MkSpline3(codes, values);
}

void SplineBuild(benchmark::State& state) {
  const zrSimpleArray<zrColumnVector<double>> points =
      SplineNodes(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    zrSpline<double> s(points);
    Natural(s);
    benchmark::DoNotOptimize(s(1.5));
  }
}

// n evaluations at sorted points.
void SplineEval(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  zrSpline<double> s(SplineNodes(n));
  Natural(s);
  for (auto _ : state) {
    double sum = 0;
    for (int i = 0; i < n; ++i) sum += s(0.5 + i * (n - 2.0) / n);
    benchmark::DoNotOptimize(sum);
  }
}

void Add(const char* name, void (*f)(benchmark::State&), Growth growth, int n) {
  Cases()[name] = {growth, n};
  benchmark::RegisterBenchmark(name, f)
      ->Arg(n)
      ->Arg(10 * n)
      ->Repetitions(3)
      ->MinTime(0.05)
      ->ReportAggregatesOnly(false)
      ->Unit(benchmark::kMicrosecond);
}

// Keeps the console output and notes the fastest repetition of every case and size.
class TableReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& r : runs) {
      if (r.run_type != Run::RT_Iteration || r.error_occurred || r.iterations == 0) continue;
      const double t = r.real_accumulated_time / static_cast<double>(r.iterations);
      double& best = best_[r.run_name.function_name][std::stoi(r.run_name.args)];
      if (best == 0 || t < best) best = t;
    }
  }

  void PrintTable() const {
    std::printf("\n%-22s %8s %12s %12s %8s %9s\n", "operation", "n", "t(n) us", "t(10n) us",
                "ratio", "expected");
    for (const auto& [name, times] : best_) {
      const Case& c = Cases().at(name);
      const auto lo = times.find(c.n), hi = times.find(10 * c.n);
      if (lo == times.end() || hi == times.end()) continue;
      const double ratio = hi->second / lo->second;
      const double expected = c.growth == kLinear ? 10.0
                              : c.growth == kNLogN
                                  ? 10.0 * std::log(10.0 * c.n) / std::log(static_cast<double>(c.n))
                                  : 100.0;
      std::printf("%-22s %8d %12.1f %12.1f %8.1f %9.1f%s\n", name.c_str(), c.n, lo->second * 1e6,
                  hi->second * 1e6, ratio, expected, ratio > 2.5 * expected ? "  WORSE" : "");
    }
  }

 private:
  std::map<std::string, std::map<int, double>> best_;
};

}  // namespace

int main(int argc, char** argv) {
  Add("beta_curve_build", BetaCurveBuild, kLinear, 100);
  Add("beta_contour_build", BetaContourBuild, kLinear, 100);
  Add("beta_curve_rebuild", BetaCurveRebuild, kLinear, 100);
  Add("beta_contour_rebuild", BetaContourRebuild, kLinear, 100);
  Add("beta_tube_build", BetaTubeBuild, kLinear, 100);
  Add("contour_cut", ContourCut, kLinear, 10000);
  Add("contour_to_range", ContourToRange, kLinear, 10000);
  // MakeCoherent finds nearest points in a k-d tree. MakeCoherentS stays quadratic with a
  // small constant: the rotations within the outlines' gap of the best need their exact sums.
  Add("contour_coherent", ContourAlign<&zrSimpleContour2D::MakeCoherent>, kNLogN, 100);
  Add("contour_coherent_s", ContourAlign<&zrSimpleContour2D::MakeCoherentS>, kQuadratic, 100);
  Add("tokenize", Tokenize, kLinear, 10000);
  Add("concat_blocks", ConcatBlocks, kLinear, 10000);
  Add("flat_array", FlatArray, kLinear, 100000);
  Add("flat_matrix", FlatMatrix, kLinear, 100000);
  Add("flat_array_nd", FlatArrayND, kLinear, 100000);
  Add("graph_wave", GraphWave, kLinear, 10000);
  Add("graph_max_path", GraphMaxPath, kLinear, 10000);
  Add("spline_build", SplineBuild, kLinear, 10000);
  Add("spline_eval", SplineEval, kNLogN, 10000);

  benchmark::Initialize(&argc, argv);
  TableReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintTable();
  benchmark::Shutdown();
  return 0;
}
