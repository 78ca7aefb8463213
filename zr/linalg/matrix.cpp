#include "zr/linalg/matrix.h"

#include "zr/arrays/simple_array_impl.h"
#include "zr/linalg/matrix_impl.h"

#define ZR_DETAIL_INSTANTIATE_MATRIX(T) ZR_INSTANTIATE_TEMPLATE(class, zrMatrix<T>);
ZR_LINALG_TYPES(ZR_DETAIL_INSTANTIATE_MATRIX)

ZR_INSTANTIATE_TEMPLATE(class, zrSimpleArray<zrMatrix<double>>);
