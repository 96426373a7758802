#include "Patience.h"

#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <system_error>

#include "Message.h"
#include "Progress.h"
#include "TargetFile.h"

namespace {

// For those who read the last words through a pipe that happens to be full.
const int lastWordsTime = 1000;

std::atomic<const Farewell*> deadlineFarewell(nullptr);

void OnDeadline(int) {
    GiveUp(*deadlineFarewell.load());
}

// Tidies up; the signal then does what it does to a program without a handler.
void OnEnd(int number) {
    TargetFile::RemoveTemporary();
    Progress::EndLine();
    raise(number);
}

// What the parent ignored stays ignored, and others' handlers stay.
void HandleEnd(int number) {
    struct sigaction action;
    if (sigaction(number, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) return;
    action.sa_handler = OnEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigfillset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

// Whatever the parent did with the signal.
void HandleTime(int number, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigfillset(&action.sa_mask);
    sigaction(number, &action, nullptr);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, number);
    sigprocmask(SIG_UNBLOCK, &one, nullptr);
}

bool EndsByDefault(int number) {
    for (const int other : {SIGCHLD, SIGCONT, SIGURG, SIGWINCH, SIGTSTP, SIGTTIN, SIGTTOU}) {
        if (number == other) return false;
    }
    return true;
}

}  // namespace

void GiveUp(const Farewell& last) {
    TargetFile::RemoveTemporary();
    Progress::EndLine();
    WriteWithin(lastWordsTime, last.text.data(), last.text.size());
    _exit(last.status);
}

void HandleSignals() {
    signal(SIGALRM, SIG_IGN);
    for (int number = 1; number <= SIGRTMAX; ++number) {
        if (EndsByDefault(number)) HandleEnd(number);
    }
}

void StartDeadline(unsigned int seconds, const Farewell& last) {
    deadlineFarewell = &last;
    HandleTime(SIGRTMIN, OnDeadline);
    sigevent event = sigevent();
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGRTMIN;
    timer_t timer;
    if (timer_create(CLOCK_MONOTONIC, &event, &timer) != 0) {
        throw std::system_error(errno, std::generic_category(), "timer");
    }
    itimerspec time = itimerspec();
    time.it_value.tv_sec = static_cast<time_t>(seconds);
    timer_settime(timer, 0, &time, nullptr);
}
