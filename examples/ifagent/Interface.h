#ifndef INTERFACE_H
#define INTERFACE_H

#include "Text.h"
#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqBoolean.h"
#include "TqCounter.h"
#include "TqNetworkMask.h"
#include "TqSnmpOid.h"
#include "TqSortedStringList.h"

/// The values of an interface, in the order in which they are sent and shown.
enum : unsigned int { nameValue, indexValue, upValue, firstCounter };
enum : unsigned int { inOctets = firstCounter, inUcastPkts, inNUcastPkts, inDiscards, inErrors };
enum : unsigned int { outOctets = inErrors + 1, outUcastPkts, outDiscards, outErrors, valueCount };

/// What the values are called, and where they come from.
extern const struct ValueName {
    unsigned int column;  ///< its column in the interface table that managers read
    unsigned int number;  ///< of a counter: which one, from 0, of a line of /proc/net/dev it is
    const char* name;     ///< the column's name
    const char* heading;  ///< what a person calls it
} valueNames[valueCount];

/// The entries of that table; a value's column and its interface's index follow.
extern const char interfaceTableEntry[];
extern const char procNetDev[];  ///< where the kernel shows what it has counted

class Interface;

/// The name of an interface, which leads back to it from a list of names.
class InterfaceName : public TqString {
public:
    explicit InterfaceName(Interface* named) : owner(named) {}

    Interface* const owner;
};

/// One interface as one poll saw it, in the library's values. The counters are 32 bits wide, as
/// managers expect them; the kernel's have 64. What does not fit is kept modulo 2^32.
class Interface : public TqBaseObject {
public:
    Interface();

    /// Takes name and counters from a line of /proc/net/dev, "eth0: 1234 5 0 ..." with 16 numbers,
    /// which it cuts up. False after a complaint, and the interface is not to be used.
    bool Parse(char* line);

    TqSnmpOid Oid(unsigned int value) const;  ///< that of a value in the managers' table
    const char* OperStatus() const;           ///< `up` as the number in that table
    const char* StateText() const;            ///< and as its name there

    InterfaceName name;
    TqNumber index;
    TqBoolean up;
    TqCounter counters[valueCount - firstCounter];
    TqDataType* values[valueCount];  ///< all these, as values of any type
    bool wrapped[valueCount];        ///< whether the kernel has counted more than it says
    bool upIsKnown;                  ///< false for an interface of another machine
    bool watched;                    ///< whether monitors look at it
};

/// An address and its mask: that of an interface, or of a network to be compared with.
class Subnet : public TqBaseObject {
public:
    TqIpAddress NetworkOf(const TqIpAddress& other) const;  ///< the part that the mask keeps

    TqIpAddress address;
    TqNetworkMask mask;      ///< invalid, for the library, when it says that there is one address
    TqString interfaceName;  ///< whose address it is, if anyone's
};

/// The item at `index`, from 1, of a reference list.
template <class T>
T* ItemOf(const TqRefList<T>& list, unsigned int index) {
    return static_cast<T*>(static_cast<TqBaseObject*>(list.slots[index]));
}

/// The interfaces as they were found at one moment.
class Poll : public TqBaseObject {
public:
    /// Appends an interface for each line of `path`, and what the kernel knows besides when that is
    /// the kernel's own file. Returns whether there is an interface at all.
    bool Read(const char* path);

    Interface* Find(const char* name) const;       ///< the one with that name, or null
    Interface* InOrder(unsigned int index) const;  ///< the one at that place, from 1, by name

    TqDateTime time;  ///< when it was made
    TqRefList<Interface> interfaces;
    TqRefList<Subnet> addresses;  ///< of the interfaces
    TqSortedStringList names;     ///< of the interfaces, whose own they are

private:
    unsigned int PlaceOf(const char* name) const;
    bool AppendLine(char* line);
    void AskKernel();
};

#endif
