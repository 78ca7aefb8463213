"""The spline's many-point evaluation from Python, against the library call alone and
against SciPy's CubicSpline.

Run by hand after building the python preset:
    PYTHONPATH=build/python/python /usr/bin/python3 bench/python_bench.py [points]

Three timings of the same natural cubic spline (1000 nodes) at the same sorted random
points (1e6 by default), each the best of several runs:
  python   s(x): the call from Python, argument checks and the new result array included;
  library  the seconds Spline._timed reports: a steady clock read inside the binding just
           around the library's many-point call (no Python, no allocation of the result),
           which is what a C++ program calling the library pays;
  scipy    scipy.interpolate.CubicSpline(x, y, bc_type="natural")(points), if installed.
It prints the host, the three times and the ratios python/library (target <= 1.2) and
scipy/python (target > 1).
"""
import os
import platform
import sys
import time

import numpy as np

import zr


def cpu_model():
    try:
        with open("/proc/cpuinfo") as f:
            for line in f:
                if line.startswith("model name"):
                    return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return platform.processor() or platform.machine()


def best(f, repeat):
    times = []
    for _ in range(repeat):
        start = time.perf_counter()
        f()
        times.append(time.perf_counter() - start)
    return min(times)


def main():
    n_points = int(float(sys.argv[1])) if len(sys.argv) > 1 else 1_000_000
    repeat = 7
    rng = np.random.default_rng(1)
    x = np.cumsum(rng.uniform(0.1, 1.0, 1000))
    y = np.sin(x)
    points = np.sort(rng.uniform(x[0], x[-1], n_points))
    s = zr.Spline(x, y, bc="natural")

    python = best(lambda: s(points), repeat)
    library = min(s._timed(points)[1] for _ in range(repeat))
    assert np.array_equal(s(points), s._timed(points)[0])

    print("host:    %s (%d CPUs), Python %s, NumPy %s" % (cpu_model(), os.cpu_count() or 0,
                                                        platform.python_version(), np.__version__))
    print("points:  %d, spline of %d nodes, best of %d" % (n_points, len(x), repeat))
    print("python   %8.3f ms" % (python * 1e3))
    print("library  %8.3f ms   python/library %.3f (target <= 1.2)" % (library * 1e3, python / library))
    try:
        from scipy.interpolate import CubicSpline
    except ImportError:
        print("scipy    not installed")
        return
    theirs = CubicSpline(x, y, bc_type="natural")
    scipy = best(lambda: theirs(points), repeat)
    print("scipy    %8.3f ms   scipy/python %.3f (target > 1); largest difference %.3g" %
          (scipy * 1e3, scipy / python, np.max(np.abs(theirs(points) - s(points)))))


if __name__ == "__main__":
    main()
