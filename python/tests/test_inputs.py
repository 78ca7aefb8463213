"""What every function taking an array-like makes of its layouts and dtypes: strided,
reversed, float32, integer and list inputs give what the C-contiguous float64 array gives;
complex, object and text values are refused, as the arrays' constructors refuse them."""
import numpy as np
import pytest

import zr

POINTS = np.array([[0.0, 0.0], [4.0, 0.0], [4.0, 2.0], [1.0, 3.0]])
T = np.array([0.0, 0.25, 0.5, 0.875])
SPLINE = zr.Spline([0.0, 1.0, 2.0, 3.0], [0.0, 1.0, 0.0, 2.0])

CALLS = {
    "Contour": (lambda p: zr.Contour(p).points, POINTS),
    "Contour.inside": (zr.Contour(POINTS).inside, POINTS[::-1] / 2),
    "Contour(t)": (zr.Contour(POINTS), T),
    "Transform2D.apply": (zr.Transform2D().add_turn(1.0).add_shift((1, 2)).apply, POINTS),
    "Transform3D.apply": (zr.Transform3D().add_turn(1.0, 2.0, 3.0).apply, POINTS[:3, :1] * T[:3]),
    "fit_rotate_shift": (lambda p: zr.Transform2D.fit_rotate_shift(p, POINTS).matrix, POINTS[::-1]),
    "intersect_polyline": (zr.Ray2D((2, 1), (1, 0)).intersect_polyline, POINTS),
    "Vec2": (zr.Vec2, POINTS[1]),
    "Spline(x)": (SPLINE, POINTS / 2),
    "Spline(x, y)": (lambda x: zr.Spline(x, [1.0, 0.0, 2.0, 3.0])(1.5), T * 4),
    "Polynomial": (lambda c: zr.Polynomial(c)(0.5), T),
    "Polynomial(x)": (zr.Polynomial([1.0, -2.0, 0.5]), POINTS),
    "BetaCurve": (lambda p: zr.BetaCurve(p).controls, POINTS),
    "BetaCurve(t)": (zr.BetaCurve(POINTS), T),
    "BetaTube": (lambda n: zr.BetaTube(n).control_net, np.stack([np.c_[POINTS, T], np.c_[POINTS, T + 1]])),
}


def variants(a):
    """The same values in other layouts and dtypes that hold them exactly."""
    yield np.stack([a, a + 99], axis=-1)[..., 0]  # every other element
    yield a[::-1].copy()[::-1]  # a negative stride
    yield a.astype(np.float32)
    yield a.tolist()
    if np.array_equal(a, a.round()):
        yield a.astype(np.int32)


@pytest.mark.parametrize("name", CALLS)
def test_layouts_and_dtypes(name):
    call, a = CALLS[name]
    want = np.asarray(call(a))
    for v in variants(a):
        assert np.array_equal(np.asarray(call(v)), want, equal_nan=True), type(v)
    for refused in (a.astype(complex), a.astype(object), a.astype(str)):
        with pytest.raises(TypeError, match="same_kind"):
            call(refused)


@pytest.mark.parametrize("name", ["Contour(t)", "Spline(x)", "Polynomial(x)", "BetaCurve(t)"])
def test_numpy_scalars_follow_the_same_rule(name):
    call = CALLS[name][0]
    assert call(np.float32(0.5)) == call(0.5) and call(np.int64(1)) == call(1)
    with pytest.raises(TypeError, match="same_kind"):
        call(np.complex128(0.5 + 1j))
