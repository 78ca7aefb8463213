#!/usr/bin/env python3
"""Writes the seed corpora of the flat-form and N-D view fuzz targets into
fuzz/corpus/<name>/.

Each flat-form seed is a small valid form, or a valid form cut short, behind the byte that
picks the type in targets that take one. Each N-D view seed is a block and a short program
of view steps (see fuzz/nd_view_fuzz.cpp). Run it from anywhere; it rewrites the flat_*
and nd_view corpora.
"""
import os
import struct

HERE = os.path.dirname(os.path.abspath(__file__))


def i32(*values):
    return b"".join(struct.pack("<i", v) for v in values)


def f64(*values):
    return b"".join(struct.pack("<d", v) for v in values)


NAN_PAYLOAD = struct.pack("<Q", 0x7FF0000000000123)  # a signalling NaN with a payload


def seeds():
    out = {}
    out["flat_array"] = {
        "char_empty": b"\x00" + i32(0),
        "char_text": b"\x00" + i32(3) + b"abc",
        "ushort_two": b"\x01" + i32(2) + b"\x01\x00\xff\xff",
        "int_cut": b"\x02" + i32(2) + i32(7),
        "double_nan": b"\x03" + i32(2) + f64(1.5) + NAN_PAYLOAD,
        "complex_one": b"\x04" + i32(1) + f64(1, -2),
        "vec2_negative": b"\x05" + i32(-1),
    }
    out["flat_string"] = {
        "string": b"\x00" + i32(5) + b"hello",
        "string_cut": b"\x00" + i32(5) + b"he",
        "curve": b"\x01" + i32(2) + f64(0, 0, 1, 2),
        "curve_huge": b"\x01" + i32(0x7FFFFFFF) + f64(1),
    }
    out["flat_vector"] = {
        "double": b"\x00" + i32(3) + f64(1, 2, 3),
        "double_negative": b"\x00" + i32(-4),
        "complex_nan": b"\x01" + i32(1) + f64(0.5) + NAN_PAYLOAD,
        "vec3_cut": b"\x02" + i32(2) + f64(1, 2, 3, 4),
        "polynom": b"\x03" + i32(2) + f64(-1, 1),
    }
    out["flat_matrix"] = {
        "double_2x2": b"\x00" + i32(2, 2) + f64(1, 2, 3, 4),
        "double_empty": b"\x00" + i32(0, 7),
        "complex_1x2": b"\x01" + i32(1, 2) + f64(1, 2, 3, 4),
        "vec3_cut": b"\x02" + i32(1, 1) + f64(1, 2),
        "overflow": b"\x00" + i32(65536, 65536) + f64(1),
        "small_2x2": b"\x03" + f64(1, 0, 0, 1),
    }
    out["flat_matrix3diag"] = {
        "three": i32(2) + f64(1, 1) + i32(3) + f64(4, 4, 4) + i32(2) + f64(1, 1),
        "one": i32(0) + i32(1) + f64(2) + i32(0),
        "empty": i32(0, 0, 0),
        "mismatch": i32(1) + f64(1) + i32(1) + f64(2) + i32(0),
        "cut": i32(1) + f64(1) + i32(2) + f64(2),
    }
    out["flat_array_nd"] = {
        "uchar_2x3": b"\x00" + i32(2, 2, 3) + bytes(range(6)),
        "short_zero": b"\x01" + i32(3, 2, 0, 5),
        "float_1": b"\x02" + i32(1, 2) + struct.pack("<ff", 1.5, -0.0),
        "double_cut": b"\x03" + i32(2, 2, 2) + f64(1, 2, 3),
        "no_sizes": b"\x03" + i32(0),
        "overflow": b"\x00" + i32(3, 65536, 65536, 0),
    }
    out["flat_transform"] = {
        "plane": b"\x00" + f64(1, 0, 0, 1, 5, -5),
        "space": b"\x01" + f64(1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 2, 3),
        "plane_cut": b"\x00" + f64(1, 0, 0),
    }
    out["nd_view"] = nd_view_seeds()
    return out


# nd_view_fuzz: a type byte (0 unsigned char, 1 int, 2 double), the dimension count less
# one, the sizes less one, then steps. A step's low four bits pick the operation, bit 7
# works on view b instead of a, bit 6 takes the block itself as the source.
SET, SET_SAME, WINDOW, FLIP, SWAP, SHARE, ASSIGN, ADD, CLIP = range(9)
ON_B, FROM_BLOCK = 0x80, 0x40
FAR = {v: i for i, v in enumerate([0, 1, -1, 65535, 65536, 65537, 32768, 46341, 1 << 29,
                                   1 << 30, -(1 << 30), 2**31 - 1, -(2**31), -(2**31) + 1,
                                   2**31 - 2, -65536])}


def num(*values):
    out = b""
    for v in values:
        out += bytes([0x80, FAR[v]]) if not -128 < v < 128 else struct.pack("<b", v)
    return out


def nd_view_seeds():
    return {
        # a = flip of the block, b = its transpose, a = b (an overlapping source).
        "flip_assign": bytes([2, 1, 3, 3, FLIP, 1, ON_B | SWAP, 1, 2, ASSIGN]),
        # four elements reaching back from the first: refused.
        "before_block": bytes([0, 0, 5, FROM_BLOCK | SET]) + num(0) + bytes([0]) + num(4, -1),
        # 65536 x 65537 indices of one element: refused.
        "far_count": bytes([1, 0, 5, FROM_BLOCK | SET]) + num(0) + bytes([1])
        + num(65536, 65537, 0, 0),
        # 4 x 12 indices of one element, added to and from.
        "stride_zero": bytes([2, 0, 3, FROM_BLOCK | SET]) + num(1) + bytes([1]) + num(4, 12, 0, 0)
        + bytes([ON_B | FROM_BLOCK | SET]) + num(0) + bytes([1]) + num(4, 12, 1, 0)
        + bytes([ADD, ON_B | ADD, ON_B | ASSIGN]),
        # windows one step apart diagonally, assigned both ways.
        "windows": bytes([2, 1, 3, 2, FROM_BLOCK | WINDOW]) + num(0, 0, 3, 2)
        + bytes([ON_B | FROM_BLOCK | WINDOW]) + num(1, 1, 3, 2) + bytes([ON_B | ASSIGN, ASSIGN]),
        # far offsets and strides: a window start, a flip of INT_MIN, a clip.
        "far_offsets": bytes([0, 1, 1, 1, FROM_BLOCK | SET]) + num(0) + bytes([1])
        + num(2, 2, 2, 1) + bytes([ON_B | WINDOW]) + num(1 << 30, 0, 1, 1)
        + bytes([ON_B | FROM_BLOCK | SET]) + num(0) + bytes([0]) + num(1, -(2**31))
        + bytes([ON_B | FLIP, 1, CLIP]) + num(-(2**31), -(2**31), 2**31 - 1, 2**31 - 1),
    }


def main():
    for target, files in seeds().items():
        folder = os.path.join(HERE, "corpus", target)
        os.makedirs(folder, exist_ok=True)
        for name in os.listdir(folder):
            os.remove(os.path.join(folder, name))
        for name, data in files.items():
            with open(os.path.join(folder, name), "wb") as f:
                f.write(data)


if __name__ == "__main__":
    main()
