#ifndef TQ_BASE_REF_LIST_H
#define TQ_BASE_REF_LIST_H

#include "TqBaseList.h"
#include "TqListItems.h"

/// The list that keeps its objects alive: each slot keeps one reference on the `TqBaseObject` in
/// it. Pass items as `TqBaseObject*`; applications name the item type with `TqRefList<T>`, which
/// does that by itself.
///
/// Ownership: a reference for each slot; letting the last one go deletes the object.
/// Lock: `listMutex` is held by each operation declared here while slots and counts change; the
/// mutexes of the objects are taken inside it. Two lists are locked this one first, then the other:
/// two threads must not assign two lists to each other crosswise, nor three assign three in a ring;
/// they would wait for each other without an end. `FindSlot`, reading `slots` and the checks that
/// `SwapItems` makes are not locked.
/// Reports: source "TqBaseRefList". A failing lock or unlock is reported and the operation goes on.
/// A slot that holds nothing (index above `count`, or null as entry 0) is reported, and the
/// operation leaves it alone; an item that is dead or foreign is reported and counted all the same.
///
/// Destructors: an object that is let go is deleted inside the operation, with `listMutex` held.
/// Its destructor may change this list, or the one being assigned from; the mutex it meets is
/// reported, and no reference is dropped twice:
///
/// - what it appends while all items are let go is let go too; what it inserts further in front
///   stays alive, with a reference that nobody drops;
/// - a slot that has been let go already is empty, which is reported where something meets it;
/// - an assignment takes the items that the other list had when it began.
///
/// It must not destroy the list, nor the other one of an assignment, and must not have the dying
/// object itself held and let go again (by a copy of the list, say): that deletes it once more.
class TQ_API TqBaseRefList : public TqBaseList {
public:
    TqBaseRefList();

    /// A list of the same objects, with references of its own.
    TqBaseRefList(const TqBaseRefList& other);

    /// Takes over the objects of `other`: takes references on those before it drops its own, so
    /// that what stands in both lists stays alive.
    TqBaseRefList& operator=(const TqBaseRefList& other);

    /// Lets every object go.
    ~TqBaseRefList() override;

    /// Checks and reports the indexes as the base list does, once more on its own; counts do not
    /// change.
    void SwapItems(unsigned int a, unsigned int b) override;

    /// Lets every object go and makes the list empty.
    void RemoveAllItems() override;

    /// Removes slot `index` and drops its reference.
    void RemoveSlot(unsigned int index) override;

    /// Inserts `item` with a reference. Null is reported here and by the base list, and not
    /// inserted.
    void InsertSlot(unsigned int index, void* item) override;

    /// Not a plain replacement: `item` is inserted at `index` and what was there moves to
    /// `index + 1`; when the two differ, both lose one reference, and one that had no other is
    /// deleted while its pointer stays in the list. To replace, remove and insert.
    void ReplaceSlot(unsigned int index, void* item) override;

    mutable TqLinuxMutex listMutex;  ///< guards slots and the list's references
};

/// A reference list of T. An item is read as `list.At(i)`, which is
/// `static_cast<T*>(static_cast<TqBaseObject*>(list.slots[i]))` after a check of the index. No
/// reference is added for who reads; nothing here locks but `Append` and `Remove`.
template <class T>
class TQ_API TqRefList : public TqBaseRefList {
public:
    TqRefList() {}
    TqRefList(const TqRefList& other) : TqBaseRefList(other) {}
    ~TqRefList() override {}

    TqRefList& operator=(const TqRefList& other);

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
    ///     for (Port* port : ports) port->Poll();
    TqListWalk<T, TqBaseObject> begin() const;
    TqListWalk<T, TqBaseObject> end() const;
};

template <class T>
inline TqRefList<T>& TqRefList<T>::operator=(const TqRefList& other) {
    TqBaseRefList::operator=(other);
    return *this;
}

template <class T>
template <class Pointer>
inline void TqRefList<T>::Append(Pointer item) {
    InsertSlot(count + 1, TqListItems<T, TqBaseObject>::ToSlot(item));
}

template <class T>
template <class Pointer>
inline unsigned int TqRefList<T>::Find(Pointer item) const {
    return FindSlot(TqListItems<T, TqBaseObject>::ToSlot(item));
}

template <class T>
template <class Pointer>
inline bool TqRefList<T>::Remove(Pointer item) {
    const unsigned int index = Find(item);
    if (index != 0) RemoveSlot(index);
    return index != 0;
}

template <class T>
inline T* TqRefList<T>::At(unsigned int index) const {
    return TqListItems<T, TqBaseObject>::At(*this, index);
}

template <class T>
inline T* TqRefList<T>::First() const {
    return TqListItems<T, TqBaseObject>::First(*this);
}

template <class T>
inline T* TqRefList<T>::Last() const {
    return TqListItems<T, TqBaseObject>::Last(*this);
}

template <class T>
inline TqListWalk<T, TqBaseObject> TqRefList<T>::begin() const {
    return TqListWalk<T, TqBaseObject>(*this);
}

template <class T>
inline TqListWalk<T, TqBaseObject> TqRefList<T>::end() const {
    return TqListWalk<T, TqBaseObject>();
}

#endif
