/// \file
/// Symbol export for the zr shared library.
///
/// The library is built with hidden visibility; what users may call carries ZR_API.
///
///   class ZR_API zrPArray { ... };         exported class (all its members)
///   ZR_API void* zrMalloc(std::uint64_t);  exported free function
///
/// Class templates are declared and defined apart: the header declares the template
/// with ZR_API and, for each element type the library offers, an explicit instantiation
/// declaration; the library's source defines the members and instantiates them once.
///
///   header:  template <class T> class ZR_API zrSimpleArray { ... };
///            ZR_EXTERN_TEMPLATE(class, zrSimpleArray<double>);
///   source:  template <class T> void zrSimpleArray<T>::New(int n) { ... }
///            ZR_INSTANTIATE_TEMPLATE(class, zrSimpleArray<double>);
///
/// Element-type lists are written once as X-macros (see ZR_FOR_EACH_SCALAR in
/// zr/core/traits.h) and drive both the instantiations and the tests.
#pragma once

#if defined(ZR_STATIC)
#define ZR_API
#elif defined(_WIN32)
#if defined(zr_EXPORTS)
#define ZR_API __declspec(dllexport)
#else
#define ZR_API __declspec(dllimport)
#endif
#else
#define ZR_API __attribute__((visibility("default")))
#endif

// With GCC and Clang the visibility of a class template travels with the template
// itself, so the instantiation lines need no attribute of their own (adding one draws
// "attribute ignored"); MSVC wants the export on each explicit instantiation instead.
#if defined(_WIN32) && !defined(ZR_STATIC)
#define ZR_TEMPLATE_API ZR_API
#else
#define ZR_TEMPLATE_API
#endif
#define ZR_EXTERN_TEMPLATE(kind, ...) extern template kind ZR_TEMPLATE_API __VA_ARGS__
#define ZR_INSTANTIATE_TEMPLATE(kind, ...) template kind ZR_TEMPLATE_API __VA_ARGS__
