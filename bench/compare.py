#!/usr/bin/env python3
"""Runs the zr benchmark programs and prints zr against its peers as one markdown table.

    compare.py --bin-dir build/bench-native/bench            # run, then print
    compare.py --json-dir results --from-json                # print saved results again

Every program runs with --benchmark_format=json, single-threaded peers
(OPENBLAS_NUM_THREADS=1, OMP_NUM_THREADS=1), a few repetitions, and only the cases of the
table. A row's time is the fastest repetition's CPU time per iteration (the least disturbed
by other work on the machine); every implementation of a row does the same work, so the
ratio of two times is the ratio of two rates. Ratios are written so that > 1 means zr is
the faster. A GFLOP/s figure is also given as a share of the machine's peak, which every
program measures when it starts (one thread, separate multiplies and adds at the widest
vector level the library runs; the highest of the programs' measurements). Python 3
standard library only.
"""

import argparse
import datetime
import json
import os
import platform
import subprocess
import sys
import time

# The programs and the part of each that the table needs.
PROGRAMS = [
    ("zr_linalg_bench", "^(product|gauss|inverse|sweep)/"),
    ("zr_spline_bench", "^spline_"),
    ("zr_ndarray_bench", "^nd_add_"),
    ("zr_array_bench", "^(push_back|concat)/"),
    ("zr_fct_bench", "^fct_"),
    ("zr_extremum_bench", "^extremum/"),
]

# The minimum search is compared by function evaluations, not time: "extremum/<impl>/<case>"
# with the case in the label. The target: zr meets the tolerance on every member of a case
# with no more evaluations than either peer.
EXTREMUM_PEERS = [("gsl", "GSL Brent"), ("boost", "Boost brent_find_minima")]

# Benchmarks are named "<case>/<implementation>/<size>". For each case: its label, the
# unit it is shown in ("flops" reads the FLOP/s counter, anything else is nanoseconds per
# processed item), its sizes and its peers in the order they are named.
CASES = [
    ("product", "dense product", "flops", [128, 512, 1024],
     [("openblas", "OpenBLAS dgemm"), ("eigen", "Eigen")]),
    ("gauss", "Gauss solve", "flops", [100, 500, 1000],
     [("eigen", "Eigen PartialPivLU"), ("lapack", "LAPACK dgesv")]),
    ("inverse", "Inverse", "flops", [100, 500, 1000],
     [("eigen", "Eigen PartialPivLU"), ("lapack", "LAPACK dgetrf+dgetri")]),
    ("sweep", "tridiagonal sweep", "ns/row", [1000, 1000000],
     [("lapack", "LAPACK dgtsv"), ("gsl", "GSL solve_tridiag")]),
    ("spline_build", "spline build (natural)", "ns/node", [1000, 1000000],
     [("gsl", "GSL cspline")]),
    ("spline_eval_random", "spline eval, 1e6 random x, one call each", "ns/point",
     [1000, 1000000], [("gsl", "GSL + accel")]),
    ("spline_eval_random_many", "spline eval, 1e6 random x, one call", "ns/point",
     [1000, 1000000], [("gsl", "GSL + accel")]),
    ("spline_eval_sorted", "spline eval, 1e6 sorted x, one call", "ns/point",
     [1000, 1000000], [("gsl", "GSL + accel")]),
    ("spline_eval_sorted_hint", "spline eval, 1e6 sorted x, one call each with hint",
     "ns/point", [1000, 1000000], [("gsl", "GSL + accel")]),
    ("nd_add_contig", "N-D +=, contiguous", "ns/elem", [64, 256],
     [("eigen", "Eigen Tensor")]),
    ("nd_add_flip", "N-D +=, axis 0 flipped", "ns/elem", [64, 256],
     [("eigen", "Eigen reverse")]),
    ("nd_add_swap", "N-D +=, axes 0,2 swapped", "ns/elem", [64, 256],
     [("eigen", "Eigen shuffle")]),
    ("push_back", "push_back double", "ns/item", [100000],
     [("std_warm", "std::vector, warm"), ("std", "std::vector, fresh")]),
    ("concat", "Concat 1000-blocks", "ns/item", [100000], [("std", "std::vector insert")]),
    ("fct_forward", "cosine transform DCT-II", "ns/elem", [1024, 65536, 1048576, 1000, 999983],
     [("fftw", "FFTW REDFT10")]),
    ("fct_inverse", "cosine transform DCT-III", "ns/elem", [1024, 65536, 1048576, 1000, 999983],
     [("fftw", "FFTW REDFT01")]),
]

# The goals: (case, size) -> [(reference case, reference implementation, factor, text)].
# A goal is met when time(reference) / time(zr) >= factor.
TARGETS = {
    ("product", 1024): [("product", "openblas", 1.0, ">= OpenBLAS")],
    ("gauss", 1000): [("gauss", "eigen", 1.0, ">= Eigen")],
    ("inverse", 1000): [("inverse", "eigen", 1.0, ">= Eigen")],
    ("sweep", 1000000): [("sweep", "lapack", 1.5, ">= 1.5x dgtsv")],
    ("spline_build", 1000): [("spline_build", "gsl", 1.0, ">= GSL")],
    ("spline_build", 1000000): [("spline_build", "gsl", 1.0, ">= GSL")],
    **{(case, n): [(case, "gsl", 1.0, ">= GSL+accel")]
       for case in ("spline_eval_random", "spline_eval_random_many", "spline_eval_sorted",
                    "spline_eval_sorted_hint") for n in (1000, 1000000)},
    ("nd_add_flip", 256): [("nd_add_contig", "loop", 0.9, ">= 0.9x plain loop")],
    ("nd_add_swap", 256): [("nd_add_contig", "loop", 0.5, ">= 0.5x plain loop"),
                           ("nd_add_swap", "eigen", 1.5, ">= 1.5x Eigen shuffle")],
    ("push_back", 100000): [("push_back", "std_warm", 1.0 / 3.0, ">= 1/3 of warm std::vector")],
}
# The cosine transforms: within 1.5x of FFTW's time at every size, both directions.
for _case, _peer in (("fct_forward", "fftw"), ("fct_inverse", "fftw")):
    for _n in (1024, 65536, 1048576, 1000, 999983):
        TARGETS[(_case, _n)] = [(_case, _peer, 1.0 / 1.5, ">= 1/1.5 of FFTW")]

TIME_UNITS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def parse_args():
    here = os.path.dirname(os.path.abspath(__file__))
    default_bin = os.path.join(os.path.dirname(here), "build", "bench-native", "bench")
    p = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    p.add_argument("--bin-dir", default=default_bin,
                   help="directory with the benchmark programs (default: %(default)s)")
    p.add_argument("--json-dir", help="write (or, with --from-json, read) the JSON results here")
    p.add_argument("--from-json", action="store_true",
                   help="print the table from the JSON files in --json-dir, run nothing")
    p.add_argument("--repetitions", type=int, default=3)
    p.add_argument("--min-time", type=float, default=0.2,
                   help="seconds each repetition runs at least (default: %(default)s)")
    p.add_argument("--quick", action="store_true",
                   help="one short repetition per case (a rough table in a few minutes)")
    return p.parse_args()


def run_program(path, name, flt, args):
    reps, min_time = (1, 0.05) if args.quick else (args.repetitions, args.min_time)
    cmd = [path, "--benchmark_format=json", "--benchmark_filter=" + flt,
           "--benchmark_repetitions=%d" % reps, "--benchmark_min_time=%g" % min_time]
    env = dict(os.environ, OPENBLAS_NUM_THREADS="1", OMP_NUM_THREADS="1", GOTO_NUM_THREADS="1")
    start = time.time()
    print("running %s ..." % name, file=sys.stderr, flush=True)
    out = subprocess.run(cmd, env=env, stdout=subprocess.PIPE, check=True).stdout
    print("  %s done in %.0f s" % (name, time.time() - start), file=sys.stderr, flush=True)
    data = json.loads(out)
    if args.json_dir:
        with open(os.path.join(args.json_dir, name + ".json"), "wb") as f:
            f.write(out)
    return data


def collect(args):
    """Returns ({run name: fastest repetition}, merged context, failed benchmarks); the
    context's peak is the highest any program measured."""
    runs, context, errors, peaks = {}, {}, [], []
    if args.json_dir:
        os.makedirs(args.json_dir, exist_ok=True)
    for name, flt in PROGRAMS:
        if args.from_json:
            path = os.path.join(args.json_dir, name + ".json")
            if not os.path.exists(path):
                print("no %s, skipped" % path, file=sys.stderr)
                continue
            with open(path) as f:
                data = json.load(f)
        else:
            path = os.path.join(args.bin_dir, name)
            if not os.path.exists(path):
                print("no %s, skipped" % path, file=sys.stderr)
                continue
            data = run_program(path, name, flt, args)
        context.update(data.get("context", {}))
        if "zr_peak_gflops" in data.get("context", {}):
            peaks.append(float(data["context"]["zr_peak_gflops"]))
        for b in data.get("benchmarks", []):
            if b.get("error_occurred"):
                errors.append("%s (%s)" % (b["name"], b.get("error_message", "")))
                continue
            if b.get("run_type", "iteration") != "iteration":
                continue
            b["seconds"] = b["cpu_time"] * TIME_UNITS[b.get("time_unit", "ns")]
            key = b.get("run_name", b["name"])
            if key not in runs or b["seconds"] < runs[key]["seconds"]:
                runs[key] = b
    if peaks:
        context["zr_peak_gflops"] = max(peaks)
    return runs, context, sorted(set(errors))


def show(run, unit, peak=None):
    """The rate of a run; a GFLOP/s figure with its share of the peak where it is known."""
    if run is None:
        return None
    if unit == "flops":
        gflops = run["FLOP/s"] / 1e9
        if peak:
            return "%.2f GFLOP/s (%.0f%% of peak)" % (gflops, 100 * gflops / peak)
        return "%.2f GFLOP/s" % gflops
    return "%.3g %s" % (1e9 / run["items_per_second"], unit)


def ratio(ref, zr):
    """time(ref) / time(zr): > 1 when zr is the faster."""
    if ref is None or zr is None:
        return None
    return ref["seconds"] / zr["seconds"]


def fmt_ratio(r):
    return "-" if r is None else "%.2fx" % r


def size_text(n):
    if n >= 1024 and n & (n - 1) == 0:
        return "2^%d" % (n.bit_length() - 1)
    digits = str(n)
    if n >= 1000 and digits == "1" + "0" * (len(digits) - 1):
        return "1e%d" % (len(digits) - 1)
    return digits


def differs(a, b):
    """Whether two "check" counters disagree beyond rounding (each implementation rounds
    in its own order, so only a misplaced or wrong result moves them this far)."""
    return abs(a - b) > 1e-6 * max(abs(a), abs(b))


def table(runs, peak=None):
    def get(case, impl, n):
        return runs.get("%s/%s/%d" % (case, impl, n))

    mismatches = []
    lines = ["| case | size | zr | best peer | zr vs best peer | zr vs plain loop | target | met |",
             "|---|---|---|---|---|---|---|---|"]
    met_count = missed_count = 0
    for case, label, unit, sizes, peers in CASES:
        for n in sizes:
            zr = get(case, "zr", n)
            if zr is None:
                continue
            size = size_text(n) + ("^3" if case.startswith("nd_") else "")
            found = [(get(case, impl, n), title) for impl, title in peers]
            found = [(run, title) for run, title in found if run is not None]
            before = len(mismatches)
            for run, title in found + [(get(case, "loop", n), "plain loop")]:
                if run and "check" in run and "check" in zr and differs(run["check"], zr["check"]):
                    mismatches.append("%s %s: zr %.17g, %s %.17g" % (
                        label, size, zr["check"], title, run["check"]))
            if found:
                best, title = min(found, key=lambda item: item[0]["seconds"])
                peer_text = "%s: %s" % (title, show(best, unit, peak))
                best_ratio = fmt_ratio(ratio(best, zr))
            else:
                peer_text, best_ratio = "(no peer built)", "-"
            loop = get(case, "loop", n)
            loop_text = fmt_ratio(ratio(loop, zr)) if loop else ""
            mark = " (!)" if len(mismatches) > before else ""
            goals, verdict = [], ""
            for ref_case, ref_impl, factor, text in TARGETS.get((case, n), []):
                r = ratio(get(ref_case, ref_impl, n), zr)
                if r is None:
                    goals.append("%s (not measured)" % text)
                    verdict = verdict or "n/a"
                    continue
                goals.append("%s: %.2fx" % (text, r))
                if r < factor:
                    verdict = "missed"
                elif verdict != "missed":
                    verdict = "met"
            if verdict == "met":
                met_count += 1
            elif verdict == "missed":
                missed_count += 1
            lines.append("| %s | %s | %s | %s | %s | %s | %s | %s |" % (
                label + mark, size, show(zr, unit, peak), peer_text, best_ratio, loop_text,
                "; ".join(goals), verdict))
    return lines, met_count, missed_count, mismatches


def extremum_table(runs):
    """The evaluation counts of the minimum searches, one row per function and tolerance."""
    cases = {}
    for key, run in runs.items():
        parts = key.split("/")
        if len(parts) == 3 and parts[0] == "extremum":
            cases.setdefault(int(parts[2]), {})[parts[1]] = run
    if not cases:
        return [], 0, 0

    def cell(run):
        if run is None:
            return "-"
        evals, met, members = int(run["evaluations"]), int(run["met"]), int(run["members"])
        if met == members:
            return "%d" % evals
        if members > 1:
            return "%d (%d of %d met)" % (evals, met, members)
        return "%d (not met)" % evals

    lines = ["| function, tolerance | zr | " + " | ".join(t for _, t in EXTREMUM_PEERS) +
             " | target | met |",
             "|---|---|" + "---|" * len(EXTREMUM_PEERS) + "---|---|"]
    met_count = missed_count = 0
    for k in sorted(cases):
        row = cases[k]
        zr = row.get("zr")
        if zr is None:
            continue
        peers = [row.get(impl) for impl, _ in EXTREMUM_PEERS]
        # A peer that misses the tolerance on a member has not done the work zr did.
        ok = int(zr["met"]) == int(zr["members"]) and all(
            p is None or int(p["met"]) < int(p["members"]) or
            zr["evaluations"] <= p["evaluations"] for p in peers)
        verdict = "met" if ok else "missed"
        met_count += ok
        missed_count += not ok
        lines.append("| %s | %s | %s | all met, <= each peer that met all | %s |" % (
            zr.get("label", str(k)), cell(zr), " | ".join(cell(p) for p in peers), verdict))
    return lines, met_count, missed_count


def machine(context):
    model = platform.processor() or "unknown CPU"
    try:
        with open("/proc/cpuinfo") as f:
            for line in f:
                if line.startswith("model name"):
                    model = line.split(":", 1)[1].strip()
                    break
    except OSError:
        pass
    caches = ", ".join("L%d%s %dK" % (c["level"], "d" if c["type"] == "Data" else "",
                                       c["size"] // 1024)
                       for c in context.get("caches", []) if c["type"] != "Instruction")
    parts = ["Machine: %s, %s CPUs at %s MHz (%s)" % (
        model, context.get("num_cpus", "?"), context.get("mhz_per_cpu", "?"), caches)]
    parts.append("compiler %s, %s, flags `%s`" % (
        context.get("zr_compiler", "?"), context.get("zr_build_type", "?"),
        context.get("zr_cxx_flags", "?")))
    peers = [("Eigen", "peer_eigen"), ("", "peer_openblas"), ("GSL", "peer_gsl"),
             ("", "peer_fftw"), ("Boost", "peer_boost")]
    parts.append("peers: " + ", ".join(("%s %s" % (title, context[key])).strip()
                                       for title, key in peers if key in context))
    parts.append("run %s" % context.get("date", datetime.datetime.now().isoformat()))
    lines = ["; ".join(parts)]
    if "zr_peak_gflops" in context:
        lines.append("Peak: %.1f GFLOP/s, one thread, separate multiplies and adds (%s); fused "
                     "multiply-adds may exceed it on a core whose multiplies and adds share their "
                     "units." % (float(context["zr_peak_gflops"]),
                                                context.get("zr_peak_path", "?")))
    if "zr_core" in context:
        lines.append("Core, as zr's kernels read it: %s." % context["zr_core"])
    if "peer_openblas_core" in context:
        forced = context.get("peer_openblas_coretype")
        lines.append("OpenBLAS kernels: %s (%s)." % (
            context["peer_openblas_core"],
            "forced by OPENBLAS_CORETYPE=%s" % forced if forced else "chosen by OpenBLAS"))
    return "\n".join(lines)


def main():
    args = parse_args()
    if args.from_json and not args.json_dir:
        sys.exit("--from-json needs --json-dir")
    runs, context, errors = collect(args)
    if not runs:
        sys.exit("no results: build the benchmarks first (cmake --preset bench-native)")
    peak = float(context["zr_peak_gflops"]) if "zr_peak_gflops" in context else None
    lines, met, missed, mismatches = table(runs, peak)
    print("\n".join(lines))
    print()
    print(machine(context))
    print()
    print("zr, peers: the fastest of the repetitions (CPU time; GFLOP/s from the classic "
          "counts, otherwise ns per item). Ratios > 1: zr is faster. Single-threaded "
          "peers. Targets met: %d, missed: %d." % (met, missed))
    ext_lines, ext_met, ext_missed = extremum_table(runs)
    if ext_lines:
        print()
        print("\n".join(ext_lines))
        print()
        print("Minimum search: function evaluations to meet the tolerance (the bracket within "
              "2 tol of x on both sides, tol = relTol |x| + relTol / 4, and the true minimum "
              "within 2 tol of x); a family row adds up its members. Targets met: %d, "
              "missed: %d." % (ext_met, ext_missed))
    if mismatches:
        print()
        print("(!) Results that disagree (the \"check\" counter, a few weighted elements of the "
              "result):")
        for line in mismatches:
            print("- " + line)
    if errors:
        print()
        print("Benchmarks that failed: " + "; ".join(errors))


if __name__ == "__main__":
    main()
