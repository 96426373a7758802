#ifndef INSTANTIATED_H
#define INSTANTIATED_H

// Comes before everything else where the memory sanitizer is in use: what the C++ library has ready
// of its templates was compiled without, and what such code writes counts as never written. So each
// source makes its own.

#include <cstddef>

#ifdef _GLIBCXX_EXTERN_TEMPLATE
#undef _GLIBCXX_EXTERN_TEMPLATE
#define _GLIBCXX_EXTERN_TEMPLATE 0
#endif

#endif
