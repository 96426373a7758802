// The program that looks for inputs: libFuzzer calls this with what it has made up.

#include "Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count);

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    Target::first->Run(bytes, count);
    return 0;
}
