// Builders for the N-dimensional array tests: size and stride lists, counting arrays,
// the elements of a walk and of the indexed access in storage order.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "zr/zr.h"

namespace zr_test {

// I(3, 4, 5): the list of sizes, strides or indices 3, 4, 5.
template <class... N>
zrArray<int> I(N... values) {
  zrArray<int> a;
  (a.push_back(values), ...);
  return a;
}

// The elements as begin() ... end() list them.
template <class T>
std::vector<T> Walk(const zrArrayND<T>& a) {
  return std::vector<T>(a.begin(), a.end());
}

// The elements by a(index) for every multi-index, dimension 0 fastest: the storage order
// the walks must keep, found without them.
template <class T>
std::vector<T> ByIndex(const zrArrayND<T>& a) {
  std::vector<T> out;
  zrArray<int> index(a.GetDim(), 0);
  for (int e = 0; e < a.GetSize(); ++e) {
    out.push_back(a(index));
    for (int k = 0; k < a.GetDim() && ++index[k] == a.Range()[k]; ++k) index[k] = 0;
  }
  return out;
}

// first, first + 1, ... in storage order; with a period, small enough that products stay
// exact in any element type.
template <class T>
zrArrayND<T> Counting(const zrArray<int>& range, int first = 1, int period = 1 << 30) {
  zrArrayND<T> a(range);
  int k = 0;
  for (T& x : a) x = static_cast<T>(first + k++ % period);
  return a;
}

// Makes view a view of base, changed by steps, left to right: "fK" flips axis K, "sKL"
// exchanges axes K and L, "rKL" turns axes K and L, "tKV" gives axis K the step V (a digit),
// "wK" drops the first and last index of axis K.
template <class T>
void ViewOf(zrArrayND<T>& view, const zrArrayND<T>& base, const std::string& steps) {
  view.Set(base);
  std::istringstream in(steps);
  for (std::string s; in >> s;) {
    const int k = s[1] - '0';
    zrArray<int> range(view.Range());
    zrArray<int> tab(view.Tab());
    if (s[0] == 'f') view.Flip(k);
    if (s[0] == 's') view.SwapAxis(k, s[2] - '0');
    if (s[0] == 'r') view.Rotate90(k, s[2] - '0');
    if (s[0] == 't') tab[k] = s[2] - '0';
    if (s[0] == 'w') range[k] -= 2;
    if (s[0] == 't' || s[0] == 'w') view.Set(view, s[0] == 'w' ? tab[k] : 0, range, tab);
  }
}

}  // namespace zr_test
