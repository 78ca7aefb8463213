#include "zr/linalg/vector.h"

#include "zr/linalg/vector_impl.h"

#define ZR_DETAIL_INSTANTIATE_VECTOR(T) ZR_INSTANTIATE_TEMPLATE(class, zrVector<T>);
ZR_LINALG_TYPES(ZR_DETAIL_INSTANTIATE_VECTOR)
