// tqcommon_count DUTY:SIZE:TIMES...
//
// Does each duty by all who do it, once to warm up, then TIMES and then twice as many times, and
// calls a function of a known name between: whoever logs the instructions of this program finds
// those of each piece between two calls of that function. Prints a line for each before it starts:
// duty, size, times and who. A second thread is alive, as in the programs that matter.

#include <cstdio>
#include <cstdlib>
#include <future>
#include <thread>

#include "Duty.h"

extern "C" __attribute__((noinline)) void CountedPieceEnds();

void CountedPieceEnds() {
    asm volatile("");
}

namespace {

void DoPieces(const Request& request, const Duty& duty, unsigned int times) {
    const Work work = duty.prepare(request.size);
    if (!work) return;
    std::printf("%s\t%u\t%u\t%s\n", duty.name, request.size, times, duty.who);
    std::fflush(stdout);
    work(1);
    CountedPieceEnds();
    work(times);
    CountedPieceEnds();
    work(2 * times);
    CountedPieceEnds();
}

}  // namespace

int main(int argc, char** argv) {
    std::promise<void> over;
    std::thread second([&over] { over.get_future().wait(); });
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const std::size_t last = argument.rfind(':');
        const Request request = ParseRequest(argument.substr(0, last));
        const unsigned int times =
            static_cast<unsigned int>(std::atoi(argument.c_str() + last + 1));
        for (const Duty& duty : ContestantsOf(request.duty)) DoPieces(request, duty, times);
    }
    over.set_value();
    second.join();
    return 0;
}
