"""A natural cubic spline through a few points, and a contour clipped by a line.

    PYTHONPATH=build/python/python /usr/bin/python3 examples/python/plot_spline_contour.py
        [--out DIR] [--svg]

With matplotlib installed the picture is drawn with it into DIR/spline_contour.png;
otherwise (or with --svg) the script writes two SVG files: DIR/spline.svg, zr-interp's
own plot of the spline (Spline.svg), and DIR/contour.svg, the contour before and after
the cut as plain SVG text of its own. DIR defaults to the current directory.
"""
import argparse
import os

import numpy as np

import zr


def figures():
    """The spline's curve and nodes, and the contour before and after the cut."""
    x = np.array([0.0, 1.0, 2.5, 3.5, 5.0, 6.0])
    y = np.array([1.0, 3.0, 2.0, 4.0, 1.5, 2.5])
    spline = zr.Spline(x, y, bc="natural")
    t = np.linspace(x[0], x[-1], 200)
    curve = np.column_stack([t, spline(t)])

    # A star, cut by the line through (0.2, -2) and (0.8, 2): its right side stays.
    angles = np.arange(10) * np.pi / 5
    radius = np.where(np.arange(10) % 2 == 0, 2.0, 0.9)
    star = zr.Contour(np.column_stack([radius * np.cos(angles), radius * np.sin(angles)]))
    line = zr.Line2D((0.2, -2.0), (0.8, 2.0))
    kept = star.cut(line)
    return {
        "spline": spline,
        "nodes": np.column_stack([x, y]),
        "curve": curve,
        "star": star.points.copy(),
        "kept": kept.points.copy(),
        "line": np.array([line.p1, (0.8, 2.0)]),
        "areas": (star.area(), kept.area()),
    }


def plot_matplotlib(f, path):
    import matplotlib

    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    fig, (left, right) = plt.subplots(1, 2, figsize=(10, 4))
    left.plot(*f["curve"].T, label="natural cubic spline")
    left.plot(*f["nodes"].T, "o", label="points")
    left.legend()
    right.fill(*f["star"].T, alpha=0.2, label="contour, area %.3f" % f["areas"][0])
    right.fill(*f["kept"].T, alpha=0.6, label="cut, area %.3f" % f["areas"][1])
    right.plot(*f["line"].T, "k--", label="cutting line")
    right.set_aspect("equal")
    right.legend(loc="lower left")
    fig.savefig(path)
    return path


def plot_svg(f, out):
    """zr-interp's plot of the spline, and the contour on 400 x 300 pixels of plain SVG."""
    spline_path, contour_path = os.path.join(out, "spline.svg"), os.path.join(out, "contour.svg")
    with open(spline_path, "w") as svg:
        svg.write(f["spline"].svg(title="natural cubic spline through %d points"
                                  % len(f["nodes"])))
    lo, hi = np.vstack([f["star"], f["line"]]).min(0), np.vstack([f["star"], f["line"]]).max(0)
    scale = min(360 / (hi[0] - lo[0]), 260 / (hi[1] - lo[1]))

    def pts(a):
        return " ".join("%.2f,%.2f" % (20 + (p[0] - lo[0]) * scale, 280 - (p[1] - lo[1]) * scale)
                        for p in a)

    shapes = [("polygon", f["star"], 'fill="steelblue" fill-opacity="0.2" stroke="steelblue"'),
              ("polygon", f["kept"], 'fill="steelblue" fill-opacity="0.6" stroke="navy"'),
              ("polyline", f["line"], 'fill="none" stroke="black" stroke-dasharray="4 3"')]
    with open(contour_path, "w") as svg:
        svg.write('<svg xmlns="http://www.w3.org/2000/svg" width="400" height="300">\n')
        svg.write("<title>contour area %.3f, after the cut %.3f</title>\n" % f["areas"])
        svg.write('<rect width="400" height="300" fill="white"/>\n')
        for kind, a, style in shapes:
            svg.write('<%s points="%s" %s/>\n' % (kind, pts(a), style))
        svg.write("</svg>\n")
    return spline_path + "\n" + contour_path


def main(argv=None):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--out", default=".", help="the directory to write into")
    parser.add_argument("--svg", action="store_true", help="write SVG even with matplotlib")
    args = parser.parse_args(argv)
    f = figures()
    path = None
    if not args.svg:
        try:
            path = plot_matplotlib(f, os.path.join(args.out, "spline_contour.png"))
        except ImportError:
            pass
    if path is None:
        path = plot_svg(f, args.out)
    print(path)


if __name__ == "__main__":
    main()
