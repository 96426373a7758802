// An object whose class has a name: made by it, asked for it, gone with its last handle.
#include <cstdio>

#include "Port.h"

int main() {
    RegisterPorts();
    const TqClassRegistry* const classes = TqClassRegistry::GetRegistry();

    TqRef<Port> uplink(TqCast<Port>(classes->NewObject("FibrePort")));
    uplink->name = "uplink";
    std::printf("%s is a %s, kind %s\n", uplink->name.data, uplink->ClassInfo()->name.data,
                uplink->Kind());
    std::printf("a Port: %d, a TqFile: %d\n", uplink->IsA("Port"), uplink->IsA("TqFile"));

    TqRef<Port> other(uplink);
    std::printf("held %d times\n", uplink->refCount);
    uplink = nullptr;
    std::printf("held %d time\n", other->refCount);
    other = nullptr;

    if (classes->NewObject("RadioPort") == nullptr) std::puts("there is no RadioPort");
}
