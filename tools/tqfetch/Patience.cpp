#include "Patience.h"

#include <signal.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <system_error>

#include "Message.h"
#include "Progress.h"
#include "TargetFile.h"

namespace {

// The client blocks in its receive once its wait is over, and resends only when something
// interrupts the receive. This signal does, so often each second.
const int ticksPerSecond = 5;

// For those who read the last words through a pipe that happens to be full.
const int lastWordsTime = 1000;

// The ticks that are left until nobody waits any longer; 0 while nothing is awaited.
volatile sig_atomic_t patience = 0;
std::atomic<const Farewell*> farewell(nullptr);
std::atomic<const Farewell*> deadlineFarewell(nullptr);

[[noreturn]] void End(const Farewell& last) {
    TargetFile::RemoveTemporary();
    Progress::EndLine();
    WriteWithin(lastWordsTime, last.text.data(), last.text.size());
    _exit(last.status);
}

void OnTick(int) {
    if (patience == 0) return;
    if (--patience == 0) End(*farewell.load());
    Progress::ShowWaiting();
}

void OnDeadline(int) {
    End(*deadlineFarewell.load());
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

// Without SA_RESTART, or the receive would go on; and whatever the parent did with the signal.
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

void SetTimer(const timeval& first, const timeval& then) {
    const itimerval timer = {then, first};
    setitimer(ITIMER_REAL, &timer, nullptr);
}

const timeval never = {0, 0};

}  // namespace

void HandleSignals() {
    HandleTime(SIGALRM, OnTick);
    for (int number = 1; number <= SIGRTMAX; ++number) {
        if (EndsByDefault(number)) HandleEnd(number);
    }
}

// A timer of its own: nothing that is done to the other one touches it.
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

Limit::Limit(unsigned int seconds, const Farewell& last) {
    farewell = &last;
    patience = 1;
    SetTimer({static_cast<time_t>(seconds), 0}, never);
}

Limit::~Limit() {
    patience = 0;
    SetTimer(never, never);
}

Ticks::Ticks() {
    const timeval between = {0, 1000000 / ticksPerSecond};
    SetTimer(between, between);
}

Ticks::~Ticks() {
    SetTimer(never, never);
}

Wait::Wait(unsigned int seconds, const Farewell& last) {
    farewell = &last;
    patience = static_cast<sig_atomic_t>(seconds * ticksPerSecond);
}

Wait::~Wait() {
    patience = 0;
}
