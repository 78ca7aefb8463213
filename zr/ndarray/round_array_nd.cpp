#include "zr/ndarray/round_array_nd.h"

#include <cstdint>

ZR_DEFINE_TYPE_IDENTITY(zrRoundArrayND)

zrRoundArrayND::zrRoundArrayND(const zrArrayNDAbs& array)
    : zrRoundArrayND(array.Range(), array.Tab()) {}

zrRoundArrayND::zrRoundArrayND(const zrArray<int>& range, const zrArray<int>& tab)
    : range_(&range), tab_(&tab) {
  // Every Pos the cursor can take, past the end included, lies within the sum of
  // |size * stride|: kept within 32 bits, no step can overflow.
  std::int64_t reach = 0;
  for (int k = 0; k < range.Len(); ++k) {
    const std::int64_t step = static_cast<std::int64_t>(range[k]) * tab[k];
    reach += step < 0 ? -step : step;
    if (k >= tab.Len() || reach > INT32_MAX) throw BadParameters("zrRoundArrayND : Out of range.");
  }
  if (range.Len() > 0) Set(range.Len(), 0);
}

zrRoundArrayND::zrRoundArrayND(const zrRoundArrayND& other)
    : zrArray<int>(other), range_(other.range_), tab_(other.tab_), pos_(other.pos_) {}

zrRoundArrayND& zrRoundArrayND::operator=(const zrRoundArrayND& other) {
  if (this == &other) return *this;
  zrArray<int>::operator=(other);
  range_ = other.range_;
  tab_ = other.tab_;
  pos_ = other.pos_;
  return *this;
}

zrRoundArrayND::~zrRoundArrayND() = default;

void zrRoundArrayND::ToBegin() {
  pos_ = 0;
  Fill(0);
}

void zrRoundArrayND::ToEnd() {
  pos_ = 0;
  for (int k = 0; k < Len(); ++k) {
    (*this)[k] = (*range_)[k];
    pos_ += (*range_)[k] * (*tab_)[k];
  }
}

void zrRoundArrayND::SetPos(zrArray<int>& coords) {
  const int n = Len();
  if (coords.Len() < n) throw BadParameters("zrRoundArrayND : Out of range.");
  std::int64_t pos = pos_;
  for (int k = 0; k < n; ++k) {
    if (coords[k] < 0 || coords[k] >= (*range_)[k])
      throw BadParameters("zrRoundArrayND : Out of range.");
    pos += static_cast<std::int64_t>((*tab_)[k]) * coords[k];
  }
  // Pos is added to, so repeated calls could leave the 32-bit range.
  if (pos < INT32_MIN || pos > INT32_MAX) throw BadParameters("zrRoundArrayND : Out of range.");
  for (int k = 0; k < n; ++k) (*this)[k] = coords[k];
  pos_ = static_cast<int>(pos);
}

int zrRoundArrayND::operator++() {
  const int n = Len();
  if (n == 0) return 0;
  int* const c = GetPointer();
  const int* const r = range_->GetPointer();
  const int* const t = tab_->GetPointer();
  for (int k = 0; k < n; ++k) {
    pos_ += t[k];
    if (++c[k] < r[k]) return 1;
    c[k] = 0;
    pos_ -= r[k] * t[k];
  }
  return 0;
}

int zrRoundArrayND::operator--() {
  const int n = Len();
  int* const c = GetPointer();
  const int* const r = n > 0 ? range_->GetPointer() : nullptr;
  const int* const t = n > 0 ? tab_->GetPointer() : nullptr;
  for (int k = 0; k < n; ++k) {
    if (c[k] > 0) {
      --c[k];
      pos_ -= t[k];
      return 1;
    }
    c[k] = r[k];
    pos_ += r[k] * t[k];
  }
  return 0;
}
