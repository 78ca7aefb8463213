"""The tokenizer and the scanner over str and bytes, and every docstring example of the
module run as a doctest."""
import doctest
import inspect

import numpy as np
import pytest

import zr


def test_tokenize_str_and_bytes():
    assert zr.tokenize(",,a,;,bc", ",;") == ["a", "bc"]
    assert zr.tokenize(b",,a,;,bc\xff", b",;\xff") == [b"a", b"bc"]
    assert zr.tokenize(",,,", ",") == [] and zr.tokenize("") == []
    assert zr.tokenize(" x\ty\n") == ["x", "y"]  # white space by default
    assert zr.tokenize("żółw i jeż") == ["żółw", "i", "jeż"]  # UTF-8 round trip
    with pytest.raises(ValueError, match="ASCII"):
        zr.tokenize("a–b", "–")
    with pytest.raises(TypeError):
        zr.tokenize("a b", b" ")


def test_scan_follows_the_grammar():
    text = 'alpha_1 = 3.25e-2, "x y" -7  12.x 12e+1 3.5e-x 1E5_'
    kinds = [(k, s) for k, s in zr.scan(text)]
    assert [s for _, s in kinds] == ["alpha_1", "=", "3.25e-2", ",", '"x y"', "-", "7", "12", ".",
                                     "x", "12", "e", "+", "1", "3.5", "e", "-", "x", "1", "E5_"]
    K = zr.TokenKind
    assert [k for k, _ in kinds][:8] == [K.IDENT, K.SYMBOL, K.REAL, K.SYMBOL, K.STRING, K.SYMBOL,
                                         K.INT, K.INT]
    assert [k for k, _ in zr.scan("12e")] == [K.REAL, K.IDENT]
    assert zr.scan(b"x \xe9") == [(K.IDENT, b"x"), (K.SYMBOL, b"\xe9")]
    assert zr.scan("   ") == []
    with pytest.raises(ValueError) as info:
        zr.scan('ab "x y')
    assert str(info.value) == "Invalid parameters : syntax error : expected '\"'"
    with pytest.raises(ValueError, match="ASCII"):
        zr.scan("é")


def _docstrings():
    """Every docstring of the module's functions, classes and their members."""
    seen = set()
    for name, obj in vars(zr).items():
        if name.startswith("__"):
            continue
        yield "zr." + name, obj.__doc__
        if inspect.isclass(obj):
            for member, value in vars(obj).items():
                value = getattr(value, "__func__", value)  # static methods
                doc = getattr(value, "__doc__", None)
                if member.startswith("__") and member not in ("__call__", "__add__", "__mul__"):
                    continue
                if doc and id(value) not in seen:
                    seen.add(id(value))
                    yield "zr.%s.%s" % (name, member), doc


def test_docstring_examples():
    parser, runner = doctest.DocTestParser(), doctest.DocTestRunner(optionflags=doctest.ELLIPSIS)
    examples = 0
    for name, doc in _docstrings():
        if not doc or ">>>" not in doc:
            continue
        test = parser.get_doctest(doc, {"zr": zr, "np": np}, name, None, 0)
        examples += len(test.examples)
        runner.run(test)
    result = runner.summarize(verbose=False)
    assert examples > 50 and result.failed == 0
