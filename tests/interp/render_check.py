"""zr-interp's plot as a person sees it: rendered to PNG with rsvg-convert, every data
point must lie on the drawn curve (a pixel of the curve's colour within one pixel of the
point's place), and the file must stay small however many points there are.

  render_check.py plots   PROG DIR   the built-in sample, a daily series over a year and a
                                     dense noisy series (skipped, status 77, without
                                     rsvg-convert)
  render_check.py million PROG DIR   a million points: the SVG under 2 MB, and rendered
                                     and checked when rsvg-convert is there
"""
import math
import re
import shutil
import struct
import subprocess
import sys
import zlib
from pathlib import Path

CURVE = (0x1F, 0x5F, 0xBF)  # the curve's stroke colour in the plot
SKIP = 77
MAX_SVG_BYTES = 2_000_000

SAMPLE = [(0, 0), (0.5, 0.479426), (1.2, 0.932039), (2, 0.909297), (3, 0.141120),
          (3.6, -0.442520), (4.5, -0.977530), (5.5, -0.705540), (6.2832, 0)]


def paeth(a, b, c):
    p = a + b - c
    pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
    return a if pa <= pb and pa <= pc else b if pb <= pc else c


def read_png(path):
    """Rows of RGBA tuples of an 8-bit RGB or RGBA, non-interlaced PNG."""
    data, pos, idat = Path(path).read_bytes(), 8, b""
    assert data[:8] == b"\x89PNG\r\n\x1a\n", f"{path}: not a PNG"
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        chunk, pos = data[pos + 8:pos + 8 + length], pos + 12 + length
        if kind == b"IHDR":
            width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", chunk)
        elif kind == b"IDAT":
            idat += chunk
    assert depth == 8 and interlace == 0 and colour in (2, 6), f"{path}: unexpected PNG format"
    bpp = 4 if colour == 6 else 3
    raw, stride, prev, pixels = zlib.decompress(idat), width * bpp, bytearray(width * bpp), []
    # Each line's filter predicts a byte from its left (a), upper (b) and upper-left (c) bytes.
    predict = {0: lambda a, b, c: 0, 1: lambda a, b, c: a, 2: lambda a, b, c: b,
               3: lambda a, b, c: (a + b) // 2, 4: paeth}
    for y in range(height):
        start = y * (stride + 1)
        rule, line = predict[raw[start]], bytearray(raw[start + 1:start + 1 + stride])
        for i in range(stride):
            a, c = (line[i - bpp], prev[i - bpp]) if i >= bpp else (0, 0)
            line[i] = (line[i] + rule(a, prev[i], c)) & 0xFF
        prev = line
        pixels.append([tuple(line[i:i + bpp]) + (255,) * (4 - bpp) for i in range(0, stride, bpp)])
    return pixels


def placed(svg, points, name):
    """The points' places under the data-to-SVG mapping the plot states in its leading
    comment; the points keep 3 to 5 % of the plot's width and height clear of its frame, the
    first and last point in that band."""
    m = re.search(r"<!-- zr-interp plot: x (\S+) (\S+) -> (\S+) (\S+), "
                  r"y (\S+) (\S+) -> (\S+) (\S+) -->", svg)
    assert m, f"{name}: the plot does not state its mapping"
    x0, x1, left, right, y0, y1, bottom, top = map(float, m.groups())
    places = [(left + (x - x0) / (x1 - x0) * (right - left),
               bottom + (y - y0) / (y1 - y0) * (top - bottom)) for x, y in points]
    dx, dy = right - left, bottom - top
    xs, ys = [p[0] for p in places], [p[1] for p in places]
    gaps = ((min(xs) - left) / dx, (right - max(xs)) / dx,
            (min(ys) - top) / dy, (bottom - max(ys)) / dy)
    assert min(gaps) >= 0.03 and max(gaps[:2]) <= 0.05, \
        f"{name}: padding left, right, top, bottom {gaps}"
    return places


def check_markers(svg, places, name):
    """Every ring drawn for a point sits where the mapping puts one of the points."""
    group = re.search(r'<g class="points"[^>]*>(.*?)</g>', svg, re.S)
    rings = re.findall(r'<circle cx="([-0-9.]+)" cy="([-0-9.]+)"', group.group(1) if group else "")
    assert rings, f"{name}: no point markers"
    cells = {}
    for x, y in places:
        cells.setdefault((int(x), int(y)), []).append((x, y))
    for cx, cy in rings:
        x, y = float(cx), float(cy)
        near = [q for i in (-1, 0, 1) for j in (-1, 0, 1)
                for q in cells.get((int(x) + i, int(y) + j), [])]
        assert any(abs(qx - x) <= 0.01 and abs(qy - y) <= 0.01 for qx, qy in near), \
            f"{name}: a marker at ({cx}, {cy}) is at no data point"


def on_curve(pixels, px, py):
    """Whether a pixel within one of (px, py) has the curve's colour."""
    col, row = int(math.floor(px)), int(math.floor(py))
    return any(0 <= r < len(pixels) and 0 <= c < len(pixels[r]) and pixels[r][c][3] == 255
               and max(abs(pixels[r][c][i] - CURVE[i]) for i in range(3)) <= 40
               for r in range(row - 1, row + 2) for c in range(col - 1, col + 2))


def run_plot(prog, out, name, points=None):
    """zr-interp's plot of the points (its built-in sample when none are given)."""
    svg_path, args = out / f"{name}.svg", ["--sample"]
    if points is not None:
        args = [str(out / f"{name}.txt")]
        Path(args[0]).write_text("".join(f"{x!r} {y!r}\n" for x, y in points))
    done = subprocess.run([prog, *args, "--svg", str(svg_path)], stdin=subprocess.DEVNULL,
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    assert done.returncode == 0, f"zr-interp {name}: status {done.returncode}: {done.stderr.decode()}"
    return svg_path, svg_path.read_text()


def check_rendered(svg_path, svg, points, name, every=1):
    png = svg_path.with_suffix(".png")
    subprocess.run(["rsvg-convert", str(svg_path), "-o", str(png)], check=True)
    pixels, places = read_png(png), placed(svg, points, name)
    check_markers(svg, places, name)
    missed = [(points[i], places[i]) for i in range(0, len(points), every)
              if not on_curve(pixels, *places[i])]
    assert not missed, (f"{name}: {len(missed)} of {len(points)} points off the curve, "
                        f"first at {missed[0][0]} (pixel {missed[0][1]})")
    print(f"{name}: {len(range(0, len(points), every))} points on the curve")


def noisy(n):
    return [(i, (i * 7919) % 1009 / 10 + 50 * math.sin(i / (n / 6))) for i in range(n)]


def plots(prog, out):
    check_rendered(*run_plot(prog, out, "sample"), SAMPLE, "sample")
    # A year of daily values: a season, a weekly swing and some noise.
    daily = [(d, round(10 + 8 * math.sin(2 * math.pi * d / 365) + 3 * math.sin(d * 2 * math.pi / 7)
                       + (d * 7919 % 13) / 4, 3)) for d in range(365)]
    for name, points in (("daily", daily), ("dense", noisy(20000))):
        check_rendered(*run_plot(prog, out, name, points), points, name)


def million(prog, out, render):
    points = noisy(1_000_000)
    svg_path, svg = run_plot(prog, out, "million", points)
    size = svg_path.stat().st_size
    assert size <= MAX_SVG_BYTES, f"million: the plot has {size} bytes, over {MAX_SVG_BYTES}"
    print(f"million: {size} bytes")
    if render:
        check_rendered(svg_path, svg, points, "million", every=7)
    else:
        placed(svg, points, "million")


def main():
    mode, prog, out = sys.argv[1], sys.argv[2], Path(sys.argv[3])
    out.mkdir(parents=True, exist_ok=True)
    render = shutil.which("rsvg-convert") is not None
    if mode == "plots" and not render:
        print("rsvg-convert not found: skipped")
        return SKIP
    try:
        plots(prog, out) if mode == "plots" else million(prog, out, render)
    except AssertionError as e:
        print(f"FAILED: {e}")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
