#ifndef PROC_NET_DEV_H
#define PROC_NET_DEV_H

#include "Interface.h"
#include "TqString.h"

/// Where the kernel shows the counters of this machine's interfaces.
extern const char procNetDev[];

/// Whether `line`, the `lineNumber`-th, belongs to the two lines of headings.
bool IsProcNetDevHeading(const char* line, unsigned int lineNumber);

/// Parses one line of that file, "eth0: 1234 5 0 ..." with 16 numbers, into the name and counters
/// of `interface`. Returns true; or false with what is wrong in `complaint`, and `interface` is not
/// to be used.
bool ParseProcNetDevLine(const char* line, Interface& interface, TqString& complaint);

#endif
