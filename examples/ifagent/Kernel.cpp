#include "Kernel.h"

#include <arpa/inet.h>
#include <errno.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <string.h>

#include "Complaints.h"

namespace {

unsigned long NumberOf(const sockaddr* address) {
    sockaddr_in internetAddress;
    memcpy(&internetAddress, address, sizeof internetAddress);
    return ntohl(internetAddress.sin_addr.s_addr);
}

void AppendAddress(const ifaddrs& entry, const TqString& interfaceName, Poll& poll) {
    TqRef<Subnet> subnet(new Subnet);
    Subnet* own = static_cast<Subnet*>(subnet.object);
    own->address.fromUInt32(NumberOf(entry.ifa_addr));
    // Not fromUInt32, which would refuse the mask of a single address.
    if (entry.ifa_netmask != nullptr) own->mask = TqNetworkMask(NumberOf(entry.ifa_netmask));
    own->interfaceName = interfaceName;
    poll.addresses.InsertSlot(poll.addresses.count + 1, subnet.object);
}

// The interface that `entry` is about, or null. The label of a second address ("eth0:1") begins
// with the interface's name.
Interface* FindInterface(const ifaddrs& entry, const Poll& poll) {
    Interface* interface = poll.Find(entry.ifa_name);
    const char* colon = strchr(entry.ifa_name, ':');
    if (interface != nullptr || colon == nullptr) return interface;
    const TqString name(entry.ifa_name, static_cast<unsigned int>(colon - entry.ifa_name));
    return poll.Find(name.data);
}

void TakeEntry(const ifaddrs& entry, Poll& poll) {
    Interface* interface = FindInterface(entry, poll);
    if (interface == nullptr) return;
    const unsigned int running = IFF_UP | IFF_RUNNING;
    interface->up = TqBoolean((entry.ifa_flags & running) == running);
    interface->upIsKnown = true;
    if (entry.ifa_addr != nullptr && entry.ifa_addr->sa_family == AF_INET) {
        AppendAddress(entry, interface->name, poll);
    }
}

}  // namespace

void AskKernel(Poll& poll) {
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        Interface* interface = ItemOf(poll.interfaces, i);
        const unsigned int index = if_nametoindex(interface->name.data);
        if (index != 0) interface->index = TqNumber(static_cast<int>(index));
    }
    ifaddrs* entries = nullptr;
    if (getifaddrs(&entries) != 0) {
        Complain("getifaddrs: %s", strerror(errno));
        return;
    }
    for (const ifaddrs* entry = entries; entry != nullptr; entry = entry->ifa_next) {
        TakeEntry(*entry, poll);
    }
    freeifaddrs(entries);
}
