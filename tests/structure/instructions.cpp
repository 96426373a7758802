// Functions written twice, by hand and with what the headers offer for it, that compile to the same
// instructions. None is run.
#include "TqPtrList.h"
#include "TqRef.h"
#include "TqRefList.h"
#include "TqSortedStringList.h"
#include "TqString.h"

// Not in an unnamed namespace: a compiler that sees that no such list is made takes the liberty of
// leaving calls out.
namespace example {

class Port : public TqBaseObject {
public:
    int speed;
};

}  // namespace example

using example::Port;

extern "C" {

void Use(void* item) noexcept;

int Arrow(const TqRef<Port>& port) {
#ifdef BY_HAND
    return static_cast<Port*>(port.object)->speed;
#else
    return port->speed;
#endif
}

int Star(const TqRef<Port>& port) {
#ifdef BY_HAND
    return (*static_cast<Port*>(port.object)).speed;
#else
    return (*port).speed;
#endif
}

Port* Get(const TqRef<Port>& port) {
#ifdef BY_HAND
    return static_cast<Port*>(port.object);
#else
    return port.Get();
#endif
}

bool Empty(const TqRef<Port>& port) {
#ifdef BY_HAND
    return port.object == nullptr;
#else
    return port.IsEmpty();
#endif
}

Port* At(const TqRefList<Port>& ports, unsigned int index) {
#ifdef BY_HAND
    if (index == 0 || index > ports.count) {
        TqCallAssert("./TqListItems", REPORT_LINE);
        return nullptr;
    }
    return static_cast<Port*>(static_cast<TqBaseObject*>(ports.slots[index]));
#else
    return ports.At(index);
#endif
}

int* AtOfPointers(const TqPtrList<int>& numbers, unsigned int index) {
#ifdef BY_HAND
    if (index == 0 || index > numbers.count) {
        TqCallAssert("./TqListItems", REPORT_LINE);
        return nullptr;
    }
    return static_cast<int*>(numbers.slots[index]);
#else
    return numbers.At(index);
#endif
}

TqString* AtOfStrings(const TqSortedStringList& names, unsigned int index) {
#ifdef BY_HAND
    if (index == 0 || index > names.count) {
        TqCallAssert("./TqListItems", REPORT_LINE);
        return nullptr;
    }
    return static_cast<TqString*>(names.slots[index]);
#else
    return names.At(index);
#endif
}

void Append(TqRefList<Port>& ports, Port* port) {
#ifdef BY_HAND
    ports.InsertSlot(ports.count + 1, static_cast<TqBaseObject*>(port));
#else
    ports.Append(port);
#endif
}

void Walk(const TqRefList<Port>& ports) {
#ifdef BY_HAND
    ++ports.walkDepth;
    for (unsigned int i = 1; i <= ports.count; ++i) {
        Use(static_cast<Port*>(static_cast<TqBaseObject*>(ports.slots[i])));
    }
    --ports.walkDepth;
#else
    for (Port* port : ports) Use(port);
#endif
}

int Sum(const TqPtrList<int>& numbers) {
#ifdef BY_HAND
    int sum = 0;
    ++numbers.walkDepth;
    for (unsigned int i = 1; i <= numbers.count; ++i) {
        sum += *static_cast<int*>(numbers.slots[i]);
    }
    --numbers.walkDepth;
    return sum;
#else
    int sum = 0;
    for (const int* number : numbers) sum += *number;
    return sum;
#endif
}

int Search(const TqSortedStringList& names) {
#ifdef BY_HAND
    ++names.walkDepth;
    for (unsigned int i = 1; i <= names.count; ++i) {
        if (static_cast<TqString*>(names.slots[i])->length == 0) {
            --names.walkDepth;
            return 1;
        }
    }
    --names.walkDepth;
    return 0;
#else
    for (const TqString* name : names) {
        if (name->length == 0) return 1;
    }
    return 0;
#endif
}

}  // extern "C"
