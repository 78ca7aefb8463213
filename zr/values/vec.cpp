#include "zr/values/vec.h"

#include <cmath>

double zrVec2::ScalarMul(const zrVec2& b) const { return v_[0] * b.v_[0] + v_[1] * b.v_[1]; }

double zrVec2::ScalarMul() const { return v_[0] * v_[0] + v_[1] * v_[1]; }

double zrVec2::Norm() const { return std::sqrt(v_[0] * v_[0] + v_[1] * v_[1]); }

zrVec2 zrSgn(const zrVec2& v) {
  const auto sign = [](double c) { return c < 0 ? -1.0 : c == 0 ? 0.0 : 1.0; };
  return zrVec2(sign(v.X()), sign(v.Y()));
}

template <class T>
T zrTVec3<T>::ScalarMul(const zrTVec3& b) const {
  return v_[0] * b.v_[0] + v_[1] * b.v_[1] + v_[2] * b.v_[2];
}

template <class T>
T zrTVec3<T>::ScalarMul() const {
  return v_[0] * v_[0] + v_[1] * v_[1] + v_[2] * v_[2];
}

template <class T>
T zrTVec3<T>::Norm() const {
  return std::sqrt(v_[0] * v_[0] + v_[1] * v_[1] + v_[2] * v_[2]);
}

template <class T>
zrTVec3<T> zrTVec3<T>::VectorMul(const zrTVec3& b) const {
  const zrTVec3& a = *this;
  return zrTVec3(a.v_[1] * b.v_[2] - a.v_[2] * b.v_[1], b.v_[0] * a.v_[2] - a.v_[0] * b.v_[2],
                 a.v_[0] * b.v_[1] - b.v_[0] * a.v_[1]);
}

ZR_INSTANTIATE_TEMPLATE(class, zrTVec3<double>);
