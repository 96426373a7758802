// A list that keeps its ports alive, and one that only shows their names in order.
#include <cstdio>

#include "Port.h"

int main() {
    TqRefList<Port> ports;
    for (const char* name : {"uplink", "eth0", "eth1"}) {
        TqRef<Port> port = TqMakeRef<Port>();
        port->name = name;
        ports.Append(port.Get());  // from here on the list keeps it
    }

    TqSortedStringList names;  // borrows the names
    for (Port* port : ports) names.Add(&port->name);
    for (const TqString* name : names) std::puts(name->data);
    names.RemoveAllItems();

    std::printf("%u ports, slot 2 is %s\n", ports.count, ports.At(2)->name.data);
    ports.Remove(ports.At(2));  // nobody else holds it
    std::printf("%u ports, slot 2 is %s\n", ports.count, ports.At(2)->name.data);
}
