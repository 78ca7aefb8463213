#include "zr/arrays/array.h"

#include "zr/arrays/array_impl.h"

#define ZR_DETAIL_INSTANTIATE_ARRAY(T) ZR_INSTANTIATE_TEMPLATE(class, zrArray<T>);
ZR_ARRAY_TYPES(ZR_DETAIL_INSTANTIATE_ARRAY)
