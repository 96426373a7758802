// A program that waits for the end of its standard input, and prints how many microseconds of the
// processor it took to start: once with the library and once with the C++ library alone.

#include <time.h>
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

int MicrosecondsSoFar() {
    timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<int>(time.tv_sec) * 1000000 + static_cast<int>(time.tv_nsec / 1000);
}

}  // namespace

int main() {
    const std::string text = TextOf(MicrosecondsSoFar()) + "\n";
    if (write(STDOUT_FILENO, text.data(), text.size()) < 0) return 1;
    char byte;
    return read(STDIN_FILENO, &byte, 1) == 0 ? 0 : 1;
}
