"""Vector, Matrix and Tridiagonal: the library's pinned values and texts, the solvers
against numpy.linalg.solve, and who shares what."""
import struct

import numpy as np
import pytest

import zr

INVALID = "Invalid parameters : "
NOT_UNIQUE = INVALID + "Система имеет не единственное решение."
INCONSISTENT = INVALID + "Система не совместна."


def values(z):
    return np.asarray(z).tolist()


def test_determinant_keeps_the_library_elimination_rules():
    assert zr.Matrix([[4, 0], [2, 3]]).det() == 6  # 1/l scaling not compensated
    assert zr.Matrix([[0, 1], [1, 0]]).det() == 1  # no sign for the exchange
    assert zr.Matrix([[1, 2], [2, 4]]).det() == 0
    m = zr.Matrix([[1, 0, 4], [2, 0, 0], [3, 1, 3]])
    assert m.det() == -12 and m[2, 2] == 3  # exchanges made during the scan; m untouched


def test_solve_copies_unless_told_to_overwrite():
    a = zr.Matrix([[1, 2], [3, 4]])
    b = zr.Vector([5, 6])
    x = a.solve(b)
    assert abs(x[0] + 4) < 1e-14 and abs(x[1] - 4.5) < 1e-14
    assert values(a) == [[1, 2], [3, 4]] and values(b) == [5, 6]
    # In place, as the library leaves them: row 1 was the pivot, scaled by 1/3.
    assert values(a.solve(b, overwrite=True)) == values(x)
    assert values(a) == [[1, 1.0 / 1 * 2 - 4 * (1.0 / 3)], [3, 4 * (1.0 / 3)]]
    assert b[1] == 6 * (1.0 / 3)
    # An ndarray right-hand side viewed in place is transformed in place too.
    rhs = np.array([5.0, 6.0])
    zr.Matrix([[1, 2], [3, 4]]).solve(rhs, overwrite=True)
    assert rhs[1] == 6 * (1.0 / 3)


def test_inverse_and_products_give_the_library_values():
    c = zr.Matrix([[4, 0], [2, 3]])
    assert values(c.inverse()) == [[0.25, 0], [-0.25 * (1 / 1.5), 0.5 * (1 / 1.5)]]
    assert values(c) == [[4, 0], [2, 3]]
    a = zr.Matrix([[1, 2, 3], [4, 5, 6]])
    assert values(a @ zr.Matrix([[1, 0], [2, 1], [0, 3]])) == [[5, 11], [14, 23]]
    assert values(a @ [1, 1, -1]) == [0, 3]
    assert zr.Vector([1, 2]).dot(np.array([3.0, 4.0])) == 11


# Every refusal arrives as ValueError with the library's exact text.
ERRORS = [
    (lambda: zr.Matrix([[1, 0]]).solve([1, 2]), INVALID + "different size."),
    (lambda: zr.Matrix([[1, 2], [2, 4]]).solve([1, 2]), NOT_UNIQUE),
    (lambda: zr.Matrix([[1, 0], [0, 1], [1, 1]]).solve([1, 2, 3]), INCONSISTENT),
    (lambda: zr.Matrix([[1, 2], [2, 4]]).inverse(), NOT_UNIQUE),
    (lambda: zr.Matrix.zeros(2, 3).inverse(), INVALID + "Matrix must be square."),
    (lambda: zr.Matrix.zeros(2, 3).det(), INVALID + "Det: Matrix must be square."),
    (lambda: zr.Matrix.zeros(2, 3) @ [1, 2], INVALID + "different length."),
    (lambda: zr.Vector([1]).dot([1, 2]), INVALID + "different length."),
    (lambda: zr.Vector([1, 2]).window(1, 2), INVALID + "zrVector<T>::Mid: Out of Range"),
    (lambda: zr.Tridiagonal([1, 1], [1, 1], [1]),
     INVALID + "zrMatrix3Diag: diagonals of inconsistent lengths"),
    (lambda: zr.Tridiagonal([1], [1, 1], [1]).solve([1, 2, 3]), INVALID + "different size."),
    (lambda: zr.Tridiagonal([1], [1, 1], [1]).solve_pentadiagonal([1, 1], [], []),
     INVALID + "invalid size : size < 3."),
    (lambda: zr.Tridiagonal([0] * 3, [1] * 4, [0] * 3).solve_pentadiagonal_cyclic(
        [1] * 4, [0] * 2, [0] * 2, a0n2=0, a0n1=0, a1n1=0, an20=0, an10=0, an11=0),
     INVALID + "invalid size : size < 3."),
    (lambda: zr.Vector.from_bytes(struct.pack("<id", 2, 1.0)),
     INVALID + "zrFromMem: the buffer does not hold a valid flat form"),
]


@pytest.mark.parametrize("call, text", ERRORS)
def test_library_errors_arrive_with_their_text(call, text):
    with pytest.raises(ValueError) as info:
        call()
    assert str(info.value) == text


def test_off_band_element_and_huge_matrix():
    with pytest.raises(ValueError, match="^Invalid parameters : zrMatrix3Diag: out of range$"):
        zr.Tridiagonal([1, 1], [1] * 3, [1, 1])[0, 2]
    with pytest.raises(MemoryError):
        zr.Matrix.zeros(100000, 100000)


def test_flat_form_of_a_transposed_view():
    t = zr.Matrix([[1, 2], [3, 4], [5, 6]]).T
    b = t.to_bytes()
    assert b == struct.pack("<2i6d", 2, 3, 1, 3, 5, 2, 4, 6)
    back = zr.Matrix.from_bytes(b)
    assert values(back) == values(t) and np.asarray(back).strides == (24, 8)
    tri = zr.Tridiagonal([1], [2, 3], [4])
    assert tri.to_bytes() == struct.pack("<idi2did", 1, 1, 2, 2, 3, 1, 4)
    assert values(zr.Vector.from_bytes(zr.Vector(np.arange(6.0)[::-2]).to_bytes())) == [5, 3, 1]


def test_matrix_and_band_views_share():
    m = zr.Matrix.zeros(3, 4)
    m.T[2, 1] = 60.0
    m.window(1, 1, 2, 3).row(1)[0] = 7.0
    m.column(3)[0] = 8.0
    assert (m[1, 2], m[2, 1], m[0, 3]) == (60.0, 7.0, 8.0)
    with pytest.raises(ValueError, match="the window leaves the matrix"):
        m.window(2, 0, 2, 1)
    with pytest.raises(IndexError):
        m.row(3)
    band = zr.Tridiagonal.from_matrix(m)
    band[1, 0] = -1.0
    band.T.up[0] = -2.0  # the transpose's up is the band's down
    assert m[1, 0] == -2.0 and len(band) == 3
    # Diagonals given as Vectors and ndarrays are shared; the solvers leave them alone.
    up, diag = zr.Vector([1.0, 1.0]), np.full(3, 4.0)
    t = zr.Tridiagonal(up, diag, [1.0, 1.0])
    t.solve([1.0, 2.0, 3.0])
    t[1, 1] = 5.0
    t[0, 1] = 3.0
    assert diag[1] == 5.0 and up[0] == 3.0 and values(t.down) == [1.0, 1.0]


@pytest.fixture
def rng():
    return np.random.default_rng(20240611)


def dominant(rng, n):
    return rng.uniform(-1, 1, (n, n)) + np.diag(rng.uniform(n + 2, n + 4, n))


@pytest.mark.parametrize("n", [1, 2, 3, 7, 40])
def test_gauss_solver_agrees_with_numpy(rng, n):
    a, b = rng.uniform(-1, 1, (n, n)), rng.uniform(-1, 1, n)
    a[np.diag_indices(n)] += 2.0
    np.testing.assert_allclose(values(zr.Matrix(a).solve(b)), np.linalg.solve(a, b),
                               rtol=1e-12, atol=1e-12)
    np.testing.assert_allclose(values(zr.Matrix(a).inverse()), np.linalg.inv(a),
                               rtol=1e-12, atol=1e-12)


@pytest.mark.parametrize("n", [5, 6, 9, 40])
def test_band_solvers_agree_with_numpy(rng, n):
    d = dominant(rng, n)
    up, diag, down = np.diag(d, 1).copy(), np.diag(d).copy(), np.diag(d, -1).copy()
    up2, down2 = np.diag(d, 2).copy(), np.diag(d, -2).copy()
    t = zr.Tridiagonal(up, diag, down)
    dense = np.diag(diag) + np.diag(up, 1) + np.diag(down, -1)
    assert values(t.to_matrix()) == dense.tolist()
    b, rhs = rng.uniform(-1, 1, n), rng.uniform(-1, 1, (n, 3))

    def agree(x, system, right):
        np.testing.assert_allclose(np.asarray(x), np.linalg.solve(system, right),
                                   rtol=1e-12, atol=1e-12)

    agree(t.solve(b), dense, b)
    agree(t.solve(rhs), dense, rhs)
    cyclic = dense.copy()
    cyclic[0, n - 1], cyclic[n - 1, 0] = 0.375, -0.625
    agree(t.solve_cyclic(b, top=0.375, bottom=-0.625), cyclic, b)
    five = dense + np.diag(up2, 2) + np.diag(down2, -2)
    agree(t.solve_pentadiagonal(b, up2, down2), five, b)
    corners = dict(a0n2=0.25, a0n1=-0.5, a1n1=0.125, an20=-0.25, an10=0.5, an11=0.375)
    closed = five.copy()
    closed[0, n - 2], closed[0, n - 1], closed[1, n - 1] = 0.25, -0.5, 0.125
    closed[n - 2, 0], closed[n - 1, 0], closed[n - 1, 1] = -0.25, 0.5, 0.375
    agree(t.solve_pentadiagonal_cyclic(b, up2, down2, **corners), closed, b)
    # The band product skips only structural zeros: it is the dense product, bit for bit.
    assert values(t @ b) == values(t.to_matrix() @ b)
