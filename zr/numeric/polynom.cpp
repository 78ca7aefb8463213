#include "zr/numeric/polynom.h"

#include <utility>

#include "zr/arrays/simple_array_impl.h"

namespace zr::detail {
namespace {

void CheckKoefType(int type) {
  if (type != 0 && type != 1) throw BadParameters("zrPolynom : wrong KoefType");
}

}  // namespace
}  // namespace zr::detail

ZR_DEFINE_TYPE_IDENTITY_WITH(template <class TT>, zrPolynom<TT>, "zrPolynom")

template <class TT>
zrPolynom<TT>::~zrPolynom() = default;

template <class TT>
zrPolynom<TT>& zrPolynom<TT>::operator=(const zrPolynom& other) {
  zrColumnVector<TT>::operator=(other);
  type_ = other.type_;
  x0_ = other.x0_;
  return *this;
}

template <class TT>
void zrPolynom<TT>::swap(zrPolynom& other) {
  zrColumnVector<TT>::swap(other);
  std::swap(type_, other.type_);
  std::swap(x0_, other.x0_);
}

template <class TT>
void zrPolynom<TT>::SetKoef(const zrColumnVector<TT>& koef, TT x0, KoefType type) {
  zrColumnVector<TT>::operator=(koef);
  type_ = type;
  x0_ = x0;
}

template <class TT>
TT zrPolynom<TT>::operator()(TT x) const {
  zr::detail::CheckKoefType(type_);
  const zrColumnVector<TT>& c = *this;
  const int n = c.Len();
  if (n == 0) return TT{};
  const TT t = x + (TT{} - x0_);
  TT p = c[0];
  if (type_ == PowerKoef) {
    for (int i = 1; i < n; ++i) p = p * t + c[i];
  } else {
    for (int i = 1; i < n; ++i) p = p * t / static_cast<TT>(n - i) + c[i];
  }
  return p;
}

template <class TT>
TT zrPolynom<TT>::Derivative(TT x, int m) const {
  if (m < 0) throw BadParameters("zrPolynom : wrong derivative order");
  const zrColumnVector<TT>& c = *this;
  const int n = c.Len();
  if (m >= n) return TT{};
  zr::detail::CheckKoefType(type_);
  const TT t = x + (TT{} - x0_);
  const int k = n - m;  // coefficients that survive m differentiations
  if (type_ == TaylorKoef) {
    TT p = c[0];
    for (int i = 1; i < k; ++i) p = p * t / static_cast<TT>(k - i) + c[i];
    return p;
  }
  return zr::detail::PowerDerivative(c, n, t, m);
}

ZR_INSTANTIATE_TEMPLATE(class, zrPolynom<double>);
ZR_INSTANTIATE_TEMPLATE(class, zrSimpleArray<zrPolynom<double>>);
