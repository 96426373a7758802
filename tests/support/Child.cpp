#include "Child.h"

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "UdpSocket.h"

Child::Child(const std::function<void()>& function) {
    const pid_t parent = getpid();
    id = fork();
    if (id != 0) return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() == parent) function();
    _exit(0);
}

Child::Child(Child&& other) noexcept : id(other.id) {
    other.id = -1;
}

Child::~Child() {
    if (id <= 0) return;
    kill(id, SIGKILL);
    while (waitpid(id, nullptr, 0) < 0 && errno == EINTR) {
    }
}

bool Child::Wait(int milliseconds, int& status) {
    const long long end = Now() + milliseconds;
    while (id > 0) {
        const pid_t ended = waitpid(id, &status, WNOHANG);
        if (ended == id) {
            id = -1;
            return true;
        }
        if (Now() >= end) return false;
        poll(nullptr, 0, 2);
    }
    return false;
}
