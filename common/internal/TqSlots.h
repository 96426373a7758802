#ifndef TQ_SLOTS_H
#define TQ_SLOTS_H

// What the lists ask of their slot array. None of it reports: each list does so in its own name.

#include "../TqBaseList.h"

/// Whether `index` is the number of an item.
inline bool TqIsSlot(const TqBaseList& list, unsigned int index) {
    return index != 0 && index <= list.count;
}

/// What stands in entry `index`, 0 included; null above `count` and where the array is missing.
inline void* TqItemIn(const TqBaseList& list, unsigned int index) {
    return index <= list.count && list.slots != nullptr ? list.slots[index] : nullptr;
}

/// The lowest slot that holds `item`, or 0.
inline unsigned int TqPlaceOf(const TqBaseList& list, const void* item) {
    for (unsigned int i = 1; i <= list.count; ++i) {
        if (TqItemIn(list, i) == item) return i;
    }
    return 0;
}

/// Removes entry `index` and returns what stood there. Above `count` nothing is removed: it would
/// move memory that is not the list's. Entry 0 is removed like any other, and the first item drops
/// out of the list: applications that remove "item 0" are used to the report and to what is left.
inline void* TqTakeOut(TqBaseList& list, unsigned int index) {
    void* item = TqItemIn(list, index);
    if (index <= list.count) list.RemoveSlot(index);
    return item;
}

#endif
