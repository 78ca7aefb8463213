#include "zr/linalg/small_matrix.h"

#include <cmath>

// ---- zrMatrix2x2 ----

zrMatrix2x2::zrMatrix2x2(const zrMatrix<double>& m) {
  if (m.ColumnLen() != 2 || m.LineLen() != 2)
    throw BadParameters(
        "zrMatrix2x2::zrMatrix2x2( const zrMatrix<double> & m ) : Matrix m != 2x2 ");
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) (*this)(i, j) = m(i, j);
}

zrMatrix2x2::operator zrMatrix<double>() const {
  zrMatrix<double> r(2, 2);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) r(i, j) = (*this)(i, j);
  return r;
}

void zrMatrix2x2::SetTurn(double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  *this = zrMatrix2x2(c, -s, s, c);
}

void zrMatrix2x2::SetTurn(const zrVec2& a, const zrVec2& b) {
  const double r = a.Norm() * b.Norm();
  const double c = (a.X() * b.X() + a.Y() * b.Y()) / r;
  const double s = (a.X() * b.Y() - a.Y() * b.X()) / r;
  *this = zrMatrix2x2(c, -s, s, c);
}

void zrMatrix2x2::SetTurn(const zrVec2& v, int axis) {
  SetTurn(axis == 0 ? zrVec2(1, 0) : zrVec2(0, 1), v);
}

double zrMatrix2x2::Det() const { return m_[0] * m_[3] - m_[2] * m_[1]; }

zrMatrix2x2 zrMatrix2x2::Inverse() const {
  const double det = Det();
  if (std::fabs(det) < 1e-60) throw BadParameters("zrMatrix2x2::Inverse : det = 0 ");
  return zrMatrix2x2(m_[3] / det, -m_[1] / det, -m_[2] / det, m_[0] / det);
}

zrMatrix2x2 zrMatrix2x2::operator*(const zrMatrix2x2& b) const {
  const zrMatrix2x2& a = *this;
  zrMatrix2x2 r;
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) r(i, j) = a(i, 0) * b(0, j) + a(i, 1) * b(1, j);
  return r;
}

zrVec2 zrMatrix2x2::operator*(const zrVec2& v) const {
  return zrVec2(m_[0] * v.X() + m_[1] * v.Y(), m_[2] * v.X() + m_[3] * v.Y());
}

zrVec2 operator*(const zrVec2& v, const zrMatrix2x2& m) {
  return zrVec2(v.X() * m(0, 0) + v.Y() * m(1, 0), v.X() * m(0, 1) + v.Y() * m(1, 1));
}

// The outer products are members of the vectors, defined here where the matrices are.
zrMatrix2x2 zrVec2::MulCL(const zrVec2& b) const {
  const zrVec2& a = *this;
  return zrMatrix2x2(a[0] * b[0], a[0] * b[1], a[1] * b[0], a[1] * b[1]);
}

zrMatrix2x2 MulCL(const zrVec2& a, const zrVec2& b) { return a.MulCL(b); }

zrVec2 zrToVec2(const zrVector<double>& v) {
  if (v.Len() != 2) throw BadParameters("zrVec2: Dim must be equal 2 ");
  return zrVec2(v[0], v[1]);
}

// ---- zrTMatrix3x3<T> ----

template <class T>
zrTMatrix3x3<T>::zrTMatrix3x3(const zrMatrix<T>& m) {
  if (m.ColumnLen() != 3 || m.LineLen() != 3)
    throw BadParameters(
        "zrTMatrix3x3<TT>::zrTMatrix3x3<TT>( const zrMatrix<TT> & m ) : Matrix m != 3x3 ");
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) (*this)(i, j) = m(i, j);
}

template <class T>
zrTMatrix3x3<T>::operator zrMatrix<T>() const {
  zrMatrix<T> r(3, 3);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) r(i, j) = (*this)(i, j);
  return r;
}

template <class T>
void zrTMatrix3x3<T>::MakeE() {
  MakeNull();
  m_[0] = m_[4] = m_[8] = 1;
}

template <class T>
void zrTMatrix3x3<T>::MakeNull() {
  for (T& e : m_) e = 0;
}

template <class T>
void zrTMatrix3x3<T>::SetTurn(T a, T b, T c) {
  const T sa = std::sin(a), ca = std::cos(a);
  const T sb = std::sin(b), cb = std::cos(b);
  const T sc = std::sin(c), cc = std::cos(c);
  m_[0] = cb * cc;
  m_[1] = sb * cc * sa - ca * sc;
  m_[2] = sb * cc * ca + sa * sc;
  m_[3] = cb * sc;
  m_[4] = sb * sc * sa + ca * cc;
  m_[5] = sb * sc * ca - sa * cc;
  m_[6] = -sb;
  m_[7] = sa * cb;
  m_[8] = ca * cb;
}

template <class T>
void zrTMatrix3x3<T>::SetTurn(T angle, zrTVec3<T> axis) {
  SetTurn(std::cos(angle), std::sin(angle), axis);
}

template <class T>
void zrTMatrix3x3<T>::SetTurn(T c, T s, zrTVec3<T> axis) {
  const zrTVec3<T> u = axis / axis.Norm();
  const zrTMatrix3x3 uu = u.MulCL(u);
  const T k = 1 - c;
  m_[0] = uu.m_[0] + c * (1 - uu.m_[0]);
  m_[1] = uu.m_[1] * k - s * u.Z();
  m_[2] = uu.m_[2] * k + s * u.Y();
  m_[3] = uu.m_[3] * k + s * u.Z();
  m_[4] = uu.m_[4] + c * (1 - uu.m_[4]);
  m_[5] = uu.m_[5] * k - s * u.X();
  m_[6] = uu.m_[6] * k - s * u.Y();
  m_[7] = uu.m_[7] * k + s * u.X();
  m_[8] = uu.m_[8] + c * (1 - uu.m_[8]);
}

template <class T>
void zrTMatrix3x3<T>::SetTurn(zrTVec3<T> from, zrTVec3<T> to) {
  const T r = from.Norm() * to.Norm();
  const T c = from.ScalarMul(to) / r;
  const zrTVec3<T> n = from.VectorMul(to);
  const T s = n.Norm() / r;
  if (n.X() == 0 && n.Y() == 0 && n.Z() == 0 && r > 0) {
    if (c > 0) {
      MakeE();
      return;
    }
    // Opposite directions: any normal of `from` is an axis of the half turn; the
    // coordinate axis farthest from `from` gives the best-conditioned one.
    int k = 0;
    for (int i = 1; i < 3; ++i)
      if (std::fabs(from[i]) < std::fabs(from[k])) k = i;
    zrTVec3<T> e(0, 0, 0);
    e[k] = 1;
    SetTurn(T(-1), T(0), from.VectorMul(e));
    return;
  }
  SetTurn(c, s, n);
}

template <class T>
void zrTMatrix3x3<T>::Copy(const zrMatrix2x2& m, int n) {
  if (n < 0 || n > 2) throw BadParameters("zrTMatrix3x3<TT>::Copy: n != {0,1,2}.");
  // The two rows (and columns) that are kept, in order.
  const int keep[3][2] = {{1, 2}, {0, 2}, {0, 1}};
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) (*this)(keep[n][i], keep[n][j]) = m(i, j);
}

template <class T>
T zrTMatrix3x3<T>::Det() const {
  const T* a = m_;
  return a[0] * (a[4] * a[8] - a[5] * a[7]) - a[1] * (a[3] * a[8] - a[5] * a[6]) +
         a[2] * (a[3] * a[7] - a[4] * a[6]);
}

template <class T>
zrTMatrix3x3<T> zrTMatrix3x3<T>::Inverse() const {
  const zrMatrix<T> m = *this;
  return zrTMatrix3x3(m.Inverse());
}

template <class T>
zrTMatrix3x3<T> zrTMatrix3x3<T>::operator*(const zrTMatrix3x3& b) const {
  const zrTMatrix3x3& a = *this;
  zrTMatrix3x3 r;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) r(i, j) = a(i, 0) * b(0, j) + a(i, 1) * b(1, j) + a(i, 2) * b(2, j);
  return r;
}

template <class T>
zrTVec3<T> zrTMatrix3x3<T>::operator*(const zrTVec3<T>& v) const {
  zrTVec3<T> r;
  for (int i = 0; i < 3; ++i)
    r[i] = (*this)(i, 0) * v[0] + (*this)(i, 1) * v[1] + (*this)(i, 2) * v[2];
  return r;
}

zrTVec3<double> operator*(const zrTVec3<double>& v, const zrTMatrix3x3<double>& m) {
  zrTVec3<double> r;
  for (int j = 0; j < 3; ++j) r[j] = v[0] * m(0, j) + v[1] * m(1, j) + v[2] * m(2, j);
  return r;
}

template <class T>
zrTMatrix3x3<T> zrTVec3<T>::MulCL(const zrTVec3& b) const {
  const zrTVec3& a = *this;
  zrTMatrix3x3<T> r;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) r(i, j) = a[i] * b[j];
  return r;
}

// zrTVec3<double> itself is instantiated in zr/values, where this member has no body.
template ZR_TEMPLATE_API zrTMatrix3x3<double> zrTVec3<double>::MulCL(
    const zrTVec3<double>& b) const;

zrTMatrix3x3<double> MulCL(const zrTVec3<double>& a, const zrTVec3<double>& b) {
  return a.MulCL(b);
}

ZR_INSTANTIATE_TEMPLATE(class, zrTMatrix3x3<double>);
