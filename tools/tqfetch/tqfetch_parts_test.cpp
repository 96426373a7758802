// The parts of the tool tqfetch.

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <system_error>

#include "Child.h"
#include "Files.h"
#include "Message.h"
#include "Mounts.h"
#include "Netascii.h"
#include "Outcome.h"
#include "Progress.h"
#include "SystemCalls.h"
#include "TargetFile.h"
#include "TqDownload.h"

namespace {

using Names = std::vector<std::string>;

std::string Decoded(const std::vector<std::string>& blocks) {
    NetasciiDecoder decoder;
    std::string text;
    for (const std::string& block : blocks) {
        text += decoder.Decode(reinterpret_cast<const unsigned char*>(block.data()), block.size());
    }
    return text + decoder.End();
}

TEST(Netascii, LinesEndWithTheSystemsLineFeed) {
    EXPECT_EQ(Decoded({"one\r\ntwo\r\n"}), "one\ntwo\n");
    EXPECT_EQ(Decoded({std::string("a\r\0b", 4)}), "a\rb");
    EXPECT_EQ(Decoded({"a\nb"}), "a\nb");
    EXPECT_EQ(Decoded({std::string("a\0b", 3)}), std::string("a\0b", 3));
    EXPECT_EQ(Decoded({""}), "");
}

TEST(Netascii, AReturnMayEndABlock) {
    EXPECT_EQ(Decoded({"one\r", "\ntwo"}), "one\ntwo");
    EXPECT_EQ(Decoded({"one\r", std::string("\0two", 4)}), "one\rtwo");
    EXPECT_EQ(Decoded({"one\r", "", "\n"}), "one\n");
}

TEST(Netascii, AReturnBeforeAnythingElseStays) {
    EXPECT_EQ(Decoded({"a\rb"}), "a\rb");
    EXPECT_EQ(Decoded({"a\r\r\nb"}), "a\r\nb");
    EXPECT_EQ(Decoded({"a\r"}), "a\r");
}

TEST(Netascii, WhatWasHeldBackComesOnce) {
    NetasciiDecoder decoder;
    EXPECT_EQ(decoder.Decode(reinterpret_cast<const unsigned char*>("a\r"), 2), "a");
    EXPECT_EQ(decoder.End(), "\r");
    EXPECT_EQ(decoder.End(), "");
}

// Messages.

TEST(TqfetchMessage, PlainTextIsShownAsItIs) {
    EXPECT_EQ(Shown(""), "");
    EXPECT_EQ(Shown(" motd-1.2/~"), " motd-1.2/~");
    EXPECT_EQ(Shown("Gr\xC3\xBC\xC3\x9F"
                    "e \xE2\x82\xAC \xF0\x9F\x98\x80"),
              "Gr\xC3\xBC\xC3\x9F"
              "e \xE2\x82\xAC \xF0\x9F\x98\x80");
    EXPECT_EQ(Shown("\xC2\xA0\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"),
              "\xC2\xA0\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(TqfetchMessage, ControlCharactersAreEscaped) {
    EXPECT_EQ(Shown("a\nb\rc\td\\e"), "a\\nb\\rc\\td\\\\e");
    EXPECT_EQ(Shown(std::string("\0\x01\x1B[31m\x1F\x7F", 9)), "\\x00\\x01\\x1b[31m\\x1f\\x7f");
    EXPECT_EQ(Shown("\xC2\x80\xC2\x9B\xC2\x9F"), "\\xc2\\x80\\xc2\\x9b\\xc2\\x9f");
}

TEST(TqfetchMessage, WhatIsNoUtf8IsEscaped) {
    EXPECT_EQ(Shown("\x9B"
                    "1m"),
              "\\x9b1m");
    EXPECT_EQ(Shown("\xBF\xC0\x80\xC1\xBF"), "\\xbf\\xc0\\x80\\xc1\\xbf");
    EXPECT_EQ(Shown("\xE0\x9F\xBF\xF0\x8F\xBF\xBF"), "\\xe0\\x9f\\xbf\\xf0\\x8f\\xbf\\xbf");
    EXPECT_EQ(Shown("\xF5\x80\x80\x80\xFF"), "\\xf5\\x80\\x80\\x80\\xff");
    EXPECT_EQ(Shown("\xC3(\xE2\x82(\xE2(\xAC"), "\\xc3(\\xe2\\x82(\\xe2(\\xac");
    EXPECT_EQ(Shown("\xC3"), "\\xc3");
    EXPECT_EQ(Shown("\xE2\x82"), "\\xe2\\x82");
    EXPECT_EQ(Shown("\xF0\x9F\x98"), "\\xf0\\x9f\\x98");
}

// A pipe in the place of standard error while it lives.
class ErrorPipe {
public:
    ErrorPipe() : before(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3)) {
        EXPECT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
        dup2(ends[1], STDERR_FILENO);
    }
    ~ErrorPipe() {
        dup2(before, STDERR_FILENO);
        for (const int descriptor : {before, ends[0], ends[1]}) close(descriptor);
    }

    // Until nothing more fits; after that it blocks, as it does for others.
    std::size_t Fill() {
        std::size_t count = 0;
        while (write(ends[1], "x", 1) == 1) ++count;
        fcntl(ends[1], F_SETFL, 0);
        return count;
    }

    std::string Take() {
        std::string text(1 << 20, '\0');
        const ssize_t count = read(ends[0], &text[0], text.size());
        return text.substr(0, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }

private:
    const int before;
    int ends[2];
};

TEST(TqfetchMessage, IsWrittenWhole) {
    ErrorPipe errors;
    WriteWithin(0, "", 0);
    EXPECT_EQ(errors.Take(), "");
    const std::string text = RandomBytes(10000, 8);
    WriteWithin(0, text.data(), text.size());
    EXPECT_TRUE(errors.Take() == text);
}

TEST(TqfetchMessage, IsWrittenWholeWhereASingleByteIsTakenAtATime) {
    ErrorPipe errors;
    systemCalls.write = [](int descriptor, const void* bytes, std::size_t) {
        return write(descriptor, bytes, 1);
    };
    WriteWithin(0, "text", 4);
    systemCalls = SystemCalls();
    EXPECT_EQ(errors.Take(), "text");
}

TEST(TqfetchMessage, IsLostWhereNobodyTakesIt) {
    ErrorPipe errors;
    const std::size_t full = errors.Fill();
    alarm(60);
    WriteWithin(0, "lost", 4);
    WriteWithin(10, "lost", 4);
    EXPECT_EQ(errors.Take(), std::string(full, 'x'));
    const std::string text(full + 1, 'y');
    WriteWithin(0, text.data(), text.size());
    alarm(0);
    const std::string taken = errors.Take();
    EXPECT_EQ(taken, text.substr(0, taken.size()));
    EXPECT_GE(taken.size(), 4096u);
}

TEST(TqfetchMessage, WaitsForWhoTakesItSoon) {
    ErrorPipe errors;
    const std::size_t full = errors.Fill();
    const Child reader([&errors, full] {
        poll(nullptr, 0, 200);
        _exit(errors.Take().size() == full ? 0 : 1);
    });
    WriteWithin(60000, "kept", 4);
    EXPECT_EQ(errors.Take(), "kept");
}

// How it ends.

void ExpectOutcome(const Outcome& outcome, int status, const char* sentence) {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.sentence, sentence);
}

TEST(TqfetchOutcome, EveryFailureOfThisMachineHasItsStatusAndSentence) {
    ExpectOutcome(OutcomeOf(0), 0, "");
    ExpectOutcome(OutcomeOf(0x800), 6, "the socket could not be created");
    ExpectOutcome(OutcomeOf(0x802), 8, "there is no memory for the request");
    ExpectOutcome(OutcomeOf(0x803), 9, "the request could not be sent whole");
    ExpectOutcome(OutcomeOf(0xFFFFFFFFu), 7, "the socket could not be bound to a port");
    ExpectOutcome(OutcomeOf(0x810 + 0x10000), 7, "the socket could not be bound to a port");
}

TEST(TqfetchOutcome, EveryErrorOfTheServerHasItsStatusAndSentence) {
    ExpectOutcome(OutcomeOf(0x810), 16, "the server reports an error without a number (error 0)");
    ExpectOutcome(OutcomeOf(0x811), 17, "the server has no such file (error 1)");
    ExpectOutcome(OutcomeOf(0x812), 18, "the server does not give access to the file (error 2)");
    ExpectOutcome(OutcomeOf(0x813), 19, "the server's disk is full (error 3)");
    ExpectOutcome(OutcomeOf(0x814), 20,
                  "the server broke the protocol, or says that the request is illegal (error 4)");
    ExpectOutcome(OutcomeOf(0x815), 21, "the server does not know this transfer (error 5)");
    ExpectOutcome(OutcomeOf(0x816), 22, "the server says that the file exists already (error 6)");
    ExpectOutcome(OutcomeOf(0x817), 23, "the server does not know the user (error 7)");
    ExpectOutcome(OutcomeOf(0x818), 24, "the server reports an error of its own (error 8)");
    ExpectOutcome(OutcomeOf(0x810 + 0xFFFF), 24,
                  "the server reports an error of its own (error 65535)");
}

TEST(TqfetchOutcome, TheServersWordsStandBesideItsCode) {
    ExpectOutcome(OutcomeOf(0x811, "File not found"), 17,
                  "the server has no such file (error 1: File not found)");
    ExpectOutcome(OutcomeOf(0x810 + 700, "too late"), 24,
                  "the server reports an error of its own (error 700: too late)");
}

TEST(TqfetchOutcome, WhatTookTooLongOrIsTooLargeSaysSo) {
    ExpectOutcome(OutcomeOf(TqDownload::silent, "", 1), 4, "no new block for 1 second");
    ExpectOutcome(OutcomeOf(TqDownload::silent, "", 2), 4, "no new block for 2 seconds");
    ExpectOutcome(OutcomeOf(TqDownload::late, "", 1), 10, "not complete after 1 second");
    ExpectOutcome(OutcomeOf(TqDownload::late, "", 86400), 10, "not complete after 86400 seconds");
    ExpectOutcome(OutcomeOf(TqDownload::tooLarge), 5,
                  "the file is larger than TFTP allows: 65,535 blocks of 512 bytes, the last one "
                  "short (33,553,919 bytes)");
}

// Progress.

std::string Line(unsigned long long bytes, unsigned long long sinceStart,
                 unsigned long long sinceNews = 0, std::size_t least = 0) {
    const ProgressLine line(bytes, sinceStart, sinceNews, least);
    return std::string(line.Text(), line.Length());
}

TEST(TqfetchProgress, RatesHaveTheirUnits) {
    EXPECT_EQ(Line(0, 0), "\r0 bytes  0 B/s  0:00");
    EXPECT_EQ(Line(512, 0), "\r512 bytes  0 B/s  0:00");
    EXPECT_EQ(Line(5, 1), "\r5 bytes  5.0 kB/s  0:00");
    EXPECT_EQ(Line(999, 1000), "\r999 bytes  999 B/s  0:01");
    EXPECT_EQ(Line(1000, 1000), "\r1000 bytes  1.0 kB/s  0:01");
    EXPECT_EQ(Line(1049, 1000), "\r1049 bytes  1.0 kB/s  0:01");
    EXPECT_EQ(Line(1050, 1000), "\r1050 bytes  1.1 kB/s  0:01");
    EXPECT_EQ(Line(61700, 1000), "\r61700 bytes  61.7 kB/s  0:01");
    EXPECT_EQ(Line(999949, 1000), "\r999949 bytes  999.9 kB/s  0:01");
    EXPECT_EQ(Line(999950, 1000), "\r999950 bytes  1.0 MB/s  0:01");
    EXPECT_EQ(Line(1049999, 1000), "\r1049999 bytes  1.0 MB/s  0:01");
    EXPECT_EQ(Line(1050000, 1000), "\r1050000 bytes  1.1 MB/s  0:01");
    EXPECT_EQ(Line(33553919, 2000), "\r33553919 bytes  16.8 MB/s  0:02");
    EXPECT_EQ(Line(33553919, 100), "\r33553919 bytes  335.5 MB/s  0:00");
}

TEST(TqfetchProgress, TimesHaveMinutes) {
    EXPECT_EQ(Line(0, 999), "\r0 bytes  0 B/s  0:00");
    EXPECT_EQ(Line(0, 9999), "\r0 bytes  0 B/s  0:09");
    EXPECT_EQ(Line(0, 10000), "\r0 bytes  0 B/s  0:10");
    EXPECT_EQ(Line(0, 59999), "\r0 bytes  0 B/s  0:59");
    EXPECT_EQ(Line(0, 60000), "\r0 bytes  0 B/s  1:00");
    EXPECT_EQ(Line(0, 754000), "\r0 bytes  0 B/s  12:34");
    EXPECT_EQ(Line(0, 86400000), "\r0 bytes  0 B/s  1440:00");
}

TEST(TqfetchProgress, AWaitIsShownFromASecondOn) {
    EXPECT_EQ(Line(512, 2000, 999), "\r512 bytes  256 B/s  0:02");
    EXPECT_EQ(Line(512, 2000, 1000), "\r512 bytes  256 B/s  0:02  waiting 1 s");
    EXPECT_EQ(Line(512, 2000, 1999), "\r512 bytes  256 B/s  0:02  waiting 1 s");
    EXPECT_EQ(Line(0, 75000, 75000), "\r0 bytes  0 B/s  1:15  waiting 75 s");
}

TEST(TqfetchProgress, NothingRemainsOfALongerLine) {
    EXPECT_EQ(Line(0, 0, 0, 21), "\r0 bytes  0 B/s  0:00");
    EXPECT_EQ(Line(0, 0, 0, 24), "\r0 bytes  0 B/s  0:00   ");
}

TEST(TqfetchProgress, TheLargestNumbersFit) {
    const unsigned long long most = ~0ull;
    EXPECT_EQ(
        Line(most, most, most),
        "\r18446744073709551615 bytes  0 B/s  307445734561825:51  waiting 18446744073709551 s");
}

// With a clock that stands still except where the test lets it pass.
class TqfetchProgressLine : public testing::Test {
protected:
    void SetUp() override {
        systemCalls.clock_gettime = [this] { return now; };
    }
    void TearDown() override { systemCalls = SystemCalls(); }

    void Pass(int milliseconds) {
        const long nanoseconds = now.tv_nsec + milliseconds % 1000 * 1000000L;
        now.tv_sec += milliseconds / 1000 + nanoseconds / 1000000000L;
        now.tv_nsec = nanoseconds % 1000000000L;
    }

    timespec now = {1000, 900000000};
    ErrorPipe errors;
};

TEST_F(TqfetchProgressLine, IsDrawnAgainAfterATenthOfASecond) {
    Progress progress(true);
    EXPECT_EQ(errors.Take(), "\r0 bytes  0 B/s  0:00");
    Pass(99);
    progress.Update(512);
    EXPECT_EQ(errors.Take(), "");
    Pass(1);
    progress.Update(1024);
    EXPECT_EQ(errors.Take(), "\r1024 bytes  10.2 kB/s  0:00");
    Pass(99);
    progress.Update(1536);
    EXPECT_EQ(errors.Take(), "");
    Pass(60001);
    progress.Update(2048);
    EXPECT_EQ(errors.Take(), "\r2048 bytes  34 B/s  1:00   ");
    Pass(1);
    progress.Update(2050);
    progress.End();
    EXPECT_EQ(errors.Take(), "\r2050 bytes  34 B/s  1:00   \n");
    progress.End();
    EXPECT_EQ(errors.Take(), "");
}

TEST_F(TqfetchProgressLine, TellsEverySecondOfAWait) {
    Progress progress(true);
    Pass(500);
    progress.Update(512);
    errors.Take();
    Pass(999);
    progress.ShowWaiting();
    EXPECT_EQ(errors.Take(), "");
    Pass(1);
    progress.ShowWaiting();
    EXPECT_EQ(errors.Take(), "\r512 bytes  341 B/s  0:01  waiting 1 s");
    Pass(999);
    progress.ShowWaiting();
    EXPECT_EQ(errors.Take(), "");
    Pass(1);
    progress.ShowWaiting();
    EXPECT_EQ(errors.Take(), "\r512 bytes  204 B/s  0:02  waiting 2 s");
    Pass(100);
    progress.Update(1024);
    EXPECT_EQ(errors.Take(), "\r1024 bytes  393 B/s  0:02            ");
    Pass(999);
    progress.ShowWaiting();
    EXPECT_EQ(errors.Take(), "");
    Pass(50);
    progress.ShowWaiting();
    EXPECT_EQ(errors.Take(), "\r1024 bytes  280 B/s  0:03  waiting 1 s");
}

TEST_F(TqfetchProgressLine, EndsOnce) {
    {
        Progress progress(true);
        EXPECT_EQ(errors.Take(), "\r0 bytes  0 B/s  0:00");
        Progress::EndLine();
        EXPECT_EQ(errors.Take(), "\n");
        Progress::EndLine();
        Pass(5000);
        progress.ShowWaiting();
        progress.End();
    }
    EXPECT_EQ(errors.Take(), "");
    { Progress progress(true); }
    EXPECT_EQ(errors.Take(), "\r0 bytes  0 B/s  0:00\n");
}

TEST_F(TqfetchProgressLine, ShowsNothingUnlessItIsToBeShown) {
    {
        Progress progress(false);
        Pass(5000);
        progress.ShowWaiting();
        progress.Update(512);
        Pass(5000);
        progress.ShowWaiting();
        progress.End();
    }
    EXPECT_EQ(errors.Take(), "");
}

// The target.

class TqfetchTarget : public testing::Test {
protected:
    void TearDown() override { systemCalls = SystemCalls(); }

    Names NamesNow() const { return directory.Names(); }

    static struct stat StatusOf(const std::string& file) {
        struct stat status = {};
        EXPECT_EQ(lstat(file.c_str(), &status), 0) << file;
        return status;
    }

    static unsigned int ModeOf(const std::string& file) { return StatusOf(file).st_mode & 07777; }

    static void Fetch(const std::string& file, const std::string& text) {
        TargetFile target(file);
        target.Write(text.data(), text.size());
        target.Complete();
    }

    bool HasNamelessFiles() const {
        const int file = open(directory.Path().c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
        if (file >= 0) close(file);
        return file >= 0;
    }

    // What goes wrong, "" for nothing.
    static std::string ProblemOf(const std::string& file, const std::string& text = "new") {
        try {
            Fetch(file, text);
            return std::string();
        } catch (const std::system_error& problem) {
            return problem.what();
        }
    }

    // Whether the function returns true in a process of its own.
    static bool IsTrueInChild(const std::function<bool()>& function) {
        Child child([&function] { _exit(function() ? 0 : 1); });
        int status = 1;
        return child.Wait(60000, status) && status == 0;
    }

    const TemporaryDirectory directory;
    const std::string path = directory.Path("file");
};

TEST_F(TqfetchTarget, AFileIsThereOnceItIsCompleteAndHasNoNameBefore) {
    {
        TargetFile target(path);
        EXPECT_FALSE(target.IsTerminal());
        target.Write("text", 4);
        const Names names = NamesNow();
        EXPECT_EQ(std::count(names.begin(), names.end(), "file"), 0);
        EXPECT_EQ(names.empty(), HasNamelessFiles());
        target.Complete();
    }
    EXPECT_EQ(NamesNow(), Names({"file"}));
    EXPECT_EQ(ReadFile(path), "text");
}

TEST_F(TqfetchTarget, AnIncompleteFileLeavesNothing) {
    WriteFile(path, "old");
    { TargetFile(path).Write("new", 3); }
    EXPECT_EQ(NamesNow(), Names({"file"}));
    EXPECT_EQ(ReadFile(path), "old");
}

std::set<int> OpenDescriptors() {
    std::set<int> open;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) >= 0) open.insert(descriptor);
    }
    return open;
}

TEST_F(TqfetchTarget, KeepsItsDescriptorToItselfAndClosesIt) {
    const std::string pipe = directory.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const std::set<int> before = OpenDescriptors();
    for (const std::string& name : {path, pipe, std::string("-")}) {
        {
            const TargetFile target(name);
            for (const int descriptor : OpenDescriptors()) {
                if (before.count(descriptor) != 0) continue;
                EXPECT_EQ(fcntl(descriptor, F_GETFD), FD_CLOEXEC) << name;
            }
        }
        EXPECT_EQ(OpenDescriptors(), before) << name;
    }
    close(reader);
}

bool AreSignalsHeld() {
    sigset_t held;
    sigprocmask(SIG_BLOCK, nullptr, &held);
    return sigismember(&held, SIGHUP) == 1 && sigismember(&held, SIGTERM) == 1;
}

// One that came between the file and the note of its name would leave the file.
TEST_F(TqfetchTarget, SignalsWaitWhileTheTemporaryFileChangesItsName) {
    systemCalls.linkat = [](int oldFolder, const char* oldName, int newFolder, const char* newName,
                            int flags) {
        EXPECT_TRUE(AreSignalsHeld());
        return linkat(oldFolder, oldName, newFolder, newName, flags);
    };
    systemCalls.rename = [](const char* oldName, const char* newName) {
        EXPECT_TRUE(AreSignalsHeld());
        return rename(oldName, newName);
    };
    EXPECT_EQ(ProblemOf(path), "");
    EXPECT_FALSE(AreSignalsHeld());
    EXPECT_EQ(ReadFile(path), "new");
}

TEST_F(TqfetchTarget, ACompleteFileHasNoTemporaryNameAnyMore) {
    std::string temporary;
    systemCalls.rename = [&temporary](const char* oldName, const char* newName) {
        temporary = oldName;
        return rename(oldName, newName);
    };
    {
        TargetFile target(path);
        target.Complete();
        WriteFile(temporary, "another's");
    }
    EXPECT_EQ(ReadFile(temporary), "another's");
}

TEST_F(TqfetchTarget, ATemporaryNameThatIsTakenIsLeftAlone) {
    const std::string start = directory.Path(".tqfetch-");
    const std::string taken[] = {start + std::to_string(getpid()),
                                 start + std::to_string(getpid() + 1)};
    for (const std::string& name : taken) WriteFile(name, "others'");
    Names tried;
    systemCalls.linkat = [&tried](int oldFolder, const char* oldName, int newFolder,
                                  const char* newName, int flags) {
        tried.push_back(newName);
        return linkat(oldFolder, oldName, newFolder, newName, flags);
    };
    Fetch(path, "new");
    // Only files without a name are given one.
    if (!tried.empty()) {
        EXPECT_EQ(tried, Names({taken[0], taken[1], start + std::to_string(getpid() + 2)}));
    }
    for (const std::string& name : taken) {
        EXPECT_EQ(ReadFile(name), "others'");
        unlink(name.c_str());
    }
    EXPECT_EQ(NamesNow(), Names({"file"}));
    EXPECT_EQ(ReadFile(path), "new");
}

TEST_F(TqfetchTarget, AFolderThatGoesAwayIsAFailure) {
    const std::string folder = directory.Path("folder");
    ASSERT_EQ(mkdir(folder.c_str(), 0755), 0);
    TargetFile target(folder + "/file");
    if (rmdir(folder.c_str()) != 0) GTEST_SKIP() << "no files without a name here";
    try {
        target.Complete();
        ADD_FAILURE() << "a file in no folder";
    } catch (const std::system_error& problem) {
        EXPECT_EQ(problem.what(), folder + "/file: No such file or directory");
    }
}

TEST_F(TqfetchTarget, ARefusedRenameIsAFailureAndLeavesNothing) {
    {
        TargetFile target(path);
        ASSERT_EQ(mkdir(path.c_str(), 0755), 0);
        try {
            target.Complete();
            ADD_FAILURE() << "a file over a folder";
        } catch (const std::system_error& problem) {
            EXPECT_EQ(problem.what(), path + ": Is a directory");
        }
    }
    EXPECT_EQ(NamesNow(), Names({"file"}));
    EXPECT_TRUE(S_ISDIR(StatusOf(path).st_mode));
}

TEST_F(TqfetchTarget, AFileThatDoesNotReachTheDiskIsAFailure) {
    WriteFile(path, "old");
    systemCalls.fsync = [](int) {
        errno = EIO;
        return -1;
    };
    EXPECT_EQ(ProblemOf(path), path + ": Input/output error");
    EXPECT_EQ(NamesNow(), Names({"file"}));
    EXPECT_EQ(ReadFile(path), "old");
}

TEST_F(TqfetchTarget, APipeNeedNotReachADisk) {
    const std::string pipe = directory.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    systemCalls.fsync = [](int) {
        errno = EINVAL;
        return -1;
    };
    EXPECT_EQ(ProblemOf(pipe, "text"), "");
    char bytes[8];
    EXPECT_EQ(read(reader, bytes, sizeof bytes), 4);
    EXPECT_EQ(read(reader, bytes, sizeof bytes), 0);
    close(reader);
    EXPECT_TRUE(S_ISFIFO(StatusOf(pipe).st_mode));
}

// Some file systems tell so that there was no room.
TEST_F(TqfetchTarget, AnOutputThatCannotBeClosedIsAFailure) {
    const std::string pipe = directory.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    systemCalls.write = [](int descriptor, const void*, std::size_t count) {
        close(descriptor);
        return static_cast<ssize_t>(count);
    };
    EXPECT_EQ(ProblemOf(pipe), pipe + ": Bad file descriptor");
    close(reader);
}

TEST_F(TqfetchTarget, ANewFileHasTheModeThatTheMaskLeaves) {
    for (const mode_t mask : {0u, 022u, 027u, 077u, 0777u}) {
        umask(mask);
        Fetch(path, "new");
        EXPECT_EQ(umask(022), mask);
        EXPECT_EQ(ModeOf(path), 0666u & ~mask);
        unlink(path.c_str());
    }
}

TEST_F(TqfetchTarget, AReplacedFileKeepsItsMode) {
    for (const mode_t mode : {0600u, 0644u, 0466u, 0755u, 0000u}) {
        WriteFile(path, "old");
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        Fetch(path, "new");
        EXPECT_EQ(ModeOf(path), mode);
        ASSERT_EQ(unlink(path.c_str()), 0);
    }
    WriteFile(path, "old");
    ASSERT_EQ(chmod(path.c_str(), 04755), 0);
    Fetch(path, "new");
    EXPECT_EQ(ModeOf(path), 0755u);
}

const uid_t somebody = 12345;
const gid_t someGroup = 12346;

TEST_F(TqfetchTarget, AReplacedFileKeepsItsOwner) {
    WriteFile(path, "old");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    if (chown(path.c_str(), somebody, someGroup) != 0) GTEST_SKIP() << "no other users";
    Fetch(path, "new");
    EXPECT_EQ(StatusOf(path).st_uid, somebody);
    EXPECT_EQ(StatusOf(path).st_gid, someGroup);
    EXPECT_EQ(ModeOf(path), 0640u);
    EXPECT_EQ(ReadFile(path), "new");
}

// Becomes another user, of one group besides his own.
bool BecomeSomebody(gid_t otherGroup) {
    return setgroups(1, &otherGroup) == 0 && setgid(somebody) == 0 && setuid(somebody) == 0;
}

TEST_F(TqfetchTarget, WhoMayNotGiveFilesAwayKeepsTheGroup) {
    WriteFile(path, "old");
    ASSERT_EQ(chmod(path.c_str(), 0664), 0);
    ASSERT_EQ(chmod(directory.Path().c_str(), 0777), 0);
    if (chown(path.c_str(), 0, someGroup) != 0) GTEST_SKIP() << "no other users";
    EXPECT_TRUE(
        IsTrueInChild([this] { return BecomeSomebody(someGroup) && ProblemOf(path).empty(); }));
    EXPECT_EQ(StatusOf(path).st_uid, somebody);
    EXPECT_EQ(StatusOf(path).st_gid, someGroup);
    EXPECT_EQ(ModeOf(path), 0664u);
}

TEST_F(TqfetchTarget, AnotherGroupGetsNoMoreThanAllOthers) {
    ASSERT_EQ(chmod(directory.Path().c_str(), 0777), 0);
    const mode_t modes[][2] = {
        {0664, 0644}, {0640, 0600}, {0606, 0606}, {0777, 0777}, {0617, 0617}};
    for (const auto& mode : modes) {
        WriteFile(path, "old");
        ASSERT_EQ(chmod(path.c_str(), mode[0]), 0);
        if (chown(path.c_str(), 0, someGroup) != 0) GTEST_SKIP() << "no other users";
        EXPECT_TRUE(IsTrueInChild(
            [this] { return BecomeSomebody(someGroup + 1) && ProblemOf(path).empty(); }));
        EXPECT_EQ(StatusOf(path).st_gid, somebody);
        EXPECT_EQ(ModeOf(path), mode[1]);
        ASSERT_EQ(unlink(path.c_str()), 0);
    }
}

TEST_F(TqfetchTarget, APathThatTheSystemRefusesIsNotFollowed) {
    const std::string link = directory.Path("link");
    WriteFile(path, "precious");
    ASSERT_EQ(symlink(path.c_str(), link.c_str()), 0);
    systemCalls.stat = [](const char*, struct stat*) {
        errno = EACCES;
        return -1;
    };
    EXPECT_EQ(ProblemOf(link), link + ": Permission denied");
    EXPECT_EQ(ReadFile(path), "precious");
    EXPECT_TRUE(S_ISLNK(StatusOf(link).st_mode));
    EXPECT_EQ(NamesNow(), Names({"file", "link"}));
}

TEST_F(TqfetchTarget, ALinkThatIsChangedInTheMiddleIsNotFollowed) {
    const std::string link = directory.Path("link");
    WriteFile(path, "precious");
    WriteFile(directory.Path("bait"), "bait");
    ASSERT_EQ(symlink("bait", link.c_str()), 0);
    systemCalls.stat = [this, &link](const char* name, struct stat* status) {
        const int result = stat(name, status);
        unlink(link.c_str());
        EXPECT_EQ(symlink(path.c_str(), link.c_str()), 0);
        return result;
    };
    EXPECT_EQ(ProblemOf(link), link + ": No such file or directory");
    EXPECT_EQ(ReadFile(path), "precious");
    EXPECT_EQ(NamesNow(), Names({"bait", "file", "link"}));
}

TEST_F(TqfetchTarget, ALinkThatIsPlantedInTheMiddleIsReplaced) {
    const std::string link = directory.Path("link");
    WriteFile(path, "precious");
    systemCalls.stat = [this, &link](const char*, struct stat*) {
        EXPECT_EQ(symlink(path.c_str(), link.c_str()), 0);
        errno = ENOENT;
        return -1;
    };
    EXPECT_EQ(ProblemOf(link), "");
    EXPECT_EQ(ReadFile(path), "precious");
    EXPECT_TRUE(S_ISREG(StatusOf(link).st_mode));
    EXPECT_EQ(ReadFile(link), "new");
}

TEST_F(TqfetchTarget, ALinkToNothingIsReplacedAndALinkToItselfIsAFailure) {
    const std::string link = directory.Path("link");
    ASSERT_EQ(symlink("nothing", link.c_str()), 0);
    EXPECT_EQ(ProblemOf(link), "");
    EXPECT_EQ(ReadFile(link), "new");
    const std::string loop = directory.Path("loop");
    ASSERT_EQ(symlink("loop", loop.c_str()), 0);
    EXPECT_EQ(ProblemOf(loop), loop + ": Too many levels of symbolic links");
    EXPECT_EQ(NamesNow(), Names({"link", "loop"}));
}

TEST_F(TqfetchTarget, WithoutNamelessFilesTheTemporaryFileHasANameAndGoesTheSameWay) {
    if (!IsTrueInChild(HideDescriptors)) GTEST_SKIP() << "no mount namespace of its own";
    EXPECT_TRUE(IsTrueInChild([this] {
        bool isFine = HideDescriptors();
        const std::set<int> before = OpenDescriptors();
        systemCalls.mkostemp = [&isFine](char* name, int flags) {
            isFine = isFine && AreSignalsHeld();
            return mkostemp(name, flags);
        };
        {
            TargetFile target(path);
            target.Write("text", 4);
            isFine = isFine && NamesNow().size() == 1 && NamesNow()[0].find(".tqfetch-") == 0;
            target.Complete();
        }
        isFine = isFine && NamesNow() == Names({"file"}) && ReadFile(path) == "text";
        { TargetFile(path).Write("new", 3); }
        isFine = isFine && NamesNow() == Names({"file"}) && ReadFile(path) == "text";
        isFine = isFine && OpenDescriptors() == before;
        TargetFile target(path);
        TargetFile::RemoveTemporary();
        return isFine && NamesNow() == Names({"file"});
    }));
}

TEST_F(TqfetchTarget, IsWrittenWholeWhereASingleByteIsTakenAtATime) {
    systemCalls.write = [](int descriptor, const void* bytes, std::size_t) {
        return write(descriptor, bytes, 1);
    };
    EXPECT_EQ(ProblemOf(path, "text"), "");
    EXPECT_EQ(ReadFile(path), "text");
}

TEST_F(TqfetchTarget, ASignalInTheMiddleOfAWriteIsNoFailure) {
    systemCalls.write = [calls = 0](int descriptor, const void* bytes, std::size_t count) mutable {
        errno = EINTR;
        return ++calls == 1 ? -1 : write(descriptor, bytes, count);
    };
    EXPECT_EQ(ProblemOf(path, "text"), "");
    EXPECT_EQ(ReadFile(path), "text");
}

// Descriptor 0 is one like any other.
TEST_F(TqfetchTarget, MayHaveTheLowestDescriptor) {
    const std::string pipe = directory.Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const auto works = [](const std::string& name, bool hasNoName) {
        return IsTrueInChild([&] {
            if (!hasNoName) HideDescriptors();
            close(0);
            if (!ProblemOf(name).empty()) return false;
            return fcntl(0, F_GETFD) == -1;
        });
    };
    EXPECT_TRUE(works(path, true));
    EXPECT_TRUE(works(path, false));
    EXPECT_EQ(ReadFile(path), "new");
    EXPECT_TRUE(works(pipe, true));
    EXPECT_TRUE(IsTrueInChild([this] {
        dup2(open(directory.Path("out").c_str(), O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
        close(0);
        return ProblemOf("-").empty() && fcntl(0, F_GETFD) == -1;
    }));
    EXPECT_EQ(ReadFile(directory.Path("out")), "new");
    close(reader);
}

TEST_F(TqfetchTarget, AnOutputThatCannotBeWrittenToIsAFailureWithoutAnyBytesToo) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    EXPECT_TRUE(IsTrueInChild([&ends] {
        dup2(ends[0], STDOUT_FILENO);
        return ProblemOf("-", "") == "standard output: Bad file descriptor";
    }));
    for (const int end : ends) close(end);
}

TEST_F(TqfetchTarget, MayLieInTheUppermostFolder) {
    if (!IsTrueInChild([this] { return chroot(directory.Path().c_str()) == 0; })) {
        GTEST_SKIP() << "the uppermost folder cannot be changed here";
    }
    EXPECT_TRUE(IsTrueInChild(
        [this] { return chroot(directory.Path().c_str()) == 0 && ProblemOf("/file").empty(); }));
    EXPECT_EQ(NamesNow(), Names({"file"}));
    EXPECT_EQ(ReadFile(path), "new");
}

}  // namespace
