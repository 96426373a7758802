#ifndef TQ_BASE_LIST_H
#define TQ_BASE_LIST_H

#include "TqBaseObject.h"

/// The growable slot array under every list of the library. It holds untyped pointers in numbered
/// slots and knows nothing of what they point to.
///
/// Slots are numbered from 1: valid indexes are 1 to `count`, and 0 means "not there". Entry 0 of
/// the array exists and is null. Read items as `list.slots[i]`, i from 1 to `count`. Null is never
/// stored; the same pointer may stand in several slots.
///
/// Index arguments are not checked except where it says so: an index outside the range given with
/// an operation is the caller's error and may touch memory outside the list.
///
/// Who walks a list raises `walkDepth` for the walk and lowers it again; destroying or assigning to
/// a list that is being walked is then reported. Inserting and removing during a walk is not.
///
/// Ownership: the list owns its slot array and borrows the items. It never frees one.
/// Lock: none. A list shared between threads is guarded by its owner.
/// Reports: source "TqBaseList".
class TQ_API TqBaseList : public TqBaseObject {
public:
    /// An empty list with 16 entries.
    TqBaseList();

    /// A list of the same items and capacity, not being walked.
    TqBaseList(const TqBaseList& other);

    /// Takes over items and capacity of `other`. Reports when this list is being walked, and
    /// assigns all the same.
    TqBaseList& operator=(const TqBaseList& other);

    /// Reports when the list is being walked. The items are left alone.
    ~TqBaseList() override;

    /// Makes the array at least `n` entries large, for `n - 1` items. Never shrinks.
    void PreAlloc(unsigned int n);

    /// The lowest index whose slot holds exactly `item`; 0 when none does. Null is reported and
    /// searched for all the same.
    unsigned int FindSlot(void* item) const;

    /// Exchanges two slots. An index of 0 or above `count` is reported, once for each, and the
    /// exchange is done all the same: with entry 0, or with the entry just behind the items, which
    /// is always there.
    virtual void SwapItems(unsigned int a, unsigned int b);

    /// Makes the list empty and keeps the array.
    virtual void RemoveAllItems();

    /// Removes slot `index`, 1 to `count`; those above move down. The item is not freed.
    virtual void RemoveSlot(unsigned int index);

    /// Inserts `item` so that it becomes slot `index`, 1 to `count + 1`; those from there on move
    /// up. `count + 1` appends. Null is reported and not inserted. The array grows by 16 entries
    /// whenever it is full.
    virtual void InsertSlot(unsigned int index, void* item);

    /// Puts `item` into slot `index`, 1 to `count`. Null is reported and not stored.
    virtual void ReplaceSlot(unsigned int index, void* item);

    unsigned int capacity;           ///< entries of the array, entry 0 included
    unsigned int count;              ///< items, and the highest valid index
    void** slots;                    ///< the array; entry 0 is null
    mutable unsigned int walkDepth;  ///< walks in progress; a plain number, not atomic

    /// Tells the growth step. The lists do not read it: setting it changes nothing.
    static unsigned int allocInc;

protected:
    /// A list without an array, its base object copied from `other`: for a derived list that copies
    /// the items later, under a lock of its own.
    explicit TqBaseList(const TqBaseObject& other)
        : TqBaseObject(other), capacity(0), count(0), slots(nullptr), walkDepth(0) {}
};

#if !defined(TQ_BASE_LIST_BODY) && defined(TQ_COMPILED_IN)
#define TQ_BASE_LIST_BODY TQ_COMPILED_IN
#endif
#ifdef TQ_BASE_LIST_BODY
// NOLINTBEGIN(misc-definitions-in-headers): only the source of the class defines them

TQ_BASE_LIST_BODY void TqBaseList::RemoveSlot(unsigned int index) {
    // No check of the index or the count: derived lists make theirs before they call, and report in
    // their own name.
    if (index != count) {
        __builtin_memmove(slots + index, slots + index + 1, (count - index) * sizeof(void*));
    }
    --count;
}

TQ_BASE_LIST_BODY void TqBaseList::InsertSlot(unsigned int index, void* item) {
    if (item == nullptr) {
        TqCallAssert("TqBaseList", __LINE__);
        return;
    }
    // Entry 0 takes one of the entries that `capacity` counts, so the array is full one item
    // earlier. The new room is counted from the items and not from the old array: what `PreAlloc`
    // made larger grows by the same step.
    if (__builtin_expect(count + 1 == capacity, 0)) PreAlloc(capacity + 16);
    ++count;
    if (count > index) {
        __builtin_memmove(slots + index + 1, slots + index, (count - index) * sizeof(void*));
    }
    slots[index] = item;
}

// NOLINTEND(misc-definitions-in-headers)
#endif

#endif
