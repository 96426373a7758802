#include "TftpTest.h"

#include <fcntl.h>
#include <sys/select.h>
#include <unistd.h>

#include "Scale.h"
#include "SystemCalls.h"
#include "TftpHost.h"
#include "TqTftp.h"

namespace {

const int longestTest = 250 * Slowness();  // seconds

bool isClientUsed;

// The client closes descriptor 0 when it has not opened anything yet; everybody else keeps it.
void CloseWhateverIsOpen() {
    const int input = dup(0);
    TFTP_close();
    if (input < 0) return;
    dup2(input, 0);
    close(input);
}

}  // namespace

void TftpTest::SetUp() {
    if (!TftpNetworkProblem().empty()) GTEST_SKIP() << TftpNetworkProblem();
    alarm(static_cast<unsigned int>(longestTest));
    isClientUsed = true;
    CloseWhateverIsOpen();
}

void TftpTest::TearDown() {
    systemCalls = SystemCalls();
    RefuseMemory(0);
    WatchMemory(0);
    if (isClientUsed) TFTP_close();
    alarm(0);
}

bool TftpTest::IsClientUsed() {
    return isClientUsed;
}

int TftpTest::NextDescriptor() {
    const int next = open("/dev/null", O_RDONLY);
    close(next);
    return next;
}

std::vector<int> TftpTest::Descriptors() {
    std::vector<int> used;
    for (int descriptor = 0; descriptor < FD_SETSIZE + 64; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) != -1) used.push_back(descriptor);
    }
    return used;
}
