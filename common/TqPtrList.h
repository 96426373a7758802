#ifndef TQ_PTR_LIST_H
#define TQ_PTR_LIST_H

/// The list of pointers to a type, `TqPtrList<T>`. It stands beside its untyped base.
#include "TqBasePtrList.h"

#endif
