#ifndef SCALE_H
#define SCALE_H

#include <cstdio>
#include <cstdlib>

#include "Sanitizers.h"

/// Whether everything takes many times as long here as where it is developed: under an emulator or
/// a sanitizer, or under valgrind, whose user says so. Tests that are long anyway are smaller
/// there, or left to other builds.
#if defined(TQ_EMULATED) || defined(TQ_ADDRESS_SANITIZED) || defined(TQ_THREAD_SANITIZED)
const bool runsSlowly = true;
#else
const bool runsSlowly = std::getenv("TQ_RUNS_SLOWLY") != nullptr;
#endif

/// Whether processor and kernel are the device's, in an emulator of the whole machine. Who starts
/// the tests there says so.
inline bool IsOnDevice() {
    return std::getenv("TQ_ON_DEVICE") != nullptr;
}

/// How many times as long processes, signals and packets may take here: what is to happen soon
/// happens so much later.
inline int Slowness() {
    return IsOnDevice() || std::getenv("TQ_RUNS_SLOWLY") != nullptr ? 20 : 1;
}

/// The size of a large test: `full`, or `reduced` where that would take too long, or a tenth of it
/// where even that would. Either is printed.
inline unsigned int Scaled(unsigned int full, unsigned int reduced) {
    if (!runsSlowly) return full;
    const unsigned int size = IsOnDevice() ? reduced / 10 : reduced;
    if (size == full) return full;
    std::printf("[  REDUCED ] to %u, instead of %u, where everything runs slowly\n", size, full);
    return size;
}

#endif
