import zr


def test_imports():
    assert zr.__doc__.startswith("zr:")
