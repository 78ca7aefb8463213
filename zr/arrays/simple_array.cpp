#include "zr/arrays/simple_array.h"

#include "zr/arrays/simple_array_impl.h"

#define ZR_DETAIL_INSTANTIATE_SIMPLE_ARRAY(T) ZR_INSTANTIATE_TEMPLATE(class, zrSimpleArray<T>);
ZR_SIMPLE_ARRAY_TYPES(ZR_DETAIL_INSTANTIATE_SIMPLE_ARRAY)
