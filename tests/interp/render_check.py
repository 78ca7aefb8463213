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


def read_png(path):
    """(width, height, rows of RGBA tuples) of an 8-bit RGB or RGBA, non-interlaced PNG."""
    data = Path(path).read_bytes()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError(f"{path}: not a PNG")
    pos, idat = 8, b""
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        chunk = data[pos + 8:pos + 8 + length]
        pos += 12 + length
        if kind == b"IHDR":
            width, height, depth, colour, _, _, interlace = struct.unpack(">IIBBBBB", chunk)
        elif kind == b"IDAT":
            idat += chunk
        elif kind == b"IEND":
            break
    if depth != 8 or interlace != 0 or colour not in (2, 6):
        raise ValueError(f"{path}: depth {depth}, colour type {colour}, interlace {interlace}")
    bpp = 4 if colour == 6 else 3
    raw = zlib.decompress(idat)
    stride = width * bpp
    prev = bytearray(stride)
    pixels = []
    for y in range(height):
        start = y * (stride + 1)
        kind, line = raw[start], bytearray(raw[start + 1:start + 1 + stride])
        for i in range(stride):
            a = line[i - bpp] if i >= bpp else 0
            b = prev[i]
            c = prev[i - bpp] if i >= bpp else 0
            if kind == 1:
                line[i] = (line[i] + a) & 0xFF
            elif kind == 2:
                line[i] = (line[i] + b) & 0xFF
            elif kind == 3:
                line[i] = (line[i] + (a + b) // 2) & 0xFF
            elif kind == 4:
                p = a + b - c
                pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
                line[i] = (line[i] + (a if pa <= pb and pa <= pc else b if pb <= pc else c)) & 0xFF
        prev = line
        row = [tuple(line[i:i + bpp]) + ((255,) if bpp == 3 else ()) for i in range(0, stride, bpp)]
        pixels.append(row)
    return width, height, pixels


def mapping(svg):
    """The data-to-SVG mapping the plot states in its leading comment."""
    m = re.search(r"<!-- zr-interp plot: x (\S+) (\S+) -> (\S+) (\S+), "
                  r"y (\S+) (\S+) -> (\S+) (\S+) -->", svg)
    if not m:
        raise AssertionError("the plot does not state its mapping")
    x0, x1, p0, p1, y0, y1, q0, q1 = map(float, m.groups())
    return lambda x, y: (p0 + (x - x0) / (x1 - x0) * (p1 - p0),
                         q0 + (y - y0) / (y1 - y0) * (q1 - q0))


def check_markers(svg, places, name):
    """Every ring drawn for a point sits where the mapping puts one of the points."""
    group = re.search(r'<g class="points"[^>]*>(.*?)</g>', svg, re.S)
    if not group:
        raise AssertionError(f"{name}: no points group")
    cells = {}
    for x, y in places:
        cells.setdefault((int(x), int(y)), []).append((x, y))
    rings = re.findall(r'<circle cx="([-0-9.]+)" cy="([-0-9.]+)"', group.group(1))
    if not rings:
        raise AssertionError(f"{name}: no point markers")
    for cx, cy in rings:
        x, y = float(cx), float(cy)
        near = [q for i in (-1, 0, 1) for j in (-1, 0, 1)
                for q in cells.get((int(x) + i, int(y) + j), [])]
        if not any(abs(qx - x) <= 0.01 and abs(qy - y) <= 0.01 for qx, qy in near):
            raise AssertionError(f"{name}: a marker at ({cx}, {cy}) is at no data point")


def check_padding(svg, places, name):
    """The points keep 3 to 5 % of the plot's width and height clear of its frame; the
    first and last point sit in that band."""
    m = re.search(r"-> (\S+) (\S+), y \S+ \S+ -> (\S+) (\S+) -->", svg)
    left, right, bottom, top = map(float, m.groups())
    dx, dy = right - left, bottom - top
    xs, ys = [p[0] for p in places], [p[1] for p in places]
    gaps = ((min(xs) - left) / dx, (right - max(xs)) / dx,
            (min(ys) - top) / dy, (bottom - max(ys)) / dy)
    if min(gaps) < 0.03 or max(gaps[:2]) > 0.05:
        raise AssertionError(f"{name}: padding left, right, top, bottom {gaps}")


def on_curve(pixels, px, py):
    """Whether a pixel within one of (px, py) has the curve's colour."""
    col, row = int(math.floor(px)), int(math.floor(py))
    for r in range(row - 1, row + 2):
        for c in range(col - 1, col + 2):
            if 0 <= r < len(pixels) and 0 <= c < len(pixels[r]):
                p = pixels[r][c]
                if p[3] == 255 and max(abs(p[i] - CURVE[i]) for i in range(3)) <= 40:
                    return True
    return False


def run_plot(prog, args, svg_path, stdin=None):
    with open(stdin, "rb") if stdin else open("/dev/null", "rb") as inp:
        done = subprocess.run([prog, *args, "--svg", str(svg_path)], stdin=inp,
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    if done.returncode != 0:
        raise AssertionError(f"zr-interp {' '.join(args)}: status {done.returncode}: "
                             f"{done.stderr.decode()}")
    return Path(svg_path).read_text()


def check_rendered(svg_path, svg, points, name, every=1):
    png = svg_path.with_suffix(".png")
    subprocess.run(["rsvg-convert", str(svg_path), "-o", str(png)], check=True)
    _, _, pixels = read_png(png)
    to_px = mapping(svg)
    places = [to_px(x, y) for x, y in points]
    check_markers(svg, places, name)
    check_padding(svg, places, name)
    missed = [(points[i], places[i]) for i in range(0, len(points), every)
              if not on_curve(pixels, *places[i])]
    if missed:
        raise AssertionError(f"{name}: {len(missed)} of {len(points)} points off the curve, "
                             f"first at {missed[0][0]} (pixel {missed[0][1]})")
    print(f"{name}: {len(range(0, len(points), every))} points on the curve")


def write_points(path, points):
    path.write_text("".join(f"{x!r} {y!r}\n" for x, y in points))


def daily():
    """A year of daily values: a season, a weekly swing and some noise."""
    return [(d, round(10 + 8 * math.sin(2 * math.pi * d / 365) + 3 * math.sin(d * 2 * math.pi / 7)
                      + (d * 7919 % 13) / 4, 3)) for d in range(365)]


def noisy(n):
    return [(i, (i * 7919) % 1009 / 10 + 50 * math.sin(i / (n / 6))) for i in range(n)]


def plots(prog, out):
    svg_path = out / "sample.svg"
    check_rendered(svg_path, run_plot(prog, ["--sample"], svg_path), SAMPLE, "sample")
    for name, points in (("daily", daily()), ("dense", noisy(20000))):
        data, svg_path = out / f"{name}.txt", out / f"{name}.svg"
        write_points(data, points)
        check_rendered(svg_path, run_plot(prog, [str(data)], svg_path), points, name)


def million(prog, out, render):
    points = noisy(1_000_000)
    data, svg_path = out / "million.txt", out / "million.svg"
    write_points(data, points)
    svg = run_plot(prog, [str(data)], svg_path)
    size = svg_path.stat().st_size
    if size > MAX_SVG_BYTES:
        raise AssertionError(f"million: the plot has {size} bytes, over {MAX_SVG_BYTES}")
    print(f"million: {size} bytes")
    to_px = mapping(svg)
    check_padding(svg, [to_px(x, y) for x, y in points], "million")
    if render:
        check_rendered(svg_path, svg, points, "million", every=7)


def main():
    mode, prog, out = sys.argv[1], sys.argv[2], Path(sys.argv[3])
    out.mkdir(parents=True, exist_ok=True)
    render = shutil.which("rsvg-convert") is not None
    try:
        if mode == "plots":
            if not render:
                print("rsvg-convert not found: skipped")
                return SKIP
            plots(prog, out)
        else:
            million(prog, out, render)
    except AssertionError as e:
        print(f"FAILED: {e}")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
