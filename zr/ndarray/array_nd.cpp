#include "zr/ndarray/array_nd.h"

#include "zr/ndarray/array_nd_impl.h"

ZR_INSTANTIATE_TEMPLATE(class, zrSimpleArray<unsigned int>);
ZR_INSTANTIATE_TEMPLATE(class, zrArray<unsigned int>);

#define ZR_DETAIL_INSTANTIATE_ARRAY_ND(T) ZR_INSTANTIATE_TEMPLATE(class, zrArrayND<T>);
ZR_ARRAY_ND_TYPES(ZR_DETAIL_INSTANTIATE_ARRAY_ND)
