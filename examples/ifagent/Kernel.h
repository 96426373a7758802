#ifndef KERNEL_H
#define KERNEL_H

#include "Poll.h"

/// Adds what the kernel tells about this machine's interfaces beside their counters: their indexes,
/// whether they are up, and their addresses.
void AskKernel(Poll& poll);

#endif
