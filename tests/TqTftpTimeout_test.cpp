#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "SystemCalls.h"
#include "TqTftp.h"

namespace {

static_assert(offsetof(TFTP_TO_STRUCT, startTime) == 0, "");
static_assert(offsetof(TFTP_TO_STRUCT, sampleValid) == 4, "");
static_assert(offsetof(TFTP_TO_STRUCT, timeout) == 8, "");
static_assert(offsetof(TFTP_TO_STRUCT, smoothedRtt) == 12, "");
static_assert(offsetof(TFTP_TO_STRUCT, rttVariance) == 16, "");
static_assert(sizeof(TFTP_TO_STRUCT) == 20, "");

using Fields = std::vector<unsigned int>;

Fields FieldsOf(const TFTP_TO_STRUCT& to) {
    return {to.startTime, to.sampleValid, to.timeout, to.smoothedRtt, to.rttVariance};
}

// The clock is the test's: a number of milliseconds, set as the test wants it.
class TqTftpTimeout : public testing::Test {
protected:
    TqTftpTimeout() {
        systemCalls.gettimeofday = [this] {
            timeval time = timeval();
            time.tv_sec = static_cast<time_t>(now / 1000);
            time.tv_usec = static_cast<suseconds_t>(now % 1000 * 1000);
            return time;
        };
    }
    ~TqTftpTimeout() override { systemCalls = SystemCalls(); }

    unsigned long long now = 5000;
    unsigned int expired = 7;
};

TEST_F(TqTftpTimeout, InitBeginsAWaitOf4000) {
    TFTP_TO_STRUCT to = {9, 9, 9, 9, 9};
    EXPECT_EQ(TFTP_timeout_init(&to), 4000u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 4000, 4000, 0}));
}

TEST_F(TqTftpTimeout, JustAfterInitEverythingIsLeft) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 4000u);
    EXPECT_EQ(expired, 0u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 4000, 4000, 0}));
}

TEST_F(TqTftpTimeout, RestartBeginsAWaitThatIsNoSampleAndReturnsTheTimeout) {
    TFTP_TO_STRUCT to = {1, 1, 1234, 77, 88};
    EXPECT_EQ(TFTP_timeout_restart(&to), 1234u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 0, 1234, 77, 88}));
}

TEST_F(TqTftpTimeout, LeftCountsDownToTheLastMillisecond) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now = 5001;
    EXPECT_EQ(TFTP_timeout_left(&to, nullptr), 3999u);
    now = 8999;
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 1u);
    EXPECT_EQ(expired, 0u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 4000, 4000, 0}));
}

TEST_F(TqTftpTimeout, AWaitExpiresWhenTheTimeoutIsReachedExactly) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now = 9000;
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 8000u);
    EXPECT_EQ(expired, 1u);
    EXPECT_EQ(FieldsOf(to), Fields({9000, 0, 8000, 4000, 0}));
}

TEST_F(TqTftpTimeout, ExpiryDoublesWithoutAnybodyAsking) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now = 12345;
    EXPECT_EQ(TFTP_timeout_left(&to, nullptr), 8000u);
    EXPECT_EQ(FieldsOf(to), Fields({12345, 0, 8000, 4000, 0}));
}

TEST_F(TqTftpTimeout, ARunOfExpiriesDoublesToAMinute) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    Fields timeouts;
    for (int i = 0; i < 7; ++i) {
        now += to.timeout;
        timeouts.push_back(TFTP_timeout_left(&to, &expired));
        EXPECT_EQ(expired, 1u);
    }
    EXPECT_EQ(timeouts, Fields({8000, 16000, 32000, 60000, 60000, 60000, 60000}));
}

TEST_F(TqTftpTimeout, DoublingIsCutTo60000AndNotBefore) {
    const unsigned int cases[][2] = {
        {0, 0},         {1, 2},         {29999, 59998}, {30000, 60000},       {30001, 60000},
        {40000, 60000}, {60000, 60000}, {60001, 60000}, {0x80000000u, 60000}, {0xFFFFFFFFu, 60000}};
    for (const unsigned int* timeoutAndDouble : cases) {
        TFTP_TO_STRUCT to = {static_cast<unsigned int>(now) - timeoutAndDouble[0], 1,
                             timeoutAndDouble[0], 4000, 0};
        EXPECT_EQ(TFTP_timeout_left(&to, &expired), timeoutAndDouble[1]);
        EXPECT_EQ(expired, 1u);
        EXPECT_EQ(to.timeout, timeoutAndDouble[1]);
    }
}

TEST_F(TqTftpTimeout, AnAnswerAfter100MillisecondsGivesTheWorkedExample) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now = 5100;
    EXPECT_EQ(TFTP_timeout_update(&to), 7412u);
    EXPECT_EQ(FieldsOf(to), Fields({5100, 1, 7412, 3512, 975}));
}

TEST_F(TqTftpTimeout, SamplesApproachTheRoundTripTime) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    Fields timeouts;
    for (int i = 0; i < 6; ++i) {
        now += 100;
        timeouts.push_back(TFTP_timeout_update(&to));
    }
    EXPECT_EQ(timeouts, Fields({7412, 9421, 10447, 10796, 10690, 10288}));
    for (int i = 0; i < 200; ++i) {
        now += 100;
        TFTP_timeout_update(&to);
    }
    EXPECT_EQ(to.smoothedRtt, 100u);
    EXPECT_EQ(to.rttVariance, 1u);
}

TEST_F(TqTftpTimeout, ALongerRoundTripRaisesTheTimeout) {
    TFTP_TO_STRUCT to = {5000, 1, 140, 100, 10};
    now = 5500;
    // err = 400: 100 + 50; 10 + (390 >> 2) = 107
    EXPECT_EQ(TFTP_timeout_update(&to), 150u + 4 * 107u);
    EXPECT_EQ(FieldsOf(to), Fields({5500, 1, 578, 150, 107}));
}

TEST_F(TqTftpTimeout, ShiftsOfNegativeNumbersRoundDown) {
    TFTP_TO_STRUCT to = {5000, 1, 140, 100, 10};
    now = 5099;
    // err = -1: -1 >> 3 is -1; |err| - 10 = -9: -9 >> 2 is -3
    EXPECT_EQ(TFTP_timeout_update(&to), 99u + 4 * 7u);
    EXPECT_EQ(FieldsOf(to), Fields({5099, 1, 127, 99, 7}));
}

TEST_F(TqTftpTimeout, AnAnswerOneMillisecondEarlyIsADeviationOfOne) {
    TFTP_TO_STRUCT to = {5000, 1, 4000, 100, 5};
    now = 5099;
    // err = -1: -1 >> 3 is -1; |err| - 5 = -4: -4 >> 2 is -1
    EXPECT_EQ(TFTP_timeout_update(&to), 99u + 4 * 4u);
    EXPECT_EQ(FieldsOf(to), Fields({5099, 1, 115, 99, 4}));
}

TEST_F(TqTftpTimeout, NeitherTheTimeNorTheDeviationBecomesZero) {
    TFTP_TO_STRUCT to = {5000, 1, 1, 1, 1};
    // err = -1: 1 - 1 becomes 1; |err| - 1 = 0 leaves 1
    EXPECT_EQ(TFTP_timeout_update(&to), 5u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 5, 1, 1}));
    to = {5000, 1, 1, 0, 0};
    EXPECT_EQ(TFTP_timeout_update(&to), 5u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 5, 1, 1}));
}

TEST_F(TqTftpTimeout, ASampleIsNotBounded) {
    TFTP_TO_STRUCT to = {0, 1, 4000, 4000, 0};
    now = 804000;
    // err = 800000
    EXPECT_EQ(TFTP_timeout_update(&to), 104000u + 4 * 200000u);
    to = {0, 1, 4000, 0x80000000u, 0};
    now = 0;
    // err = -2^31, whose magnitude is -2^31 again
    EXPECT_EQ(TFTP_timeout_update(&to), 0x70000000u + 4 * 0xE0000000u);
    EXPECT_EQ(to.smoothedRtt, 0x70000000u);
    EXPECT_EQ(to.rttVariance, 0xE0000000u);
}

TEST_F(TqTftpTimeout, AnUpdateAfterARestartTakesNoSample) {
    TFTP_TO_STRUCT to = {1, 1, 1234, 77, 88};
    TFTP_timeout_restart(&to);
    now = 5100;
    EXPECT_EQ(TFTP_timeout_update(&to), 1234u);
    EXPECT_EQ(FieldsOf(to), Fields({5100, 1, 1234, 77, 88}));
}

TEST_F(TqTftpTimeout, AnUpdateAfterAnExpiryTakesNoSample) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now += 4000;
    TFTP_timeout_left(&to, nullptr);
    now += 100;
    EXPECT_EQ(TFTP_timeout_update(&to), 8000u);
    EXPECT_EQ(FieldsOf(to), Fields({9100, 1, 8000, 4000, 0}));
}

TEST_F(TqTftpTimeout, TheUpdateAfterOneWithoutASampleTakesOneAgain) {
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    TFTP_timeout_restart(&to);
    TFTP_timeout_update(&to);
    now += 100;
    EXPECT_EQ(TFTP_timeout_update(&to), 7412u);
}

TEST_F(TqTftpTimeout, OnlyTheFlagOneAllowsASample) {
    TFTP_TO_STRUCT to = {5000, 2, 1234, 77, 88};
    EXPECT_EQ(TFTP_timeout_update(&to), 1234u);
    EXPECT_EQ(FieldsOf(to), Fields({5000, 1, 1234, 77, 88}));
}

TEST_F(TqTftpTimeout, TheWrapOfTheClockIsHarmless) {
    now = (1ull << 32) - 50;
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    EXPECT_EQ(to.startTime, 0xFFFFFFFFu - 49u);
    now += 100;
    EXPECT_EQ(RTCS_time_get(), 50u);
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 3900u);
    EXPECT_EQ(expired, 0u);
    EXPECT_EQ(TFTP_timeout_update(&to), 7412u);
    EXPECT_EQ(to.startTime, 50u);
}

TEST_F(TqTftpTimeout, AWaitAcrossTheWrapOfTheClockExpiresInTime) {
    now = (1ull << 32) - 50;
    TFTP_TO_STRUCT to;
    TFTP_timeout_init(&to);
    now += 10;
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 3990u);
    EXPECT_EQ(expired, 0u);
    now += 3989;
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 1u);
    EXPECT_EQ(expired, 0u);
    now += 1;
    EXPECT_EQ(TFTP_timeout_left(&to, &expired), 8000u);
    EXPECT_EQ(expired, 1u);
}

// Seconds and microseconds, and the milliseconds they make.
struct Reading {
    long seconds;
    long microseconds;
    unsigned int milliseconds;
};

class RtcsTime : public testing::Test {
protected:
    ~RtcsTime() override { systemCalls = SystemCalls(); }

    static void ExpectRead(const Reading& reading) {
        systemCalls.gettimeofday = [&reading] {
            timeval time = timeval();
            time.tv_sec = static_cast<time_t>(reading.seconds);
            time.tv_usec = static_cast<suseconds_t>(reading.microseconds);
            return time;
        };
        EXPECT_EQ(RTCS_time_get(), reading.milliseconds)
            << reading.seconds << " s, " << reading.microseconds << " us";
    }
};

TEST_F(RtcsTime, RoundsMoreThanHalfAMillisecondUp) {
    const Reading readings[] = {
        {0, 0, 0},        {0, 1, 0},         {0, 499, 0},         {0, 500, 0},
        {0, 501, 1},      {0, 999, 1},       {0, 1000, 1},        {0, 1500, 1},
        {0, 1501, 2},     {1, 0, 1000},      {12, 345500, 12345}, {12, 345501, 12346},
        {0, 999500, 999}, {0, 999501, 1000}, {7, 999999, 8000},
    };
    for (const Reading& reading : readings) ExpectRead(reading);
}

TEST_F(RtcsTime, KeepsTheLow32Bits) {
    const Reading readings[] = {
        {4294967, 295000, 0xFFFFFFFFu},
        {4294967, 296000, 0},
        {4294967, 295501, 0},
        {1700000000, 123000, static_cast<unsigned int>(1700000000123ull & 0xFFFFFFFFull)},
    };
    for (const Reading& reading : readings) ExpectRead(reading);
}

TEST_F(RtcsTime, IsTheWallClock) {
    timeval before;
    gettimeofday(&before, nullptr);
    const unsigned int time = RTCS_time_get();
    timeval after;
    gettimeofday(&after, nullptr);
    const unsigned int start = static_cast<unsigned int>(before.tv_sec) * 1000 +
                               static_cast<unsigned int>(before.tv_usec) / 1000;
    const unsigned int end = static_cast<unsigned int>(after.tv_sec) * 1000 +
                             static_cast<unsigned int>(after.tv_usec) / 1000 + 1;
    EXPECT_LE(time - start, end - start);
}

}  // namespace
