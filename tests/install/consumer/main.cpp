// Uses an installed zr: exported template instantiations, an out-of-line value-type
// operation and an exception thrown inside the library.
#include <zr/zr.h>

// A static zr's users are compiled with ZR_STATIC (its package and zr.pc say so), a
// shared zr's without.
#if ZR_EXPECT_STATIC && !defined(ZR_STATIC)
#error "a static zr did not give its users ZR_STATIC"
#elif !ZR_EXPECT_STATIC && defined(ZR_STATIC)
#error "a shared zr gave its users ZR_STATIC"
#endif

#include <cstdio>
#include <cstring>

int main() {
  zrArray<double> a(4, 1.0);
  zrArray<double> w = a.Mid(1, 2);
  w[1] = 5.0;
  zrComplex z = zrComplex(1.0, 2.0) * zrComplex(3.0, -1.0);  // 5 + 5i
  zrString s("installed");
  static_assert(ZR_VERSION >= 100, "the version macros reach the installed headers");
  bool refused = false;
  try {
    a.Left(5);
  } catch (const BadParameters& e) {
    refused = std::strstr(e.GetMessageText(), "Left") != nullptr;
  }
  const bool ok = a[2] == 5.0 && a.Sum() == 8.0 && z.Re() == 5.0 && z.Im() == 5.0 &&
                  s.Find('a') == 4 && refused;
  std::printf("%s\n", ok ? "zr consumer ok" : "zr consumer FAILED");
  return ok ? 0 : 1;
}
