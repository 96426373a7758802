// measure RUNS PROGRAM: what the start of a program costs. It is to print the microseconds that it
// took to reach its own code, and to wait for the end of its standard input. In microseconds, pages
// and KiB; medians of the runs. Dirty is what is the process's own: the root is in memory, where
// pages of files count as dirty as well.
//
//     PROGRAM: loaded 3100 us, started 5100 us, faults 210, resident 1500, shared 1400, dirty 96
//
// measure -n COUNT PROGRAM: runs so many at once, and prints what all of them have together.

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Numbers = std::map<std::string, long long>;

// A started program, which lives as long as the object.
class Run {
public:
    explicit Run(char* program);
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run();

    Numbers Measure() const;

private:
    std::string File(const char* name) const { return "/proc/" + std::to_string(id) + "/" + name; }
    long Faults() const;

    pid_t id;
    int input;  // the program's
    Numbers times;
};

Run::Run(char* program) {
    int toProgram[2];
    int fromProgram[2];
    if (pipe2(toProgram, O_CLOEXEC) != 0 || pipe2(fromProgram, O_CLOEXEC) != 0) std::abort();
    const Clock::time_point start = Clock::now();
    id = fork();
    if (id == 0) {
        dup2(toProgram[0], STDIN_FILENO);
        dup2(fromProgram[1], STDOUT_FILENO);
        char* const arguments[] = {program, nullptr};
        execv(program, arguments);
        _exit(127);
    }
    close(toProgram[0]);
    close(fromProgram[1]);
    char text[32] = "";
    const bool started = read(fromProgram[0], text, sizeof text - 1) > 0;
    const auto time = Clock::now() - start;
    times["started"] = std::chrono::duration_cast<std::chrono::microseconds>(time).count();
    times["loaded"] = std::atoi(text);
    close(fromProgram[0]);
    input = toProgram[1];
    if (started) return;
    std::fprintf(stderr, "measure: %s does not start\n", program);
    std::exit(1);
}

Run::~Run() {
    close(input);
    waitpid(id, nullptr, 0);
}

// The tenth number behind the name in /proc/PID/stat.
long Run::Faults() const {
    std::ifstream file(File("stat"));
    std::string line;
    std::getline(file, line);
    std::istringstream words(line.substr(line.rfind(')') + 1));
    std::string word;
    for (int i = 0; i < 8; ++i) words >> word;
    return std::atol(word.c_str());
}

Numbers Run::Measure() const {
    Numbers numbers = times;
    std::ifstream file(File("smaps_rollup"));
    std::string line;
    while (std::getline(file, line)) {
        std::istringstream words(line);
        std::string name;
        long long kilobytes = 0;
        if (words >> name >> kilobytes) numbers[name] = kilobytes;
    }
    numbers["faults"] = Faults();
    numbers["shared"] = numbers["Shared_Clean:"] + numbers["Shared_Dirty:"];
    return numbers;
}

long long MedianOf(const std::vector<Numbers>& all, const char* name) {
    std::vector<long long> values;
    values.reserve(all.size());
    for (const Numbers& numbers : all) values.push_back(numbers.at(name));
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void InTurn(int runs, char* program) {
    std::vector<Numbers> all;
    all.reserve(static_cast<std::size_t>(runs));
    for (int i = 0; i < runs; ++i) all.push_back(Run(program).Measure());
    std::printf(
        "%s: loaded %lld us, started %lld us, faults %lld, resident %lld, shared %lld, dirty "
        "%lld\n",
        program, MedianOf(all, "loaded"), MedianOf(all, "started"), MedianOf(all, "faults"),
        MedianOf(all, "Rss:"), MedianOf(all, "shared"), MedianOf(all, "Anonymous:"));
}

void AtOnce(int count, char* program) {
    std::vector<Run*> running;
    running.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) running.push_back(new Run(program));
    std::vector<Numbers> all;
    all.reserve(running.size());
    for (const Run* run : running) all.push_back(run->Measure());
    for (const Run* run : running) delete run;

    long long resident = 0;
    long long proportional = 0;
    for (const Numbers& numbers : all) {
        resident += numbers.at("Rss:");
        proportional += numbers.at("Pss:");
    }
    std::printf("%d of %s: resident %lld, of it their own %lld; dirty each %lld\n", count, program,
                resident, proportional, MedianOf(all, "Anonymous:"));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && argv[1] == std::string("-n")) {
        AtOnce(std::atoi(argv[2]), argv[3]);
    } else if (argc == 3 && std::atoi(argv[1]) > 0) {
        InTurn(std::atoi(argv[1]), argv[2]);
    } else {
        std::fprintf(stderr, "usage: measure RUNS PROGRAM | measure -n COUNT PROGRAM\n");
        return 2;
    }
    return 0;
}
