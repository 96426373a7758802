#ifndef TQ_BASE_REF_LIST_H
#define TQ_BASE_REF_LIST_H

#include "TqBaseList.h"

/// The list that keeps its objects alive: each slot keeps one reference on the `TqBaseObject` in
/// it. Pass items as `TqBaseObject*`; applications name the item type with `TqRefList<T>` and read
/// items as `static_cast<T*>(static_cast<TqBaseObject*>(list.slots[i]))`.
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

/// A reference list of T.
template <class T>
class TQ_API TqRefList : public TqBaseRefList {
public:
    TqRefList() {}
    TqRefList(const TqRefList& other) : TqBaseRefList(other) {}
    ~TqRefList() override {}

    TqRefList& operator=(const TqRefList& other);
};

template <class T>
inline TqRefList<T>& TqRefList<T>::operator=(const TqRefList& other) {
    TqBaseRefList::operator=(other);
    return *this;
}

#endif
