// The tool tqfetch, run as its users run it.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "Child.h"
#include "Files.h"
#include "Mounts.h"
#include "Program.h"
#include "RealServer.h"
#include "Scale.h"
#include "TftpAnswers.h"
#include "TftpHost.h"
#include "TftpProxy.h"
#include "TftpScript.h"
#include "TftpServer.h"

namespace {

using Names = std::vector<std::string>;

#ifdef TQFETCH

// The tool.

const int longestTest = 280 * Slowness();  // seconds

class Tqfetch : public testing::Test {
protected:
    void SetUp() override {
        if (!TftpNetworkProblem().empty()) GTEST_SKIP() << TftpNetworkProblem();
        alarm(static_cast<unsigned int>(longestTest));
    }
    void TearDown() override { alarm(0); }

    Program::Settings InDirectory() const {
        Program::Settings settings;
        settings.directory = directory.Path();
        settings.prepare = [] { ProtectDevices(); };
        return settings;
    }

    Program::Result Fetch(const std::vector<std::string>& words) const {
        return RunProgram(Built(TQFETCH, words), InDirectory());
    }

    // The same after something has been done in its process.
    Program::Result FetchAfter(const std::function<void()>& prepare,
                               const std::vector<std::string>& words) const {
        Program::Settings settings = InDirectory();
        settings.prepare = [&prepare] {
            ProtectDevices();
            prepare();
        };
        return RunProgram(Built(TQFETCH, words), settings);
    }

    // Whether the function returns true in a process of its own.
    static bool Works(bool (*function)()) {
        Child child([function] { _exit(function() ? 0 : 1); });
        int status = 1;
        return child.Wait(60000, status) && status == 0;
    }

    // Whether a faulty tool could replace a device of the machine here.
    static bool AreDevicesInDanger() { return access("/dev", W_OK) == 0 && !Works(ProtectDevices); }

    // The shortest time-out in which a server answers for certain, in seconds.
    static std::string Patience() { return std::to_string(Slowness()); }

    // The line that tells of a failed transfer.
    static std::string Told(const std::string& what, const std::string& file = "motd") {
        return "tqfetch: " + HostName() + ": " + file + ": " + what + "\n";
    }

    // Serves the directory `served` from a host.
    Child Serve(unsigned int host = 1) const { return ServeFolder(served.Path(), host); }

    // A server that sends one full block and lets the test know: what is read from the descriptor
    // then is one byte. Falls silent, or sends the last block a second later.
    static Child AnswerWithOneBlock(int& descriptor, const Octets& last = Octets()) {
        int ends[2];
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        descriptor = ends[0];
        Child child = Answer(
            [ends, last](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
                if (datagram[1] == 1) socket.Send(client, Data(1, Octets(512, 'x')));
                if (datagram != Acknowledgement(1)) return;
                if (write(ends[1], "x", 1) != 1) _exit(1);
                if (last.empty()) return;
                usleep(1000000);
                socket.Send(client, Data(2, last));
            });
        close(ends[1]);
        return child;
    }

    static void AwaitByte(int descriptor) {
        char byte;
        EXPECT_EQ(read(descriptor, &byte, 1), 1);
        close(descriptor);
    }

    static bool Contains(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }

    const TemporaryDirectory directory;
    const TemporaryDirectory served;
};

TEST_F(Tqfetch, StoresTheFileUnderItsNameAndPrintsNothingIntoPipes) {
    const std::string file = RandomBytes(100000, 1);
    ASSERT_EQ(mkdir(served.Path("folder").c_str(), 0755), 0);
    WriteFile(served.Path("folder/motd"), file);
    const Child server = Serve();
    const Program::Result result = Fetch({HostName(), "folder/motd"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(directory.Names(), Names({"motd"}));
    EXPECT_TRUE(ReadFile(directory.Path("motd")) == file);
}

TEST_F(Tqfetch, StoresTheFileWhereItIsTold) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    EXPECT_EQ(Fetch({"-o", "here", HostName(), "motd"}).status, 0);
    EXPECT_EQ(Fetch({"--output=" + directory.Path("there"), HostName(), "motd"}).status, 0);
    EXPECT_EQ(Fetch({HostName(), "motd", "-ofurther"}).status, 0);
    EXPECT_EQ(directory.Names(), Names({"further", "here", "there"}));
    EXPECT_EQ(ReadFile(directory.Path("here")), "hello");
    EXPECT_EQ(ReadFile(directory.Path("there")), "hello");
    EXPECT_EQ(ReadFile(directory.Path("further")), "hello");
}

TEST_F(Tqfetch, StandardOutputHoldsTheFileAndNothingElse) {
    // Late answers make the client print about select, again and again.
    const std::string file = RandomBytes(1000, 2);
    const Child server =
        Answer([&file](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            usleep(500000);
            const bool isFirst = datagram[1] == 1;
            const unsigned int block = isFirst ? 1 : 2;
            if (isFirst || datagram == Acknowledgement(1)) {
                socket.Send(client, Data(block, file.substr((block - 1) * 512, 512)));
            }
        });
    const Program::Result result = Fetch({"-o", "-", HostName(), "f"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_TRUE(result.output == file);
    EXPECT_EQ(directory.Names(), Names());
    const Program::Result stored = Fetch({HostName(), "f"});
    EXPECT_EQ(stored.status, 0);
    EXPECT_EQ(stored.output + stored.errors, "");
    EXPECT_TRUE(ReadFile(directory.Path("f")) == file);
}

TEST_F(Tqfetch, ReplacesTheFileBeforeAndKeepsItsMode) {
    WriteFile(served.Path("motd"), "new");
    WriteFile(directory.Path("motd"), "what was there");
    ASSERT_EQ(chmod(directory.Path("motd").c_str(), 0640), 0);
    const Child server = Serve();
    EXPECT_EQ(Fetch({HostName(), "motd"}).status, 0);
    EXPECT_EQ(ReadFile(directory.Path("motd")), "new");
    struct stat status;
    ASSERT_EQ(stat(directory.Path("motd").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(Tqfetch, ANewFileHasTheModeThatTheMaskLeaves) {
    WriteFile(served.Path("motd"), "new");
    const Child server = Serve();
    for (const mode_t mask : {0u, 022u, 027u, 077u}) {
        const std::string name = std::to_string(mask);
        EXPECT_EQ(FetchAfter([mask] { umask(mask); }, {"-o", name, HostName(), "motd"}).status, 0);
        struct stat status;
        ASSERT_EQ(stat(directory.Path(name).c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0666u & ~mask);
    }
}

TEST_F(Tqfetch, ALinkToAFileStaysALink) {
    WriteFile(served.Path("motd"), "new");
    WriteFile(directory.Path("real"), "old");
    ASSERT_EQ(symlink("real", directory.Path("motd").c_str()), 0);
    const Child server = Serve();
    EXPECT_EQ(Fetch({HostName(), "motd"}).status, 0);
    EXPECT_EQ(ReadFile(directory.Path("real")), "new");
    struct stat status;
    ASSERT_EQ(lstat(directory.Path("motd").c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
}

// A pseudo-terminal of the test's own, with no program behind it. What is written to it is read
// as it is.
class OwnTerminal {
public:
    OwnTerminal() : master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        EXPECT_EQ(grantpt(master), 0);
        EXPECT_EQ(unlockpt(master), 0);
        name = ptsname(master);
        slave = open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_GE(slave, 0);
        termios settings;
        tcgetattr(slave, &settings);
        cfmakeraw(&settings);
        tcsetattr(slave, TCSANOW, &settings);
    }
    ~OwnTerminal() {
        close(slave);
        close(master);
    }

    const std::string& Name() const { return name; }

    // In a child: its outputs from here on.
    void TakeOutputs() const {
        dup2(slave, STDOUT_FILENO);
        dup2(slave, STDERR_FILENO);
    }

    // Until nothing more fits.
    void Fill() const {
        fcntl(slave, F_SETFL, O_NONBLOCK);
        for (int refusals = 0; refusals < 3;) {
            if (write(slave, "x", 1) == 1) continue;
            ++refusals;
            usleep(20000);
        }
        fcntl(slave, F_SETFL, 0);
    }

    std::string Read() const {
        char bytes[4096];
        const ssize_t count = read(master, bytes, sizeof bytes);
        return std::string(bytes, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }

private:
    const int master;
    int slave = -1;
    std::string name;
};

TEST_F(Tqfetch, ADeviceIsWrittenToAndNotReplaced) {
    if (!Program::MayHaveTerminal()) GTEST_SKIP() << "no pseudo-terminals here";
    if (AreDevicesInDanger()) GTEST_SKIP() << "no mount namespace of its own";
    WriteFile(served.Path("motd"), "new");
    const Child server = Serve();
    const OwnTerminal terminal;
    EXPECT_EQ(Fetch({"-o", terminal.Name(), HostName(), "motd"}).status, 0);
    EXPECT_EQ(terminal.Read(), "new");
    struct stat status;
    ASSERT_EQ(stat(terminal.Name().c_str(), &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
}

// Files of the program may not grow beyond so many bytes, and that is no signal. Counts of executed
// lines, where there are any, are not cut short in their own files but in these.
void LimitFiles(rlim_t bytes, const TemporaryDirectory& counts) {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
    setenv("GCOV_PREFIX", counts.Path().c_str(), 1);
}

TEST_F(Tqfetch, AFailedWriteNamesTheFileThatWasMeant) {
    WriteFile(served.Path("motd"), std::string(2000, 'x'));
    const Child server = Serve();
    const auto limit = [this] { LimitFiles(1000, served); };
    const Program::Result own = FetchAfter(limit, {HostName(), "motd"});
    EXPECT_EQ(own.status, 1);
    EXPECT_EQ(own.errors, "tqfetch: motd: File too large\n");
    EXPECT_EQ(directory.Names(), Names());

    WriteFile(directory.Path("real"), "old");
    ASSERT_EQ(symlink("real", directory.Path("a\nlink").c_str()), 0);
    const Program::Result link = FetchAfter(limit, {"-o", "a\nlink", HostName(), "motd"});
    EXPECT_EQ(link.status, 1);
    EXPECT_EQ(link.errors, "tqfetch: a\\nlink: File too large\n");
    EXPECT_EQ(ReadFile(directory.Path("real")), "old");

    const auto toFile = [this] {
        LimitFiles(1000, served);
        dup2(open("out", O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
    };
    const Program::Result output = FetchAfter(toFile, {"-o", "-", HostName(), "motd"});
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.errors, "tqfetch: standard output: File too large\n");
}

// Every name that a program's standard output has gets what it would get.

const char* const outputNames[] = {
    "-",    "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1", "/proc/thread-self/fd/1",
    "link", "further"};

class TqfetchOutput : public Tqfetch {
protected:
    void SetUp() override {
        Tqfetch::SetUp();
        if (IsSkipped()) return;
        if (access("/dev/stdout", F_OK) != 0) GTEST_SKIP() << "no /dev/stdout here";
        if (AreDevicesInDanger()) GTEST_SKIP() << "no mount namespace of its own";
        WriteFile(served.Path("motd"), "hello");
        ASSERT_EQ(symlink("/dev/stdout", directory.Path("link").c_str()), 0);
        ASSERT_EQ(symlink("./link", directory.Path("further").c_str()), 0);
    }
};

TEST_F(TqfetchOutput, APipeGetsTheBytesByEveryName) {
    const Child server = Serve();
    for (const char* name : outputNames) {
        const Program::Result result = Fetch({"-o", name, HostName(), "motd"});
        EXPECT_EQ(result.status, 0) << name;
        EXPECT_EQ(result.output, "hello") << name;
        EXPECT_EQ(result.errors, "") << name;
        EXPECT_EQ(directory.Names(), Names({"further", "link"})) << name;
    }
}

TEST_F(TqfetchOutput, AFileIsWrittenOnByEveryName) {
    const Child server = Serve();
    for (const char* name : outputNames) {
        const int file = open(directory.Path("out").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        ASSERT_EQ(write(file, "header ", 7), 7);
        const auto prepare = [file] { dup2(file, STDOUT_FILENO); };
        EXPECT_EQ(FetchAfter(prepare, {"-o", name, HostName(), "motd"}).status, 0) << name;
        EXPECT_EQ(ReadFile(directory.Path("out")), "header hello") << name;

        // Without a name it is what it was.
        ASSERT_EQ(unlink(directory.Path("out").c_str()), 0);
        EXPECT_EQ(FetchAfter(prepare, {"-o", name, HostName(), "motd"}).status, 0) << name;
        char bytes[64];
        EXPECT_EQ(pread(file, bytes, sizeof bytes, 0), 17) << name;
        close(file);
        EXPECT_EQ(directory.Names(), Names({"further", "link"})) << name;
    }
}

TEST_F(TqfetchOutput, AnyDescriptorThatIsHandedDownGetsTheBytes) {
    const Child server = Serve();
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const auto prepare = [&ends] { dup2(ends[1], 9); };
    EXPECT_EQ(FetchAfter(prepare, {"-o", "/dev/fd/9", HostName(), "motd"}).status, 0);
    close(ends[1]);
    char bytes[64];
    EXPECT_EQ(read(ends[0], bytes, sizeof bytes), 5);
    close(ends[0]);
}

TEST_F(TqfetchOutput, ADescriptorThatCannotBeWrittenToIsAFailure) {
    for (const char* name : {"/dev/fd/9", "/dev/stdin", "/proc/self/fd/0"}) {
        const Program::Result result = Fetch({"-o", name, HostName(), "motd"});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors, std::string("tqfetch: ") + name + ": Bad file descriptor\n");
    }
    for (const char* name : {"/dev/fd/x", "/dev/fd/01", "/dev/fd/"}) {
        const Program::Result result = Fetch({"-o", name, HostName(), "motd"});
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(Contains(result.errors, std::string("tqfetch: ") + name + ": "));
    }
}

TEST_F(TqfetchOutput, AFileOfNoBytesForAClosedOutputIsAFailure) {
    WriteFile(served.Path("empty"), "");
    const Child server = Serve();
    const auto prepare = [] { close(STDOUT_FILENO); };
    const Program::Result result = FetchAfter(prepare, {"-o", "-", HostName(), "empty"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "tqfetch: standard output: Bad file descriptor\n");
    const Program::Result named = FetchAfter(prepare, {"-o", "/dev/stdout", HostName(), "empty"});
    EXPECT_EQ(named.status, 1);
    EXPECT_EQ(named.errors, "tqfetch: /dev/stdout: Bad file descriptor\n");
}

TEST_F(TqfetchOutput, WhatAnotherProcessHasOpenGetsTheBytes) {
    const Child server = Serve();
    const int file = open(directory.Path("out").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(write(file, "something long", 14), 14);
    ASSERT_EQ(unlink(directory.Path("out").c_str()), 0);
    const std::string name = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(file);
    EXPECT_EQ(Fetch({"-o", name, HostName(), "motd"}).status, 0);
    char bytes[64];
    EXPECT_EQ(pread(file, bytes, sizeof bytes, 0), 5);
    close(file);
    EXPECT_EQ(directory.Names(), Names({"further", "link"}));
}

TEST_F(TqfetchOutput, APipeWithANameWaitsForItsReaderHoweverLong) {
    const Child server = Serve();
    const std::string pipe = directory.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::vector<std::string> words = {"-t", "1", "-o", "pipe", HostName(), "motd"};
    Program program(Built(TQFETCH, words), InDirectory());
    usleep(2000000);
    // Not when it has ended already.
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const Program::Result result = program.Finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    char bytes[64];
    EXPECT_EQ(read(reader, bytes, sizeof bytes), 5);
    close(reader);
    struct stat status;
    ASSERT_EQ(stat(pipe.c_str(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
}

// The system follows no link in a folder like /tmp that belongs to somebody else.
TEST_F(Tqfetch, ALinkThatTheSystemDoesNotFollowIsAFailure) {
    const std::string protection = ReadFile("/proc/sys/fs/protected_symlinks");
    if (protection != "1\n") GTEST_SKIP() << "fs.protected_symlinks is off";
    WriteFile(directory.Path("precious"), "precious");
    ASSERT_EQ(mkdir(directory.Path("open").c_str(), 0755), 0);
    ASSERT_EQ(chmod(directory.Path("open").c_str(), 01777), 0);
    const std::string link = directory.Path("open/link");
    ASSERT_EQ(symlink("../precious", link.c_str()), 0);
    if (lchown(link.c_str(), 12345, 12345) != 0) GTEST_SKIP() << "no other users";
    const Program::Result result = Fetch({"-t", "1", "-o", "open/link", HostName(), "motd"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "tqfetch: open/link: Permission denied\n");
    EXPECT_EQ(ReadFile(directory.Path("precious")), "precious");
}

TEST_F(Tqfetch, AFileAboveTwoGibibytesIsReplaced) {
    WriteFile(served.Path("motd"), "new");
    const Child server = Serve();
    const std::string path = directory.Path("motd");
    WriteFile(path, "");
    if (truncate64(path.c_str(), 3LL << 30) != 0) GTEST_SKIP() << "no such files here";
    const timespec times[] = {{0, UTIME_OMIT}, {2147483647, 0}};
    utimensat(AT_FDCWD, path.c_str(), times, 0);
    EXPECT_EQ(Fetch({HostName(), "motd"}).errors, "");
    EXPECT_EQ(ReadFile(path), "new");
}

TEST_F(Tqfetch, ATargetThatCannotBeIsALocalFailure) {
    // Nobody serves: the target is opened before the server is asked.
    ASSERT_EQ(symlink("loop", directory.Path("loop").c_str()), 0);
    WriteFile(directory.Path("plain"), "");
    const char* const targets[][2] = {{"no/such/folder", "No such file or directory"},
                                      {".", "Is a directory"},
                                      {"/", "Is a directory"},
                                      {"new/", "No such file or directory"},
                                      {"plain/", "Not a directory"},
                                      {"plain/file", "Not a directory"},
                                      {"loop", "Too many levels of symbolic links"},
                                      {"/proc/file", "No such file or directory"}};
    for (const auto& target : targets) {
        const Program::Result result = Fetch({"-t", "1", "-o", target[0], HostName(), "motd"});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors, std::string("tqfetch: ") + target[0] + ": " + target[1] + "\n");
    }
    EXPECT_EQ(directory.Names(), Names({"loop", "plain"}));
}

TEST_F(Tqfetch, AFailedTransferLeavesWhatWasThereAndNothingElse) {
    WriteFile(directory.Path("motd"), "old");
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            socket.Send(client, datagram[1] == 1 ? Data(1, Octets(512, 'x')) : Error(0, "no more"));
        });
    EXPECT_EQ(Fetch({HostName(), "motd"}).status, 16);
    EXPECT_EQ(Fetch({HostName(), "other"}).status, 16);
    EXPECT_EQ(directory.Names(), Names({"motd"}));
    EXPECT_EQ(ReadFile(directory.Path("motd")), "old");
}

// A server that answers every request like this.
Octets ErrorPacket(unsigned int code, const Octets& text) {
    return Octets({'\0', '\5', static_cast<char>(code >> 8), static_cast<char>(code)}) + text;
}

TEST_F(Tqfetch, AnErrorOfTheServerIsToldWithItsCodeAndWords) {
    const struct {
        unsigned int code;
        Octets text;
        int status;
        const char* told;
    } cases[] = {
        {0, Octets("no\0", 3), 16, "the server reports an error without a number (error 0: no)"},
        {1, Octets("\0", 1), 17, "the server has no such file (error 1)"},
        {1, Octets("File not found\0", 15), 17,
         "the server has no such file (error 1: File not found)"},
        {2, "without an end", 18,
         "the server does not give access to the file (error 2: without an end)"},
        {3, Octets("two\nlines \x1B[31m\0rest\0", 21), 19,
         "the server's disk is full (error 3: two\\nlines \\x1b[31m)"},
        {4, Octets("\0", 1), 20,
         "the server broke the protocol, or says that the request is illegal (error 4)"},
        {8, "", 24, "the server reports an error of its own (error 8)"},
        {700, Octets("why\0", 4), 24, "the server reports an error of its own (error 700: why)"},
    };
    for (const auto& one : cases) {
        const Child server =
            Answer([&one](const UdpSocket& socket, const Endpoint& client, const Octets&) {
                socket.Send(client, ErrorPacket(one.code, one.text));
            });
        const Program::Result result = Fetch({HostName(), "motd"});
        EXPECT_EQ(result.status, one.status);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors, Told(one.told));
    }
}

TEST_F(Tqfetch, ControlCharactersInNamesAreShownEscaped) {
    const Child server = Answer([](const UdpSocket& socket, const Endpoint& client, const Octets&) {
        socket.Send(client, Error(1, ""));
    });
    const Program::Result result = Fetch({"-o", "f", HostName(), "\x1B[31m\n\\"});
    EXPECT_EQ(result.status, 17);
    EXPECT_EQ(result.errors, Told("the server has no such file (error 1)", "\\x1b[31m\\n\\\\"));
    EXPECT_EQ(Fetch({"-t", "1\x1B", HostName(), "motd"}).errors,
              "tqfetch: 1\\x1b: not a number of seconds from 1 to 86400\n");
    EXPECT_EQ(Fetch({"-m", "\x1B", HostName(), "motd"}).errors,
              "tqfetch: \\x1b: no mode; there are octet and netascii\n");
    EXPECT_EQ(Fetch({HostName(), "\x1B/"}).errors,
              "tqfetch: \\x1b/: no name for a file here; use -o\n");
    EXPECT_EQ(Fetch({"-o", "\x1B/f", HostName(), "motd"}).errors,
              "tqfetch: \\x1b/f: No such file or directory\n");
}

TEST_F(Tqfetch, AServerThatBreaksTheProtocolHasItsStatus) {
    const Child server = Answer([](const UdpSocket& socket, const Endpoint& client, const Octets&) {
        socket.Send(client, Data(7, "what"));
    });
    const Program::Result result = Fetch({HostName(), "motd"});
    EXPECT_EQ(result.status, 20);
    EXPECT_EQ(result.errors, Told("the server broke the protocol, or says that the request is "
                                  "illegal (error 4)"));
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, ARequestThatCannotBeSentHasItsStatusAndReason) {
    const Program::Result result = Fetch({"-o", "f", HostName(), std::string(70000, 'n')});
    EXPECT_EQ(result.status, 9);
    EXPECT_EQ(result.errors, Told("the request could not be sent whole (Message too long)",
                                  std::string(70000, 'n')));
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, AMachineWithoutDescriptorsOrMemoryIsNoCrash) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    std::set<int> statuses;
    for (rlim_t limit = 3; limit <= 16; ++limit) {
        Program::Settings settings = InDirectory();
        settings.prepare = [limit] {
            const rlimit few = {limit, limit};
            setrlimit(RLIMIT_NOFILE, &few);
        };
        const Program::Result result = RunProgram(Built(TQFETCH, {HostName(), "motd"}), settings);
        statuses.insert(result.status);
        EXPECT_GE(result.status, 0);
    }
    // Emulators and sanitizers need descriptors themselves.
    if (!runsSlowly || IsOnDevice()) {
        EXPECT_EQ(statuses.count(6), 1u);
    }
    EXPECT_EQ(statuses.count(0), 1u);
    EXPECT_EQ(directory.Names(), Names({"motd"}));
}

TEST_F(Tqfetch, AMachineWithoutAFreePortHasItsStatus) {
    if (!HasOwnNetwork()) GTEST_SKIP() << "this takes a network of its own";
    const char* const range = "/proc/sys/net/ipv4/ip_local_port_range";
    const std::string before = ReadFile(range);
    if (access(range, W_OK) != 0) GTEST_SKIP() << range << " cannot be written";
    WriteFile(range, "40000 40000");
    {
        const UdpSocket occupied({0, 40000});
        const Program::Result result = Fetch({HostName(), "motd"});
        EXPECT_EQ(result.status, 7);
        EXPECT_EQ(result.errors,
                  Told("the socket could not be bound to a port (Address already in use)"));
    }
    WriteFile(range, before);
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, HostNamesAreResolved) {
    if (!HasOwnNetwork()) GTEST_SKIP() << "the server's address is 127.0.0.1";
    addrinfo* found = nullptr;
    const int error = getaddrinfo("localhost", nullptr, nullptr, &found);
    if (error != 0) GTEST_SKIP() << "no name to resolve here: " << gai_strerror(error);
    freeaddrinfo(found);
    WriteFile(served.Path("motd"), "hello");
    TftpServer::Settings settings;
    settings.directory = served.Path();
    TftpServer server(UdpSocket({INADDR_LOOPBACK, 69}), settings);
    const Child child([&server] {
        while (true) server.Serve(1000);
    });
    const Program::Result result = Fetch({"localhost", "motd"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(ReadFile(directory.Path("motd")), "hello");
}

TEST_F(Tqfetch, AnUnknownNameHasItsStatus) {
    if (!HasOwnNetwork()) GTEST_SKIP() << "nobody outside is to be asked";
    const Program::Result result = Fetch({"-t", "20", "no-such-host.invalid", "motd"});
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(Contains(result.errors, "tqfetch: no-such-host.invalid: motd: ")) << result.errors;
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, AnAddressOfAnotherProtocolIsNoName) {
    EXPECT_EQ(Fetch({"-t", "1", "::1", "motd"}).status, 3);
}

TEST_F(Tqfetch, ASilentNameServiceIsGivenUp) {
#ifdef TQ_THREAD_SANITIZED
    GTEST_SKIP() << "the thread sanitizer keeps signals until the name service has answered";
#endif
    if (!HasOwnNetwork()) GTEST_SKIP() << "nobody outside is to be asked";
    if (!Works(EnterOwnMounts)) GTEST_SKIP() << "no mount namespace of its own";
    const UdpSocket silent({INADDR_LOOPBACK, 53});
    const std::string configuration = served.Path("resolv.conf");
    WriteFile(configuration, "nameserver 127.0.0.1\noptions timeout:20\n");
    Program::Settings settings = InDirectory();
    settings.prepare = [&configuration] {
        const bool isMounted = EnterOwnMounts() && mount(configuration.c_str(), "/etc/resolv.conf",
                                                         nullptr, MS_BIND, nullptr) == 0;
        if (!isMounted) _exit(125);
    };
    const std::vector<std::string> words = {"-t", "1", "no-such-host.invalid", "motd"};
    const Program::Result result = RunProgram(Built(TQFETCH, words), settings);
    if (result.status == 125) GTEST_SKIP() << "no /etc/resolv.conf to cover";
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.errors,
              "tqfetch: no-such-host.invalid: motd: no answer from the name service\n");
    const std::vector<std::string> late = {"-T", "1", "no-such-host.invalid", "motd"};
    EXPECT_EQ(RunProgram(Built(TQFETCH, late), settings).status, 10);
}

TEST_F(Tqfetch, ClosedStandardDescriptorsDoNotMixWithTheFile) {
    const Child server = AnswerWithBlocks(1);
    const Child good = Serve(2);
    WriteFile(served.Path("motd"), "hello");
    Program::Settings settings = InDirectory();
    settings.prepare = [] {
        for (const int descriptor : {0, 1, 2}) close(descriptor);
    };
    EXPECT_EQ(RunProgram(Built(TQFETCH, {HostName(2), "motd"}), settings).status, 0);
    EXPECT_EQ(ReadFile(directory.Path("motd")), "hello");
    EXPECT_EQ(RunProgram(Built(TQFETCH, {"-o", "-", HostName(2), "motd"}), settings).status, 1);

    // Here there is something to say, and what has been written stays.
    ASSERT_EQ(mkfifo(directory.Path("pipe").c_str(), 0600), 0);
    const int pipe = open(directory.Path("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    settings.prepare = [] { close(STDERR_FILENO); };
    const std::vector<std::string> words = {"-t", Patience(), "-o", "pipe", HostName(1), "f"};
    EXPECT_EQ(RunProgram(Built(TQFETCH, words), settings).status, 4);
    char bytes[1024];
    EXPECT_EQ(read(pipe, bytes, sizeof bytes), 512);
    close(pipe);
}

TEST_F(Tqfetch, NothingThatIsOpenedTakesThePlaceOfAClosedStandardDescriptor) {
    if (runsSlowly) GTEST_SKIP() << "emulators have descriptors of their own";
    int halfWay = -1;
    const Child server = AnswerWithOneBlock(halfWay);
    Program::Settings settings = InDirectory();
    settings.prepare = [] {
        for (const int descriptor : {0, 1, 2}) close(descriptor);
    };
    Program program(Built(TQFETCH, {HostName(), "motd"}), settings);
    AwaitByte(halfWay);
    for (int descriptor = 0; descriptor < 10; ++descriptor) {
        const std::string link =
            "/proc/" + std::to_string(program.Id()) + "/fd/" + std::to_string(descriptor);
        char place[64] = {};
        const bool isOpen = readlink(link.c_str(), place, sizeof place - 1) > 0;
        EXPECT_EQ(isOpen && std::strcmp(place, "/dev/null") == 0, descriptor <= 2) << link;
    }
    program.Signal(SIGTERM);
    EXPECT_EQ(program.Finish().status, -SIGTERM);
}

// Silence and loss.

TEST_F(Tqfetch, ASilentServerIsGivenUp) {
    const Child server = Answer([](const UdpSocket&, const Endpoint&, const Octets&) {});
    const long long start = Now();
    const Program::Result result = Fetch({"-t", "1", HostName(), "motd"});
    EXPECT_GE(Now() - start, 900);
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "tqfetch: " + HostName() + ": motd: no new block for 1 second\n");
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, AServerThatFallsSilentIsGivenUp) {
    const Child server = AnswerWithBlocks(3);
    const Program::Result result = Fetch({"--timeout=2", HostName(), "motd"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.errors, Told("no new block for 2 seconds"));
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, RepeatsAndStrangersAreNoNewBlock) {
    const Child server = Answer([](const UdpSocket& socket, const Endpoint& client, const Octets&) {
        const UdpSocket stranger({Host(2), 0});
        while (true) {
            socket.Send(client, Data(1, Octets(512, 'x')));
            stranger.Send(client, Data(2, "evil"));
            usleep(20000);
        }
    });
    const Program::Result result = Fetch({"-t", "1", HostName(), "motd"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, EveryNewBlockRenewsThePatience) {
    // Longer in all than the time-out, but never at a stretch.
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            const unsigned int done =
                datagram[1] == 1 ? 0 : static_cast<unsigned char>(datagram[3]);
            usleep(600000);
            if (done < 6) socket.Send(client, Data(done + 1, Octets(done < 5 ? 512 : 0, 'x')));
        });
    EXPECT_EQ(Fetch({"-t", "3", HostName(), "motd"}).status, 0);
    EXPECT_EQ(ReadFile(directory.Path("motd")), Octets(5 * 512, 'x'));
}

TEST_F(Tqfetch, ASlowReaderOfTheFileIsNoSilence) {
    const std::string file = RandomBytes(300000, 7);
    WriteFile(served.Path("motd"), file);
    const Child server = Serve();
    Program program(Built(TQFETCH, {"-t", Patience(), "-o", "-", HostName(), "motd"}),
                    InDirectory());
    // The pipe takes less than the file: the tool waits for it to be read.
    sleep(static_cast<unsigned int>(Slowness()) + 1);
    const Program::Result result = program.Finish();
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(result.output == file);
}

// The signal that gets the receive moving must work even where the parent had it blocked or
// ignored.
TEST_F(Tqfetch, ABlockedAndIgnoredAlarmOfTheParentDoesNoHarm) {
    const Child server = Answer([](const UdpSocket&, const Endpoint&, const Octets&) {});
    Program::Settings settings = InDirectory();
    settings.prepare = [] {
        sigset_t alarm;
        sigemptyset(&alarm);
        sigaddset(&alarm, SIGALRM);
        sigprocmask(SIG_BLOCK, &alarm, nullptr);
        signal(SIGALRM, SIG_IGN);
    };
    EXPECT_EQ(RunProgram(Built(TQFETCH, {"-t", "1", HostName(), "motd"}), settings).status, 4);
}

TEST_F(Tqfetch, TheDeadlineEndsATransferThatGoesOn) {
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            const unsigned int done =
                datagram[1] == 1 ? 0 : static_cast<unsigned char>(datagram[3]);
            usleep(300000);
            socket.Send(client, Data(done + 1, Octets(512, 'x')));
        });
    const long long start = Now();
    const Program::Result result = Fetch({"-T", "2", HostName(), "motd"});
    EXPECT_GE(Now() - start, 1900);
    EXPECT_EQ(result.status, 10);
    EXPECT_EQ(result.errors, Told("not complete after 2 seconds"));
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, TheDeadlineEndsTheWaitForAReader) {
    ASSERT_EQ(mkfifo(directory.Path("pipe").c_str(), 0600), 0);
    const Program::Result result = Fetch({"--deadline=1", "-o", "pipe", HostName(), "motd"});
    EXPECT_EQ(result.status, 10);
    EXPECT_EQ(result.errors, Told("not complete after 1 second"));
}

TEST_F(Tqfetch, TheDeadlineWorksForWhoeverBlockedItsSignal) {
    const Child server = Answer([](const UdpSocket&, const Endpoint&, const Octets&) {});
    const auto prepare = [] {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_BLOCK, &all, nullptr);
    };
    EXPECT_EQ(FetchAfter(prepare, {"-T", "1", HostName(), "motd"}).status, 10);
}

TEST_F(Tqfetch, WhatIsDoneInTimeIsDone) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    EXPECT_EQ(Fetch({"-T", "86400", "-t", "86400", HostName(), "motd"}).status, 0);
    EXPECT_EQ(ReadFile(directory.Path("motd")), "hello");
}

TEST_F(Tqfetch, ADeadlineThatTheSystemCannotKeepIsAFailure) {
    const Program::Result result = FetchAfter(
        [] {
            const rlimit none = {0, 0};
            setrlimit(RLIMIT_SIGPENDING, &none);
        },
        {"-T", "5", HostName(), "motd"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "tqfetch: timer: Resource temporarily unavailable\n");
}

TEST_F(Tqfetch, AFullPipeForMessagesDoesNotKeepItFromGivingUp) {
    const Child server = Answer([](const UdpSocket&, const Endpoint&, const Octets&) {});
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const auto prepare = [&ends] {
        fcntl(ends[1], F_SETFL, O_NONBLOCK);
        while (write(ends[1], "x", 1) == 1) {
        }
        fcntl(ends[1], F_SETFL, 0);
        dup2(ends[1], STDERR_FILENO);
    };
    EXPECT_EQ(FetchAfter(prepare, {"-t", "1", HostName(), "motd"}).status, 4);
    EXPECT_EQ(FetchAfter([&ends] { dup2(ends[1], STDERR_FILENO); }, {"-T", "1", HostName(), "motd"})
                  .status,
              10);
    close(ends[0]);
    close(ends[1]);
}

TEST_F(Tqfetch, AFullTerminalDoesNotKeepItFromAnything) {
    if (!Program::MayHaveTerminal()) GTEST_SKIP() << "no pseudo-terminals here";
    const OwnTerminal terminal;
    terminal.Fill();
    const auto prepare = [&terminal] { terminal.TakeOutputs(); };
    WriteFile(served.Path("motd"), std::string(5000, 'x'));
    {
        const Child server = Serve();
        EXPECT_EQ(FetchAfter(prepare, {HostName(), "motd"}).status, 0);
    }
    int halfWay = -1;
    const Child server = AnswerWithOneBlock(halfWay);
    Program::Settings settings = InDirectory();
    settings.prepare = prepare;
    Program program(Built(TQFETCH, {HostName(), "other"}), settings);
    AwaitByte(halfWay);
    program.Signal(SIGTERM);
    EXPECT_EQ(program.Finish().status, -SIGTERM);
    EXPECT_EQ(FetchAfter(prepare, {"-t", "1", HostName(2), "other"}).status, 4);
}

TEST_F(Tqfetch, LostPacketsAreRecoveredTheVeryFirstRequestToo) {
    const std::string file = RandomBytes(3000, 3);
    WriteFile(served.Path("motd"), file);
    const Child server = Serve(3);

    // Host 1 never gets the first request. Host 2 does not answer the first acknowledgement of
    // block 1, so that one is lost as well.
    TftpProxy::Troubles troubles;
    troubles.firstLosses = 1;
    TftpProxy proxy(UdpSocket(RequestPort(1)), RequestPort(3), troubles, 1);
    const Child proxyChild([&proxy] {
        while (true) proxy.Serve(1000);
    });
    const UdpSocket deaf(RequestPort(2));
    const Child deafChild([&deaf] {
        Octets datagram;
        Endpoint client;
        for (int acknowledgements = 0;;) {
            if (!deaf.Receive(datagram, client, 1000)) continue;
            if (datagram[1] == 1) deaf.Send(client, Data(1, Octets(512, 'x')));
            if (datagram == Acknowledgement(1) && ++acknowledgements == 2) {
                deaf.Send(client, Data(2, "end"));
            }
        }
    });

    const long long start = Now();
    Program first(Built(TQFETCH, {HostName(1), "motd"}), InDirectory());
    Program second(Built(TQFETCH, {HostName(2), "other"}), InDirectory());
    EXPECT_EQ(first.Finish().status, 0);
    EXPECT_EQ(second.Finish().status, 0);
    EXPECT_GE(Now() - start, 3900);
    EXPECT_TRUE(ReadFile(directory.Path("motd")) == file);
    EXPECT_EQ(ReadFile(directory.Path("other")), Octets(512, 'x') + "end");
}

TEST_F(Tqfetch, AFileWithMoreBlocksThanNumbersIsCalledTooLarge) {
    if (runsSlowly) GTEST_SKIP() << "takes too long; the client's own test has as many blocks";
    const std::string tooLarge =
        "the file is larger than TFTP allows: 65,535 blocks of 512 bytes, the last one short "
        "(33,553,919 bytes)";
    {
        // Goes on with block 0.
        const Child server = AnswerWithBlocks(70000);
        const Program::Result result = Fetch({"-o", "f", HostName(), "huge"});
        EXPECT_EQ(result.status, 5);
        EXPECT_EQ(result.errors, Told(tooLarge, "huge"));
    }
    {
        // Does not go on.
        const Child server = AnswerWithBlocks(65535);
        const Program::Result result = Fetch({"-t", "3", HostName(), "huge"});
        EXPECT_EQ(result.status, 5);
        EXPECT_EQ(result.errors, Told(tooLarge, "huge"));
    }
    EXPECT_EQ(directory.Names(), Names());
}

class TqfetchTerminal : public Tqfetch {
protected:
    void SetUp() override {
        if (!Program::MayHaveTerminal()) GTEST_SKIP() << "no pseudo-terminals here";
        Tqfetch::SetUp();
    }

    Program::Settings OnTerminal() const {
        Program::Settings settings = InDirectory();
        settings.hasTerminal = true;
        return settings;
    }
};

TEST_F(TqfetchTerminal, ShowsProgress) {
    WriteFile(served.Path("motd"), RandomBytes(1048576, 4));
    const Child server = Serve();
    const Program::Result result = RunProgram(Built(TQFETCH, {HostName(), "motd"}), OnTerminal());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.find("\r0 bytes  0 B/s  0:00"), 0u) << result.output;
    const std::size_t last = result.output.find("\r1048576 bytes  ");
    ASSERT_NE(last, std::string::npos) << result.output;
    EXPECT_TRUE(Contains(result.output.substr(last), "B/s  0:")) << result.output;
    EXPECT_EQ(result.output.substr(result.output.size() - 2), "\r\n");
    EXPECT_FALSE(Contains(result.output, "select"));
}

TEST_F(TqfetchTerminal, ShowsProgressWithALimitToo) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    const std::vector<std::string> words = {"-T", "100", HostName(), "motd"};
    const Program::Result result = RunProgram(Built(TQFETCH, words), OnTerminal());
    EXPECT_EQ(result.output.find("\r0 bytes  0 B/s  0:00"), 0u) << result.output;
}

TEST_F(TqfetchTerminal, AWaitForTheReaderOfTheFileIsNoWaitForTheServer) {
    WriteFile(served.Path("motd"), RandomBytes(300000, 9));
    const Child server = Serve();
    ASSERT_EQ(mkfifo(directory.Path("pipe").c_str(), 0600), 0);
    const int reader = open(directory.Path("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const std::vector<std::string> words = {"-o", "pipe", HostName(), "motd"};
    Program program(Built(TQFETCH, words), OnTerminal());
    usleep(2500000);
    program.Signal(SIGTERM);
    const Program::Result result = program.Finish();
    EXPECT_EQ(result.status, -SIGTERM);
    EXPECT_FALSE(Contains(result.output, "waiting")) << result.output;
    close(reader);
}

TEST_F(TqfetchTerminal, ShowsNothingOnATerminalThatTakesTheFile) {
    if (AreDevicesInDanger()) GTEST_SKIP() << "no mount namespace of its own";
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    for (const char* target : {"-", "/dev/stdout", "/dev/tty"}) {
        if (target[0] == '/' && access(target, F_OK) != 0)
            GTEST_SKIP() << "no " << target << " here";
        const std::vector<std::string> words = {"-o", target, HostName(), "motd"};
        EXPECT_EQ(RunProgram(Built(TQFETCH, words), OnTerminal()).output, "hello") << target;
    }
}

TEST_F(TqfetchTerminal, ShowsNothingWhenAskedForQuietOrPiped) {
    WriteFile(served.Path("motd"), "hello");
    const Child server = Serve();
    Program::Settings terminal = OnTerminal();
    EXPECT_EQ(RunProgram(Built(TQFETCH, {"-q", HostName(), "motd"}), terminal).output, "");
    EXPECT_EQ(RunProgram(Built(TQFETCH, {"--quiet", HostName(), "motd"}), terminal).output, "");
    // Either output may be piped.
    Program::Settings piped = OnTerminal();
    piped.prepare = [] { dup2(open("out", O_WRONLY | O_CREAT | O_CLOEXEC, 0600), STDOUT_FILENO); };
    EXPECT_EQ(RunProgram(Built(TQFETCH, {HostName(), "motd"}), piped).output, "");
    EXPECT_EQ(ReadFile(directory.Path("out")), "");
    terminal.hasErrorPipe = true;
    const Program::Result result = RunProgram(Built(TQFETCH, {HostName(), "motd"}), terminal);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
}

TEST_F(TqfetchTerminal, AFailureStartsOnALineOfItsOwn) {
    const Child server = Answer([](const UdpSocket& socket, const Endpoint& client, const Octets&) {
        socket.Send(client, Error(1, ""));
    });
    const Program::Result result = RunProgram(Built(TQFETCH, {HostName(), "motd"}), OnTerminal());
    EXPECT_EQ(result.status, 17);
    EXPECT_EQ(result.output.substr(result.output.find('\n') - 1),
              "\r\ntqfetch: " + HostName() + ": motd: the server has no such file (error 1)\r\n");
}

TEST_F(TqfetchTerminal, ALocalFailureStartsOnALineOfItsOwn) {
    const Child server = AnswerWithBlocks(3);
    Program::Settings settings = OnTerminal();
    settings.prepare = [this] { LimitFiles(1000, served); };
    const Program::Result result = RunProgram(Built(TQFETCH, {HostName(), "motd"}), settings);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output.find("\r0 bytes  0 B/s  0:00"), 0u) << result.output;
    EXPECT_EQ(result.output.substr(result.output.find('\n') - 1),
              "\r\ntqfetch: motd: File too large\r\n");
}

TEST_F(TqfetchTerminal, SilenceIsToldOnALineOfItsOwn) {
    const Child server = AnswerWithBlocks(1);
    const std::vector<std::string> words = {"-t", "1", HostName(), "motd"};
    const Program::Result result = RunProgram(Built(TQFETCH, words), OnTerminal());
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.output.substr(result.output.find('\n') - 1),
              "\r\ntqfetch: " + HostName() + ": motd: no new block for 1 second\r\n");
}

TEST_F(TqfetchTerminal, AWaitIsShown) {
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            usleep(3500000);
            if (datagram[1] == 1) socket.Send(client, Data(1, "end"));
        });
    const Program::Result result = RunProgram(Built(TQFETCH, {HostName(), "motd"}), OnTerminal());
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(Contains(result.output, "\r0 bytes  0 B/s  0:0")) << result.output;
    EXPECT_TRUE(Contains(result.output, "  waiting ")) << result.output;
    const std::string last = result.output.substr(result.output.rfind("\r3 bytes  "));
    EXPECT_FALSE(Contains(last, "waiting")) << last;
}

TEST_F(TqfetchTerminal, ControlCEndsItCleanly) {
    int halfWay = -1;
    const Child server = AnswerWithOneBlock(halfWay);
    Program program(Built(TQFETCH, {HostName(), "motd"}), OnTerminal());
    AwaitByte(halfWay);
    program.Type("\x03");
    const Program::Result result = program.Finish();
    EXPECT_EQ(result.status, -SIGINT);
    EXPECT_EQ(result.output.substr(result.output.size() - 2), "\r\n") << result.output;
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, KilledHalfWayItLeavesNoFile) {
    for (const int number : {SIGTERM, SIGHUP, SIGQUIT, SIGINT, SIGKILL}) {
        int halfWay = -1;
        const Child server = AnswerWithOneBlock(halfWay);
        Program program(Built(TQFETCH, {HostName(), "motd"}), InDirectory());
        AwaitByte(halfWay);
        program.Signal(number);
        EXPECT_EQ(program.Finish().status, -number);
        const bool mayRemain = number == SIGKILL && !directory.Names().empty();
        if (mayRemain) GTEST_SKIP() << "no files without a name in " << directory.Path();
        EXPECT_EQ(directory.Names(), Names());
    }
}

TEST_F(Tqfetch, NoSignalThatEndsItLeavesAFileThatHasAName) {
    if (!Works(HideDescriptors)) GTEST_SKIP() << "no mount namespace of its own";
    std::vector<int> numbers = {SIGTERM, SIGINT,  SIGHUP,  SIGQUIT, SIGPIPE,   SIGUSR1,
                                SIGUSR2, SIGXFSZ, SIGXCPU, SIGABRT, SIGVTALRM, SIGPROF,
                                SIGIO,   SIGPWR,  SIGSYS,  SIGTRAP, SIGRTMIN,  SIGRTMIN + 1};
#ifdef SIGSTKFLT
    numbers.push_back(SIGSTKFLT);
#endif
    // Emulators and sanitizers have these to themselves.
    if (!runsSlowly) numbers.insert(numbers.end(), {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGRTMAX});
    for (const int number : numbers) {
        int halfWay = -1;
        const Child server = AnswerWithOneBlock(halfWay);
        Program::Settings settings = InDirectory();
        settings.prepare = [] {
            const rlimit none = {0, 0};
            setrlimit(RLIMIT_CORE, &none);
            HideDescriptors();
        };
        Program program(Built(TQFETCH, {HostName(), "motd"}), settings);
        AwaitByte(halfWay);
        EXPECT_EQ(directory.Names().size(), 1u) << number;
        program.Signal(number);
        EXPECT_EQ(program.Finish().status, -number);
        EXPECT_EQ(directory.Names(), Names()) << number;
    }
}

// Whether the process stands still comes to be so within a while.
bool StandsStill(pid_t process) {
    for (int i = 0; i < 1000; ++i) {
        const std::string state = ReadFile("/proc/" + std::to_string(process) + "/stat");
        if (state.find(") T ") != std::string::npos) return true;
        usleep(10000);
    }
    return false;
}

TEST_F(Tqfetch, ASignalThatEndsItIsNotInterruptedByAnother) {
    if (runsSlowly)
        GTEST_SKIP() << "emulators and sanitizers have an order of signals of their own";
    int halfWay = -1;
    const Child server = AnswerWithOneBlock(halfWay);
    Program program(Built(TQFETCH, {HostName(), "motd"}), InDirectory());
    AwaitByte(halfWay);
    program.Signal(SIGSTOP);
    ASSERT_TRUE(StandsStill(program.Id()));
    for (const int number : {SIGTERM, SIGHUP, SIGCONT}) program.Signal(number);
    EXPECT_EQ(program.Finish().status, -SIGHUP);
}

TEST_F(Tqfetch, TheDeadlineIsNotInterruptedByAnotherSignal) {
    if (runsSlowly)
        GTEST_SKIP() << "emulators and sanitizers have an order of signals of their own";
    int halfWay = -1;
    const Child server = AnswerWithOneBlock(halfWay);
    Program program(Built(TQFETCH, {"-T", "1", HostName(), "motd"}), InDirectory());
    AwaitByte(halfWay);
    program.Signal(SIGSTOP);
    ASSERT_TRUE(StandsStill(program.Id()));
    usleep(1200000);
    for (const int number : {SIGRTMIN + 1, SIGCONT}) program.Signal(number);
    EXPECT_EQ(program.Finish().status, 10);
}

TEST_F(Tqfetch, AFileThatHasANameGoesWhenThePatienceEnds) {
    if (!Works(HideDescriptors)) GTEST_SKIP() << "no mount namespace of its own";
    const Child server = AnswerWithBlocks(1);
    const auto prepare = [] { HideDescriptors(); };
    EXPECT_EQ(FetchAfter(prepare, {"-t", "1", HostName(), "motd"}).status, 4);
    EXPECT_EQ(directory.Names(), Names());
    EXPECT_EQ(FetchAfter(prepare, {"-T", "1", HostName(), "motd"}).status, 10);
    EXPECT_EQ(directory.Names(), Names());
}

TEST_F(Tqfetch, SignalsThatEndNothingLeaveTheTemporaryFileToo) {
    if (!Works(HideDescriptors)) GTEST_SKIP() << "no mount namespace of its own";
    for (const int number : {SIGCHLD, SIGURG, SIGWINCH, SIGALRM, SIGTSTP, SIGTTIN, SIGTTOU}) {
        int halfWay = -1;
        const Child server = AnswerWithOneBlock(halfWay, "end");
        Program::Settings settings = InDirectory();
        settings.prepare = [] { HideDescriptors(); };
        Program program(Built(TQFETCH, {HostName(), "motd"}), settings);
        AwaitByte(halfWay);
        program.Signal(number);
        program.Signal(SIGCONT);
        EXPECT_EQ(program.Finish().status, 0) << number;
        EXPECT_EQ(ReadFile(directory.Path("motd")), Octets(512, 'x') + "end");
    }
}

TEST_F(Tqfetch, ASocketThatTheClientCannotUseHasNoReasonOfTheSystems) {
    rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_max < FD_SETSIZE + 64) GTEST_SKIP() << "not enough descriptors here";
    const auto prepare = [&limit] {
        const rlimit many = {FD_SETSIZE + 64, limit.rlim_max};
        setrlimit(RLIMIT_NOFILE, &many);
        for (int descriptor = 3; descriptor < FD_SETSIZE; ++descriptor) dup2(0, descriptor);
    };
    const Program::Result result = FetchAfter(prepare, {HostName(), "motd"});
    EXPECT_EQ(result.status, 6);
    EXPECT_EQ(result.errors, Told("the socket could not be created"));
}

TEST_F(Tqfetch, AHangupThatTheParentIgnoredStaysIgnored) {
    int halfWay = -1;
    const Child server = AnswerWithOneBlock(halfWay);
    Program::Settings settings = InDirectory();
    settings.prepare = [] { signal(SIGHUP, SIG_IGN); };
    Program program(Built(TQFETCH, {"-t", "2", HostName(), "motd"}), settings);
    AwaitByte(halfWay);
    program.Signal(SIGHUP);
    EXPECT_EQ(program.Finish().status, 4);
}

// The command line.

TEST_F(Tqfetch, AWrongCommandLineIsToldToStandardError) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"server"},
        {"server", "file", "more"},
        {"-m", "mail", "server", "file"},
        {"-t", "0", "server", "file"},
        {"-t", "-1", "server", "file"},
        {"-t", "1x", "server", "file"},
        {"-t", "", "server", "file"},
        {"-t", "86401", "server", "file"},
        {"-t", "99999999999999999999", "server", "file"},
        {"-t", "4294967297", "server", "file"},
        {"-T", "0", "server", "file"},
        {"-T", "86401", "server", "file"},
        {"-T", "soon", "server", "file"},
        {"-o", "", "server", "file"},
        {"--output=", "server", "file"},
        {"-x", "server", "file"},
        {"--no-such-option", "server", "file"},
        {"-o"},
        {"server", "folder/"},
        {"server", ""},
        {"server", "."},
        {"server", ".."},
        {"server", "-"},
        {"server", "folder/-"},
    };
    for (const std::vector<std::string>& words : wrong) {
        const Program::Result result = Fetch(words);
        EXPECT_EQ(result.status, 2) << testing::PrintToString(words);
        EXPECT_EQ(result.output, "") << testing::PrintToString(words);
        EXPECT_NE(result.errors, "") << testing::PrintToString(words);
    }
    EXPECT_EQ(directory.Names(), Names());
}

const char usage[] =
    "usage: tqfetch [-m octet|netascii] [-o FILE|-] [-t SECONDS] [-T SECONDS] [-q]\n"
    "               SERVER FILE\n";

TEST_F(Tqfetch, AWrongCommandLineIsToldWhatIsWrong) {
    const std::string tryHelp = usage + std::string("Try 'tqfetch --help'.\n");
    EXPECT_EQ(Fetch({}).errors, tryHelp);
    EXPECT_EQ(Fetch({"server"}).errors, tryHelp);
    EXPECT_EQ(Fetch({"server", "file", "more"}).errors, tryHelp);
    EXPECT_TRUE(Contains(Fetch({"-x", "server", "file"}).errors, "'x'\n" + tryHelp));
    const std::string noTime = "not a number of seconds from 1 to 86400\n";
    EXPECT_EQ(Fetch({"-t", "0", "server", "file"}).errors, "tqfetch: 0: " + noTime);
    EXPECT_EQ(Fetch({"-T", "86401", "server", "file"}).errors, "tqfetch: 86401: " + noTime);
    EXPECT_EQ(Fetch({"-m", "mail", "server", "file"}).errors,
              "tqfetch: mail: no mode; there are octet and netascii\n");
    EXPECT_EQ(Fetch({"-o", "", "server", "file"}).errors,
              "tqfetch: -o: the name of a file is missing\n");
    EXPECT_EQ(Fetch({"server", "folder/"}).errors,
              "tqfetch: folder/: no name for a file here; use -o\n");
    // Without a letter every long option is meant.
    EXPECT_TRUE(Contains(Fetch({"--=1", "server", "file"}).errors,
                         "possibilities: '--mode' '--output' '--timeout' '--deadline' '--quiet' "
                         "'--help' '--version'\n" +
                             tryHelp));
}

TEST_F(Tqfetch, HelpIsAText) {
    const Program::Result help = Fetch({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.errors, "");
    EXPECT_EQ(
        help.output,
        usage +
            std::string(
                "Fetches FILE from the TFTP server SERVER, a host name or an IPv4 address.\n"
                "\n"
                "  -m, --mode=octet|netascii  how the file comes: as it is (the default), or as\n"
                "                             text whose lines are ended as on this system\n"
                "  -o, --output=FILE          where it goes: another file than the one of the "
                "same\n"
                "                             name in this directory, or - for standard output\n"
                "  -t, --timeout=SECONDS      give up after so long without a new block; 30\n"
                "  -T, --deadline=SECONDS     give up when all is not done after so long\n"
                "  -q, --quiet                show no progress on a terminal\n"
                "  -h, --help                 print this\n"
                "  -V, --version              print the version\n"));
    EXPECT_EQ(Fetch({"-h"}).output, help.output);
}

TEST_F(Tqfetch, TellsItsVersion) {
    for (const char* word : {"-V", "--version"}) {
        const Program::Result result = Fetch({word});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, "tqfetch " TQFETCH_VERSION "\n");
        EXPECT_EQ(result.errors, "");
    }
}

TEST_F(Tqfetch, WhatCannotBePrintedIsAFailure) {
    for (const char* word : {"--help", "--version"}) {
        EXPECT_EQ(FetchAfter([] { close(STDOUT_FILENO); }, {word}).status, 1);
    }
}

TEST_F(Tqfetch, TheManualTellsOfEveryOptionAndStatus) {
    std::string manual = ReadFile(TQFETCH_MANUAL);
    manual.erase(std::remove(manual.begin(), manual.end(), '\\'), manual.end());
    for (const char* option : {"-m \", \" --mode=", "-o \", \" --output=", "-t \", \" --timeout=",
                               "-T \", \" --deadline=", "-q \", \" --quiet", "-h \", \" --help",
                               "-V \", \" --version"}) {
        EXPECT_TRUE(Contains(manual, option)) << option;
    }
    for (const int status :
         {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 16, 17, 18, 19, 20, 21, 22, 23, 24}) {
        EXPECT_TRUE(Contains(manual, ".B " + std::to_string(status) + "\n")) << status;
    }
}

// Modes, and real servers.

TEST_F(Tqfetch, TheModeIsTheOneAskedForAndOctetWithoutASking) {
    const Child server =
        Answer([](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            // The file that it sends is the request.
            if (datagram[1] == 1) socket.Send(client, Data(1, datagram.substr(2)));
        });
    EXPECT_EQ(Fetch({"-o", "-", HostName(), "f"}).output, std::string("f\0octet\0", 8));
    EXPECT_EQ(Fetch({"-o", "-", "-m", "octet", HostName(), "f"}).output,
              std::string("f\0octet\0", 8));
    EXPECT_EQ(Fetch({"-o", "-", "--mode=netascii", HostName(), "f"}).output,
              std::string("f\0netascii\0", 11));
    EXPECT_EQ(Fetch({"-o", "-", "-m", "NetASCII", HostName(), "f"}).output,
              std::string("f\0netascii\0", 11));
}

TEST_F(Tqfetch, OnlyTextIsConverted) {
    const std::string text = "line\r\nline\r\n\r";
    const Child server =
        Answer([&text](const UdpSocket& socket, const Endpoint& client, const Octets& datagram) {
            if (datagram[1] == 1) socket.Send(client, Data(1, text));
        });
    EXPECT_EQ(Fetch({"-o", "-", HostName(), "f"}).output, text);
    EXPECT_EQ(Fetch({"-o", "-", "-m", "netascii", HostName(), "f"}).output, "line\nline\n\r");
}

class TqfetchServers : public Tqfetch, public testing::WithParamInterface<RealServer::Program> {
protected:
    void SetUp() override {
        Tqfetch::SetUp();
        if (IsSkipped()) return;
        const std::string problem = RealServer::Problem(GetParam());
        if (!problem.empty()) GTEST_SKIP() << problem;
    }
};

TEST_P(TqfetchServers, FilesOfEverySizeComeByteForByte) {
    const RealServer server(GetParam(), served.Path());
    for (const std::size_t length : {0u, 1u, 511u, 512u, 513u, 65536u, 1048576u}) {
        const std::string file = RandomBytes(length, static_cast<unsigned int>(length));
        const std::string name = std::to_string(length);
        WriteFile(served.Path(name), file);
        EXPECT_EQ(Fetch({HostName(), name}).status, 0) << length;
        EXPECT_TRUE(ReadFile(directory.Path(name)) == file) << length;
    }
}

TEST_P(TqfetchServers, TheLargestFileComesByteForByte) {
    if (runsSlowly) GTEST_SKIP() << "takes too long; the client's own test reads such a file";
    const RealServer server(GetParam(), served.Path());
    const std::string file = RandomBytes(65535 * 512 - 1, 1);
    WriteFile(served.Path("largest"), file);
    EXPECT_EQ(Fetch({HostName(), "largest"}).status, 0);
    EXPECT_TRUE(ReadFile(directory.Path("largest")) == file);
}

TEST_P(TqfetchServers, FilesThatAreMissingOrSecretHaveTheirStatus) {
    const RealServer server(GetParam(), served.Path());
    EXPECT_EQ(Fetch({HostName(), "missing"}).status, 17);
    WriteFile(served.Path("secret"), "secret");
    ASSERT_EQ(chmod(served.Path("secret").c_str(), 0600), 0);
    EXPECT_EQ(Fetch({HostName(), "secret"}).status, 18);
    EXPECT_EQ(directory.Names(), Names());
}

TEST_P(TqfetchServers, TextComesWithTheSystemsLines) {
    const RealServer server(GetParam(), served.Path());
    const std::string text = std::string(511, 'x') + "\nline\n\n\nend\n" + std::string(600, '\n');
    WriteFile(served.Path("text"), text);
    EXPECT_EQ(Fetch({"-m", "netascii", HostName(), "text"}).status, 0);
    EXPECT_EQ(ReadFile(directory.Path("text")), text);
}

std::string NameOf(const testing::TestParamInfo<RealServer::Program>& program) {
    return program.param == RealServer::tftpdHpa ? "tftpd_hpa" : "dnsmasq";
}

INSTANTIATE_TEST_SUITE_P(, TqfetchServers,
                         testing::Values(RealServer::tftpdHpa, RealServer::dnsmasq), NameOf);

#endif

}  // namespace
