#include "Interface.h"

#include <arpa/inet.h>
#include <ctype.h>
#include <errno.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

const ValueName valueNames[valueCount] = {
    {2, 0, "ifDescr", "interface"},       {1, 0, "ifIndex", "index"},
    {8, 0, "ifOperStatus", "up"},         {10, 0, "ifInOctets", "bytes"},
    {11, 1, "ifInUcastPkts", "unicast"},  {12, 7, "ifInNUcastPkts", "multicast"},
    {13, 3, "ifInDiscards", "dropped"},   {14, 2, "ifInErrors", "errors"},
    {16, 8, "ifOutOctets", "bytes"},      {17, 9, "ifOutUcastPkts", "packets"},
    {19, 11, "ifOutDiscards", "dropped"}, {20, 10, "ifOutErrors", "errors"},
};

const char interfaceTableEntry[] = "1.3.6.1.2.1.2.2.1";
const char procNetDev[] = "/proc/net/dev";

namespace {

typedef unsigned long long KernelCount;
const char blanks[] = " \t\v\f\r";
const unsigned int numberCount = 16;
const unsigned int mostInterfaces = 65535;  // what the sorted list takes

// All numbers of a line, neither more nor fewer.
bool ParseNumbers(char* text, KernelCount (&numbers)[numberCount]) {
    unsigned int count = 0;
    char* rest = nullptr;
    for (const char* word = strtok_r(text, blanks, &rest); word != nullptr; ++count) {
        char* end = nullptr;
        errno = 0;
        const KernelCount number = strtoull(word, &end, 10);
        if (errno == ERANGE) return Complain("\"%s\" is too large a number", word);
        // The parser of the system would take a sign too.
        if (strspn(word, "0123456789") == 0 || *end != '\0') {
            return Complain("\"%s\" is not a number", word);
        }
        if (count < numberCount) numbers[count] = number;
        word = strtok_r(nullptr, blanks, &rest);
    }
    return count == numberCount || Complain("%u number%s where there should be %u", count,
                                            count == 1 ? "" : "s", numberCount);
}

unsigned long NumberOf(const sockaddr* address) {
    sockaddr_in internetAddress;
    memcpy(&internetAddress, address, sizeof internetAddress);
    return ntohl(internetAddress.sin_addr.s_addr);
}

// Takes over what one entry of the kernel's list says about an interface.
void TakeEntry(const ifaddrs& entry, Poll& poll) {
    // The label of a second address ("eth0:1") begins with the interface's name.
    const unsigned int length = static_cast<unsigned int>(strcspn(entry.ifa_name, ":"));
    Interface* interface = poll.Find(TqString(entry.ifa_name, length).data);
    if (interface == nullptr) return;
    const unsigned int running = IFF_UP | IFF_RUNNING;
    interface->up = TqBoolean((entry.ifa_flags & running) == running);
    interface->upIsKnown = true;
    if (entry.ifa_addr == nullptr || entry.ifa_addr->sa_family != AF_INET) return;

    Subnet* subnet = new Subnet;
    poll.addresses.InsertSlot(poll.addresses.count + 1, static_cast<TqBaseObject*>(subnet));
    subnet->address.fromUInt32(NumberOf(entry.ifa_addr));
    // Not fromUInt32, which would refuse the mask of a single address.
    if (entry.ifa_netmask != nullptr) subnet->mask = TqNetworkMask(NumberOf(entry.ifa_netmask));
    subnet->interfaceName = interface->name;
}

}  // namespace

Interface::Interface() : name(this), wrapped(), upIsKnown(false), watched(true) {
    values[nameValue] = &name;
    values[indexValue] = &index;
    values[upValue] = &up;
    TqDataType** value = values + firstCounter;
    for (TqCounter& counter : counters) *value++ = &counter;
}

bool Interface::Parse(char* line) {
    // The name stands before the last colon: that of an alias ("eth0:1") has one of its own.
    char* start = line + strspn(line, blanks);
    char* colon = strrchr(start, ':');
    if (colon == nullptr || colon == start) {
        return Complain("no interface name with a colon behind it");
    }
    if (!std::all_of(start, colon, [](unsigned char c) { return isgraph(c) != 0; })) {
        return Complain("an interface name with a blank or unprintable character");
    }
    KernelCount numbers[numberCount] = {};
    if (!ParseNumbers(colon + 1, numbers)) return false;

    name.SetValue(start, static_cast<unsigned int>(colon - start));
    // Every packet is either for one station or for several. Drivers that count the latter apart
    // may be ahead of the sum.
    KernelCount& packets = numbers[valueNames[inUcastPkts].number];
    packets -= std::min(packets, numbers[valueNames[inNUcastPkts].number]);
    for (unsigned int v = firstCounter; v < valueCount; ++v) {
        const KernelCount counted = numbers[valueNames[v].number];
        counters[v - firstCounter].count = static_cast<unsigned int>(counted);
        wrapped[v] = counted > 0xFFFFFFFFU;
    }
    return true;
}

TqSnmpOid Interface::Oid(unsigned int value) const {
    TqSnmpOid oid(interfaceTableEntry);
    oid.Append(valueNames[value].column);
    oid.Append(index.value);
    return oid;
}

const char* Interface::OperStatus() const {
    if (!upIsKnown) return "4";
    return int(up) != 0 ? "1" : "2";
}

const char* Interface::StateText() const {
    if (!upIsKnown) return "unknown";
    return int(up) != 0 ? "up" : "down";
}

TqIpAddress Subnet::NetworkOf(const TqIpAddress& other) const {
    TqIpAddress network(other);
    network.LogicalAND(mask);
    return network;
}

bool Poll::Read(const char* path) {
    LineReader reader(path);
    if (!reader.ReadFile()) return false;
    TqString line;
    while (reader.NextLine(line)) {
        const bool isHeading = reader.lineNumber <= 2 && strchr(line.data, '|') != nullptr;
        if (!isHeading) AppendLine(line.data);
    }
    if (interfaces.count == 0) Complain("%s: no interfaces", path);
    if (strcmp(path, procNetDev) == 0) AskKernel();
    return interfaces.count > 0;
}

// A malformed line is complained of and left out.
bool Poll::AppendLine(char* line) {
    TqRef<Interface> kept(new Interface);
    Interface* interface = static_cast<Interface*>(kept.object);
    if (!interface->Parse(line)) return false;
    const char* name = interface->name.data;
    const unsigned int place = PlaceOf(name);
    if (Find(name) != nullptr) return Complain("a second line for %s", name);
    if (interfaces.count == mostInterfaces) return Complain("too many interfaces");

    interfaces.InsertSlot(interfaces.count + 1, kept.object);
    interface->index = TqNumber(static_cast<int>(interfaces.count));
    // Not Add, which looks for the place from the start.
    names.InsertSlot(place, &interface->name);
    return true;
}

// Adds what the kernel tells about this machine's interfaces beside their counters: their indexes,
// whether they are up, and their addresses.
void Poll::AskKernel() {
    for (unsigned int i = 1; i <= interfaces.count; ++i) {
        Interface* interface = ItemOf(interfaces, i);
        const unsigned int index = if_nametoindex(interface->name.data);
        if (index != 0) interface->index = TqNumber(static_cast<int>(index));
    }
    ifaddrs* entries = nullptr;
    if (getifaddrs(&entries) != 0) Complain("getifaddrs: %s", strerror(errno));
    for (const ifaddrs* entry = entries; entry != nullptr; entry = entry->ifa_next) {
        TakeEntry(*entry, *this);
    }
    freeifaddrs(entries);
}

// Of the first name that is not less.
unsigned int Poll::PlaceOf(const char* name) const {
    const auto isLess = [](const void* slot, const char* wanted) {
        return strcmp(static_cast<const InterfaceName*>(slot)->data, wanted) < 0;
    };
    void** const end = names.slots + 1 + names.count;
    return static_cast<unsigned int>(std::lower_bound(names.slots + 1, end, name, isLess) -
                                     names.slots);
}

Interface* Poll::Find(const char* name) const {
    const unsigned int place = PlaceOf(name);
    if (place > names.count) return nullptr;
    Interface* interface = InOrder(place);
    return strcmp(interface->name.data, name) == 0 ? interface : nullptr;
}

Interface* Poll::InOrder(unsigned int index) const {
    return static_cast<InterfaceName*>(names.slots[index])->owner;
}
