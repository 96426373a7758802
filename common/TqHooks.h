#ifndef TQ_HOOKS_H
#define TQ_HOOKS_H

#include "TqExport.h"

/// The two hooks through which the library and its applications meet a fault or an exit, and the
/// application's own debug switch.
///
/// The library never aborts, prints or throws on a broken precondition: it reports the fault
/// through the assertion hook and carries on as each operation documents. "Reports" in every
/// header of this library means one call of `TqCallAssert`.
///
/// A hook that throws: the exception comes out of the operation that reports, or out of the one of
/// the application's that called it; so does what a callback, a factory or a virtual operation of
/// the application's own throws. The operation is left where it was, a walk over a list is ended,
/// and nothing more is promised of what it was changing than that it can be assigned to and
/// destroyed. A mutex that was held stays locked: do not throw from the reports of a handle or a
/// reference list, "TqBaseRef" and "TqBaseRefList". Nor may anything leave a destructor: that ends
/// the process, as everywhere in the language.
///
/// Where memory ends: a value or a list that finds no more reports, with "TqHooks", and aborts the
/// process when the hook returns. Where an object is made by `new`, `std::bad_alloc` comes out. An
/// operation that has a result for it says so, as `TFTP_open` does.
///
/// Ownership: the library borrows the hooks; it keeps nothing but the two pointers.
/// Lock: none. Install the hooks once at start-up, before other threads use the library.
/// All names have C linkage.
extern "C" {

/// Receives the name of the source that holds the failed check ("TqString"; "./TqFloat" for a check
/// in a header) and the line of the check. May return: the reporting operation then goes on.
typedef void (*TqAssertCb)(const char* file, int line);

/// Receives the status given to `TqCallSysExit`; its result is handed back to the caller.
typedef int (*TqSysExitCb)(int status);

/// Installs `hook` for reports. Null is allowed and unregisters.
/// Returns the hook installed before, or null.
TQ_API TqAssertCb TqRegisterAssertCb(TqAssertCb hook);

/// Removes the assertion hook. Returns the hook that was installed, or null.
TQ_API TqAssertCb TqUnRegisterAssertCb();

/// Hands `file` and `line`, exactly as received, to the assertion hook. Does nothing at all when
/// none is installed.
TQ_API __attribute__((cold)) void TqCallAssert(const char* file, int line);

/// Installs `hook` for `TqCallSysExit`. Null is allowed and unregisters.
/// Returns the hook installed before, or null.
TQ_API TqSysExitCb TqRegisterSysExitCb(TqSysExitCb hook);

/// Removes the exit hook. Returns the hook that was installed, or null.
TQ_API TqSysExitCb TqUnRegisterSysExitCb();

/// Ends the process the way the application wants it: hands `status` to the exit hook and returns
/// the hook's result. With no hook installed the process exits with status 999 (the parent sees
/// 231) whatever `status` is, and the call does not return. The library itself never calls it.
TQ_API int TqCallSysExit(int status);

/// A switch for the application's own debug printing, 0 until the application sets it. No operation
/// of the library reads or writes it.
extern TQ_API int tqDebugPrintOn;

}  // extern "C"

#endif
