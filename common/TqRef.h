#ifndef TQ_REF_H
#define TQ_REF_H

/// The handle on an object of a class, `TqRef<T>`. It stands beside its untyped base.
#include "TqBaseRef.h"

#endif
