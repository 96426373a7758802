// Every call that an operation makes into the system, failing: the first alone, the second alone,
// and so on until the operation passes without a failure; then the first and every later one of the
// same name, since memory that has ended does not come back, and so on. What comes back is the
// table's, and nothing is left behind: no memory, no descriptor, no locked mutex, no file.
//
// What is not here: the clocks, signals and mutexes of the C library have no way to fail with what
// the library gives them, and nobody looks at what printf returns.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Child.h"
#include "Files.h"
#include "Objects.h"
#include "Reports.h"
#include "Scale.h"
#include "SystemCalls.h"
#include "TftpHost.h"
#include "TftpScript.h"
#include "TftpServer.h"
#include "TftpTest.h"
#include "TqBaseRefList.h"
#include "TqBoolean.h"
#include "TqCallableCb.h"
#include "TqCallbackChain.h"
#include "TqClassRegistry.h"
#include "TqCounter.h"
#include "TqDateTime.h"
#include "TqDownload.h"
#include "TqFile.h"
#include "TqFloat.h"
#include "TqMakeRef.h"
#include "TqNetworkMask.h"
#include "TqSnmpOid.h"
#include "TqSortedStringList.h"
#include "TqTftp.h"
#include "Values.h"
#ifdef TQ_HAVE_FAULTS
#include "TqLinuxMutex.h"
#endif

namespace {

// What a failing call leads to, by its name. An operation makes no other calls, and makes each.
using Outcomes = std::map<std::string, std::set<std::string>>;

const char aborted[] = "TqHooks, aborted";
const char threw[] = "std::bad_alloc";

// What one run in a process of its own told.
struct Told {
    char failedCall[32];
    char reports[256];
    char result[64];
    char left[256];
};

Told* told;

void Append(char* text, std::size_t size, const char* more) {
    const std::size_t length = std::strlen(text);
    std::strncat(text, more, size - length - 1);
}

template <std::size_t size>
void Set(char (&text)[size], const char* value) {
    text[0] = '\0';
    Append(text, size, value);
}

void NoteReport(const char* file, int) {
    Append(told->reports, sizeof told->reports, file);
    Append(told->reports, sizeof told->reports, ", ");
}

void NoteFailedCall() {
    if (FailedCall() != nullptr) Set(told->failedCall, FailedCall());
}

// Without the core file, and without the words of an emulator.
void EndAborted(int) {
    NoteFailedCall();
    Append(told->result, sizeof told->result, "aborted");
    _exit(0);
}

int lockedMutexes;

#ifdef TQ_HAVE_FAULTS

int CountLocked(const TqLinuxMutex*, bool isLock, int result) {
    if (result == 0) lockedMutexes += isLock ? 1 : -1;
    return result;
}

#endif

// What a process has that an operation might leave behind.
class Belongings {
public:
    explicit Belongings(const TemporaryDirectory& watched)
        : files(watched.Names().size()),
          descriptors(TftpTest::Descriptors().size()),
          mutexes(lockedMutexes),
          blocks(LiveBlocks()) {}

    // What there is more now. A thread that a fetch has left behind may take a moment to end.
    void Tell(const TemporaryDirectory& watched, char* text, std::size_t size) const {
        for (int i = 0; i < 20 && LiveBlocks() != blocks; ++i) usleep(10000);
        text[0] = '\0';
        const Belongings now(watched);
        if (now.blocks != blocks) Append(text, size, "memory ");
        if (now.mutexes != mutexes) Append(text, size, "a locked mutex ");
        if (now.descriptors != descriptors) Append(text, size, "a descriptor ");
        if (now.files != files) Append(text, size, "a file ");
    }

private:
    std::size_t files;
    std::size_t descriptors;
    int mutexes;
    int blocks;
};

using Operation = std::function<std::string()>;

void Try(const Operation& operation) {
    try {
        Set(told->result, operation().c_str());
    } catch (const std::bad_alloc&) {
        Set(told->result, threw);
    }
}

// Runs the operation in a process of its own: as it is, and then with a failing call.
class FailingRun {
public:
    FailingRun(const Operation& operation, const TemporaryDirectory& directory, unsigned int number,
               bool andLater) {
        *told = Told();
        std::fflush(nullptr);
        Child child([&] {
            signal(SIGABRT, EndAborted);
            TqRegisterAssertCb(NoteReport);
#ifdef TQ_HAVE_FAULTS
            TqWatchMutexes(CountLocked);
#endif
            dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
            operation();
            // What is made once for good, by the C library for threads too, is left behind once or
            // twice; what is lost, each time.
            for (int attempt = 0; attempt < 4; ++attempt) {
                *told = Told();
                const Belongings before(directory);
                FailCall(number, andLater);
                Try(operation);
                NoteFailedCall();
                FailCall(0);
                before.Tell(directory, told->left, sizeof told->left);
                if (told->left[0] == '\0') break;
            }
        });
        int status = 0;
        hasEnded = child.Wait(20000 * Slowness(), status) && status == 0;
    }

    bool HasEnded() const {
        return hasEnded;
    }
    std::string FailedCall() const {
        return told->failedCall;
    }
    std::string Left() const {
        return told->left;
    }
    std::string Result() const {
        return std::string(told->reports) + told->result;
    }

private:
    bool hasEnded;
};

class SystemFaults : public testing::Test {
protected:
    void SetUp() override {
        if (!heapIsWatched) GTEST_SKIP() << "the sanitizer brings its own heap";
        void* shared =
            mmap(nullptr, sizeof(Told), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        ASSERT_NE(shared, MAP_FAILED);
        told = static_cast<Told*>(shared);
    }
    void TearDown() override {
        if (told != nullptr) munmap(told, sizeof(Told));
        told = nullptr;
    }

    enum Repetition { onceOnly, onceAndForGood };

    void Expect(const Outcomes& outcomes, const Operation& operation,
                Repetition repetition = onceAndForGood) {
        std::set<std::string> seen;
        // A call may escape its number where threads make a few more or less each time.
        for (int attempts = 0; attempts < 4 && !AreAllIn(seen, outcomes); ++attempts) {
            FailEach(outcomes, operation, false, seen);
            if (repetition == onceAndForGood) FailEach(outcomes, operation, true, seen);
        }
        for (const auto& outcome : outcomes) {
            EXPECT_EQ(seen.count(outcome.first), 1u) << outcome.first << " was never called";
        }
    }

    const TemporaryDirectory directory;

private:
    static bool AreAllIn(const std::set<std::string>& seen, const Outcomes& outcomes) {
        return std::all_of(outcomes.begin(), outcomes.end(),
                           [&](const auto& outcome) { return seen.count(outcome.first) == 1; });
    }

    void FailEach(const Outcomes& outcomes, const Operation& operation, bool andLater,
                  std::set<std::string>& seen) {
        for (unsigned int number = 1; number < 500; ++number) {
            const FailingRun run(operation, directory, number, andLater);
            const std::string which = run.FailedCall() + ", call " + std::to_string(number) +
                                      (andLater ? " and every later one" : "");
            ASSERT_TRUE(run.HasEnded()) << which << " " << run.Result();
            EXPECT_EQ(run.Left(), "") << "left behind; " << which << ": " << run.Result();
            if (run.FailedCall().empty()) {
                EXPECT_EQ(run.Result(), "passed");
                return;
            }
            seen.insert(run.FailedCall());
            const auto outcome = outcomes.find(run.FailedCall());
            ASSERT_TRUE(outcome != outcomes.end()) << which << " is not in the table";
            EXPECT_EQ(outcome->second.count(run.Result()), 1u) << which << ": " << run.Result();
        }
        ADD_FAILURE() << "there is no end of calls";
    }
};

std::string PassedIf(bool isRight) {
    return isRight ? "passed" : "wrong";
}

// Texts are ready before any call fails.
const std::string long100 = Letters(100);
const std::string long300 = Letters(300);

TEST_F(SystemFaults, OfAString) {
    Expect({{"memory", {aborted}}}, [] {
        TqString constructed(long100.c_str());
        TqString grown("short");
        grown += long100.c_str();
        for (int i = 0; i < 40; ++i) grown.AppendChar('x');
        TqString copy(grown);
        copy = long300.c_str();
        grown.SetValue(long100.data(), 60);
        grown.SetValue(grown.data + 1, 50);
        const TqString sum = constructed + "more";
        return PassedIf(sum.length == 104 && copy.length == 300 && grown.length == 50);
    });
}

TEST_F(SystemFaults, OfABuffer) {
    Expect({{"memory", {aborted}}}, [] {
        TqBuffer constructed(AsBytes(long100), 100);
        TqBuffer grown;
        grown.Append(AsBytes(long100), 100);
        grown.Append(AsBytes(long100), 100);
        grown.Insert(AsBytes(long100), 100, 50);
        TqBuffer copy(grown);
        copy = constructed;
        TqBuffer item;
        copy.ToBuffer(item);
        TqBuffer back;
        back.FromBuffer(item);
        return PassedIf(back.Equals(&constructed) && grown.length == 300);
    });
}

TEST_F(SystemFaults, OfAnIdentifier) {
    Expect({{"memory", {aborted}}}, [] {
        TqSnmpOid parsed("1.3.6.1.2.1.2.2.1.10.1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16.17.18.19.20");
        for (unsigned int i = 0; i < 100; ++i) parsed.Append(i);
        const TqSnmpOid copy(parsed);
        TqSnmpOid both("");
        both.Append(copy);
        both.Append(copy);
        TqString text;
        both.ToString(text);
        return PassedIf(both.count == 2 * copy.count);
    });
}

TEST_F(SystemFaults, OfAList) {
    Expect({{"memory", {aborted}}}, [] {
        int things[40];
        TqBaseList list;
        for (int& thing : things) list.InsertSlot(1, &thing);
        list.PreAlloc(100);
        const TqBaseList copy(list);
        TqBaseList assigned;
        assigned = copy;
        return PassedIf(assigned.count == 40);
    });
}

TEST_F(SystemFaults, OfASortedList) {
    Expect({{"memory", {aborted}}}, [] {
        TqSortedStringList list;
        TqString strings[20];
        for (TqString& each : strings) list.Add(&each);
        return PassedIf(list.count == 20);
    });
}

// Objects are made by `new`; what they hold by themselves is not.
TEST_F(SystemFaults, OfObjectsAndListsThatHoldThem) {
    Expect({{"memory", {aborted, threw}}}, [] {
        TqRef<TqBaseObject> object(new TqBaseObject);
        TqRefList<TqBaseObject> list;
        for (int i = 0; i < 20; ++i) list.Append(object.Get());
        const TqRefList<TqBaseObject> copy(list);
        TqRefList<TqBaseObject> assigned;
        assigned = copy;
        return PassedIf(object->refCount == 61);
    });
}

TEST_F(SystemFaults, OfAClone) {
    Expect({{"memory", {aborted, threw}}}, [] {
        bool areRight = true;
        const TqString string(long100.c_str());
        const TqBuffer buffer(AsBytes(long100), 100);
        const TqSnmpOid identifier("1.3.6.1");
        const TqNumber number(1);
        const TqCounter counter(1);
        const TqFloat floating(1);
        const TqBoolean boolean(1);
        const std::initializer_list<const TqDataType*> values = {
            &string, &buffer, &identifier, &number, &counter, &floating, &boolean};
        for (const TqDataType* value : values) {
            const std::unique_ptr<TqDataType> clone(value->Clone());
            areRight &= clone->Equals(value);
        }
        return PassedIf(areRight);
    });
}

TEST_F(SystemFaults, OfADescriptorThatIsMadeWhenFirstAskedFor) {
    Expect({{"memory", {threw}}}, [] {
        struct Restored {
            TqClassInfo* const before = TqCallback::TqCallbackInfo;
            ~Restored() {
                delete TqCallback::TqCallbackInfo;
                TqCallback::TqCallbackInfo = before;
            }
        };
        TqBaseObject::TqBaseObjectInitInfo();
        const Restored restored;
        TqCallback::TqCallbackInfo = nullptr;
        return PassedIf(TqCallback::TqCallbackInitInfo()->name.length == 10);
    });
}

TqBaseObject* NewPort() {
    return new TqBaseObject;
}

TEST_F(SystemFaults, OfTheRegistry) {
    Expect({{"memory", {aborted, threw}}}, [] {
        const std::unique_ptr<TqClassRegistry> registry(new TqClassRegistry);
        for (int i = 0; i < 20; ++i) {
            std::unique_ptr<TqClassInfo> info(new TqClassInfo("Port", NewPort, nullptr));
            registry->classList.Append(info.get());
            static_cast<void>(info.release());
        }
        const std::unique_ptr<TqBaseObject> made(registry->NewObject("Port"));
        registry->Remove("Port");
        return PassedIf(made != nullptr && registry->classList.count == 19);
    });
}

TEST_F(SystemFaults, OfCallbacksAndTheirChain) {
    Expect({{"memory", {aborted, threw}}}, [] {
        int invoked = 0;
        std::vector<std::unique_ptr<TqCallback>> callbacks;
        TqCallbackChain chain;
        for (int i = 0; i < 20; ++i) {
            std::unique_ptr<TqCallback> callback(new TqCallableCb([&invoked] { ++invoked; }));
            callbacks.push_back(std::move(callback));
            chain.InsertSlot(1, callbacks.back().get());
        }
        chain.Invoke(nullptr, nullptr);
        return PassedIf(invoked == 20);
    });
}

TEST_F(SystemFaults, OfTheDate) {
    Expect({{"gmtime_r", {"as it was"}}}, [] {
        tm then = tm();
        then.tm_year = 7;
        TqDateTime date(&then);
        date.SetNow();
        return date.time.tm_year == 7 ? std::string("as it was")
                                      : PassedIf(date.time.tm_year > 100);
    });
}

TEST_F(SystemFaults, OfAFileThatIsRead) {
    WriteFile(directory.Path("lines"), "one\ntwo\n");
    const std::string path = directory.Path("lines");
    Expect({{"memory", {threw, aborted, "not open", "passed"}},
            {"fopen", {"not open"}},
            {"fgets", {"nothing read", "cut short"}},
            {"fclose", {"not closed"}}},
           [&] {
               const std::unique_ptr<TqFile> file(new TqFile);
               if (file->Open(path.c_str(), TqFile::read) == 0) return "not open";
               int lines = 0;
               while (file->NextLine() != nullptr) ++lines;
               if (file->Close() == 0) return "not closed";
               return lines == 2 ? "passed" : lines == 0 ? "nothing read" : "cut short";
           });
}

struct MemoryHasEnded {};

void ThrowReport(const char* file, int) {
    EXPECT_STREQ(file, "TqHooks");
    throw MemoryHasEnded();
}

// Whether the hook, which throws, was called when the first call in there failed.
template <class Action>
bool Throws(Action action) {
    const TqAssertCb before = TqRegisterAssertCb(ThrowReport);
    bool hasThrown = false;
    FailCall(1);
    try {
        action();
    } catch (const MemoryHasEnded&) {
        hasThrown = true;
    }
    FailCall(0);
    TqRegisterAssertCb(before);
    return hasThrown;
}

TEST_F(SystemFaults, LeaveWhatAHookThrowsOutOfFitForUse) {
    TqString string("short");
    EXPECT_TRUE(Throws([&] { string += long100.c_str(); }));
    EXPECT_EQ(Held(string), HeldInside("short"));
    EXPECT_TRUE(Throws([&] { string = long100.c_str(); }));
    string = long100.c_str();
    EXPECT_TRUE(Throws([&] { string += long300.c_str(); }));
    EXPECT_EQ(Held(string), HeldInBlock(101, long100));

    TqBuffer buffer = BufferOf(long100);
    EXPECT_TRUE(Throws([&] { buffer.Append(AsBytes(long300), 300); }));
    EXPECT_EQ(Bytes(buffer), long100);
    EXPECT_TRUE(Throws([&] { buffer.Insert(AsBytes(long100), 100, 10); }));
    EXPECT_EQ(Bytes(buffer), long100);

    TqSnmpOid oid("1.3.6");
    const TqSnmpOid more("1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16.17.18.19.20.21.22.23.24.25.26.27");
    const unsigned int capacity = oid.capacity;
    EXPECT_TRUE(Throws([&] { oid.Append(more); }));
    EXPECT_EQ(oid.capacity, capacity);
    EXPECT_EQ(TextOf(oid), "1.3.6");

    TqBaseList list;
    for (unsigned int i = 1; i <= 15; ++i) list.InsertSlot(i, &list);
    EXPECT_TRUE(Throws([&] { list.InsertSlot(1, &oid); }));
    EXPECT_EQ(ItemsOf(list), Items(15, &list));
    EXPECT_EQ(list.capacity, 16u);
    EXPECT_TRUE(Throws([&] { list.PreAlloc(100); }));
    EXPECT_EQ(list.capacity, 16u);
}

TEST_F(SystemFaults, AbortWhenTheHookReturns) {
    EXPECT_EXIT(
        {
            signal(SIGABRT, [](int) { std::exit(7); });
            FailCall(1);
            const TqString string(long100.c_str());
        },
        testing::ExitedWithCode(7), "");
}

// The client, with a server in a process of its own.
class SystemFaultsOfTftp : public SystemFaults {
protected:
    void SetUp() override {
        SystemFaults::SetUp();
        if (IsSkipped()) return;
        if (!TftpNetworkProblem().empty()) GTEST_SKIP() << TftpNetworkProblem();
        WriteFile(served.Path("motd"), RandomBytes(1200, 1));
        TftpServer::Settings settings;
        settings.directory = served.Path();
        settings.resendAfter = 50;
        settings.repeatAfter = 0;
        auto listener = std::make_shared<TftpServer>(UdpSocket(RequestPort()), settings);
        server.reset(new Child([listener] {
            while (true) listener->Serve(1000);
        }));
    }

    static std::string HostName() {
        const std::string text = ToText(RequestPort());
        return text.substr(0, text.find(':'));
    }

    static std::string Number(unsigned int result) {
        char text[16];
        std::snprintf(text, sizeof text, "%#x", result);
        return text;
    }

    // What a fetch came to.
    static std::string ResultOf(const TqDownload& download) {
        return download.result == TqDownload::complete ? PassedIf(download.bytes == 1200)
                                                       : Number(download.result);
    }

    const TemporaryDirectory served;
    const std::string hostName = HostName();
    std::unique_ptr<Child> server;
};

TEST_F(SystemFaultsOfTftp, ATransfer) {
    const TFTP_OPEN_STRUCT request = {htonl(Host(1)), "motd", "octet"};
    Expect(
        {{"socket", {"0x800"}},
         {"bind", {"0xffffffff"}},
         {"memory", {"0x802"}},
         {"sendto", {"0x803", "passed"}},
         {"select", {"passed"}},
         {"recvfrom", {"0x814"}},
         {"close", {"not closed"}}},
        [&] {
            TFTP_OPEN_STRUCT wanted = request;
            const unsigned int opened = TFTP_open(&wanted);
            if (opened != 0) return Number(opened);
            unsigned int bytes = 0;
            while (TFTP_eof() == 0) {
                unsigned int length = 0;
                if (TFTP_read(&length) == nullptr) return Number(length);
                bytes += length;
            }
            if (TFTP_close() != 0) return std::string("not closed");
            return PassedIf(bytes == 1200);
        },
        onceOnly);
}

const char refused[] = "0x20005";
const char noThread[] = "0x20007";

// What every fetch may meet before anything has come.
const Outcomes outcomesOfAFetch = {
    {"memory", {threw, aborted, "passed", "0x802", "0x20006"}},
    {"getaddrinfo", {"passed", "0x20006"}},
    {"pthread_create", {noThread}},
    {"socket", {"0x800"}},
    {"bind", {"0xffffffff"}},
    {"getsockname", {"passed", "0x800"}},
    {"fstat", {"passed", "0x800"}},
    {"fcntl", {"0x800"}},
    {"sendto", {"0x803", "passed", "0x20002"}},
    {"select", {"passed"}},
    {"recvfrom", {"0x814"}},
    {"close", {"passed"}},
};

Outcomes With(Outcomes outcomes, const Outcomes& more) {
    for (const auto& outcome : more) {
        outcomes[outcome.first].insert(outcome.second.begin(), outcome.second.end());
    }
    return outcomes;
}

// Seconds in which what answers does so, on a busy machine too. What does not takes as long.
unsigned int Patience() {
    return IsOnDevice() ? 20 : 3;
}

TEST_F(SystemFaultsOfTftp, ADownloadIntoABuffer) {
    Expect(outcomesOfAFetch, [&] {
        TqDownload download(hostName.c_str(), "motd");
        download.patience = Patience();
        TqBuffer buffer(AsBytes(long100), 10);
        download.ToBuffer(buffer);
        const bool isKept = buffer.length == (download.result == 0 ? 1210u : 10u);
        return isKept ? ResultOf(download) : "a part was kept";
    });
}

TEST_F(SystemFaultsOfTftp, ADownloadIntoAFile) {
    const std::string path = directory.Path("motd");
    WriteFile(path, "before");
    Expect(With(outcomesOfAFetch, {{"memory", {refused}},
                                   {"stat", {"passed"}},
                                   {"fopen", {refused}},
                                   {"fwrite", {refused}},
                                   {"fflush", {refused}},
                                   {"fsync", {refused}},
                                   {"rename", {refused}},
                                   {"fclose", {"passed"}}}),
           [&] {
               TqDownload download(hostName.c_str(), "motd");
               download.patience = Patience();
               download.ToFile(path.c_str());
               return ResultOf(download);
           });
}

// The client is in the middle of a wait when the fetch is over.
TEST_F(SystemFaultsOfTftp, ADownloadThatIsEndedInTheMiddle) {
    auto socket = std::make_shared<UdpSocket>(RequestPort(2));
    const Child silent([socket] {
        Octets datagram;
        Endpoint client;
        while (true) {
            const bool hasCome = socket->Receive(datagram, client, 1000);
            if (hasCome && datagram[1] == 1) socket->Send(client, Data(1, Octets(512, 'x')));
        }
    });
    const std::string text = ToText(RequestPort(2));
    const std::string host = text.substr(0, text.find(':'));
    Expect(With(outcomesOfAFetch, {{"setsockopt", {"passed"}}, {"recvfrom", {"passed"}}}), [&] {
        TqDownload download(host.c_str(), "motd");
        download.patience = Patience();
        download.mostBytes = 100;
        download.ToFunction([](const unsigned char*, unsigned int) { return true; });
        return download.result == TqDownload::tooMany ? "passed" : Number(download.result);
    });
}

}  // namespace
