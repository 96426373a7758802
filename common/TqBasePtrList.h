#ifndef TQ_BASE_PTR_LIST_H
#define TQ_BASE_PTR_LIST_H

#include "TqBaseList.h"
#include "TqListItems.h"

/// The list of plain pointers. Removal by index or by pointer hands the removed pointer back, so
/// that the caller can free it. Applications name the item type with `TqPtrList<T>`.
///
/// Ownership: the list borrows its items and never deletes one. Whoever put an item in frees it.
/// Lock: none. Reports: source "TqBasePtrList".
class TQ_API TqBasePtrList : public TqBaseList {
public:
    TqBasePtrList();

    /// A complete copy, and a report: two lists now claim the same items.
    TqBasePtrList(const TqBasePtrList& other);

    /// Takes over the items of `other`, unlike the copy without a report.
    TqBasePtrList& operator=(const TqBasePtrList& other);

    ~TqBasePtrList() override;

    /// Removes slot `index` and returns what was in it. An index above `count` is reported, gives
    /// null and removes nothing. Index 0 is reported, gives the content of entry 0 (null) and still
    /// removes "slot 0": the first item drops out of the numbered slots, and the `count` of an
    /// empty list wraps around.
    void* RemoveItem(unsigned int index);

    /// Removes the first slot that holds `item` and returns it; null when none does. Null is
    /// reported and looked for all the same.
    void* RemoveItem(void* item);
};

/// A pointer list of T. An item is read as `list.At(i)`, which is `static_cast<T*>(list.slots[i])`
/// after a check of the index.
template <class T>
class TQ_API TqPtrList : public TqBasePtrList {
public:
    TqPtrList() {}
    TqPtrList(const TqPtrList& other) : TqBasePtrList(other) {}
    ~TqPtrList() override {}

    TqPtrList& operator=(const TqPtrList& other);

    /// Appends `item`, a pointer to a T or to what derives from it. Null is reported by
    /// `InsertSlot` and not appended.
    template <class Pointer>
    void Append(Pointer item);

    /// The lowest slot that holds `item`; 0 when none does. As `FindSlot`, with the item's type.
    template <class Pointer>
    unsigned int Find(Pointer item) const;

    /// Removes the first slot that holds `item`; returns whether one did.
    template <class Pointer>
    bool Remove(Pointer item);

    /// The item in slot `index`. One of 0 or above `count` is reported and gives null.
    T* At(unsigned int index) const;

    /// The first and the last item; null when the list is empty.
    T* First() const;
    T* Last() const;

    /// For range-for, a walk over the list as TqListItems.h has it:
    ///
    ///     for (Change* change : changes) change->Apply();
    TqListWalk<T, T> begin() const;
    TqListWalk<T, T> end() const;
};

template <class T>
inline TqPtrList<T>& TqPtrList<T>::operator=(const TqPtrList& other) {
    TqBasePtrList::operator=(other);
    return *this;
}

template <class T>
template <class Pointer>
inline void TqPtrList<T>::Append(Pointer item) {
    InsertSlot(count + 1, TqListItems<T, T>::ToSlot(item));
}

template <class T>
template <class Pointer>
inline unsigned int TqPtrList<T>::Find(Pointer item) const {
    return FindSlot(TqListItems<T, T>::ToSlot(item));
}

template <class T>
template <class Pointer>
inline bool TqPtrList<T>::Remove(Pointer item) {
    const unsigned int index = Find(item);
    if (index != 0) RemoveSlot(index);
    return index != 0;
}

template <class T>
inline T* TqPtrList<T>::At(unsigned int index) const {
    return TqListItems<T, T>::At(*this, index);
}

template <class T>
inline T* TqPtrList<T>::First() const {
    return TqListItems<T, T>::First(*this);
}

template <class T>
inline T* TqPtrList<T>::Last() const {
    return TqListItems<T, T>::Last(*this);
}

template <class T>
inline TqListWalk<T, T> TqPtrList<T>::begin() const {
    return TqListWalk<T, T>(*this);
}

template <class T>
inline TqListWalk<T, T> TqPtrList<T>::end() const {
    return TqListWalk<T, T>();
}

#endif
