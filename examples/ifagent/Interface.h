#ifndef INTERFACE_H
#define INTERFACE_H

#include "TqBaseObject.h"
#include "TqBoolean.h"
#include "TqCounter.h"
#include "TqNumber.h"
#include "TqSnmpOid.h"
#include "TqString.h"

/// The values of an interface, in the order in which they are sent and shown.
enum InterfaceValue : unsigned int {
    nameValue,
    indexValue,
    upValue,
    inOctets,  // from here on, counters
    inUcastPkts,
    inNUcastPkts,
    inDiscards,
    inErrors,
    outOctets,
    outUcastPkts,
    outDiscards,
    outErrors,
    interfaceValueCount
};

const unsigned int firstCounter = inOctets;
const unsigned int interfaceCounterCount = interfaceValueCount - firstCounter;

/// What a value is called.
struct InterfaceValueName {
    unsigned int column;  ///< its column in the interface table that managers read
    const char* name;     ///< that column's name
    const char* heading;  ///< what a person calls it
};

/// The entries of that table; a value's column and its interface's index follow.
extern const char interfaceTableEntry[];

extern const InterfaceValueName interfaceValueNames[interfaceValueCount];

/// One interface as one poll saw it, in the library's values.
///
/// The counters are 32 bits wide, as managers expect them; the kernel's have 64. What does not fit
/// is kept modulo 2^32.
class Interface : public TqBaseObject {
public:
    Interface();

    /// A value, as one of any type; `i` is an `InterfaceValue`.
    TqDataType& Value(unsigned int i);
    const TqDataType& Value(unsigned int i) const;

    /// The object identifier of a value in the interface table that managers read.
    TqSnmpOid Oid(unsigned int i) const;

    /// Stores what the kernel has counted.
    void SetCounter(InterfaceValue counter, unsigned long long kernelCount);

    /// Whether the value is a counter that is less than what the kernel has counted.
    bool IsWrapped(unsigned int i) const;

    TqString name;
    TqNumber index;
    TqBoolean up;
    TqBoolean watched;  ///< whether monitors look at it; not sent
    bool upIsKnown;     ///< false for an interface of another machine
    TqCounter counters[interfaceCounterCount];
    bool wrapped[interfaceCounterCount];
};

#endif
