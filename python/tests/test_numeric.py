"""Polynomials and splines: values the C++ tests pin, sharing of the coefficients, the
many-point evaluation against the single point, and agreement with SciPy."""
import struct

import numpy as np
import pytest

import zr

PREFIX = "Invalid parameters : "


def test_polynomial_values_in_both_forms():
    # 3t^4 - 2t^3 + t - 5 about -2 at t = 0.5; its fourth derivative is 72.
    q = zr.Polynomial([3, -2, 0, 1, -5], x0=-2.0)
    t = 0.5
    assert q(-1.5) == 3 * t * t * t * t - 2 * t * t * t + t - 5
    assert q.derivative(-1.5, m=2) == 36 * t * t - 12 * t
    assert q.derivative(-1.5, m=4) == 72.0
    taylor = zr.Polynomial([2, 3, 5], form="taylor")  # 5 + 3x + x^2
    assert (taylor(2.0), taylor.derivative(2.0), taylor.derivative(0.0, m=2)) == (15, 7, 2)
    # x^3 - x about 1 in both forms, every derivative bit for bit.
    power3 = zr.Polynomial([1, 3, 2, 0], x0=1.0)
    taylor3 = zr.Polynomial([6, 6, 2, 0], x0=1.0, form="taylor")
    xs = np.array([-1.0, 0.25, 1.0, 3.0])
    for m in range(5):
        assert np.array_equal(power3.derivative(xs, m=m), taylor3.derivative(xs, m=m))
    # Arrays keep their shape and give each element's scalar value.
    grid = np.linspace(-2, 2, 12).reshape(3, 4)
    out = q(grid)
    assert out.shape == (3, 4) and out[1, 2] == q(float(grid[1, 2]))
    assert zr.Polynomial([])(3.0) == 0.0
    with pytest.raises(ValueError, match="^" + PREFIX + "zrPolynom : wrong derivative order$"):
        q.derivative(1.0, m=-1)
    with pytest.raises(ValueError, match="form"):
        zr.Polynomial([1.0], form="chebyshev")


def test_polynomial_coefficients_are_a_view_that_holds_the_block():
    p = zr.Polynomial(np.array([1.0, 2.0]), x0=1.0, form="taylor")
    assert p.holders == 1
    c = p.coefficients
    assert p.holders == 2
    c[1] = 5.0  # the polynomial sees the write
    assert p(1.0) == 5.0
    copy = p.copy()
    assert np.shares_memory(p.coefficients, c) and not np.shares_memory(copy.coefficients, c)
    del p
    assert c.tolist() == [1.0, 5.0]  # still alive through the array
    # The constructor copies: the caller's array is not the polynomial's.
    source = np.array([1.0, 0.0])
    q = zr.Polynomial(source)
    source[0] = 9.0
    assert q(2.0) == 2.0


def test_polynomial_arithmetic_and_flat_form():
    a, b = zr.Polynomial([1.0, 2.0, 3.0]), zr.Polynomial([0.5, 0.25, 4.0])
    assert (a + b).coefficients.tolist() == [1.5, 2.25, 7.0]
    assert (a - b).coefficients.tolist() == [0.5, 1.75, -1.0]
    assert (2 * a).coefficients.tolist() == (a * 2).coefficients.tolist() == [2.0, 4.0, 6.0]
    assert (a / 4).coefficients.tolist() == [0.25, 0.5, 0.75]
    with pytest.raises(ValueError, match="^" + PREFIX + "different length.$"):
        a + zr.Polynomial([1.0])
    with pytest.raises(ValueError, match="same form and centre"):
        a + zr.Polynomial([1.0, 2.0, 3.0], x0=1.0)
    # The vector's form: a 32-bit count, then the coefficients; no form, no centre.
    data = zr.Polynomial([1.5, -2.0], x0=3.0, form="taylor").to_bytes()
    assert data == struct.pack("<i2d", 2, 1.5, -2.0)
    back = zr.Polynomial.from_bytes(data)
    assert back.coefficients.tolist() == [1.5, -2.0] and (back.x0, back.form) == (0.0, "power")


def test_spline_values_pinned_and_end_conditions():
    s = zr.Spline([0.0, 1.0, 2.0], [0.0, 1.0, 0.0])
    assert s(0.5) == 0.6875 and s(1.5) == 0.6875 and s.check()
    assert (s.node_derivative(1, nu=2), s.node_derivative(0, nu=2), s.node_derivative(2, nu=2)) == (
        -3, 0, 0)
    assert len(s) == 3 and s.segment(1.0) == 1 and s.bc == "natural"
    # A cubic is reproduced by any two end conditions that hold for it, (order, value) pairs.
    f = lambda x: ((0.5 * x - 1) * x + 2) * x - 3
    f1 = lambda x: (1.5 * x - 2) * x + 2
    f2 = lambda x: 3 * x - 2
    xs = np.array([-1, -0.4, 0.3, 1.5, 2, 3.25])
    t = np.arange(-1, 3.25, 0.125)
    for bc in [((1, f1(-1)), (1, f1(3.25))), ((2, f2(-1)), (2, f2(3.25))),
               ((1, f1(-1)), (2, f2(3.25))), ((2, f2(-1)), (1, f1(3.25)))]:
        c = zr.Spline(xs, f(xs), bc=bc)
        np.testing.assert_allclose(c(t), f(t), atol=1e-12)
        np.testing.assert_allclose(c(t, nu=1), f1(t), atol=1e-9)
        np.testing.assert_allclose(c.derivative(t, nu=2), f2(t), atol=1e-9)
    clamped = zr.Spline(xs, f(xs), bc="clamped", slopes=(f1(-1), f1(3.25)))
    # The named condition is the (order, value) pairs' build, bit for bit.
    assert np.array_equal(clamped(t), zr.Spline(xs, f(xs), bc=((1, f1(-1)), (1, f1(3.25))))(t))
    np.testing.assert_allclose(clamped(t), f(t), atol=1e-12)
    line = zr.Spline([0.0, 1.0, 3.0], [1.0, 3.0, 0.0], bc="linear")
    assert (line(0.5), line(2.0), line.derivative(2.0)) == (2.0, 1.5, -1.5)
    periodic = zr.Spline([0.0, 1.0, 2.0, 3.0], [0.0, 1.0, -1.0, 0.0], bc="periodic")
    for nu in range(3):
        assert abs(periodic(0.0, nu=nu) - periodic(3.0, nu=nu)) < 1e-12


def test_spline_errors_have_the_library_texts():
    s = zr.Spline([0.0, 1.0, 2.0], [0.0, 1.0, 0.0])
    for bad in (2.5, np.array([0.5, -1.0])):
        with pytest.raises(ValueError, match="^" + PREFIX + r"zrSpline: Out of range\.$"):
            s(bad)
    cases = [
        (([0.0, 1.0], [0.0, 1.0]), {}, "Spline: number of point must be >= 3"),
        (([0.0, 1.0, 2.0], [0.0, 1.0]), {}, "zrSpline: x and y differ in length."),
        (([0.0, 2.0, 1.0], [0.0, 1.0, 0.0]), {}, "zrSpline: x must be strictly increasing."),
        (([0.0, 1.0, 2.0], [0.0, 1.0, 0.5]), {"bc": "periodic"},
         "zrSpline: periodic y must end at its first value."),
        (([0.0, 1.0, 2.0], [0.0, 1.0, np.inf]), {}, "error in spline"),
    ]
    cases.append((([0.0, 1.0, 2.0], [0.0, 1.0]), {"bc": "linear"}, cases[1][2]))
    for args, kwargs, text in cases:
        with pytest.raises(ValueError) as info:
            zr.Spline(*args, **kwargs)
        assert str(info.value) == PREFIX + text
    for bc in ("not-a-knot", ((1, 0.0),)):
        with pytest.raises(ValueError, match="bc must be"):
            zr.Spline([0.0, 1.0, 2.0], [0.0, 1.0, 0.0], bc=bc)
    with pytest.raises(ValueError, match="number of point must be >= 3"):
        zr.Spline([], [], bc="linear")
    with pytest.raises(ValueError, match="slopes"):
        zr.Spline([0.0, 1.0, 2.0], [0.0, 1.0, 0.0], slopes=(1.0, 1.0))


def test_spline_arrays_give_the_single_point_bits():
    rng = np.random.default_rng(7)
    x = np.cumsum(rng.uniform(0.05, 2.0, 40)) - 2.5
    y = rng.uniform(-3, 3, 40)
    s = zr.Spline(x, y, bc="clamped", slopes=(0.75, -1.25))
    pts = rng.uniform(x[0], x[-1], 301)
    pts[:2] = x[0], x[-1]
    for nu in range(4):
        many = s(pts, nu=nu)
        assert many.dtype == np.float64 and many.shape == pts.shape
        assert all(many[i] == s(float(pts[i]), nu=nu) for i in range(len(pts)))
    # Strided, reshaped and non-float inputs are read as their values.
    assert np.array_equal(s(pts[::3]), s(pts)[::3])
    assert np.array_equal(s(pts[:300].reshape(20, 15)), s(pts[:300]).reshape(20, 15))
    ints = zr.Spline([0, 1, 2, 3], [0, 1, 0, 1])
    assert np.array_equal(ints(np.array([0, 1, 2])), ints(np.array([0.0, 1.0, 2.0])))
    # The spline keeps its own points.
    xs, ys = np.array([0.0, 1.0, 2.0]), np.array([0.0, 1.0, 0.0])
    own = zr.Spline(xs, ys)
    ys[1] = 10.0
    assert own(0.5) == 0.6875


def test_spline_agrees_with_scipy():
    interpolate = pytest.importorskip("scipy.interpolate")
    rng = np.random.default_rng(11)
    x = np.cumsum(rng.uniform(0.1, 1.0, 25))
    y = np.sin(x) + rng.normal(0, 0.1, 25)
    t = np.linspace(x[0], x[-1], 1001)
    pairs = [
        (zr.Spline(x, y, bc="natural"), interpolate.CubicSpline(x, y, bc_type="natural")),
        (zr.Spline(x, y, bc="clamped", slopes=(0.5, -2.0)),
         interpolate.CubicSpline(x, y, bc_type=((1, 0.5), (1, -2.0)))),
        (zr.Spline(x, y, bc="clamped"), interpolate.CubicSpline(x, y, bc_type="clamped")),
    ]
    y[-1] = y[0]
    pairs.append((zr.Spline(x, y, bc="periodic"), interpolate.CubicSpline(x, y, bc_type="periodic")))
    for ours, theirs in pairs:
        for nu in range(3):
            np.testing.assert_allclose(ours(t, nu=nu), theirs(t, nu=nu), rtol=0, atol=1e-12 * 10**nu)
