import doctest
import inspect

import numpy
import pytest

import zr


def test_imports():
    assert zr.__doc__.startswith("zr:")


def docstrings():
    """Every docstring of the module: its classes, their methods and properties, and its
    functions, each with a name for the report."""
    yield "zr", zr.__doc__
    for name, obj in sorted(vars(zr).items()):
        if name.startswith("__"):
            continue
        yield f"zr.{name}", obj.__doc__
        if inspect.isclass(obj):
            for attr, member in sorted(vars(obj).items()):
                if isinstance(member, str):  # __doc__, __module__
                    continue
                doc = member.fget.__doc__ if isinstance(member, property) else member.__doc__
                if isinstance(member, (staticmethod, classmethod)):
                    doc = member.__func__.__doc__
                yield f"zr.{name}.{attr}", doc


def test_every_docstring_example_runs():
    parser = doctest.DocTestParser()
    runner = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS)
    examples = 0
    for name, doc in docstrings():
        if not doc:
            continue
        test = parser.get_doctest(doc, {"zr": zr, "numpy": numpy, "np": numpy}, name, None, 0)
        examples += len(test.examples)
        runner.run(test)
    failed, attempted = runner.summarize(verbose=False)
    assert attempted == examples > 0
    assert failed == 0


FLAT = [zr.Array([1.0, 2.0]), zr.ArrayND([[1.0, 2.0]]).flip(1), zr.Vector([1.0, 2.0]),
        zr.Matrix([[1.0, 2.0]]).T, zr.Tridiagonal([1.0], [2.0, 3.0], [4.0]),
        zr.Polynomial([1.0, 2.0]), zr.Vec2(1, 2), zr.Vec3(1, 2, 3),
        zr.Transform2D().add_shift((1, 2)), zr.Transform3D().add_shift((1, 2, 3)),
        zr.Contour([[0, 0], [1, 0], [0, 1]])]


def test_every_flat_form_is_read_whole_or_refused():
    assert {type(x).__name__ for x in FLAT} == {
        name for name, cls in vars(zr).items() if hasattr(cls, "from_bytes")}
    for x in FLAT:
        cls, data = type(x), x.to_bytes()
        assert cls.from_bytes(data).to_bytes() == data
        for cut in range(len(data)):
            with pytest.raises(ValueError, match="valid flat form"):
                cls.from_bytes(data[:cut])
        with pytest.raises(ValueError, match="^1 bytes left over after the flat form$"):
            cls.from_bytes(data + b"\0")
