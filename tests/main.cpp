#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Reports.h"

namespace {

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

// The tests lock twice and unlock what is free, to see the mutex say so and the library report it.
// The thread sanitizer is to look at the order of locks and at races, not at that.
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options() {
    return "report_mutex_bugs=0";
}

int main(int argc, char** argv) {
    StartAsFromAShell();
    testing::InitGoogleTest(&argc, argv);
    CollectReports();
    return RUN_ALL_TESTS();
}
