#ifndef TFTP_TEST_H
#define TFTP_TEST_H

#include <gtest/gtest.h>

#include <vector>

/// What tests of the TFTP client in this very process have in common: a network, a client that has
/// nothing open, no replaced system calls, and an end for what hangs.
class TftpTest : public testing::Test {
public:
    /// Whether any test has used the client in this process: its first state is gone then.
    static bool IsClientUsed();

    /// The descriptor that the next socket will have.
    static int NextDescriptor();

    /// The descriptors in use.
    static std::vector<int> Descriptors();

protected:
    void SetUp() override;
    void TearDown() override;
};

#endif
