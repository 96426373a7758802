// What the library's values take: the size of each, and what it takes from the heap besides, with
// the allocator's own bytes, as the mean of many.

#include <malloc.h>
#include <stdio.h>

#include <functional>
#include <vector>

#include "TqBaseList.h"
#include "TqBaseObject.h"
#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqBuffer.h"
#include "TqCounter.h"
#include "TqDateTime.h"
#include "TqIpAddress.h"
#include "TqNumber.h"
#include "TqSnmpOid.h"
#include "TqSortedStringList.h"
#include "TqString.h"

namespace {

const unsigned int many = 4096;

// The heap that the function takes and keeps.
double HeapOf(const std::function<void()>& function) {
    const size_t before = mallinfo2().uordblks;
    function();
    return static_cast<double>(mallinfo2().uordblks - before);
}

void Print(const char* what, size_t size, double heap) {
    printf("| %s | %zu | %.1f |\n", what, size, heap / many);
}

// `make` constructs one value, which is kept in a vector that has its room beforehand.
template <class T>
void PrintValue(const char* what, const std::function<T*()>& make) {
    std::vector<T*> kept;
    kept.reserve(many);
    const double heap = HeapOf([&] {
        for (unsigned int i = 0; i < many; ++i) kept.push_back(make());
    });
    Print(what, sizeof(T), heap);
    for (T* value : kept) delete value;
}

TqString* TextOf(unsigned int length) {
    TqString* text = new TqString;
    for (unsigned int i = 0; i < length; ++i) *text += "x";
    return text;
}

void PrintValues() {
    PrintValue<TqBaseObject>("`TqBaseObject`", [] { return new TqBaseObject; });
    PrintValue<TqNumber>("`TqNumber`", [] { return new TqNumber(1); });
    PrintValue<TqCounter>("`TqCounter`", [] { return new TqCounter; });
    PrintValue<TqIpAddress>("`TqIpAddress`", [] { return new TqIpAddress; });
    PrintValue<TqDateTime>("`TqDateTime`", [] { return new TqDateTime; });
    PrintValue<TqSnmpOid>("`TqSnmpOid` of 10 numbers",
                          [] { return new TqSnmpOid("1.3.6.1.2.1.2.2.1.10"); });
    PrintValue<TqBuffer>("`TqBuffer`, empty", [] { return new TqBuffer; });
    PrintValue<TqString>("`TqString`, empty", [] { return new TqString; });
    PrintValue<TqString>("`TqString` of 8 characters", [] { return TextOf(8); });
    PrintValue<TqString>("`TqString` of 100 characters", [] { return TextOf(100); });
    PrintValue<TqBaseList>("`TqBaseList`, empty", [] { return new TqBaseList; });
    PrintValue<TqSortedStringList>("`TqSortedStringList`, empty",
                                   [] { return new TqSortedStringList; });
}

void PrintHandle() {
    TqRef<TqBaseObject> first(new TqBaseObject);
    std::vector<TqRef<TqBaseObject>> handles;
    handles.reserve(many);
    const double heap = HeapOf([&] {
        for (unsigned int i = 0; i < many; ++i) handles.push_back(first);
    });
    Print("`TqRef`, to an object that is there", sizeof(TqRef<TqBaseObject>), heap);
}

void PrintSlots() {
    int item = 0;
    TqBaseList list;
    Print("a slot of a `TqBaseList`", sizeof(void*), HeapOf([&] {
              for (unsigned int i = 0; i < many; ++i) list.InsertSlot(list.count + 1, &item);
          }));
    TqRef<TqBaseObject> object(new TqBaseObject);
    TqRefList<TqBaseObject> references;
    Print("a slot of a `TqRefList`", sizeof(void*), HeapOf([&] {
              for (unsigned int i = 0; i < many; ++i) {
                  references.InsertSlot(references.count + 1, object.object);
              }
          }));
}

}  // namespace

int main() {
    printf("| what | size | heap, each |\n|---|---|---|\n");
    PrintValues();
    PrintHandle();
    PrintSlots();
    return 0;
}
