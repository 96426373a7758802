#ifndef TQ_REF_LIST_H
#define TQ_REF_LIST_H

/// The list that keeps objects of a class alive, `TqRefList<T>`. It stands beside its untyped base.
#include "TqBaseRefList.h"

#endif
