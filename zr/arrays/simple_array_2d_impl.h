/// \file
/// The member definitions of zrSimpleArray2D<T>. The library includes this file once to
/// instantiate the array for its element types; include it yourself only to instantiate
/// the array for a type of your own.
#pragma once

#include <climits>
#include <cstdint>

#include "zr/arrays/simple_array_2d.h"
#include "zr/arrays/simple_array_impl.h"

namespace zr::detail {

// The storage length for height x width elements of `size` bytes. A negative dimension
// gives -1, which the allocation refuses with its own text; a total that does not fit
// the 32-bit length is an allocation that cannot be made.
inline int GridLength(int height, int width, std::uint64_t size) {
  if (height < 0 || width < 0) return -1;
  const std::int64_t total = static_cast<std::int64_t>(height) * width;
  if (total > INT_MAX) throw zrErrNoMemory(static_cast<std::uint64_t>(total) * size + kBlockHeader);
  return static_cast<int>(total);
}

}  // namespace zr::detail

ZR_DEFINE_TYPE_IDENTITY_WITH(template <class T>, zrSimpleArray2D<T>, "zrSimpleArray2D")

template <class T>
zrSimpleArray2D<T>::zrSimpleArray2D(int height, int width)
    : zrSimpleArray<T>(zr::detail::GridLength(height, width, sizeof(T))),
      width_(width),
      height_(height) {}

template <class T>
zrSimpleArray2D<T>::zrSimpleArray2D(int height, int width, const T& value)
    : zrSimpleArray<T>(zr::detail::GridLength(height, width, sizeof(T)), value),
      width_(width),
      height_(height) {}

template <class T>
zrSimpleArray2D<T>::zrSimpleArray2D(const zrSimpleArray2D& other)
    : zrSimpleArray<T>(other), width_(other.width_), height_(other.height_) {}

template <class T>
zrSimpleArray2D<T>& zrSimpleArray2D<T>::operator=(const zrSimpleArray2D& other) {
  zrSimpleArray<T>::operator=(other);
  width_ = other.width_;
  height_ = other.height_;
  return *this;
}

template <class T>
zrSimpleArray2D<T>::~zrSimpleArray2D() = default;

template <class T>
void zrSimpleArray2D<T>::Set(int height, int width) {
  const int total = zr::detail::GridLength(height, width, sizeof(T));
  if (total < 0) zr::detail::ThrowNewWithRefCount();
  zrSimpleArray<T>::Set(total);
  width_ = width;
  height_ = height;
}

template <class T>
void zrSimpleArray2D<T>::Set(int height, int width, const T& value) {
  const int total = zr::detail::GridLength(height, width, sizeof(T));
  if (total < 1) zr::detail::ThrowNewWithRefCount();
  zrSimpleArray<T>::Set(total, value);
  width_ = width;
  height_ = height;
}

template <class T>
void zrSimpleArray2D<T>::Init(int height, int width) {
  if (height == height_ && width == width_) return;
  Set(height, width);
}

template <class T>
void zrSimpleArray2D<T>::GetLine(zrSimpleArray<T>& line, int y) const {
  // The storage may have been edited through the base since the dimensions were set: the
  // line must lie in it as well as in the dimensions.
  const std::int64_t end = static_cast<std::int64_t>(width_) * (std::int64_t{y} + 1);
  if (y < 0 || y >= height_ || end > this->Len())
    throw BadParameters("zrSimpleArray2D<T>::GetLine : out of range");
  line.SetDirectly(this->GetPointer() + (end - width_), width_, *this);
}
