"""Array and ArrayND; the sharing with NumPy in both directions for every bound class."""
import gc
import struct

import numpy as np
import pytest

import zr

FLAT_FORM_REFUSED = "Invalid parameters : zrFromMem: the buffer does not hold a valid flat form"


def counting(shape):
    """A dense zr array whose element at multi-index (i, j, ...) is its place in storage
    order plus one (axis 0 fastest), as the library's own tests count."""
    a = zr.ArrayND.zeros(shape)
    np.asarray(a).ravel(order="F")[:] = np.arange(1.0, a.size + 1)
    return a


def storage(a):
    """The elements of a zr array in the library's storage order, from its flat form."""
    b = a.to_bytes()
    (dims,) = struct.unpack_from("<i", b)
    return list(struct.unpack_from(f"<{a.size}d", b, 4 + 4 * dims))


# Each zr view of a fresh object, with the strides NumPy must see.
VIEWS = {
    "array window": (lambda: zr.Array([1.0, 2.0, 3.0, 4.0]), lambda a: a.window(1, 2), (8,)),
    "vector window": (lambda: zr.Vector.zeros(4), lambda v: v.window(1, 2), (8,)),
    "flip": (lambda: zr.ArrayND.zeros((3, 2)), lambda a: a.flip(0), (-8, 24)),
    "axis swap": (lambda: zr.ArrayND.zeros((3, 2)), lambda a: a.swap_axes(0, 1), (24, 8)),
    "nd window": (lambda: zr.ArrayND.zeros((4, 3)), lambda a: a.window((1, 1), (2, 2)), (8, 32)),
    "transpose": (lambda: zr.Matrix.zeros(2, 3), lambda m: m.T, (8, 24)),
    "sub-matrix": (lambda: zr.Matrix.zeros(3, 3), lambda m: m.window(1, 0, 2, 2), (24, 8)),
    "column": (lambda: zr.Matrix.zeros(2, 3), lambda m: m.column(1), (24,)),
}


@pytest.mark.parametrize("name", VIEWS)
def test_views_reach_numpy_in_place_and_numpy_holds_the_block(name):
    make, view_of, strides = VIEWS[name]
    base = make()
    view = view_of(base)
    assert base.holders == view.holders == 2
    n = np.asarray(view)
    assert n.strides == strides and not n.flags.owndata
    assert view.holders == 3
    # A write through either side is seen by the other and by the viewed object.
    n.flat[0] = 7.0
    first = (0,) * n.ndim
    assert np.asarray(view)[first] == 7.0 and 7.0 in np.asarray(base)
    index = first if n.ndim > 1 else 0
    view[index] = -3.0
    assert n[first] == -3.0
    # NumPy keeps its holder when both zr objects are gone, until it lets go itself.
    witness = view_of(base)
    del base, view
    gc.collect()
    assert witness.holders == 2
    n[first] = 11.0
    assert np.asarray(witness)[first] == 11.0
    del n
    gc.collect()
    assert witness.holders == 1


def test_buffer_protocol_describes_the_elements():
    m = memoryview(zr.ArrayND.zeros((3, 2)).flip(1))
    assert (m.format, m.itemsize, m.shape, m.strides) == ("d", 8, (3, 2), (8, -24))
    assert not m.readonly
    assert bytes(zr.Array([1.0, 2.0])) == struct.pack("<2d", 1.0, 2.0)


# Each zr class made from an ndarray it can describe: C order, Fortran order and strided
# slices with negative steps, in one and two dimensions.
SOURCES = [
    (zr.Array, lambda: np.arange(5.0)),
    (zr.Vector, lambda: np.arange(10.0)[::-3]),
    (zr.Matrix, lambda: np.arange(12.0).reshape(3, 4)),
    (zr.Matrix, lambda: np.asfortranarray(np.arange(12.0).reshape(3, 4))),
    (zr.Matrix, lambda: np.arange(24.0).reshape(4, 6)[::2, ::-3].T),
    (zr.ArrayND, lambda: np.arange(24.0).reshape(2, 3, 4)),
    (zr.ArrayND, lambda: np.arange(60.0).reshape(3, 4, 5)[::-1, 1:, ::2]),
]


@pytest.mark.parametrize("cls, make", SOURCES)
def test_describable_ndarrays_are_viewed_in_place(cls, make):
    x = make()
    z = cls(x)
    assert z.holders == 0  # outside memory: no block of the library's
    back = np.asarray(z)
    assert back.shape == x.shape and back.strides == x.strides
    assert np.shares_memory(back, x)
    last = tuple(s - 1 for s in x.shape)
    key = last if x.ndim > 1 else -1
    z[key] = -1.0
    assert x[last] == -1.0
    x[(0,) * x.ndim] = 42.0
    assert z[(0,) * x.ndim if x.ndim > 1 else 0] == 42.0
    # The zr object keeps the ndarray alive, and so do its views.
    expected = x.copy()
    del x
    gc.collect()
    assert np.array_equal(np.asarray(z), expected)


def packed_field():
    return np.zeros(3, dtype=[("x", "f8"), ("n", "i4")])["x"]  # stride 12


def misaligned():
    return np.ndarray((3,), dtype="f8", buffer=bytearray(32), offset=4)


def read_only():
    x = np.zeros(3)
    x.flags.writeable = False
    return x


@pytest.mark.parametrize(
    "make",
    [packed_field, misaligned, read_only, lambda: np.zeros(3, dtype="f4"),
     lambda: np.zeros(3).astype(">f8"), lambda: [0.0, 0.0, 0.0]],
    ids=["packed field", "misaligned", "read-only", "float32", "big-endian", "list"],
)
@pytest.mark.parametrize("cls", [zr.Array, zr.Vector, zr.ArrayND])
def test_layouts_zr_cannot_describe_are_copied(make, cls):
    x = make()
    z = cls(x)
    assert z.holders == 1 and len(np.asarray(z)) == 3
    z[0] = 5.0
    assert x[0] == 0.0
    if isinstance(x, np.ndarray) and x.flags.writeable:
        x[1] = 6.0
        assert z[1] == 0.0


def test_copy_true_copies_what_could_be_viewed():
    x = np.arange(6.0).reshape(2, 3)
    for cls in (zr.Matrix, zr.ArrayND):
        z = cls(x, copy=True)
        z[0, 0] = 9.0
        assert x[0, 0] == 0.0 and z.holders == 1


def test_array_basics_and_errors():
    a = zr.Array((1, 2, 3))
    assert (len(a), a[-1], list(a), repr(a)) == (3, 3.0, [1.0, 2.0, 3.0], "Array([1.0, 2.0, 3.0])")
    assert len(zr.Array()) == 0 and repr(zr.Array()) == "Array([])"
    with pytest.raises(IndexError):
        a[3]
    with pytest.raises(ValueError, match=r"^Invalid parameters : zrSimpleArray<T>::Mid: Out of Range$"):
        a.window(2, 2)
    with pytest.raises(ValueError, match="takes 1 dimension"):
        zr.Array(np.zeros((2, 2)))
    with pytest.raises(TypeError):
        zr.Array([1j])


def test_nd_views_write_into_the_array_they_view():
    # The library's own case: a 4 x 3 counting array, a 2 x 2 window from (1, 1) zeroed.
    big = counting((4, 3))
    big.window((1, 1), (2, 2)).fill(0.0)
    assert storage(big) == [1, 2, 3, 4, 5, 0, 0, 8, 9, 0, 0, 12]
    # A flip of a swap, read through the indices the view gives.
    v = big.swap_axes(0, 1).flip(1)
    assert v.shape == (3, 4) and v[0, 0] == big[3, 0] and v[2, 1] == big[2, 2]
    v[1, 3] = -1.0
    assert big[0, 1] == -1.0
    with pytest.raises(ValueError, match="the window leaves the array"):
        big.window((3, 0), (2, 1))


def test_nd_flat_form_and_errors():
    # The library's pinned form: a 3 x 2 counting array flipped along axis 0 is written as
    # the dimension count, the sizes, then the elements in the flipped storage order.
    f = counting((3, 2)).flip(0)
    b = f.to_bytes()
    assert b == struct.pack("<3i6d", 2, 3, 2, 3, 2, 1, 6, 5, 4)
    back = zr.ArrayND.from_bytes(b)
    assert back.steps == (1, 3) and np.array_equal(np.asarray(back), np.asarray(f))
    with pytest.raises(ValueError, match=f"^{FLAT_FORM_REFUSED}$"):
        zr.Array.from_bytes(struct.pack("<i", -1))
    assert zr.Array.from_bytes(zr.Array([1.5]).to_bytes())[0] == 1.5
    with pytest.raises(ValueError, match=r"^Invalid parameters : out of range of dimension$"):
        f.flip(2)
    with pytest.raises(IndexError, match=r"index 3 on axis 0 is outside \[0, 3\)\.$"):
        f[3, 0]
    with pytest.raises(IndexError, match=r"2 indices for 3 dimensions\.$"):
        zr.ArrayND.zeros((1, 1, 1))[0, 0]
    assert f[-1, -1] == f[2, 1] == 4.0


def test_sizes_beyond_32_bits_are_refused_never_cut():
    with pytest.raises(MemoryError):
        zr.ArrayND.zeros((100000, 100000))
    a = zr.ArrayND.zeros((2, 3))
    for index in ((2**32, 0), (0, 2**32 + 1), (0, -2**32)):
        with pytest.raises(IndexError):
            a[index]
        with pytest.raises(IndexError):
            a[index] = 1.0
    with pytest.raises(ValueError, match="leaves the array"):
        a.window((2**62, 0), (2**62, 1))
    # Refused from the shape, before a copy of 32 GiB is tried.
    rows = np.broadcast_to(0.0, (2**31, 2))
    for call in (zr.Contour, zr.Transform2D().apply, zr.Contour(np.eye(2)).inside):
        with pytest.raises(ValueError, match="too many points"):
            call(rows)
