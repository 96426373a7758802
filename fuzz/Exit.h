#ifndef FUZZ_EXIT_H
#define FUZZ_EXIT_H

// For sources that end the program: included before all else, with FUZZ_COMES_BACK defined, it has
// them come back to the target instead.

#include <cstdlib>

/// What is thrown in the place of the end.
struct ProgramEnd {
    int status;
};

namespace std {
[[noreturn]] inline void LeaveProgram(int status) {
    throw ProgramEnd{status};
}
}  // namespace std

#ifdef FUZZ_COMES_BACK
#define exit LeaveProgram
#endif

#endif
