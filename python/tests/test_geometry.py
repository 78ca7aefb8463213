"""Points, primitives and transforms: buffer views of the points, the flat forms' bytes,
and transform values the C++ tests pin."""
import struct

import numpy as np
import pytest

import zr

PREFIX = "Invalid parameters : "


def test_points_are_values_with_a_buffer_view():
    v = zr.Vec2(3.0, 4.0)
    view = np.asarray(v)
    view[0] = 6.0  # the buffer is the point's own coordinates
    v.y = 8.0
    assert view.tolist() == [6.0, 8.0] and v.norm() == 10.0
    assert (v + zr.Vec2(1, 1), v * 0.5, -zr.Vec2(0.0, 1.0), v / zr.Vec2(2, 4)) == (
        zr.Vec2(7, 9), zr.Vec2(3, 4), zr.Vec2(-0.0, -1.0), zr.Vec2(3, 2))
    assert zr.Vec2((1, 2)) == zr.Vec2(1, 2) and list(zr.Vec3(1, 2, 3)) == [1, 2, 3]
    assert zr.Vec3(1, 2, 3)[-1] == 3
    with pytest.raises(IndexError):
        zr.Vec2(1, 2)[2]
    assert zr.Vec3(1.0, 0, 0).cross((0, 1.0, 0)) == zr.Vec3(0, 0, 1)
    with pytest.raises(ValueError, match="3 coordinates"):
        zr.Vec3((1, 2))
    # Flat forms: the raw doubles.
    assert zr.Vec2(1.5, -2).to_bytes() == struct.pack("<2d", 1.5, -2)
    assert zr.Vec3.from_bytes(struct.pack("<3d", 1, 2, 3)) == zr.Vec3(1, 2, 3)


def test_lines_rays_and_intersections():
    line = zr.Line2D((0.0, 1.0), (1.0, 1.0))  # y = 1, directed +x: the right is -y
    assert (line.a, line.b, line.c) == (0.0, 1.0, 1.0)
    assert line.offset((5.0, 3.0)) == 2.0 and line.side_distance((5.0, 3.0)) == -2.0
    assert line.intersect(zr.Line2D((2.0, 0.0), (2.0, 5.0))) == zr.Vec2(2.0, 1.0)
    assert line.intersect(zr.Line2D((0.0, 2.0), (1.0, 2.0))) is None  # parallel
    ray = zr.Ray2D((0.0, 0.0), (3.0, 4.0), through=True)
    assert ray.direction == zr.Vec2(0.6, 0.8)
    assert ray.intersect(zr.Segment2D((0.0, 4.0), (4.0, 0.0))) is not None
    assert ray.intersect(zr.Segment2D((-1.0, 0.0), (-1.0, 4.0))) is None
    # The nearest hit on a polyline, whatever its order; a Contour is an N x 2 array.
    box = zr.Contour([[3, 3], [3, 6], [-1, 6], [-1, 3]])
    ray_x = zr.Ray2D((0.0, 4.0), (1.0, 0.0))
    assert ray_x.intersect_polyline(box) == zr.Vec2(3.0, 4.0)
    assert ray_x.intersect_polyline(np.zeros((1, 2))) is None
    frame = zr.Ray3D((1, 2, 3), (0, 2, 0)).frame()
    assert np.allclose(list(frame.apply((1, 5, 3))), [0, 0, 3], atol=1e-15)
    assert zr.Plane((0, 0, 2), (0, 0, 3)).d == -6.0


@pytest.mark.parametrize("dim", [2, 3])
def test_transform_steps_products_and_flat_form(dim):
    T = zr.Transform2D if dim == 2 else zr.Transform3D
    vec = (lambda *c: zr.Vec2(*c[:2])) if dim == 2 else zr.Vec3
    s = T().add_shift(vec(1, 1, 1)).add_scale(vec(2, 3, 4))  # the scale acts on the shift too
    assert s.apply(vec(1, 1, 1)) == vec(4, 6, 8)
    swap = np.eye(dim)[[1, 0] + list(range(2, dim))]
    assert s.add_matrix(swap) is s  # steps chain on the same object
    assert s.apply_vec(vec(1, 0, 0)) == vec(0, 2, 0)
    flat = [0, 3, 2, 0, 3, 2] if dim == 2 else [0, 3, 0, 2, 0, 0, 0, 0, 4, 3, 2, 4]
    assert s.to_bytes() == struct.pack("<%dd" % len(flat), *flat)
    assert T.from_bytes(s.to_bytes()).to_bytes() == s.to_bytes()
    # An array of points: each row is what the single point gives, bit for bit.
    t = T().add_scale(vec(2, 3, 4))
    t = t.add_turn(np.pi / 2) if dim == 2 else t.add_turn(0, 0, np.pi / 2)
    t.add_shift(vec(-4, 9, 1))
    pts = np.random.default_rng(3).normal(size=(50, dim))
    out = t.apply(pts)
    assert out.shape == (50, dim)
    assert all(list(t.apply(pts[i])) == out[i].tolist() for i in range(50))
    assert np.allclose(list(t.apply(vec(1, 0, 0))), list(vec(-4, 11, 1)), atol=1e-14)
    assert np.allclose(list(t.old_scale(vec(10, 1, 100))), list(vec(2, 30, 400)), atol=1e-13)
    assert np.allclose((t @ t.inverse()).apply(pts), pts, atol=1e-12)
    a, b = T().add_scale(vec(2, 2, 2)), T().add_shift(vec(1, 0, 0))
    assert (a @ b).apply(vec(0, 0, 0)) == vec(2, 0, 0)  # b first
    # The 3-D text is the solver's, one of the library's two Windows-1251 messages.
    singular = ("zrMatrix2x2::Inverse : det = 0 " if dim == 2
                else b"\xd1\xe8\xf1\xf2\xe5\xec\xe0 \xe8\xec\xe5\xe5\xf2 \xed\xe5 "
                b"\xe5\xe4\xe8\xed\xf1\xf2\xe2\xe5\xed\xed\xee\xe5 "
                b"\xf0\xe5\xf8\xe5\xed\xe8\xe5.".decode("cp1251"))
    with pytest.raises(ValueError) as info:
        T().add_scale(vec(1, 0, 1)).inverse()
    assert str(info.value) == PREFIX + singular


def test_transform_fit_rect_and_errors():
    angle = 0.3
    source = np.array([[0.0, 0.0], [2.0, 0.0], [2.0, 1.0], [0.0, 1.0]])
    turned = zr.Transform2D().add_turn(angle).add_shift((5.0, -1.0))
    fit = zr.Transform2D.fit_rotate_shift(source, turned.apply(source))
    assert np.allclose(fit.apply(source), turned.apply(source), atol=1e-12)
    assert np.allclose(fit.matrix, turned.matrix, atol=1e-12)
    with pytest.raises(ValueError) as info:
        zr.Transform2D.fit_rotate_shift(source, source[:3])
    assert str(info.value) == PREFIX + "zrTransformCoord2D::MakeFromEquations: different number"
    r = zr.Transform2D().add_turn(np.pi).transform_rect(zr.Rect((0, 0), (2, 1)))
    assert np.allclose(list(r.lo) + list(r.hi), [-2, -1, 0, 0], atol=1e-15)
    with pytest.raises(ValueError, match="N x 2"):
        zr.Transform2D().apply(np.zeros((4, 3)))
    with pytest.raises(ValueError, match="2 x 2"):
        zr.Transform2D().add_matrix(np.eye(3))
