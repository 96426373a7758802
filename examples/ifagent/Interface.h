#ifndef INTERFACE_H
#define INTERFACE_H

#include "TqBaseObject.h"
#include "TqBoolean.h"
#include "TqCounter.h"
#include "TqNumber.h"
#include "TqString.h"

/// The counters of an interface, in the order in which they are sent and shown.
enum InterfaceCounter {
    inOctets,
    inUcastPkts,
    inNUcastPkts,
    inDiscards,
    inErrors,
    outOctets,
    outUcastPkts,
    outDiscards,
    outErrors,
    interfaceCounterCount
};

/// What a counter is called.
struct InterfaceCounterName {
    unsigned int column;  ///< its column in the interface table that managers read
    const char* name;     ///< that column's name
    const char* heading;  ///< what a person calls it
};

extern const InterfaceCounterName interfaceCounterNames[interfaceCounterCount];

/// One interface as one poll saw it, in the library's values.
///
/// The counters are 32 bits wide, as managers expect them; the kernel's have 64. What does not fit
/// is kept modulo 2^32, and `wrapped` says so.
class Interface : public TqBaseObject {
public:
    Interface();

    /// Name, index, up and the counters, as values of any type: what is sent, in that order.
    TqDataType& Value(unsigned int i);
    const TqDataType& Value(unsigned int i) const;

    /// Stores what the kernel has counted.
    void SetCounter(InterfaceCounter counter, unsigned long long count);

    static const unsigned int valueCount = 3 + interfaceCounterCount;

    TqString name;
    TqNumber index;
    TqBoolean up;
    TqCounter counters[interfaceCounterCount];
    bool upIsKnown;  ///< false for an interface of another machine
    bool wrapped[interfaceCounterCount];
};

#endif
