#ifndef SCALE_H
#define SCALE_H

#include <cstdio>

/// Whether the library runs many times slower here than where it is developed: with a sanitizer, or
/// on a processor that is usually emulated.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(__powerpc__) || \
    defined(__mips__)
const bool runsSlowly = true;
#else
const bool runsSlowly = false;
#endif

/// The size of a large test: `full`, or `reduced` where that would take too long, which is printed.
inline unsigned int Scaled(unsigned int full, unsigned int reduced) {
    if (!runsSlowly) return full;
    std::printf("[  REDUCED ] to %u, instead of %u, where the library runs slowly\n", reduced,
                full);
    return reduced;
}

#endif
