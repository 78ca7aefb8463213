import doctest
import inspect

import numpy

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
