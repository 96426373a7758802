#include "TqClassRegistry.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "TqBaseRef.h"
#include "internal/TqPrivate.h"
#include "internal/TqSlots.h"

namespace {

TQ_REPORTS_AS("TqClassRegistry")

typedef TqRefList<TqClassInfo> ClassList;

TqClassInfo* HeldInfo(const ClassList& list, unsigned int index) {
    return static_cast<TqClassInfo*>(static_cast<TqBaseObject*>(TqItemIn(list, index)));
}

// A name that is looked for. Its last characters are compared first, as one number: classes that
// begin alike are told apart there, without a call.
class WantedName {
public:
    explicit WantedName(const char* name) : text(name), length(std::strlen(name)), tail(0) {
        if (length >= sizeof tail) tail = TailBefore(name + length);
    }

    bool Is(const TqString& name) const {
        if (length < sizeof tail || length >= name.capacity) {
            return std::strcmp(name.data, text) == 0;
        }
        const char* end = name.data + length;
        return TailBefore(end) == tail && *end == '\0' && std::memcmp(name.data, text, length) == 0;
    }

private:
    static std::uint32_t TailBefore(const char* end) {
        std::uint32_t last;
        std::memcpy(&last, end - sizeof last, sizeof last);
        return last;
    }

    const char* text;
    std::size_t length;
    std::uint32_t tail;
};

// The walk that every lookup makes. The count is noted once, and a slot is not tested for null: the
// list holds none.
template <class Matches>
TqClassInfo* FirstMatch(const ClassList& list, Matches matches) {
    const TqWalk walk(list.walkDepth);
    const unsigned int count = list.count;
    for (unsigned int i = 1; i <= count; ++i) {
        TqClassInfo* info = static_cast<TqClassInfo*>(static_cast<TqBaseObject*>(list.slots[i]));
        if (matches(*info)) return info;
    }
    return nullptr;
}

}  // namespace

TqClassRegistry* TqClassRegistry::theRegistry = nullptr;

TqClassRegistry::TqClassRegistry() {}

TqClassRegistry::TqClassRegistry(const TqClassRegistry&) : TqBaseObject() {
    Report(__LINE__);
}

TqClassRegistry& TqClassRegistry::operator=(const TqClassRegistry&) {
    Report(__LINE__);
    return *this;
}

TqClassRegistry::~TqClassRegistry() {
    classList.RemoveAllItems();
}

TqClassRegistry* TqClassRegistry::GetRegistry() {
    // Made when first asked for and never given back: objects that end after `main` still look up
    // names.
    if (theRegistry == nullptr) theRegistry = new TqClassRegistry;
    return theRegistry;
}

TqClassInfo* TqClassRegistry::ClassInfo(const char* name) const {
    // Nothing is done with the name where there is none to compare it with.
    if (classList.count == 0) return nullptr;
    const WantedName wanted(name);
    return FirstMatch(classList,
                      [&wanted](const TqClassInfo& info) { return wanted.Is(info.name); });
}

TqBaseObject* TqClassRegistry::NewObject(const char* name) const {
    // The lookup has ended before the factory runs: that may register further classes.
    const TqClassInfo* info = ClassInfo(name);
    return info == nullptr ? nullptr : info->NewObject();
}

TqClassInfo* TqClassRegistry::Find(const TqString& name) const {
    return FirstMatch(classList, [&name](const TqClassInfo& info) {
        // The lengths first: most names differ there, and their texts are not looked at.
        return info.name.Length() == name.Length() && std::strcmp(info.name.data, name.data) == 0;
    });
}

void TqClassRegistry::Dump() const {
    const TqWalk walk(classList.walkDepth);
    // Unlike the lookups this reads the count anew before each step.
    for (unsigned int i = 1; i <= classList.count; ++i) {
        std::printf("Name: %s\n", HeldInfo(classList, i)->name.data);
    }
}

void TqClassRegistry::Remove(const char* name) {
    TqBaseObject* info = ClassInfo(name);
    const unsigned int index = classList.FindSlot(info);
    // The name of the list's header: hooks of applications tell this report from others by it.
    if (!TqIsSlot(classList, index)) TqCallAssert("./TqRefList", __LINE__);
    // Keeps the descriptor alive until its slot is gone.
    const TqRef<TqClassInfo> kept(HeldInfo(classList, index));
    classList.RemoveSlot(index);
}

int TqClassRegistry::SelfTest() {
    return 1;
}
