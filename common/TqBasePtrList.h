#ifndef TQ_BASE_PTR_LIST_H
#define TQ_BASE_PTR_LIST_H

#include "TqBaseList.h"

/// The list of plain pointers. Removal by index or by pointer hands the removed pointer back, so
/// that the caller can free it. Applications name the item type with `TqPtrList<T>` and read items
/// as `static_cast<T*>(list.slots[i])`.
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

/// A pointer list of T.
template <class T>
class TQ_API TqPtrList : public TqBasePtrList {
public:
    TqPtrList() {}
    TqPtrList(const TqPtrList& other) : TqBasePtrList(other) {}
    ~TqPtrList() override {}

    TqPtrList& operator=(const TqPtrList& other);
};

template <class T>
inline TqPtrList<T>& TqPtrList<T>::operator=(const TqPtrList& other) {
    TqBasePtrList::operator=(other);
    return *this;
}

#endif
