#ifndef TQ_DEVELOPMENT_ASSERT_H
#define TQ_DEVELOPMENT_ASSERT_H

#include "TqExport.h"
#include "TqHooks.h"

/// The assertion hook for development: prints on standard error what was wrong, in words, and how
/// the program got there.
///
///     #include <TqDevelopmentAssert.h>
///
///     int main() {
///         TqDevelopmentAssert::Install();
///
/// and what it prints:
///
///     check failed: TqBuffer::operator[]: `index` is not below `length`; the result is 0
///       (TqBuffer, line 195)
///       TqBuffer::operator[](unsigned int) const  libtqcommon.so.1+0x7c2b
///       ReadHeader(TqBuffer&)  myprogram+0x12f3
///       main  myprogram+0x1345
///
/// Names are there without debug information for whatever is exported: everything public of the
/// library, and of a program that is linked with -rdynamic (ENABLE_EXPORTS in CMake) all but static
/// functions. What is behind the name is for "addr2line -Cfie FILE OFFSET". Where the C library
/// tells nothing of calls there are none.
///
/// A program that was built without it has it by preloading libtqreports.so:
///
///     LD_PRELOAD=libtqreports.so myprogram
///     LD_PRELOAD=libtqreports.so TQ_REPORTS=abort myprogram
///
/// The words come first and need no memory; the names of the calls do.
/// Lock: reports of several threads are printed one after the other.
class TQ_API TqDevelopmentAssert {
public:
    /// What happens when a report has been printed: the operation goes on, or the program is
    /// aborted, for a debugger or a core file.
    enum AFTERWARDS { goOn, abortProgram };

    /// Installs the hook. Call it first in `main`. Returns the hook installed before, or null.
    static TqAssertCb Install(AFTERWARDS afterwards = goOn);

    /// How many checks have failed since the program started.
    static unsigned int Count();

    /// The hook itself, for those who have one of their own.
    static void Report(const char* file, int line);
};

#endif
