#ifndef TQ_LIST_ITEMS_H
#define TQ_LIST_ITEMS_H

#include <cstddef>
#include <type_traits>

#include "TqBaseList.h"
#include "TqExport.h"
#include "TqHooks.h"

/// What the typed lists have in common: how `TqPtrList<T>`, `TqRefList<T>`, `TqSortedStringList`
/// and `TqCallbackChain` turn slots into items and back. Applications use those lists, not this.
///
/// A slot is untyped; it was made of a `Stored*` and is turned back into one. In a reference list
/// that is `TqBaseObject*`, whatever the items are, and elsewhere `T*`. So a T whose base stands
/// second is found at its right address.
///
/// Ownership: nothing. Lock: none, as with reading `slots`. Reports: source "./TqListItems".
template <class T, class Stored>
struct TqListItems {
    /// What stands in slot `index`, 1 to `count`, which is not checked.
    static T* In(const TqBaseList& list, unsigned int index);

    /// The same; an index of 0 or above `count` is reported and gives null.
    static T* At(const TqBaseList& list, unsigned int index);

    /// Null when the list is empty.
    static T* First(const TqBaseList& list);
    static T* Last(const TqBaseList& list);

    /// What stands in the slot of `item`.
    template <class Pointer>
    static void* ToSlot(Pointer item);
};

/// Where a range-for stands in a typed list. From `begin()` on it counts as a walk in `walkDepth`,
/// and so does each copy, until it is destroyed: at the end of the loop, and when it is left by
/// `break`, `return` or an exception. What `end()` gives does not count.
///
/// As in the library's own walks the count is read before every step: what is appended on the way
/// is reached, and a walk never leaves the list. An item that is removed on the way hides the next.
template <class T, class Stored>
class TqListWalk {
public:
    /// The end of every list.
    TqListWalk();

    /// At slot 1 of `walked`.
    explicit TqListWalk(const TqBaseList& walked);

    TqListWalk(const TqListWalk& other);
    TqListWalk& operator=(const TqListWalk& other);
    ~TqListWalk();

    T* operator*() const;
    TqListWalk& operator++();
    TqListWalk operator++(int);

    bool operator==(const TqListWalk& other) const;
    bool operator!=(const TqListWalk& other) const;

private:
    TQ_ALWAYS_INLINE bool HasEnded() const { return list == nullptr || index > list->count; }

    const TqBaseList* list;  // null at the end
    unsigned int index;
};

template <class T, class Stored>
inline T* TqListItems<T, Stored>::In(const TqBaseList& list, unsigned int index) {
    return static_cast<T*>(static_cast<Stored*>(list.slots[index]));
}

template <class T, class Stored>
inline T* TqListItems<T, Stored>::At(const TqBaseList& list, unsigned int index) {
    if (index == 0 || index > list.count) {
        TqCallAssert("./TqListItems", __LINE__);
        return nullptr;
    }
    return In(list, index);
}

template <class T, class Stored>
inline T* TqListItems<T, Stored>::First(const TqBaseList& list) {
    return list.count == 0 ? nullptr : In(list, 1);
}

template <class T, class Stored>
inline T* TqListItems<T, Stored>::Last(const TqBaseList& list) {
    return list.count == 0 ? nullptr : In(list, list.count);
}

template <class T, class Stored>
template <class Pointer>
inline void* TqListItems<T, Stored>::ToSlot(Pointer item) {
    static_assert(!std::is_same<Pointer, std::nullptr_t>::value, "a list holds no null");
    static_assert(std::is_convertible<Pointer, T*>::value,
                  "what is given to the list is no pointer to an object of the list's item type, "
                  "or its class is only declared here");
    static_assert(std::is_convertible<T*, Stored*>::value,
                  "the item type of a reference list does not derive from TqBaseObject, "
                  "or is only declared here");
    T* const typed = item;
    Stored* const stored = typed;
    return const_cast<void*>(static_cast<const volatile void*>(stored));
}

template <class T, class Stored>
TQ_ALWAYS_INLINE TqListWalk<T, Stored>::TqListWalk() : list(nullptr), index(0) {}

template <class T, class Stored>
TQ_ALWAYS_INLINE TqListWalk<T, Stored>::TqListWalk(const TqBaseList& walked)
    : list(&walked), index(1) {
    ++list->walkDepth;
}

template <class T, class Stored>
TQ_ALWAYS_INLINE TqListWalk<T, Stored>::TqListWalk(const TqListWalk& other)
    : list(other.list), index(other.index) {
    if (list != nullptr) ++list->walkDepth;
}

template <class T, class Stored>
TQ_ALWAYS_INLINE TqListWalk<T, Stored>& TqListWalk<T, Stored>::operator=(const TqListWalk& other) {
    if (other.list != nullptr) ++other.list->walkDepth;
    if (list != nullptr) --list->walkDepth;
    list = other.list;
    index = other.index;
    return *this;
}

template <class T, class Stored>
TQ_ALWAYS_INLINE TqListWalk<T, Stored>::~TqListWalk() {
    if (list != nullptr) --list->walkDepth;
}

template <class T, class Stored>
TQ_ALWAYS_INLINE T* TqListWalk<T, Stored>::operator*() const {
    return TqListItems<T, Stored>::In(*list, index);
}

template <class T, class Stored>
TQ_ALWAYS_INLINE TqListWalk<T, Stored>& TqListWalk<T, Stored>::operator++() {
    ++index;
    return *this;
}

template <class T, class Stored>
TQ_ALWAYS_INLINE TqListWalk<T, Stored> TqListWalk<T, Stored>::operator++(int) {
    const TqListWalk before(*this);
    ++index;
    return before;
}

template <class T, class Stored>
TQ_ALWAYS_INLINE bool TqListWalk<T, Stored>::operator==(const TqListWalk& other) const {
    return !(*this != other);
}

template <class T, class Stored>
TQ_ALWAYS_INLINE bool TqListWalk<T, Stored>::operator!=(const TqListWalk& other) const {
    if (other.list == nullptr) return !HasEnded();
    return HasEnded() != other.HasEnded() || (!HasEnded() && index != other.index);
}

#endif
