#ifndef MONITOR_H
#define MONITOR_H

#include "Interface.h"
#include "Poll.h"
#include "TqBaseObject.h"
#include "TqCallbackChain.h"
#include "TqCallbackData.h"
#include "TqString.h"

/// What listeners are told: one value of one interface is no longer what it was. Valid during the
/// call.
class ValueChange : public TqCallbackData {
public:
    ValueChange(const Interface& beforeChange, const Interface& afterChange, unsigned int value);

    const TqDataType& Before() const { return before.Value(index); }
    const TqDataType& After() const { return after.Value(index); }

    const Interface& before;
    const Interface& after;
    const unsigned int index;  ///< of the value, for `Interface::Value`
};

/// Watches some of the values of one interface, or of all. The configuration names the class, and
/// the class registry makes the object.
class Monitor : public TqBaseObject {
    TQ_DECLARE_CLASS(Monitor)

public:
    /// Compares what is watched in two polls, and invokes `listeners` with this monitor and a
    /// `ValueChange` for each difference. Interfaces that are in one poll only are passed over.
    void Observe(const Poll& before, const Poll& after, TqCallbackChain& listeners);

    /// Whether this kind of monitor watches the value with that index.
    virtual bool Watches(unsigned int value) const = 0;

    TqString interfaceName;  ///< the only one that is watched; empty for all

private:
    void ObserveInterface(const Interface& before, const Interface& after,
                          TqCallbackChain& listeners);
};

/// Watches bytes and packets.
class TrafficMonitor : public Monitor {
    TQ_DECLARE_CLASS(TrafficMonitor)

public:
    bool Watches(unsigned int value) const override;
};

/// Watches what was dropped and what was damaged.
class FaultMonitor : public Monitor {
    TQ_DECLARE_CLASS(FaultMonitor)

public:
    bool Watches(unsigned int value) const override;
};

/// Watches whether the interface is up.
class LinkMonitor : public Monitor {
    TQ_DECLARE_CLASS(LinkMonitor)

public:
    bool Watches(unsigned int value) const override;
};

/// Enters the classes above into the class registry. Call it once at start-up.
void RegisterMonitorClasses();

/// A new monitor of the registered class `className`; or null, with what is wrong in `complaint`.
TqRef<Monitor> MakeMonitor(const char* className, TqString& complaint);

#endif
