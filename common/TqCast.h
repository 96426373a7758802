#ifndef TQ_CAST_H
#define TQ_CAST_H

#include <type_traits>

#include "TqBaseObject.h"
#include "TqBaseRef.h"
#include "TqDeclareClass.h"

/// The object as a T, or null when it is of another class: the checked way down from
/// `TqBaseObject`. It goes by the class descriptors, so T has the macros of TqDeclareClass.h; it
/// need not be registered. An object of a class that derives from T is a T.
///
///     if (Port* port = TqCast<Port>(object)) port->Poll();
///     TqRef<Port> made(TqCast<Port>(registry->NewObject("Port")));
///
/// Null gives null. A handle gives what it holds. The object must be alive.
///
/// Ownership: no reference is added.
/// Lock: none; builds T's descriptor when nobody has yet, which is for one thread at start-up.
/// Reports: none.
template <class T>
inline T* TqCast(TqBaseObject* object);

template <class T>
inline const T* TqCast(const TqBaseObject* object);

template <class T>
inline T* TqCast(const TqBaseRef& handle);

template <class T>
inline const T* TqCast(const TqBaseObject* object) {
    static_assert(std::is_same<typename T::TqDescribed, T>::value,
                  "the class that TqCast names has no TQ_DECLARE_CLASS of its own");
    if (object == nullptr || object->IsA(T::TqDescribedInfo()) == 0) return nullptr;
    return static_cast<const T*>(object);
}

template <class T>
inline T* TqCast(TqBaseObject* object) {
    return const_cast<T*>(TqCast<T>(static_cast<const TqBaseObject*>(object)));
}

template <class T>
inline T* TqCast(const TqBaseRef& handle) {
    return TqCast<T>(handle.object);
}

#endif
