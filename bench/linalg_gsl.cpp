// The tridiagonal case with gsl_linalg_solve_tridiag, which leaves its inputs alone (it
// takes its work space itself on each call).
#include <benchmark/benchmark.h>
#include <gsl/gsl_errno.h>
#include <gsl/gsl_linalg.h>
#include <gsl/gsl_vector.h>
#include <gsl/gsl_version.h>

#include <cstddef>
#include <vector>

#include "bench_data.h"

namespace {

const bool registered = [] {
  gsl_set_error_handler_off();
  benchmark::AddCustomContext("peer_gsl", GSL_VERSION);
  return true;
}();

void GslTridiag(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::size_t m = static_cast<std::size_t>(n);
  std::vector<double> up(m - 1), diag(m), down(m - 1), b(m), x(m);
  for (int i = 0; i < n; ++i) {
    diag[i] = zr_bench::TriDiag(i);
    b[i] = zr_bench::TriRhs(i);
  }
  for (int i = 0; i + 1 < n; ++i) {
    up[i] = zr_bench::TriUp(i);
    down[i] = zr_bench::TriDown(i);
  }
  gsl_vector_const_view vd = gsl_vector_const_view_array(diag.data(), m);
  gsl_vector_const_view vu = gsl_vector_const_view_array(up.data(), m - 1);
  gsl_vector_const_view vl = gsl_vector_const_view_array(down.data(), m - 1);
  gsl_vector_const_view vb = gsl_vector_const_view_array(b.data(), m);
  gsl_vector_view vx = gsl_vector_view_array(x.data(), m);
  int status = 0;
  for (auto _ : state) {
    // The same (empty) pause as the sweeps that need fresh inputs.
    state.PauseTiming();
    state.ResumeTiming();
    status = gsl_linalg_solve_tridiag(&vd.vector, &vu.vector, &vl.vector, &vb.vector, &vx.vector);
    benchmark::DoNotOptimize(x.data());
  }
  if (status != 0) state.SkipWithError("gsl_linalg_solve_tridiag failed");
  state.SetItemsProcessed(state.iterations() * n);
  zr_bench::SetCheck(state, zr_bench::CheckVector(n, [&](int i) { return x[i]; }));
}

}  // namespace

BENCHMARK(GslTridiag)->Name("sweep/gsl")->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
