// tqcommon_bench [--thread] [--rounds N] [--batch MICROSECONDS] DUTY:SIZE...
//
// Measures each duty by all who do it, in turn: a round is a batch of each, and there are N rounds,
// every other one in reverse, so that nobody always follows the same one.
// Prints a line for each: duty, size, who, the median of its nanoseconds, and the median of its
// ratios to this library's batch of the same round, separated by tabs. Times are the thread's own
// processor time, so that other programs disturb less. --thread keeps a second thread alive, which
// makes the C and C++ libraries take their locks and atomic operations in earnest.

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <future>
#include <memory>
#include <thread>

#include "Duty.h"

namespace {

unsigned int rounds = 9;
double batchNanoseconds = 1e6;
const double longTime = 1e9;

double Now() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

double TimeOf(const Work& work, unsigned int times) {
    const double start = Now();
    work(times);
    return Now() - start;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Takes what lies free among the blocks of the start, so that the blocks of a duty lie together:
// far apart, a field of one that was stored to may delay the reading of another, as both lie in the
// same place of their pages.
void FillHeap() {
    static std::vector<std::unique_ptr<char[]>> blocks;
    for (std::size_t size = 8; size <= 1024; size += 16) {
        for (int i = 0; i < 50; ++i) blocks.emplace_back(new char[size]);
    }
}

class Contestant {
public:
    Contestant(const Duty& duty, unsigned int size) : who(duty.who), work(duty.prepare(size)) {
        if (work) Calibrate();
    }

    bool CanDoIt() const { return static_cast<bool>(work); }
    void Measure() {
        nanoseconds.push_back(tookLong > 0 ? tookLong : TimeOf(work, times) / times);
        tookLong = 0;
    }

    const char* who;
    std::vector<double> nanoseconds;

private:
    // The first call warms up: memory, caches, symbols that are bound late. What disturbs one of
    // two measures hardly disturbs the other.
    void Calibrate() {
        double spent = TimeOf(work, 1);
        if (spent > longTime) {
            tookLong = spent;
            return;
        }
        for (;; times *= 2) {
            spent = std::min(TimeOf(work, times), TimeOf(work, times));
            if (spent >= batchNanoseconds / 4 || times >= 1u << 28) break;
        }
        times = std::max(1u, static_cast<unsigned int>(times * batchNanoseconds / spent));
    }

    Work work;
    unsigned int times = 1;
    // What the first call took, when that was so long that it is a round of its own.
    double tookLong = 0;
};

double MedianRatio(const Contestant& own, const Contestant& other) {
    std::vector<double> ratios;
    for (unsigned int i = 0; i < rounds; ++i) {
        ratios.push_back(own.nanoseconds[i] / other.nanoseconds[i]);
    }
    return Median(ratios);
}

bool Measure(const Request& request) {
    std::vector<Contestant> contestants;
    for (const Duty& duty : ContestantsOf(request.duty)) {
        Contestant contestant(duty, request.size);
        if (contestant.CanDoIt()) contestants.push_back(contestant);
    }
    if (contestants.empty()) {
        std::fprintf(stderr, "nobody does %s\n", request.duty.c_str());
        return false;
    }
    for (unsigned int i = 0; i < rounds; ++i) {
        for (Contestant& contestant : contestants) contestant.Measure();
        std::reverse(contestants.begin(), contestants.end());
    }
    if (rounds % 2 != 0) std::reverse(contestants.begin(), contestants.end());
    for (const Contestant& contestant : contestants) {
        std::printf("%s\t%u\t%s\t%.3f\t%.4f\n", request.duty.c_str(), request.size, contestant.who,
                    Median(contestant.nanoseconds), MedianRatio(contestants[0], contestant));
    }
    std::fflush(stdout);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    FillHeap();
    std::promise<void> over;
    std::thread second;
    bool fine = true;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--thread") {
            second = std::thread([&over] { over.get_future().wait(); });
        } else if (argument == "--rounds" && i + 1 < argc) {
            rounds = static_cast<unsigned int>(std::max(1, std::atoi(argv[++i])));
        } else if (argument == "--batch" && i + 1 < argc) {
            batchNanoseconds = 1e3 * std::max(1, std::atoi(argv[++i]));
        } else {
            fine = Measure(ParseRequest(argument)) && fine;
        }
    }
    over.set_value();
    if (second.joinable()) second.join();
    return fine ? 0 : 1;
}
