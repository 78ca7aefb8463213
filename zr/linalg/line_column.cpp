#include "zr/linalg/line_column.h"

#include "zr/arrays/simple_array_impl.h"
#include "zr/linalg/line_column_impl.h"

#define ZR_DETAIL_INSTANTIATE_LINE_COLUMN(T)         \
  ZR_INSTANTIATE_TEMPLATE(class, zrColumnVector<T>); \
  ZR_INSTANTIATE_TEMPLATE(class, zrLineVector<T>);
ZR_LINALG_TYPES(ZR_DETAIL_INSTANTIATE_LINE_COLUMN)

ZR_INSTANTIATE_TEMPLATE(class, zrSimpleArray<zrColumnVector<double>>);
ZR_INSTANTIATE_TEMPLATE(class, zrSimpleArray<zrLineVector<double>>);
