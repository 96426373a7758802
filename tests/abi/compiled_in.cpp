// What programs may compile in does the same where they do and where they call the library, which a
// program that was built before does: this one is built in many ways and prints the same each time.

#include <cstdio>

#include "TqBaseList.h"
#include "TqBaseObject.h"
#include "TqHooks.h"
#include "TqString.h"

namespace {

void PrintReport(const char* file, int line) {
    std::printf("report: %s, %s\n", file, line > 0 ? "with its line" : "without a line");
}

class Port : public TqBaseObject {
public:
    ~Port() override { std::printf("gone\n"); }
};

void Count(void (*increment)(TqBaseObject*, unsigned int)) {
    TqBaseObject::IncrementRefCount(nullptr, 0);
    std::printf("of nothing: %d\n", TqBaseObject::DecrementRefCount(nullptr, 0));
    TqBaseObject* port = new Port;
    const unsigned int stamp = port->seqNum;
    TqBaseObject::IncrementRefCount(port, stamp);
    increment(port, stamp + 1);
    std::printf("counted %d\n", port->refCount);
    port->self = nullptr;
    std::printf("last: %d\n", TqBaseObject::DecrementRefCount(port, stamp));
    port->self = port;
    std::printf("last: %d\n", TqBaseObject::DecrementRefCount(port, stamp));

    TqBaseObject kept;
    kept.destroying = 1;
    std::printf("last: %d\n", TqBaseObject::DecrementRefCount(&kept, kept.seqNum));
    TqBaseObject::IncrementRefCount(&kept, kept.seqNum);
    std::printf("destroying %d, counted %d\n", kept.destroying, kept.refCount);
}

void Append() {
    TqString text;
    for (int i = 0; i < 100; ++i) {
        const unsigned int capacity = text.capacity;
        text.AppendChar(static_cast<char>('a' + i % 26));
        if (text.capacity != capacity) std::printf("%u of %u\n", text.length, text.capacity);
    }
    text.AppendByte('\0');
    text.AppendChar('!');
    std::printf("%s, %u of %u\n", text.data, text.length, text.capacity);
}

void Print(const TqBaseList& list) {
    std::printf("%u of %u:", list.count, list.capacity);
    for (unsigned int i = 1; i <= list.count; ++i) {
        std::printf(" %s", static_cast<const char*>(list.slots[i]));
    }
    std::printf("\n");
}

void Insert() {
    char names[][2] = {"a", "b", "c", "d"};
    TqBaseList list;
    list.InsertSlot(1, nullptr);
    for (int i = 0; i < 18; ++i) list.InsertSlot(1 + list.count / 2, names[i % 4]);
    Print(list);
    list.RemoveSlot(1);
    list.RemoveSlot(list.count);
    list.RemoveSlot(8);
    Print(list);
    while (list.count != 0) list.RemoveSlot(1);
    Print(list);
}

}  // namespace

int main() {
    TqRegisterAssertCb(PrintReport);
    Count(&TqBaseObject::IncrementRefCount);
    Append();
    Insert();
    std::printf("done\n");
    return 0;
}
