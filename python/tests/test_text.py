"""The tokenizer and the scanner over str and bytes."""
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
    with pytest.raises(UnicodeEncodeError):  # a lone surrogate has no UTF-8
        zr.scan("x\ud800")


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
