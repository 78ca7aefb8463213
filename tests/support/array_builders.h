// Arrays built from a list of values, and their elements read back into a std::vector.
#pragma once

#include <initializer_list>
#include <vector>

namespace zr_test {

// An array of class A holding the values listed.
template <class A, class T = typename A::value_type>
A Of(std::initializer_list<T> values) {
  A r(static_cast<int>(values.size()));
  int i = 0;
  for (const T& v : values) r[i++] = v;
  return r;
}

template <class A>
std::vector<typename A::value_type> Values(const A& a) {
  return {a.begin(), a.end()};
}

}  // namespace zr_test
