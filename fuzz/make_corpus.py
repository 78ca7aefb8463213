#!/usr/bin/env python3
"""Writes the seed corpora of the flat-form fuzz targets into fuzz/corpus/<name>/.

Each seed is a small valid form, or a valid form cut short, behind the byte that picks
the type in targets that take one. Run it from anywhere; it rewrites the flat_* corpora.
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
    return out


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
