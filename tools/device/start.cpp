// A program that makes a number text, says so, and waits for its standard input to end: once with
// the library and once with the C++ library alone.

#include <unistd.h>

#include <string>

#ifdef WITH_LIBRARY
#include "TqNumber.h"
#include "TqString.h"
#endif

namespace {

std::string TextOf(int number) {
#ifdef WITH_LIBRARY
    TqString text;
    TqNumber(number).ToString(text);
    return text.data;
#else
    return std::to_string(number);
#endif
}

}  // namespace

int main(int argc, char**) {
    const std::string text = TextOf(argc) + "\n";
    if (write(STDOUT_FILENO, text.data(), text.size()) < 0) return 1;
    char byte;
    return read(STDIN_FILENO, &byte, 1) == 0 ? 0 : 1;
}
