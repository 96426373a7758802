// Values in a buffer: written, shown as they lie there, and read back.
#include <Tq.h>

#include <cstdio>

int main() {
    TqBuffer packet;
    TqWrite(packet, "eth0", TqCounter(1201), true);
    std::printf("%u bytes: %s\n", packet.length, TqText(packet).data);

    TqString name;
    TqCounter octets;
    TqBoolean isUp;
    if (TqRead(packet, name, octets, isUp)) {
        std::printf("%s: %s octets, up: %s\n", name.data, TqText(octets).data, TqText(isUp).data);
    }

    // Nothing is left: false, and neither the value nor the read position changes.
    const bool isThere = TqRead(packet, name);
    std::printf("one more: %s, the name is still %s\n", isThere ? "yes" : "no", name.data);
}
