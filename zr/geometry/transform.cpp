#include "zr/geometry/transform.h"

#include <cmath>

namespace zr::detail {
namespace {

// The rows of a small matrix, then the shift, as raw doubles.
template <int N>
int WriteDoubles(unsigned char* buffer, const double* m, const double* v) {
  int at = 0;
  for (int i = 0; i < N * N; ++i) at += RawToMem(buffer + at, m[i]);
  for (int i = 0; i < N; ++i) at += RawToMem(buffer + at, v[i]);
  return at;
}
template <int N>
int ReadDoubles(const unsigned char* buffer, double* m, double* v) {
  int at = 0;
  for (int i = 0; i < N * N; ++i) at += RawFromMem(buffer + at, m[i]);
  for (int i = 0; i < N; ++i) at += RawFromMem(buffer + at, v[i]);
  return at;
}

}  // namespace
}  // namespace zr::detail

// ---- zrTransformCoord2D ----

zrTransformCoord2D::zrTransformCoord2D() : shift_(0, 0) { m_.MakeE(); }

void zrTransformCoord2D::AddScale(const zrVec2& s) {
  m_(0, 0) *= s.X();
  m_(0, 1) *= s.X();
  m_(1, 0) *= s.Y();
  m_(1, 1) *= s.Y();
  shift_.X() *= s.X();
  shift_.Y() *= s.Y();
}

void zrTransformCoord2D::AddScale(const zrVec2& s, const zrVec2& centre) {
  shift_ -= centre;
  AddScale(s);
  shift_ += centre;
}

void zrTransformCoord2D::AddMatrix(const zrMatrix2x2& a) {
  m_ = a * m_;
  shift_ = a * shift_;
}

void zrTransformCoord2D::AddTurn(double angle) {
  zrMatrix2x2 r;
  r.SetTurn(angle);
  AddMatrix(r);
}

void zrTransformCoord2D::AddTurn(double angle, const zrVec2& centre) {
  shift_ -= centre;
  AddTurn(angle);
  shift_ += centre;
}

void zrTransformCoord2D::AddShift(const zrVec2& d) { shift_ += d; }

zrVec2 zrTransformCoord2D::Transform(const zrVec2& p) const { return m_ * p + shift_; }

zrVec2 zrTransformCoord2D::TransformVec(const zrVec2& v) const { return m_ * v; }

zrTransformCoord2D zrTransformCoord2D::Inverse() const {
  zrTransformCoord2D r;
  r.AddShift(-shift_);
  r.AddMatrix(m_.Inverse());
  return r;
}

zrTransformCoord2D zrTransformCoord2D::operator*(const zrTransformCoord2D& other) const {
  zrTransformCoord2D r = other;
  r.AddMatrix(m_);
  r.AddShift(shift_);
  return r;
}

zrVec2 zrTransformCoord2D::GetOldScale(const zrVec2& s) const {
  zrVec2 r;
  for (int j = 0; j < 2; ++j) {
    const zrVec2 e = m_ * (j == 0 ? zrVec2(1, 0) : zrVec2(0, 1));
    const double a = s.X() * e.X();
    const double b = s.Y() * e.Y();
    r[j] = std::sqrt(a * a + b * b);
  }
  return r;
}

zrVec2 zrTransformCoord2D::GetNewScale(const zrVec2& s) const { return Inverse().GetOldScale(s); }

zrRect<zrVec2> zrTransformCoord2D::TransformRect(const zrRect<zrVec2>& r) const {
  const zrVec2& lo = r.Min();
  const zrVec2& hi = r.Max();
  const zrVec2 corners[4] = {Transform(lo), Transform(zrVec2(lo.X(), hi.Y())),
                             Transform(zrVec2(hi.X(), lo.Y())), Transform(hi)};
  zrRect<zrVec2> box(corners[0], corners[0]);
  for (int i = 1; i < 4; ++i) {
    box.Min() = box.Min().Min(corners[i]);
    box.Max() = box.Max().Max(corners[i]);
  }
  return box;
}

void zrTransformCoord2D::MakeRotateShiftFromEquations(const zrSimpleArray<zrVec2>& from,
                                                      const zrSimpleArray<zrVec2>& to) {
  const int n = from.Len();
  if (to.Len() != n) throw BadParameters("zrTransformCoord2D::MakeFromEquations: different number");

  double fx = 0, fy = 0, tx = 0, ty = 0, d = 0, c = 0;
  for (int i = 0; i < n; ++i) {
    const zrVec2& f = from[i];
    const zrVec2& t = to[i];
    fx += f.X();
    fy += f.Y();
    tx += t.X();
    ty += t.Y();
    d += f.X() * t.X() + f.Y() * t.Y();
    c += f.Y() * t.X() - f.X() * t.Y();
  }
  fx /= n;
  fy /= n;
  tx /= n;
  ty /= n;
  d /= n;
  c /= n;

  const double u = fy * ty + tx * fx - d;
  const double w = ty * fx - fy * tx + c;
  const double r = std::sqrt(u * u + w * w);
  const double cs = u / r;
  const double sn = w / r;

  zrTransformCoord2D a;
  a.m_ = zrMatrix2x2(cs, -sn, sn, cs);
  a.shift_ = zrVec2(fy * sn - fx * cs + tx, ty - (fy * cs + fx * sn));
  zrTransformCoord2D b;
  b.m_ = zrMatrix2x2(-cs, sn, -sn, -cs);
  b.shift_ = zrVec2(-fy * sn + fx * cs + tx, ty + fy * cs + fx * sn);

  double ra = 0, rb = 0;
  for (int i = 0; i < n; ++i) {
    const zrVec2 da = a.Transform(from[i]) - to[i];
    ra += da.X() * da.X() + da.Y() * da.Y();
    const zrVec2 db = b.Transform(from[i]) - to[i];
    rb += db.X() * db.X() + db.Y() * db.Y();
  }
  *this = rb < ra ? b : a;
}

int zrTransformCoord2D::MemSize() const { return 6 * zr::detail::RawMemSize<double>(); }

int zrTransformCoord2D::ToMem(unsigned char* buffer) const {
  return zr::detail::WriteDoubles<2>(buffer, m_.GetPointer(), shift_.GetVec());
}

int zrTransformCoord2D::FromMem(const unsigned char* buffer) {
  return zr::detail::ReadDoubles<2>(buffer, m_.GetPointer(), shift_.GetVec());
}

// ---- zrTransformCoord3D ----

zrTransformCoord3D::zrTransformCoord3D() : shift_(0, 0, 0) { m_.MakeE(); }

void zrTransformCoord3D::AddScale(const zrTVec3<double>& s) {
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) m_(i, j) *= s[i];
    shift_[i] *= s[i];
  }
}

void zrTransformCoord3D::AddScale(const zrTVec3<double>& s, const zrTVec3<double>& centre) {
  shift_ -= centre;
  AddScale(s);
  shift_ += centre;
}

void zrTransformCoord3D::AddMatrix(const zrTMatrix3x3<double>& a) {
  m_ = a * m_;
  shift_ = a * shift_;
}

void zrTransformCoord3D::AddTurn(double a, double b, double c) {
  zrTMatrix3x3<double> r;
  r.SetTurn(a, b, c);
  AddMatrix(r);
}

void zrTransformCoord3D::AddTurn(double a, double b, double c, const zrTVec3<double>& centre) {
  shift_ -= centre;
  AddTurn(a, b, c);
  shift_ += centre;
}

void zrTransformCoord3D::AddTurn(double angle, const zrTVec3<double>& axis) {
  zrTMatrix3x3<double> r;
  r.SetTurn(angle, axis);
  AddMatrix(r);
}

void zrTransformCoord3D::AddTurn(const zrTVec3<double>& from, const zrTVec3<double>& to) {
  zrTMatrix3x3<double> r;
  r.SetTurn(from, to);
  AddMatrix(r);
}

void zrTransformCoord3D::AddShift(const zrTVec3<double>& d) { shift_ += d; }

zrTVec3<double> zrTransformCoord3D::Transform(const zrTVec3<double>& p) const {
  return m_ * p + shift_;
}

zrTVec3<double> zrTransformCoord3D::TransformVec(const zrTVec3<double>& v) const { return m_ * v; }

zrTransformCoord3D zrTransformCoord3D::Inverse() const {
  zrTransformCoord3D r;
  r.AddShift(-shift_);
  r.AddMatrix(m_.Inverse());
  return r;
}

zrTransformCoord3D zrTransformCoord3D::operator*(const zrTransformCoord3D& other) const {
  zrTransformCoord3D r = other;
  r.AddMatrix(m_);
  r.AddShift(shift_);
  return r;
}

zrTVec3<double> zrTransformCoord3D::GetOldScale(const zrTVec3<double>& s) const {
  zrTVec3<double> r;
  for (int j = 0; j < 3; ++j) {
    zrTVec3<double> unit(0, 0, 0);
    unit[j] = 1;
    const zrTVec3<double> e = m_ * unit;
    const double a = s.X() * e.X();
    const double b = s.Y() * e.Y();
    const double c = s.Z() * e.Z();
    r[j] = std::sqrt(a * a + b * b + c * c);
  }
  return r;
}

zrTVec3<double> zrTransformCoord3D::GetNewScale(const zrTVec3<double>& s) const {
  return Inverse().GetOldScale(s);
}

int zrTransformCoord3D::MemSize() const { return 12 * zr::detail::RawMemSize<double>(); }

int zrTransformCoord3D::ToMem(unsigned char* buffer) const {
  return zr::detail::WriteDoubles<3>(buffer, m_.GetPointer(), shift_.GetVec());
}

int zrTransformCoord3D::FromMem(const unsigned char* buffer) {
  return zr::detail::ReadDoubles<3>(buffer, m_.GetPointer(), shift_.GetVec());
}

// ---- zrTransformCoord ----

namespace {

const char kNotTwo[] = "zrTransformCoord : must be dimention equal two.";

zrVec2 TwoOf(const zrVector<double>& v) {
  if (v.Len() != 2) throw BadParameters(kNotTwo);
  return zrVec2(v[0], v[1]);
}

zrColumnVector<double> ColumnOf(const zrVec2& v) {
  zrColumnVector<double> r(2);
  r[0] = v.X();
  r[1] = v.Y();
  return r;
}

}  // namespace

zrTransformCoord::zrTransformCoord(const zrColumnVector<double>& origin,
                                   const zrColumnVector<double>& axis, int which) {
  const zrVec2 o = TwoOf(origin);
  const zrVec2 v = TwoOf(axis);
  const zrVec2 ex = which == 0 ? v : zrVec2(v.Y(), -v.X());
  const zrVec2 ey = which == 0 ? zrVec2(-v.Y(), v.X()) : v;
  const double q = v.X() * v.X() + v.Y() * v.Y();
  t_.AddShift(-o);
  t_.AddMatrix(zrMatrix2x2(ex.X() / q, ex.Y() / q, ey.X() / q, ey.Y() / q));
}

zrColumnVector<double> zrTransformCoord::GetCoord(const zrColumnVector<double>& p) const {
  return ColumnOf(t_.Transform(TwoOf(p)));
}

zrColumnVector<double> zrTransformCoord::GetScale(const zrVector<double>& d) const {
  return ColumnOf(t_.TransformVec(TwoOf(d)));
}
