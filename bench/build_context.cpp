// Puts the compiler and the build flags into every benchmark program's context (the
// "context" object of the JSON output), so that a table of results can say how the
// library and the benchmarks were compiled.
#include <benchmark/benchmark.h>

#include "build_info.h"

namespace {

const bool registered = [] {
  benchmark::AddCustomContext("zr_compiler", ZR_BENCH_COMPILER);
  benchmark::AddCustomContext("zr_build_type", ZR_BENCH_BUILD_TYPE);
  benchmark::AddCustomContext("zr_cxx_flags", ZR_BENCH_CXX_FLAGS);
  return true;
}();

}  // namespace
