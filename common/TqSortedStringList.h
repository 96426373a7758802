#ifndef TQ_SORTED_STRING_LIST_H
#define TQ_SORTED_STRING_LIST_H

#include "TqBaseList.h"
#include "TqListItems.h"

class TqString;

/// The list of strings that `Add` keeps in ascending byte order of their texts, upper case before
/// lower, as `strcmp` orders them. Equal texts may be in it more than once and keep the order in
/// which they were added.
///
/// The order is kept by `Add` alone: who inserts, replaces or swaps slots, or changes a text in the
/// list, sees to it himself.
///
/// At most 65535 strings: a list that is full must not be given to `Add`.
///
/// Ownership: the list borrows the strings and never deletes one.
/// Lock: none. Reports: source "TqSortedStringList".
class TQ_API TqSortedStringList : public TqBaseList {
public:
    TqSortedStringList();

    /// A complete copy, and a report: two lists now claim the same strings.
    TqSortedStringList(const TqSortedStringList& other);

    /// Takes over the strings of `other`, unlike the copy without a report.
    TqSortedStringList& operator=(const TqSortedStringList& other);

    ~TqSortedStringList() override;

    /// Inserts `s` behind the last text that is not greater than its own, and returns it. Null is
    /// reported, by the slot list once more, and not inserted. The search is linear.
    TqString* Add(TqString* s);

    /// Removes slot `index` and returns the string that was in it. An index above `count` is
    /// reported, gives null and removes nothing. Index 0 is reported, gives null and still removes
    /// "slot 0": the first string drops out of the numbered slots, and the `count` of an empty list
    /// wraps around.
    TqString* RemoveItem(unsigned int index);

    /// Removes the slot that holds this very object and returns it; null when none does, even if
    /// one has the same text. Null is reported and looked for all the same.
    TqString* RemoveItem(TqString* s);

    /// The string in slot `index`. One of 0 or above `count` is reported and gives null.
    TqString* At(unsigned int index) const;

    /// The first and the last string; null when the list is empty.
    TqString* First() const;
    TqString* Last() const;

    /// For range-for, a walk over the list as TqListItems.h has it:
    ///
    ///     for (const TqString* name : names) std::puts(name->data);
    TqListWalk<TqString, TqString> begin() const;
    TqListWalk<TqString, TqString> end() const;
};

inline TqString* TqSortedStringList::At(unsigned int index) const {
    return TqListItems<TqString, TqString>::At(*this, index);
}

inline TqString* TqSortedStringList::First() const {
    return TqListItems<TqString, TqString>::First(*this);
}

inline TqString* TqSortedStringList::Last() const {
    return TqListItems<TqString, TqString>::Last(*this);
}

inline TqListWalk<TqString, TqString> TqSortedStringList::begin() const {
    return TqListWalk<TqString, TqString>(*this);
}

inline TqListWalk<TqString, TqString> TqSortedStringList::end() const {
    return TqListWalk<TqString, TqString>();
}

#endif
