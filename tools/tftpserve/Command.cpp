#include "Command.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "TftpServer.h"

namespace {

const int ending[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};
const int patience = 2000;  // milliseconds

volatile sig_atomic_t endedBy;

void NoteEnding(int number) {
    endedBy = number;
}

void Awake(int) {}

void Handle(int number, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    sigaction(number, &action, nullptr);
}

bool IsIgnored(int number) {
    struct sigaction present;
    return sigaction(number, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

// From here on signals come in only while the server waits, so that none is missed before that.
// Returns the mask that was there.
sigset_t CatchSignals() {
    sigset_t caught;
    sigset_t before;
    sigemptyset(&caught);
    sigaddset(&caught, SIGCHLD);
    Handle(SIGCHLD, Awake);
    for (const int number : ending) {
        if (IsIgnored(number)) continue;
        sigaddset(&caught, number);
        Handle(number, NoteEnding);
    }
    sigprocmask(SIG_BLOCK, &caught, &before);
    return before;
}

void UndoHandlers() {
    Handle(SIGCHLD, SIG_DFL);
    for (const int number : ending) {
        if (!IsIgnored(number)) Handle(number, SIG_DFL);
    }
}

// The command ends with this process, even when that is killed.
pid_t Start(char** command, const sigset_t& mask) {
    const pid_t parent = getpid();
    const pid_t id = fork();
    if (id != 0) return id;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);
    UndoHandlers();
    sigprocmask(SIG_SETMASK, &mask, nullptr);
    execvp(command[0], command);
    std::fprintf(stderr, "tftpserve: %s: %s\n", command[0], std::strerror(errno));
    _exit(127);
}

void EndBySignal(int number) {
    Handle(number, SIG_DFL);
    raise(number);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, number);
    sigprocmask(SIG_UNBLOCK, &one, nullptr);
}

}  // namespace

int ServeCommand(TftpServer& server, char** command) {
    sigset_t blocked = CatchSignals();
    const pid_t id = Start(command, blocked);
    if (id < 0) {
        std::fprintf(stderr, "tftpserve: %s\n", std::strerror(errno));
        return 127;
    }
    int status = 0;
    int passedOn = 0;
    long long killAt = 0;
    while (waitpid(id, &status, WNOHANG) == 0) {
        if (endedBy != passedOn) {
            passedOn = endedBy;
            kill(id, passedOn);
            if (killAt == 0) killAt = Now() + patience;
        }
        if (killAt != 0 && Now() >= killAt) kill(id, SIGKILL);
        server.Serve(killAt == 0 ? 60000 : 50, &blocked);
    }
    if (endedBy != 0) EndBySignal(endedBy);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}
