#ifndef DEVELOPMENT_ASSERT_H
#define DEVELOPMENT_ASSERT_H

#include "TqHooks.h"

/// The assertion hook for development: prints on standard error which check failed and how the
/// program got there.
///
///     check failed in TqBuffer, line 131
///       TqBuffer::operator[](unsigned int) const  libtqcommon.so.1+0x7c2b
///       ReadHeader(TqBuffer&)  myprogram+0x12f3
///       main  myprogram+0x1345
///
/// Names are there without debug information for whatever is exported: everything public of the
/// library, and of a program that is linked with -rdynamic (ENABLE_EXPORTS in CMake) all but static
/// functions. What is behind the name is for "addr2line -Cfie FILE OFFSET".
///
/// It needs glibc. It allocates, for the names; a device that is shipped installs something
/// smaller.

/// Installs the hook. Call it first in `main`. Returns the hook installed before, or null.
TqAssertCb InstallDevelopmentAssert();

/// How many checks have failed since the program started.
unsigned int DevelopmentAssertCount();

#endif
