// The client against servers as distributions ship them.

#include <sys/stat.h>

#include <string>

#include "Files.h"
#include "RealServer.h"
#include "Scale.h"
#include "TftpHost.h"
#include "TftpTest.h"
#include "TqDownload.h"

namespace {

class TqTftpServers : public TftpTest, public testing::WithParamInterface<RealServer::Program> {
protected:
    void SetUp() override {
        TftpTest::SetUp();
        if (IsSkipped()) return;
        const std::string problem = RealServer::Problem(GetParam());
        if (!problem.empty()) GTEST_SKIP() << problem;
    }

    // Returns the result, with what was read up to then.
    static unsigned int Fetch(const std::string& name, std::string& data) {
        const std::string host = ToText(RequestPort());
        TqDownload download(host.substr(0, host.find(':')).c_str(), name.c_str());
        return download.ToFunction([&data](const unsigned char* bytes, unsigned int count) {
            data.append(reinterpret_cast<const char*>(bytes), count);
            return true;
        });
    }

    // Serves a file of this size, fetches it, and compares.
    void ExpectFetched(std::size_t length) {
        SCOPED_TRACE(length);
        const std::string file = RandomBytes(length, static_cast<unsigned int>(length));
        const std::string name = std::to_string(length);
        WriteFile(directory.Path(name), file);
        std::string data;
        EXPECT_EQ(Fetch(name, data), 0u);
        EXPECT_EQ(data.size(), file.size());
        EXPECT_TRUE(data == file);
    }

    const TemporaryDirectory directory;
};

TEST_P(TqTftpServers, FilesOfEverySizeComeByteForByte) {
    const RealServer server(GetParam(), directory.Path());
    for (const std::size_t length : {0u, 1u, 511u, 512u, 513u, 65536u, 1048576u}) {
        ExpectFetched(length);
    }
}

TEST_P(TqTftpServers, TheLargestFileComesByteForByte) {
    const RealServer server(GetParam(), directory.Path());
    ExpectFetched(65535 * 512 - 1);
}

TEST_P(TqTftpServers, AFileOfOneByteMoreDoesNot) {
    if (runsSlowly) GTEST_SKIP() << "takes too long; a scripted server does the same";
    const RealServer server(GetParam(), directory.Path());
    const std::string file = RandomBytes(65535 * 512, 1);
    WriteFile(directory.Path("file"), file);
    std::string data;
    const unsigned int result = Fetch("file", data);
    // Either the server goes on with block 0, or it refuses a file that it cannot number.
    EXPECT_TRUE(result == TqDownload::tooLarge || result == 2064) << result;
    EXPECT_TRUE(file.compare(0, data.size(), data) == 0);
}

TEST_P(TqTftpServers, AMissingFileIs2065) {
    const RealServer server(GetParam(), directory.Path());
    std::string data;
    EXPECT_EQ(Fetch("missing", data), 2065u);
}

TEST_P(TqTftpServers, AFileThatMayNotBeReadIs2066) {
    const RealServer server(GetParam(), directory.Path());
    WriteFile(directory.Path("secret"), "secret");
    chmod(directory.Path("secret").c_str(), 0600);
    std::string data;
    EXPECT_EQ(Fetch("secret", data), 2066u);
}

std::string NameOf(const testing::TestParamInfo<RealServer::Program>& program) {
    return program.param == RealServer::tftpdHpa ? "tftpd_hpa" : "dnsmasq";
}

INSTANTIATE_TEST_SUITE_P(, TqTftpServers,
                         testing::Values(RealServer::tftpdHpa, RealServer::dnsmasq), NameOf);

}  // namespace
