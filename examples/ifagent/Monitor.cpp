#include "Monitor.h"

#include "TqClassInfo.h"
#include "TqClassRegistry.h"

TQ_IMPLEMENT_ABSTRACT_CLASS(Monitor, TqBaseObject)
TQ_IMPLEMENT_CLASS(TrafficMonitor, Monitor)
TQ_IMPLEMENT_CLASS(FaultMonitor, Monitor)
TQ_IMPLEMENT_CLASS(LinkMonitor, Monitor)

ValueChange::ValueChange(const Interface& beforeChange, const Interface& afterChange,
                         unsigned int value)
    : before(beforeChange), after(afterChange), index(value) {}

void Monitor::Observe(const Poll& before, const Poll& after, TqCallbackChain& listeners) {
    for (unsigned int i = 1; i <= after.interfaces.count; ++i) {
        const Interface* interface = ItemOf(after.interfaces, i);
        if (!interface->watched) continue;
        if (interfaceName.IsNotEmpty() && !interfaceName.Equals(&interface->name)) continue;
        const Interface* earlier = before.Find(interface->name.data);
        if (earlier != nullptr) ObserveInterface(*earlier, *interface, listeners);
    }
}

void Monitor::ObserveInterface(const Interface& before, const Interface& after,
                               TqCallbackChain& listeners) {
    for (unsigned int v = 0; v < interfaceValueCount; ++v) {
        if (!Watches(v) || after.Value(v).Equals(&before.Value(v))) continue;
        ValueChange change(before, after, v);
        listeners.Invoke(this, &change);
    }
}

bool TrafficMonitor::Watches(unsigned int value) const {
    switch (value) {
        case inOctets:
        case inUcastPkts:
        case inNUcastPkts:
        case outOctets:
        case outUcastPkts:
            return true;
        default:
            return false;
    }
}

bool FaultMonitor::Watches(unsigned int value) const {
    switch (value) {
        case inDiscards:
        case inErrors:
        case outDiscards:
        case outErrors:
            return true;
        default:
            return false;
    }
}

bool LinkMonitor::Watches(unsigned int value) const {
    return value == upValue;
}

void RegisterMonitorClasses() {
    TqBaseRefList& classes = TqClassRegistry::GetRegistry()->classList;
    TqClassInfo* const monitorClasses[] = {
        Monitor::MonitorInitInfo(),
        TrafficMonitor::TrafficMonitorInitInfo(),
        FaultMonitor::FaultMonitorInitInfo(),
        LinkMonitor::LinkMonitorInitInfo(),
    };
    for (TqBaseObject* monitorClass : monitorClasses) {
        classes.InsertSlot(classes.count + 1, monitorClass);
    }
}

TqRef<Monitor> MakeMonitor(const char* className, TqString& complaint) {
    TqClassInfo* info = TqClassRegistry::GetRegistry()->ClassInfo(className);
    if (info == nullptr || !info->IsA(Monitor::MonitorInitInfo())) {
        complaint = TqString("no monitor class \"") + className + "\"";
        return TqRef<Monitor>();
    }
    TqRef<Monitor> monitor(static_cast<Monitor*>(info->NewObject()));
    if (monitor.object == nullptr)
        complaint = TqString("monitor class \"") + className + "\" is abstract";
    return monitor;
}
