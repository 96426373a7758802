// Days of a device's life: one process that makes, shares, encodes, fetches and lets go, with the
// clock wound on from minute to minute. The clock of milliseconds wraps around at noon of the first
// day, and once more with each jump of 49.7 days; midnight comes every day. Memory and descriptors
// stay as they are.
//
// A day by itself; `scripts/soak day MINUTES` has it live on for that long.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

#include "Child.h"
#include "Files.h"
#include "Objects.h"
#include "Scale.h"
#include "SystemCalls.h"
#include "TftpHost.h"
#include "TftpServer.h"
#include "TftpTest.h"
#include "TqBaseRef.h"
#include "TqBaseRefList.h"
#include "TqBoolean.h"
#include "TqCallableCb.h"
#include "TqCallbackChain.h"
#include "TqCounter.h"
#include "TqDateTime.h"
#include "TqDownload.h"
#include "TqFile.h"
#include "TqNumber.h"
#include "TqSnmpOid.h"
#include "TqSortedStringList.h"
#include "TqTftp.h"
#include "Values.h"

namespace {

const long long wrap = 1LL << 32;  // milliseconds, 49.7 days
const long long day = 24LL * 60 * 60 * 1000;
const long long noonOfTheFirstDay = 412 * wrap;

// Milliseconds since 1970. Each look at the clock takes one.
long long clockNow;

timeval TimeOfDay() {
    ++clockNow;
    timeval now = timeval();
    now.tv_sec = static_cast<time_t>(clockNow / 1000);
    now.tv_usec = static_cast<suseconds_t>(clockNow % 1000 * 1000);
    return now;
}

TqBaseObject* NewPort() {
    return new TqBaseObject;
}

struct Flat {
    int blocks;
    std::size_t descriptors;
    long residentKiB;
};

long ResidentKiB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, 6, "VmRSS:") == 0) return std::atol(line.c_str() + 6);
    }
    return 0;
}

class Soak : public TftpTest {
protected:
    void SetUp() override {
        TftpTest::SetUp();
        if (IsSkipped()) return;
        WriteFile(directory.Path("lines"), "one\ntwo\nthree\n");
        WriteFile(served.Path("motd"), RandomBytes(1200, 1));
        TftpServer::Settings settings;
        settings.directory = served.Path();
        auto listener = std::make_shared<TftpServer>(UdpSocket(RequestPort()), settings);
        server.reset(new Child([listener] {
            while (true) listener->Serve(1000);
        }));
        registry.classList.Append(new TqClassInfo("Port", NewPort, nullptr));
        clockNow = noonOfTheFirstDay - day / 2;
        systemCalls.gettimeofday = TimeOfDay;
        systemCalls.time = [] { return static_cast<time_t>(clockNow / 1000); };
    }

    // A day of so many rounds, and at the end of it a jump.
    void LiveADay(unsigned int rounds) {
        const long long end = clockNow + day;
        for (unsigned int round = 0; round < rounds; ++round) {
            Share();
            Encode(round);
            ReadLines();
            if (round % 10 == 0) Fetch();
            if (round % 40 == 0) Download();
            WindOn(day / rounds);
            if (HasFailure()) return;
        }
        WindOn(end - clockNow + wrap - 1000);
        Fetch();
    }

    // Whatever is kept for good has been made after a few rounds.
    Flat Look() const { return {LiveBlocks(), Descriptors().size(), ResidentKiB()}; }

    unsigned int fetches = 0;
    unsigned int values = 0;
    unsigned int midnights = 0;
    unsigned int wraps = 0;

private:
    void WindOn(long long milliseconds) {
        const long long before = clockNow;
        clockNow += milliseconds;
        midnights += clockNow / day != before / day ? 1u : 0u;
        wraps += clockNow / wrap != before / wrap ? 1u : 0u;
    }

    void Share() {
        int calls = 0;
        TqRefList<TqBaseObject> ports;
        for (int i = 0; i < 40; ++i) ports.Append(registry.NewObject("Port"));
        const TqRefList<TqBaseObject> copy(ports);
        const TqRef<TqBaseObject> first(ports.First());
        TqRef<TqBaseObject> last(first);
        last = ports.Last();
        ports.RemoveAllItems();
        EXPECT_EQ(first->refCount, 2);
        TqCallableCb count([&calls] { ++calls; });
        TqCallbackChain chain;
        for (unsigned int i = 1; i <= 20; ++i)
            chain.InsertSlot(i, static_cast<TqCallback*>(&count));
        chain.Invoke(last.Get(), nullptr);
        EXPECT_EQ(calls, 20);
    }

    void Encode(unsigned int round) {
        TqDateTime date;
        date.SetNow();
        EXPECT_EQ(date.time.tm_hour, clockNow % day / 3600000);
        const TqString text(Letters(round % 200).c_str());
        const TqNumber number(static_cast<int>(round) - 700);
        const TqCounter counter(round * 1000000);
        const TqBoolean boolean(static_cast<int>(round % 2));
        TqSnmpOid identifier("1.3.6.1.2.1.2.2.1.10");
        for (unsigned int i = 0; i < round % 50; ++i) identifier.Append(i);
        TqBuffer packet;
        for (const TqDataType* each : std::initializer_list<const TqDataType*>{
                 &text, &number, &counter, &boolean, &identifier}) {
            each->ToBuffer(packet);
            const std::unique_ptr<TqDataType> back(each->Clone());
            back->FromBuffer(packet);
            EXPECT_TRUE(back->Equals(each)) << TextOf(*each);
            ++values;
        }
        EXPECT_EQ(packet.readPosition, packet.length);
        EXPECT_NE(TextOf(date), "");
        TqSortedStringList sorted;
        TqString strings[20];
        for (TqString& string : strings) {
            string.AppendNumber(static_cast<int>(sorted.count * 7919 % 20));
            sorted.Add(&string);
        }
    }

    void ReadLines() {
        TqFile file;
        EXPECT_EQ(file.Open(directory.Path("lines").c_str(), TqFile::read), 1);
        int lines = 0;
        while (file.NextLine() != nullptr) ++lines;
        EXPECT_EQ(lines, 3);
        EXPECT_EQ(file.Close(), 1);
    }

    void Fetch() {
        TFTP_OPEN_STRUCT request = {htonl(Host(1)), "motd", "octet"};
        ASSERT_EQ(TFTP_open(&request), 0u);
        unsigned int bytes = 0;
        while (TFTP_eof() == 0) {
            unsigned int length = 0;
            const long long before = clockNow;
            ASSERT_NE(TFTP_read(&length), nullptr) << length;
            wraps += clockNow / wrap != before / wrap ? 1u : 0u;
            bytes += length;
        }
        EXPECT_EQ(TFTP_close(), 0u);
        EXPECT_EQ(bytes, 1200u);
        ++fetches;
    }

    void Download() {
        const std::string host = ToText(RequestPort());
        TqDownload download(host.substr(0, host.find(':')).c_str(), "motd");
        EXPECT_EQ(download.ToFile(directory.Path("motd").c_str()), 0u);
        EXPECT_EQ(download.bytes, 1200u);
        ++fetches;
    }

    const TemporaryDirectory directory;
    const TemporaryDirectory served;
    std::unique_ptr<Child> server;
    TqClassRegistry registry;
};

TEST_F(Soak, ADayAndThe49DaysBehindItLeaveNothing) {
    const unsigned int rounds = Scaled(1440, 96);
    const char* const seconds = std::getenv("TQ_SOAK_SECONDS");
    const long long until = ::Now() + (seconds == nullptr ? 0 : std::atoll(seconds) * 1000);
    if (seconds != nullptr) alarm(static_cast<unsigned int>(std::atoi(seconds)) + 250);
    LiveADay(48);
    const Flat before = Look();
    unsigned int days = 0;
    do {
        LiveADay(rounds);
        ++days;
    } while (!HasFailure() && ::Now() < until);
    const Flat after = Look();
    EXPECT_EQ(after.blocks, before.blocks);
    EXPECT_EQ(after.descriptors, before.descriptors);
    if (heapIsWatched && !runsSlowly) {
        EXPECT_LE(after.residentKiB, before.residentKiB + 64);
    }
    EXPECT_GE(midnights, days);
    EXPECT_GE(wraps, days);
    std::printf(
        "[   SOAK   ] %u days of %u rounds, %u jumps of 49.7 days: %u fetches, %u values, %u "
        "midnights, %u wraps; blocks %d -> %d, descriptors %zu -> %zu, resident %ld -> %ld KiB\n",
        days, rounds, days, fetches, values, midnights, wraps, before.blocks, after.blocks,
        before.descriptors, after.descriptors, before.residentKiB, after.residentKiB);
}

}  // namespace
