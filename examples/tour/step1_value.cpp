// A value: from a text, and back to one.
#include <Tq.h>

#include <cstdio>

int main() {
    TqCounter octets;
    octets.FromString("1200");  // lenient: what cannot be read is 0
    ++octets.count;             // fields are public

    TqBoolean isUp;
    isUp.FromString("enabled");

    TqString line("eth0: ");
    line += TqText(octets).data;
    line += " octets, up: ";
    line += TqText(isUp).data;
    std::puts(line.data);

    const char* stopped = nullptr;
    if (!TqParse("12OO", octets, &stopped)) {  // strict: all of the text or nothing
        std::printf("refused at '%s', still %s\n", stopped, TqText(octets).data);
    }
}
