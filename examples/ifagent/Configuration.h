#ifndef CONFIGURATION_H
#define CONFIGURATION_H

#include "Interface.h"
#include "TqCallbackData.h"
#include "TqNumber.h"

/// What listeners are told: one value of one interface is no longer what it was. Valid during the
/// call.
class ValueChange : public TqCallbackData {
public:
    const Interface* before;
    const Interface* after;
    unsigned int value;
};

/// Watches some of the values of one interface, or of all. The configuration names the class, and
/// the class registry makes the object.
class Monitor : public TqBaseObject {
    TQ_DECLARE_CLASS(Monitor)

public:
    virtual bool Watches(unsigned int value) const = 0;  ///< whether it looks at that value

    TqString interfaceName;  ///< the only one that is watched; empty for all
};

/// Enters all monitor classes into the class registry. Call it once at start-up.
void RegisterMonitorClasses();

/// What the agent is to do, from lines such as "poll On". Empty lines and what follows a '#' mean
/// nothing.
class Configuration {
public:
    /// Polling is on, every second, and nothing watched.
    Configuration() : poll(1), interval(1) {}

    /// Takes over all lines. One that is not understood is complained of and left out.
    void Read(LineReader& reader);

    /// Whether an address is in one of the allowed networks; always true when none is named.
    bool Allows(const TqIpAddress& address) const;

    TqBoolean poll;               ///< "poll On": whether the interfaces are read at all
    TqNumber interval;            ///< "interval 5": seconds between two polls
    TqRefList<Monitor> monitors;  ///< "monitor LinkMonitor eth0", or of all interfaces
    TqString manager;             ///< "notify 10.1.1.1:162 public": who is told; empty for nobody
    TqString community;           ///< and what stands behind: the word that he expects
    bool inform = false;          ///< "notify ... inform": whether he is to acknowledge
    TqRefList<Subnet> allowed;    ///< "allow 10.0.0.0 255.0.0.0"
    TqRefList<Subnet> addresses;  ///< "address eth0 10.1.2.3 255.0.0.0": what no kernel tells
};

#endif
