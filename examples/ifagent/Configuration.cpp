#include "Configuration.h"

#include <string.h>

#include "TqClassInfo.h"
#include "TqClassRegistry.h"

static bool IsFault(unsigned int value) {
    return value == inDiscards || value == inErrors || value == outDiscards || value == outErrors;
}

// Watches bytes and packets.
class TrafficMonitor : public Monitor {
    TQ_DECLARE_CLASS(TrafficMonitor)
    bool Watches(unsigned int v) const override { return v >= firstCounter && !IsFault(v); }
};

// Watches what was dropped and what was damaged.
class FaultMonitor : public Monitor {
    TQ_DECLARE_CLASS(FaultMonitor)
    bool Watches(unsigned int v) const override { return IsFault(v); }
};

// Watches whether the interface is up.
class LinkMonitor : public Monitor {
    TQ_DECLARE_CLASS(LinkMonitor)
    bool Watches(unsigned int v) const override { return v == upValue; }
};

TQ_IMPLEMENT_ABSTRACT_CLASS(Monitor, TqBaseObject)
TQ_IMPLEMENT_CLASS(TrafficMonitor, Monitor)
TQ_IMPLEMENT_CLASS(FaultMonitor, Monitor)
TQ_IMPLEMENT_CLASS(LinkMonitor, Monitor)

void RegisterMonitorClasses() {
    TqBaseRefList& classes = TqClassRegistry::GetRegistry()->classList;
    TqBaseObject* const monitorClasses[] = {
        Monitor::MonitorInitInfo(), TrafficMonitor::TrafficMonitorInitInfo(),
        FaultMonitor::FaultMonitorInitInfo(), LinkMonitor::LinkMonitorInitInfo()};
    for (TqBaseObject* info : monitorClasses) classes.InsertSlot(classes.count + 1, info);
}

namespace {

const int longestInterval = 3600;
const unsigned int mostWords = 5;  // one more than any line is to have

// The functions below take over the words of one line. They return false after a complaint.

bool SetPoll(Configuration& configuration, char** words) {
    configuration.poll.FromString(words[1]);
    return true;
}

bool SetInterval(Configuration& configuration, char** words) {
    const int seconds = WholeNumber(words[1], longestInterval);
    if (seconds >= 0) configuration.interval = TqNumber(seconds);
    return seconds >= 0 || Complain("an interval is a number of seconds up to %d", longestInterval);
}

bool AddMonitor(Configuration& configuration, char** words) {
    TqClassInfo* info = TqClassRegistry::GetRegistry()->ClassInfo(words[1]);
    if (info == nullptr || !info->IsA(Monitor::MonitorInitInfo())) {
        return Complain("no monitor class \"%s\"", words[1]);
    }
    TqRef<Monitor> monitor(static_cast<Monitor*>(info->NewObject()));
    if (monitor.object == nullptr) return Complain("monitor class \"%s\" is abstract", words[1]);
    static_cast<Monitor*>(monitor.object)->interfaceName = words[2];
    configuration.monitors.InsertSlot(configuration.monitors.count + 1, monitor.object);
    return true;
}

bool SetManager(Configuration& configuration, char** words) {
    const bool inform = words[3] != nullptr;
    if (inform && strcmp(words[3], "inform") != 0) {
        return Complain("\"%s\" where only \"inform\" can stand", words[3]);
    }
    configuration.manager = words[1];
    configuration.community = words[2];
    configuration.inform = inform;
    return true;
}

// Behind "allow" stands a network, and behind "address" the name of an interface first.
bool AddSubnet(Configuration& configuration, char** words) {
    const bool hasName = words[3] != nullptr;
    const char* address = words[hasName ? 2 : 1];
    const char* mask = words[hasName ? 3 : 2];
    TqRef<Subnet> kept(new Subnet);
    Subnet* subnet = static_cast<Subnet*>(kept.object);
    if (!subnet->address.fromString(address)) return Complain("\"%s\" is not an address", address);
    if (!subnet->mask.fromString(mask)) return Complain("\"%s\" is not a mask", mask);
    if (hasName) subnet->interfaceName = words[1];
    TqBaseRefList& list = hasName ? configuration.addresses : configuration.allowed;
    list.InsertSlot(list.count + 1, kept.object);
    return true;
}

// A line begins with a keyword, and so many words follow it.
const struct {
    const char* name;
    unsigned int fewest;
    unsigned int most;
    bool (*take)(Configuration& configuration, char** words);
} keywords[] = {
    {"poll", 1, 1, SetPoll},    {"interval", 1, 1, SetInterval}, {"monitor", 1, 2, AddMonitor},
    {"allow", 2, 2, AddSubnet}, {"address", 3, 3, AddSubnet},    {"notify", 2, 3, SetManager},
};

bool TakeLine(Configuration& configuration, char* line) {
    line[strcspn(line, "#")] = '\0';
    char* words[mostWords];  // the rest of them are null
    unsigned int count = 0;
    char* rest = nullptr;
    for (char*& word : words) {
        word = strtok_r(count == 0 ? line : nullptr, " \t\r", &rest);
        if (word != nullptr) ++count;
    }
    if (count == 0) return true;
    const char* name = words[0];
    for (const auto& keyword : keywords) {
        if (strcmp(name, keyword.name) != 0) continue;
        if (count <= keyword.fewest) return Complain("too few words behind \"%s\"", name);
        if (count > keyword.most + 1) return Complain("too many words behind \"%s\"", name);
        return keyword.take(configuration, words);
    }
    return Complain("unknown keyword \"%s\"", name);
}

}  // namespace

void Configuration::Read(LineReader& reader) {
    TqString line;
    while (reader.NextLine(line)) TakeLine(*this, line.data);
}

bool Configuration::Allows(const TqIpAddress& address) const {
    for (unsigned int i = 1; i <= allowed.count; ++i) {
        const Subnet* network = ItemOf(allowed, i);
        if (network->NetworkOf(address) == network->NetworkOf(network->address)) return true;
    }
    return allowed.count == 0;
}
