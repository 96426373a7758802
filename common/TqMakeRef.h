#ifndef TQ_MAKE_REF_H
#define TQ_MAKE_REF_H

#include <type_traits>
#include <utility>

#include "TqBaseRef.h"

/// Makes an object of class T with these arguments and holds it, in one expression:
///
///     const TqRef<Monitor> monitor = TqMakeRef<Monitor>("eth0", 5);
///     ports.Append(TqMakeRef<Port>(7).Get());  // the list keeps a reference of its own
///
/// Ownership: the handle that comes back keeps the one reference.
/// Lock: none. Reports: none.
template <class T, class... Arguments>
inline TqRef<T> TqMakeRef(Arguments&&... arguments) {
    static_assert(std::is_base_of<TqBaseObject, T>::value,
                  "what a handle holds derives from TqBaseObject");
    return TqRef<T>(new T(std::forward<Arguments>(arguments)...));
}

#endif
