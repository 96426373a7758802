// The client before its first transfer: what only a process can show that has not used it yet.

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

#include "SystemCalls.h"
#include "TftpTest.h"
#include "TqTftp.h"

namespace {

bool IsOpen(int descriptor) {
    return fcntl(descriptor, F_GETFD) != -1;
}

// The bodies run in children, which find the client untouched as long as this process does not use
// it itself.
class TqTftpClosed : public TftpTest {
protected:
    void SetUp() override {
        if (IsClientUsed()) GTEST_SKIP() << "a test before has used the client in this process";
    }
    void TearDown() override {}
};

#define EXPECT_IN_CHILD(condition) \
    EXPECT_EXIT(alarm(60); _exit((condition) ? 0 : 1), testing::ExitedWithCode(0), "")

TEST_F(TqTftpClosed, EndOfFileIsZeroBeforeTheFirstTransfer) {
    EXPECT_EQ(TFTP_eof(), 0u);
}

TEST_F(TqTftpClosed, TheDescriptorIsZeroBeforeTheFirstTransfer) {
    ASSERT_TRUE(IsOpen(0));
    EXPECT_IN_CHILD(TFTP_close() == 0 && !IsOpen(0) && TFTP_eof() == 1);
    EXPECT_IN_CHILD(TFTP_close() == 0 && TFTP_close() == 0x704 && TFTP_close() == 0x704);
}

TEST_F(TqTftpClosed, ClosingReturnsTheResultOfClose) {
    EXPECT_IN_CHILD(close(0) == 0 && TFTP_close() == 0xFFFFFFFFu && TFTP_close() == 0x704);
}

bool ReadFailsAndCloses() {
    unsigned int length = 0;
    return TFTP_read(&length) == nullptr && length == 0x814 && TFTP_close() == 0x704 &&
           TFTP_eof() == 1;
}

TEST_F(TqTftpClosed, AReadBeforeTheFirstTransferFailsAndClosesDescriptorZero) {
    EXPECT_IN_CHILD(open("/dev/null", O_RDONLY) >= 0 && ReadFailsAndCloses() && !IsOpen(0));
    EXPECT_IN_CHILD(close(0) == 0 && ReadFailsAndCloses());
}

}  // namespace
