#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mutex>

#include "Reports.h"
#include "TqHooks.h"

namespace {

std::mutex collectedMutex;
Reports collected;

void Collect(const char* file, int line) {
    std::lock_guard<std::mutex> guard(collectedMutex);
    EXPECT_GT(line, 0) << "report without a line by " << file;
    collected.push_back(file);
}

class ReportCollector : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        TakeReports();
        TqRegisterAssertCb(Collect);
    }

    void OnTestEnd(const testing::TestInfo&) override {
        TqUnRegisterAssertCb();
        for (const std::string& file : TakeReports())
            ADD_FAILURE() << "unexpected report: " << file;
    }
};

// What a user's shell gives. Whoever runs the tests in the background, as a service or without a
// terminal may have left other things behind, and the programs that tests start inherit them.
void StartAsFromAShell() {
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGALRM, SIGTERM}) {
        signal(number, SIG_DFL);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    umask(022);
    int descriptor;
    do {
        descriptor = open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    close(descriptor);
}

}  // namespace

Reports TakeReports() {
    std::lock_guard<std::mutex> guard(collectedMutex);
    Reports taken;
    taken.swap(collected);
    return taken;
}

// The tests lock twice and unlock what is free, to see the mutex say so and the library report it.
// The thread sanitizer is to look at the order of locks and at races, not at that.
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options() {
    return "report_mutex_bugs=0";
}

int main(int argc, char** argv) {
    StartAsFromAShell();
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new ReportCollector);
    return RUN_ALL_TESTS();
}
