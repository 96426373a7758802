#include <gtest/gtest.h>

#include "Random.h"
#include "Scale.h"
#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqCounter.h"
#include "TqNumber.h"
#include "TqString.h"
#include "Values.h"

// Many random values through one buffer. Every value is made twice, once to be written and once to
// be compared with what was read.

namespace {

const int lowest = -2147483647 - 1;

unsigned int ValueCount() {
    return Scaled(100000, 100000);
}

// An empty buffer with room for `count` bytes: one without allocates anew for every item.
TqBuffer WithRoom(unsigned int count) {
    TqBuffer buffer = BufferOf(std::string(count, '\0'));
    buffer.TruncateAfter(0);
    return buffer;
}

// A third of all numbers are small, a third large, a third next to a power of two.
unsigned int RandomNumber(Random& random) {
    const unsigned int number = random.Number();
    switch (random.Below(3)) {
        case 0:
            return number % 1000;
        case 1:
            return number;
        default:
            return (1u << number % 32) + random.Below(3) - 1;
    }
}

std::string RandomBytes(Random& random) {
    const unsigned int longest = random.Below(16) == 0 ? 300 : 40;
    std::string bytes(random.Below(longest), '\0');
    for (char& byte : bytes) byte = static_cast<char>(random.Below(256));
    return bytes;
}

void Make(TqString& string, Random& random) {
    string.Empty();
    for (const char byte : RandomBytes(random)) string.AppendChar(byte);
}

void Make(TqBuffer& buffer, Random& random) {
    buffer = BufferOf(RandomBytes(random));
}

void Make(TqNumber& number, Random& random) {
    number.value = static_cast<int>(RandomNumber(random));
    if (random.Below(64) == 0) number.value = lowest;
}

void Make(TqCounter& counter, Random& random) {
    counter.count = RandomNumber(random);
}

void Make(TqBoolean& boolean, Random& random) {
    boolean.state = static_cast<int>(random.Below(2) == 0 ? 0 : RandomNumber(random));
}

void ExpectReadBack(const TqString& original, const TqString& read) {
    // What stands behind a NUL is counted and not kept.
    std::string expected = original.data;
    expected.resize(original.length);
    ASSERT_EQ(Counted(read), expected);
    ASSERT_TRUE(read.Equals(&original));
}

void ExpectReadBack(const TqBuffer& original, const TqBuffer& read) {
    ASSERT_TRUE(read.Equals(&original));
    ASSERT_EQ(Bytes(read), Bytes(original));
}

void ExpectReadBack(const TqNumber& original, const TqNumber& read) {
    ASSERT_EQ(read.value, original.value == lowest ? 0 : original.value);
    ASSERT_EQ(read.Equals(&original), original.value != lowest);
}

void ExpectReadBack(const TqCounter& original, const TqCounter& read) {
    const bool survives = original.count <= 2147483647u;
    ASSERT_EQ(read.count, survives ? original.count : 0u);
    ASSERT_EQ(read.Equals(&original), survives);
}

void ExpectReadBack(const TqBoolean& original, const TqBoolean& read) {
    ASSERT_EQ(read.state, original.state != 0 ? 1 : 0);
    ASSERT_TRUE(read.Equals(&original));
}

template <class T>
void ExpectRoundTrip(TqBuffer& buffer, unsigned int count) {
    Random writing(1), reading(1);
    T original, read;
    for (unsigned int i = 0; i < count; ++i) {
        Make(original, writing);
        original.ToBuffer(buffer);
    }
    for (unsigned int i = 0; i < count; ++i) {
        Make(original, reading);
        read.FromBuffer(buffer);
        ASSERT_NO_FATAL_FAILURE(ExpectReadBack(original, read)) << "value " << i;
    }
    EXPECT_EQ(buffer.readPosition, buffer.length);
}

template <class T>
void ExpectRoundTripThroughOneBuffer() {
    TqBuffer buffer = WithRoom(6000000);
    ExpectRoundTrip<T>(buffer, ValueCount());
    EXPECT_EQ(buffer.capacity, 6000000u);
}

TEST(RoundTrip, Strings) {
    ExpectRoundTripThroughOneBuffer<TqString>();
}

TEST(RoundTrip, Buffers) {
    ExpectRoundTripThroughOneBuffer<TqBuffer>();
}

TEST(RoundTrip, Numbers) {
    ExpectRoundTripThroughOneBuffer<TqNumber>();
}

TEST(RoundTrip, Counters) {
    ExpectRoundTripThroughOneBuffer<TqCounter>();
}

TEST(RoundTrip, Booleans) {
    ExpectRoundTripThroughOneBuffer<TqBoolean>();
}

TEST(RoundTrip, NumbersThroughBuffersThatGrowWithEachOfThem) {
    for (unsigned int buffers = 0; buffers < 50; ++buffers) {
        TqBuffer buffer;
        ExpectRoundTrip<TqNumber>(buffer, ValueCount() / 50);
        EXPECT_EQ(buffer.capacity, buffer.length);
    }
}

}  // namespace
