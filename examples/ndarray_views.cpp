// N-dimensional views: a flip, an axis swap and a slice of a 3-D array. None of them
// copies an element: each shares the array's block, so a write through a view is seen by
// the array, and the block counts one more holder per view.

#include <cstdio>

#include "zr/zr.h"

namespace {

// The element at multi-index (i, j, k): the origin plus each index times its stride.
int& At(const zrArrayND<int>& a, int i, int j, int k) {
  return a.GetPointer()[i * a.Tab()[0] + j * a.Tab()[1] + k * a.Tab()[2]];
}

void Print(const char* title, const zrArrayND<int>& a) {
  std::printf("%s: %d x %d x %d\n", title, a.Range()[0], a.Range()[1], a.Range()[2]);
  for (int k = 0; k < a.Range()[2]; ++k) {
    for (int j = 0; j < a.Range()[1]; ++j) {
      std::printf("   ");
      for (int i = 0; i < a.Range()[0]; ++i) std::printf(" %4d", At(a, i, j, k));
      std::printf("\n");
    }
    if (k + 1 < a.Range()[2]) std::printf("\n");
  }
}

}  // namespace

int main() {
  zrArray<int> range(3);
  range[0] = 4;  // dimension 0 is the fastest in memory
  range[1] = 3;
  range[2] = 2;
  zrArrayND<int> a(range);
  for (int k = 0; k < 2; ++k)
    for (int j = 0; j < 3; ++j)
      for (int i = 0; i < 4; ++i) At(a, i, j, k) = 100 * k + 10 * j + i;
  Print("a", a);

  zrArrayND<int> flipped;
  flipped.Set(a);  // the same geometry and block as a
  flipped.Flip(0);
  Print("a flipped along dimension 0", flipped);

  zrArrayND<int> swapped;
  swapped.Set(a);
  swapped.SwapAxis(0, 1);
  Print("a with dimensions 0 and 1 swapped", swapped);

  zrArrayND<int> slice;
  slice.ReduceDimArrayND(a, 2, 1);  // the 4 x 3 plane at index 1 of dimension 2
  std::printf("slice of a at index 1 of dimension 2: %d x %d, first %d, last %d\n",
              slice.Range()[0], slice.Range()[1], slice.front(), slice.back());

  // One block, four holders; writes through each view land in a.
  At(flipped, 0, 0, 0) = -1;   // a(3, 0, 0)
  At(swapped, 2, 1, 1) = -2;   // a(1, 2, 1)
  slice.GetPointer()[0] = -3;  // a(0, 0, 1)
  Print("a after writing through the views", a);
  // GetNumOfRef counts the holders besides the first.
  const bool ok = a.GetNumOfRef() == 3 && At(a, 3, 0, 0) == -1 && At(a, 1, 2, 1) == -2 &&
                  At(a, 0, 0, 1) == -3 && flipped.GetPointer() == &At(a, 3, 0, 0);
  std::printf("holders of the block: %d; %s\n", a.GetNumOfRef() + 1,
              ok ? "every view shares it" : "MISMATCH");
  return ok ? 0 : 1;
}
