#include "TqDevelopmentAssert.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#ifdef TQ_HAVE_BACKTRACE
#include <execinfo.h>
#endif

#include <atomic>

#include "TqReportSentence.h"

namespace {

std::atomic<unsigned int> failedChecks(0);
std::atomic<bool> aborts(false);

void PrintWords(const char* file, int line) {
    const char* const sentence = TqReportSentence(file, line);
    if (sentence == nullptr) {
        fprintf(stderr, "check failed in %s, line %d\n", file, line);
    } else {
        fprintf(stderr, "check failed: %s\n  (%s, line %d)\n", sentence, file, line);
    }
}

#ifdef TQ_HAVE_BACKTRACE

const int maxFrames = 64;

// What dladdr knows of the call that returns to `returnAddress`: the byte before it, since a call
// may be the last instruction of its function.
Dl_info Describe(const void* returnAddress) {
    Dl_info info;
    memset(&info, 0, sizeof info);
    dladdr(static_cast<const char*>(returnAddress) - 1, &info);
    return info;
}

const char* BaseName(const char* path) {
    const char* slash = strrchr(path, '/');
    return slash != nullptr ? slash + 1 : path;
}

void PrintFrame(const void* returnAddress) {
    const Dl_info info = Describe(returnAddress);
    if (info.dli_fname == nullptr) {
        fprintf(stderr, "  %p\n", returnAddress);
        return;
    }
    int status = -1;
    char* demangled = nullptr;
    if (info.dli_sname != nullptr) {
        demangled = abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, &status);
    }
    const char* name = info.dli_sname != nullptr ? info.dli_sname : "?";
    const long offset =
        static_cast<const char*>(returnAddress) - 1 - static_cast<const char*>(info.dli_fbase);
    fprintf(stderr, "  %s  %s+0x%lx\n", demangled != nullptr ? demangled : name,
            BaseName(info.dli_fname), static_cast<unsigned long>(offset));
    free(demangled);
}

// The first frame above the report itself: the one that called `TqCallAssert`.
int FirstFrame(void* const* frames, int count) {
    for (int i = 0; i < count; ++i) {
        const char* name = Describe(frames[i]).dli_sname;
        if (name != nullptr && strcmp(name, "TqCallAssert") == 0) return i + 1;
    }
    return 1;
}

void PrintCalls() {
    void* frames[maxFrames];
    const int count = backtrace(frames, maxFrames);
    for (int i = FirstFrame(frames, count); i < count; ++i) PrintFrame(frames[i]);
}

// The first backtrace loads what it needs: now rather than in the middle of a fault.
void PrepareCalls() {
    void* frame = nullptr;
    backtrace(&frame, 1);
}

#else

void PrintCalls() {}
void PrepareCalls() {}

#endif

}  // namespace

TqAssertCb TqDevelopmentAssert::Install(AFTERWARDS afterwards) {
    PrepareCalls();
    aborts = afterwards == abortProgram;
    return TqRegisterAssertCb(Report);
}

unsigned int TqDevelopmentAssert::Count() {
    return failedChecks.load();
}

void TqDevelopmentAssert::Report(const char* file, int line) {
    failedChecks.fetch_add(1);
    flockfile(stderr);
    PrintWords(file, line);
    PrintCalls();
    funlockfile(stderr);
    if (aborts) abort();
}
