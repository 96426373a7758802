#ifndef POLL_H
#define POLL_H

#include "Interface.h"
#include "Subnet.h"
#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqDateTime.h"
#include "TqSortedStringList.h"

/// The item at `index`, from 1, of a reference list.
template <class T>
T* ItemOf(const TqRefList<T>& list, unsigned int index) {
    return static_cast<T*>(static_cast<TqBaseObject*>(list.slots[index]));
}

/// The interfaces as they were found at one moment.
class Poll : public TqBaseObject {
public:
    /// Appends an interface for each line of `path`, and what the kernel knows besides when that is
    /// the kernel's own file. A malformed line is complained of and left out. Returns whether there
    /// is an interface at all.
    bool Read(const char* path);

    /// Appends the items of all values to `buffer`, behind the number of interfaces.
    void Send(TqBuffer& buffer) const;

    /// Takes over what `Send` has written, at the read position of `buffer`.
    void Receive(TqBuffer& buffer);

    /// The interface with that name, or null.
    Interface* Find(const char* name) const;

    /// The interface whose name is at `index`, from 1, of the sorted names.
    Interface* InOrder(unsigned int index) const;

    TqDateTime time;    ///< when it was made; not sent, for a date has no item
    TqBoolean enabled;  ///< the "poll" line of the configuration under which this was read
    TqRefList<Interface> interfaces;
    TqRefList<Subnet> addresses;  ///< of the interfaces
    TqSortedStringList names;     ///< of the interfaces, whose own they are

private:
    bool AppendLine(const char* line, TqString& complaint);
};

#endif
