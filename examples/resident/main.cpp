// resident SERVER CHANGES POLLS INTERFACE
//
// An agent that stays: it fetches its configuration so often, "change-1", "change-2" and so on from
// the TFTP server SERVER, and polls so many times with each; INTERFACE goes up or down within every
// other one. What the polls show goes to standard output. What the kernel says about this process
// and about the machine goes to standard error, and at the end whether memory has grown since the
// first tenth.

#include <net/if.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "TqDevelopmentAssert.h"
#include "views/Report.h"

namespace {

const long mayGrow = 64;               // KiB, of the process
const long machineMayGrow = 2 * 1024;  // KiB

// In KiB, but for the sockets.
struct Kernel {
    long resident;
    long available;
    long slab;
    long sockets;
};

// The number behind `name` in a file of the kernel.
long NumberIn(const char* path, const char* name) {
    FILE* file = fopen(path, "re");
    if (file == nullptr) return -1;
    long number = -1;
    char line[256];
    while (number < 0 && fgets(line, sizeof line, file) != nullptr) {
        if (strncmp(line, name, strlen(name)) == 0) number = atol(line + strlen(name));
    }
    fclose(file);
    return number;
}

Kernel AskTheKernel() {
    return {NumberIn("/proc/self/status", "VmRSS:"), NumberIn("/proc/meminfo", "MemAvailable:"),
            NumberIn("/proc/meminfo", "Slab:"), NumberIn("/proc/net/sockstat", "sockets: used")};
}

void Print(int changes, int polls, const Kernel& kernel) {
    fprintf(stderr,
            "%4d changes, %5d polls: resident %ld KiB; machine: available %ld KiB, slab %ld KiB, "
            "%ld sockets\n",
            changes, polls, kernel.resident, kernel.available, kernel.slab, kernel.sockets);
}

bool SetUp(const char* interface, bool isUp) {
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) return false;
    ifreq request;
    memset(&request, 0, sizeof request);
    strncpy(request.ifr_name, interface, IFNAMSIZ - 1);
    request.ifr_flags = isUp ? IFF_UP : 0;
    const bool isSet = ioctl(descriptor, SIOCSIFFLAGS, &request) == 0;
    close(descriptor);
    return isSet;
}

// What the configuration says differs from change to change: the interval is the change's number.
bool IsOfChange(const Configuration& configuration, int change) {
    return int(configuration.interval) == change && configuration.monitors.count == 3;
}

// Fetches the configuration of that number and polls with it. False after a complaint.
bool Live(const char* server, int change, int polls, const char* interface) {
    char name[32];
    snprintf(name, sizeof name, "change-%d", change);
    Report report;
    Agent agent(report);
    LineReader reader(name);
    if (!reader.Fetch(server)) return false;
    agent.configuration.Read(reader);
    if (!IsOfChange(agent.configuration, change)) {
        fprintf(stderr, "resident: %s holds another configuration\n", name);
        return false;
    }
    for (int poll = 0; poll < polls; ++poll) {
        if (poll == 2 && change % 2 == 0 && !SetUp(interface, change % 4 == 0)) {
            perror(interface);
            return false;
        }
        agent.PollOnce(procNetDev);
    }
    agent.Finish();
    return true;
}

bool IsFlat(const Kernel& before, const Kernel& after) {
    return after.resident - before.resident <= mayGrow &&
           before.available - after.available <= machineMayGrow &&
           after.slab - before.slab <= machineMayGrow && after.sockets <= before.sockets;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        fprintf(stderr, "usage: resident SERVER CHANGES POLLS INTERFACE\n");
        return 2;
    }
    TqDevelopmentAssert::Install();
    RegisterMonitorClasses();
    const int changes = atoi(argv[2]);
    const int polls = atoi(argv[3]);
    const int tenth = changes < 10 ? 1 : changes / 10;
    Kernel settled = AskTheKernel();
    for (int change = 1; change <= changes; ++change) {
        if (!Live(argv[1], change, polls, argv[4])) return 1;
        if (change % tenth != 0) continue;
        if (change == tenth) settled = AskTheKernel();
        Print(change, change * polls, AskTheKernel());
    }
    const bool isFlat = IsFlat(settled, AskTheKernel());
    fprintf(stderr, "memory %s; %u complaints, %u failed checks\n",
            isFlat ? "is flat" : "HAS GROWN", complaintCount, TqDevelopmentAssert::Count());
    return isFlat && complaintCount + TqDevelopmentAssert::Count() == 0 ? 0 : 1;
}
