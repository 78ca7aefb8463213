// The string tokenizer and the token scanner.
//
// The library works on bytes. bytes in give bytes out. A str is encoded as UTF-8 and its
// tokens decoded back: tokenize needs ASCII delimiters then (a multi-byte character
// would split other characters apart), and scan needs an ASCII text (the scanner makes a
// one-byte symbol of every byte above 127). Both are ValueError otherwise.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <string>
#include <vector>

#include "python/src/bindings.h"
#include "zr/zr.h"

namespace zr::python {

namespace py = pybind11;

namespace {

struct Text {
  std::string bytes;
  bool is_str;
};

Text ReadText(py::handle h, const char* what) {
  if (py::isinstance<py::bytes>(h)) return {h.cast<std::string>(), false};
  // Python's own encoder, so that a str UTF-8 cannot hold (a lone surrogate) is its
  // UnicodeEncodeError, a ValueError.
  if (py::isinstance<py::str>(h)) return {h.attr("encode")("utf-8").cast<std::string>(), true};
  throw py::type_error(std::string(what) + " must be str or bytes");
}

bool Ascii(const std::string& s) {
  for (unsigned char c : s)
    if (c > 127) return false;
  return true;
}

py::object Out(const char* p, int n, bool is_str) {
  if (is_str) return py::str(p, static_cast<size_t>(n));
  return py::bytes(p, static_cast<size_t>(n));
}

// A zrString over the characters of s (a view: s outlives it).
zrString View(std::string& s) {
  return s.empty() ? zrString() : zrString(s.data(), static_cast<int>(s.size()));
}

}  // namespace

void BindText(py::module_& m) {
  m.def(
      "tokenize",
      [](py::handle text, py::handle delimiters) {
        Text t = ReadText(text, "text"), d = ReadText(delimiters, "delimiters");
        if (t.is_str != d.is_str)
          throw py::type_error("text and delimiters must both be str or both bytes");
        if (d.is_str && !Ascii(d.bytes))
          throw py::value_error("str delimiters must be ASCII; pass bytes for others");
        if (t.bytes.size() > INT_MAX) throw py::value_error("text too long");
        const zrString source = View(t.bytes), delims = View(d.bytes);
        zrSimpleArray<zrString> tokens;
        source.Tokenize(tokens, delims);
        py::list out;
        for (int i = 0; i < tokens.Len(); ++i)
          out.append(Out(tokens[i].GetPointer(), tokens[i].Len(), t.is_str));
        return out;
      },
      py::arg("text"), py::arg("delimiters") = " \t\n\r\v\f",
      R"doc(Splits text at any of the delimiter characters; runs of delimiters count as
one and no token is empty. str in gives str out (ASCII delimiters), bytes give bytes.

>>> zr.tokenize("a, b,,c ", ", ")
['a', 'b', 'c']
>>> zr.tokenize(b"x;y", b";")
[b'x', b'y']
)doc");

  py::enum_<zrString::TOKEN>(m, "TokenKind", "What a scanned token is.")
      .value("IDENT", zrString::TOKEN_IDENT, "a letter or '_', then letters, digits and '_'")
      .value("INT", zrString::TOKEN_INT, "digits")
      .value("REAL", zrString::TOKEN_REAL, "digits with a fraction and/or an exponent")
      .value("STRING", zrString::TOKEN_STRING, "text between double quotes, quotes included")
      .value("SYMBOL", zrString::TOKEN_SYMBOL, "any other single character");

  m.def(
      "scan",
      [](py::handle text) {
        Text t = ReadText(text, "text");
        if (t.is_str && !Ascii(t.bytes))
          throw py::value_error("str text must be ASCII to scan; pass bytes for others");
        if (t.bytes.size() > INT_MAX) throw py::value_error("text too long");
        const zrString source = View(t.bytes);
        py::list out;
        int pos = 0;
        for (;;) {
          zrString token;
          const zrString::TOKEN kind = source.GetToken(pos, token);
          if (kind == zrString::TOKEN_END) break;
          out.append(py::make_tuple(kind, Out(token.GetPointer(), token.Len(), t.is_str)));
        }
        return out;
      },
      py::arg("text"),
      R"doc(The tokens of text as (TokenKind, text) pairs, white space skipped. Numbers
take a lower-case 'e' exponent; a sign is a symbol of its own. A string left open
raises ValueError with the library's text.

>>> [(k.name, s) for k, s in zr.scan('x1 = 2.5e-3 + "q"')]
[('IDENT', 'x1'), ('SYMBOL', '='), ('REAL', '2.5e-3'), ('SYMBOL', '+'), ('STRING', '"q"')]
)doc");
}

}  // namespace zr::python
