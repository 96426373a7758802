#include "TqClassInfo.h"

#include "TqClassRegistry.h"
#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_AS("TqClassInfo")

}  // namespace

TqClassInfo::TqClassInfo(const char* className, TqBaseObject* (*factory)(), TqClassInfo* parentInfo)
    : createFunc(factory), parent(parentInfo) {
    name = className;
}

TqClassInfo::TqClassInfo(const TqClassInfo&)
    : TqBaseObject(), createFunc(nullptr), parent(nullptr) {
    Report(__LINE__);
}

TqClassInfo& TqClassInfo::operator=(const TqClassInfo&) {
    Report(__LINE__);
    return *this;
}

TqClassInfo::~TqClassInfo() {
    TqClearForGood(createFunc);
    TqClearForGood(parent);
    // By their own operation, and yet for good: who holds a descriptor that is gone reads zeros.
    tallyA.Assignment(TqNumber(0));
    tallyB.Assignment(TqNumber(0));
    TqKeepAssigned(this);
}

TqBaseObject* TqClassInfo::NewObject() const {
    return createFunc == nullptr ? nullptr : createFunc();
}

int TqClassInfo::SelfTest() {
    return 0;
}

int TqClassInfo::IsA(const char* className) {
    if (className == nullptr) return 0;
    TqClassRegistry* registry = TqClassRegistry::GetRegistry();
    // Found by name, compared by identity: a class that is not registered is nobody's ancestor.
    return TqClassInfo::IsA(registry->ClassInfo(className));
}

int TqClassInfo::IsA(TqClassInfo* other) {
    if (other == nullptr) return 0;
    // By identity and not by name: nothing keeps two descriptors from having the same one.
    for (const TqClassInfo* info = this; info != nullptr; info = info->parent) {
        if (info == other) return 1;
    }
    return 0;
}
