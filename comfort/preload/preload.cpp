// Turns the development assertion on in a program that was built without it. The program's own
// hook, if it installs one, is called as well, and is what the program gets back when it asks.

#include <dlfcn.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "TqDevelopmentAssert.h"

namespace {

typedef TqAssertCb (*Register)(TqAssertCb hook);

std::atomic<TqAssertCb> programsHook(nullptr);

void ReportToBoth(const char* file, int line) {
    const TqAssertCb hook = programsHook;
    // Who installs this one too wants it once.
    if (hook != nullptr && hook != TqDevelopmentAssert::Report) hook(file, line);
    TqDevelopmentAssert::Report(file, line);
}

TqDevelopmentAssert::AFTERWARDS WhatIsAskedFor() {
    const char* const asked = std::getenv("TQ_REPORTS");
    return asked != nullptr && std::strcmp(asked, "abort") == 0 ? TqDevelopmentAssert::abortProgram
                                                                : TqDevelopmentAssert::goOn;
}

__attribute__((constructor)) void TurnOn() {
    TqDevelopmentAssert::Install(WhatIsAskedFor());
    programsHook = nullptr;
    void* const found = dlsym(RTLD_NEXT, "TqRegisterAssertCb");
    Register installInLibrary = nullptr;
    std::memcpy(&installInLibrary, &found, sizeof found);
    if (installInLibrary != nullptr) installInLibrary(ReportToBoth);
}

}  // namespace

// In the place of the library's.
TqAssertCb TqRegisterAssertCb(TqAssertCb hook) {
    return programsHook.exchange(hook);
}

TqAssertCb TqUnRegisterAssertCb() {
    return TqRegisterAssertCb(nullptr);
}
