#include "TqHooks.h"

#include <cstdlib>

#include "internal/TqMemory.h"

namespace {

const int exitStatusWithoutHook = 999;

// Plain pointers, without a lock: they are set at start-up, and a report must get through from
// inside any lock.
TqAssertCb assertHook = nullptr;
TqSysExitCb sysExitHook = nullptr;

template <class Hook>
Hook Swap(Hook& installed, Hook hook) {
    Hook previous = installed;
    installed = hook;
    return previous;
}

}  // namespace

int tqDebugPrintOn = 0;

TqAssertCb TqRegisterAssertCb(TqAssertCb hook) {
    return Swap(assertHook, hook);
}

TqAssertCb TqUnRegisterAssertCb() {
    return TqRegisterAssertCb(nullptr);
}

void TqCallAssert(const char* file, int line) {
    // Not a word otherwise: a device has nobody to read it.
    if (assertHook != nullptr) assertHook(file, line);
}

void TqMemoryHasEnded() {
    TqCallAssert("TqHooks", __LINE__);
    std::abort();
}

TqSysExitCb TqRegisterSysExitCb(TqSysExitCb hook) {
    return Swap(sysExitHook, hook);
}

TqSysExitCb TqUnRegisterSysExitCb() {
    return TqRegisterSysExitCb(nullptr);
}

int TqCallSysExit(int status) {
    // The given status is not used without a hook: every process that ends this way is recognised
    // by the one number.
    if (sysExitHook == nullptr) std::exit(exitStatusWithoutHook);
    return sysExitHook(status);
}
