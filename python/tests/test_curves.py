"""Contours, Beta-spline curves and tubes: the contour's views of its block, values the
C++ tests pin, and the shapes and indices of the vertex and face arrays."""
import struct

import numpy as np
import pytest

import zr

PREFIX = "Invalid parameters : "
SQUARE = [[0, 0], [1, 0], [1, 1], [0, 1]]


def test_contour_points_are_views_of_its_block():
    c = zr.Contour(np.array(SQUARE, dtype=float))
    assert c.holders == 1
    pts, buf = c.points, np.asarray(c)
    assert pts.shape == (4, 2) and pts.strides == (16, 8) and np.shares_memory(pts, buf)
    assert c.holders == 3  # both views hold the block, the buffer's as much as points'
    buf[1, 0] = 3.0  # writes through either side reach the contour
    assert c.area() == 2.0 and pts[1, 0] == 3.0
    c.set_orientation(1)  # reversed in place: the views see the new order
    assert pts.tolist() == [[0, 1], [1, 1], [3, 0], [0, 0]] and c.orientation() == 1
    del c, pts
    assert buf.tolist()[2] == [3, 0]  # the block outlives the contour
    source = np.array(SQUARE, dtype=float)
    own = zr.Contour(source[::-1])  # strided input is copied
    source[0, 0] = 9.0
    assert own.points.tolist() == SQUARE[::-1]


def test_contour_measures_and_tests():
    sq = zr.Contour(SQUARE)
    assert (sq.area(), sq.perimeter(), sq.orientation(), len(sq)) == (1.0, 4.0, 0, 4)
    assert sq(0.625) == zr.Vec2(0.5, 1) and sq(-0.125) == sq(0.875)
    assert sq(np.array([0.0, 0.625])).tolist() == [[0, 0], [0.5, 1]]
    tri = zr.Contour([[0, 0], [2, 1], [0, 2]])
    cases = [(sq, (0.5, 0.5), 1), (sq, (1, 0.5), 0), (sq, (0.5, 1), 0), (sq, (2, 1), -1),
             (tri, (1, 1), 1), (tri, (3, 1), -1), (tri, (2, 1), 0), (tri, (1, 0.5), 0)]
    for c, p, want in cases:
        assert c.inside(p) == want, p
    assert sq.inside(np.array([[0.5, 0.5], [2, 1], [1, 0.5]])).tolist() == [1, -1, 0]
    assert not sq.is_self_intersecting()
    assert zr.Contour([[0, 0], [4, 0], [4, 4], [2, -2]]).is_self_intersecting()
    assert sq.center() == zr.Vec2(0.5, 0.5) and sq.nearest((0.9, 1.2)) == (2, pytest.approx(0.2236067977))
    assert sq.bounding_rect() == zr.Rect((0, 0), (1, 1))
    # The library reads point 0 of these unchecked; without one they are refused.
    empty = zr.Contour(np.zeros((0, 2)))
    for call in (empty.center, empty.bounding_rect, lambda: empty.nearest((0, 0)),
                 lambda: empty.farthest((0, 0))):
        with pytest.raises(ValueError, match="no points"):
            call()


def test_contour_cut_clip_align_and_flat_form():
    sq = zr.Contour(SQUARE)
    # Vertices on the cutting line come out twice, as the library cuts.
    cut = sq.cut(zr.Line2D((1, 0), (0, 1)))
    assert cut.points.tolist() == [[1, 0], [1, 0], [1, 1], [0, 1], [0, 1]]
    assert sq.cut(zr.Line2D((0, 0.5), (1, 0.5))).points.tolist() == [[0, 0], [1, 0], [1, 0.5], [0, 0.5]]
    big = zr.Contour([[-1, -1], [5, -1], [5, 5], [-1, 5]])
    assert big.clip(3, 3).points.tolist() == [[2, 2], [0, 2], [0, 0], [2, 0]]
    few = PREFIX + "Contour2D must have larger two of point."
    with pytest.raises(ValueError) as info:
        zr.Contour(SQUARE[:2]).cut(zr.Line2D((0, 0), (1, 0)))
    assert str(info.value) == few
    # Alignment reorders in place, so an earlier view sees it.
    c = zr.Contour([[2, 0], [0, 0], [0, 1], [2, 1]])
    view = c.points
    c.align(zr.Contour([[0, 0], [2, 0], [2, 1], [0, 1]]), method="nearest")
    assert view.tolist() == [[0, 0], [2, 0], [2, 1], [0, 1]]
    with pytest.raises(ValueError) as info:
        c.align(zr.Contour(SQUARE[:3]))
    assert str(info.value) == PREFIX + "zrSimpleContour2D::MakeCoherent: both length Must be equal."
    # The array's form: a 32-bit count, then x and y of every point.
    data = zr.Contour([[1.5, 2], [3, 4], [5, 6]]).to_bytes()
    assert data == struct.pack("<i6d", 3, 1.5, 2, 3, 4, 5, 6)
    assert zr.Contour.from_bytes(data).points.tolist() == [[1.5, 2], [3, 4], [5, 6]]


def test_beta_curves_pass_through_their_points():
    pts = np.array([[0, 0, 0], [1, 2, 0], [3, 1, 1], [4, 3, 2], [6, 0, 0]], dtype=float)
    curve = zr.BetaCurve(pts, skew=1.5, tension=2.0)
    assert (curve.skew, curve.tension, len(curve)) == (1.5, 2.0, 5)
    ts = np.arange(5) / 4
    np.testing.assert_allclose(curve(ts), pts, atol=1e-12)
    assert curve.controls.shape == (5, 3) and curve.controls[0].tolist() == [0, 0, 0]
    assert curve.vertices(9).tolist()[4] == list(curve(0.5))
    curve.set_control(2, (3, 1, 5))
    assert curve.controls[2].tolist() == [3, 1, 5]
    with pytest.raises(IndexError):
        curve.set_control(5, (0, 0, 0))
    closed = zr.BetaContour(pts[:, :2])  # plane points lie at z = 0
    np.testing.assert_allclose(closed(np.arange(5) / 5)[:, :2], pts[:, :2], atol=1e-12)
    np.testing.assert_allclose(closed(1.0 - 1e-15), closed(0.0), atol=1e-9)
    assert closed.vertices(10).shape == (10, 3)
    b = zr.BetaSpline()
    assert (b.blend(0.0), b.blend(-1.0), b.blend(2.0)) == (2 / 3, 1 / 6, 0.0)
    assert b.blend(1.0) == pytest.approx(1 / 6, abs=1e-16)
    # One point leaves the open curve's system singular: the solver's text.
    with pytest.raises(ValueError, match="^" + PREFIX):
        zr.BetaCurve([[0, 0, 0]])


def test_tube_mesh_and_errors():
    net = np.zeros((3, 6, 3))
    angles = np.arange(6) * np.pi / 3
    for i in range(3):
        net[i, :, 0], net[i, :, 1], net[i, :, 2] = (1 + i) * np.cos(angles), (1 + i) * np.sin(angles), i
    tube = zr.BetaTube(net)
    assert (tube.rows, tube.columns, tube.control_net.shape) == (3, 6, (5, 9, 3))
    # Data point (i, j) lies at u = j / k, v = i / (m - 1).
    for i in range(3):
        for j in range(6):
            assert np.allclose(list(tube(j / 6, i / 2)), net[i, j], atol=1e-12)
    nu, nv = 12, 5
    vertices, faces = tube.mesh(nu, nv)
    assert vertices.shape == (nu * nv, 3) and faces.shape == (2 * nu * (nv - 1), 3)
    assert faces.min() == 0 and faces.max() == nu * nv - 1
    assert list(tube(3 / nu, 2 / (nv - 1))) == vertices[2 * nu + 3].tolist()
    # Every interior edge is shared by exactly two triangles: a closed band of quads.
    edges = {}
    for a, b, c in faces.tolist():
        for e in ((a, b), (b, c), (c, a)):
            key = tuple(sorted(e))
            edges[key] = edges.get(key, 0) + 1
    assert sorted(set(edges.values())) == [1, 2] and list(edges.values()).count(1) == 2 * nu
    # From plane contours: the same rings as Contour objects and as arrays.
    rings = [zr.Contour(net[i, :, :2]) for i in range(3)]
    from_contours = zr.BetaTube.from_contours(rings, [0.0, 1.0, 2.0])
    assert np.allclose(list(from_contours(0.0, 0.5)), list(tube(0.0, 0.5)), atol=1e-12)
    assert rings[1].points.tolist() == net[1, :, :2].tolist()  # the caller's are untouched
    with pytest.raises(ValueError) as info:
        zr.BetaTube.from_contours(rings, [0.0, 1.0])
    assert str(info.value) == PREFIX + "BetaTube: number of heights must equal number of contours."


def test_plot_example_writes_svg_without_matplotlib(tmp_path):
    import os
    import subprocess
    import sys
    import xml.etree.ElementTree as ET

    script = os.path.join(os.path.dirname(__file__), "..", "..", "examples", "python",
                          "plot_spline_contour.py")
    run = subprocess.run([sys.executable, script, "--svg", "--out", str(tmp_path)],
                         capture_output=True, text=True, env=dict(os.environ), check=True)
    spline, contour = tmp_path / "spline.svg", tmp_path / "contour.svg"
    assert run.stdout.split() == [str(spline), str(contour)]
    tags = [e.tag.split("}")[1] for e in ET.parse(contour).getroot()]
    assert tags.count("polygon") == 2 and "polyline" in tags
    plot = spline.read_text()  # zr-interp's plot: its mapping comment, one marker per point
    points = plot.split('<g class="points"')[1].split("</g>")[0]
    assert "<!-- zr-interp plot: x " in plot and points.count("<circle") == 6
