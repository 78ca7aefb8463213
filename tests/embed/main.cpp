// A host program: the library's exported instantiations and exceptions work across the
// library boundary.
#include <zr/zr.h>

int main() {
  zrArray<double> a(4, 2.0);
  zrArray<double> window = a.Right(2);
  window[1] = 5.0;
  int refused = 0;
  try {
    a.Mid(3, 2);
  } catch (const BadParameters&) {
    refused = 1;
  }
  return a[3] == 5.0 && a.GetNumOfRef() == 1 && refused ? 0 : 1;
}
