// Callbacks: who is told when a port changes.
#include <cstdio>

#include "Port.h"

static void Set(Port& port, bool isUp, TqCallbackChain& changed) {
    if (port.isUp.state == static_cast<int>(isUp)) return;
    port.isUp.state = isUp;
    changed.Invoke(&port, nullptr);
}

int main() {
    TqCallbackChain changed;
    unsigned int changes = 0;

    TqCallableCb show([](TqBaseObject* source, TqCallbackData*) {
        const Port* const port = TqCast<Port>(source);
        std::printf("%s is %s\n", port->name.data, port->isUp.state ? "up" : "down");
    });
    TqCallableCb count([&] { ++changes; });

    const TqRef<Port> port = TqMakeRef<Port>();
    port->name = "eth0";

    const TqCallbackGuard counting(changed, count);
    {
        const TqCallbackGuard showing(changed, show);
        Set(*port, true, changed);
        Set(*port, true, changed);  // no change: nobody is told
    }
    Set(*port, false, changed);  // counted, but no longer shown
    std::printf("%u changes\n", changes);
}
