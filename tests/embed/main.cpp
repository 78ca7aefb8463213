#include <zr/zr.h>

int main() {
  double* p = nullptr;
  zrNewWithRef(p, 4);
  const int held = zrGetMemRef(p);
  zrDeleteWithRef(p);
  return held == 1 ? 0 : 1;
}
