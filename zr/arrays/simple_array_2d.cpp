#include "zr/arrays/simple_array_2d.h"

#include "zr/arrays/simple_array_2d_impl.h"

#define ZR_DETAIL_INSTANTIATE_SIMPLE_ARRAY_2D(T) ZR_INSTANTIATE_TEMPLATE(class, zrSimpleArray2D<T>);
ZR_SIMPLE_ARRAY_2D_TYPES(ZR_DETAIL_INSTANTIATE_SIMPLE_ARRAY_2D)
