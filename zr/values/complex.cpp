#include "zr/values/complex.h"

#include <cmath>

zrComplex zrComplex::operator*(const zrComplex& b) const {
  return zrComplex(re_ * b.re_ - im_ * b.im_, re_ * b.im_ + im_ * b.re_);
}

zrComplex zrComplex::operator/(const zrComplex& b) const {
  const double r = zrAbs(b);
  return zrComplex((re_ * b.re_ + im_ * b.im_) / r, (b.re_ * im_ - re_ * b.im_) / r);
}

zrComplex& zrComplex::operator/=(const zrComplex& b) {
  *this = *this / b;
  return *this;
}

double zrAbs(const zrComplex& z) { return std::sqrt(z.Re() * z.Re() + z.Im() * z.Im()); }

zrComplex zrComplexNormSqrt(const zrComplex& z) {
  const double r = zrAbs(z);
  if (r == 0) return z;
  const double x = z.Im() / r;
  return zrComplex(r * std::sqrt((1 - x) * 0.5), r * std::sqrt((1 + x) * 0.5));
}
