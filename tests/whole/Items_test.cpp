#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <vector>

#include "Random.h"
#include "Reports.h"
#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqCounter.h"
#include "TqNumber.h"
#include "TqString.h"
#include "Values.h"

// The item: five digits with the payload's length, then the payload. What every type makes of a
// good one is in the tests of the type; here are the form itself and the bad ones.

namespace {

// A value that is not empty, its item, and the text of the empty value.
struct Sample {
    std::unique_ptr<TqDataType> value;
    std::string item;
    std::string emptyText;
};

std::vector<Sample> EveryType() {
    std::vector<Sample> samples;
    samples.push_back({std::make_unique<TqString>("hello"), "00005hello", ""});
    samples.push_back({std::make_unique<TqBuffer>(BufferOf("raw")), "00003raw", ""});
    samples.push_back({std::make_unique<TqNumber>(-42), "00003-42", "0"});
    samples.push_back({std::make_unique<TqCounter>(17), "0000217", "0"});
    samples.push_back({std::make_unique<TqBoolean>(1), "00004True", "False"});
    return samples;
}

// The text form alone, also of the byte buffer, which appends it.
std::string TextFormOf(const TqDataType& value) {
    TqString text;
    value.ToString(text);
    return Counted(text);
}

// Good items.

TEST(TqItem, EveryTypeWritesItsItem) {
    for (const Sample& sample : EveryType()) EXPECT_EQ(ItemOf(*sample.value), sample.item);
}

TEST(TqItem, ItemsFollowEachOtherWithoutTags) {
    const std::vector<Sample> samples = EveryType();
    TqBuffer buffer;
    for (const Sample& sample : samples) sample.value->ToBuffer(buffer);
    EXPECT_EQ(Bytes(buffer), "00005hello00003raw00003-42000021700004True");
    for (const Sample& sample : samples) {
        const std::unique_ptr<TqDataType> original(sample.value->Clone());
        sample.value->FromBuffer(buffer);
        EXPECT_TRUE(sample.value->Equals(original.get()));
    }
    EXPECT_EQ(buffer.readPosition, buffer.length);
}

TEST(TqItem, WritingLeavesTheReadPosition) {
    for (const Sample& sample : EveryType()) {
        TqBuffer buffer = BufferOf("abc");
        buffer.AdvanceReadContext(2);
        sample.value->ToBuffer(buffer);
        EXPECT_EQ(Held(buffer), BytesInside("abc" + sample.item, 2));
    }
}

TEST(TqItem, TheLengthHasFiveDigits) {
    struct {
        unsigned int length;
        const char* digits;
    } const cases[] = {{0, "00000"},     {1, "00001"},     {9, "00009"},     {10, "00010"},
                       {99, "00099"},    {100, "00100"},   {999, "00999"},   {1000, "01000"},
                       {9999, "09999"},  {10000, "10000"}, {32768, "32768"}, {65535, "65535"},
                       {65536, "65536"}, {99999, "99999"}};
    for (const auto& c : cases) {
        const std::string payload = Letters(c.length);
        const std::string item = c.digits + payload;
        const TqString string(payload.c_str());
        const TqBuffer bytes = BufferOf(payload);
        EXPECT_EQ(ItemOf(string), item);
        EXPECT_EQ(ItemOf(bytes), item);
        TqBuffer in = BufferOf(item + item);
        TqString stringBack;
        TqBuffer bytesBack;
        stringBack.FromBuffer(in);
        bytesBack.FromBuffer(in);
        EXPECT_TRUE(stringBack.Equals(&string));
        EXPECT_TRUE(bytesBack.Equals(&bytes));
        EXPECT_EQ(in.readPosition, in.length);
    }
}

TEST(TqItem, ALengthOfMoreDigitsLosesItsLastOnes) {
    struct {
        unsigned int length;
        const char* digits;
    } const cases[] = {{100000, "10000"}, {123456, "12345"}, {1234567, "12345"}};
    for (const auto& c : cases) {
        const std::string payload = Letters(c.length);
        EXPECT_EQ(ItemOf(TqString(payload.c_str())), c.digits + payload);
        EXPECT_EQ(ItemOf(BufferOf(payload)), c.digits + payload);
    }
}

TEST(TqItem, AnItemThatIsTooLongIsCorrupt) {
    TqBuffer buffer;
    TqString(Letters(100000).c_str()).ToBuffer(buffer);
    TqString back;
    back.FromBuffer(buffer);
    EXPECT_EQ(Counted(back), Letters(10000));
    EXPECT_EQ(buffer.readPosition, 10005u);
}

TEST(TqItem, TheLengthIsReadLeniently) {
    struct {
        const char* bytes;
        const char* payload;
    } const cases[] = {{"    2ab", "ab"}, {" \t\n\v2ab", "ab"}, {"+0002ab", "ab"},
                       {"   +2ab", "ab"}, {"2    ab", "ab"},    {"2xyz9ab", "ab"},
                       {"02.99ab", "ab"}, {"0x123ab", ""},      {"abcdeab", ""},
                       {"     ab", ""},   {"-0000ab", ""},      {"+ 002ab", ""},
                       {"--002ab", ""}};
    for (const auto& c : cases) {
        TqBuffer in = BufferOf(c.bytes);
        TqString string("before");
        string.FromBuffer(in);
        EXPECT_EQ(Counted(string), c.payload) << c.bytes;
        EXPECT_EQ(in.readPosition, 5 + string.length) << c.bytes;
        in.readPosition = 0;
        TqBuffer buffer = BufferOf("before");
        buffer.FromBuffer(in);
        EXPECT_EQ(Bytes(buffer), c.payload) << c.bytes;
        EXPECT_EQ(in.readPosition, 5 + buffer.length) << c.bytes;
    }
}

TEST(TqItem, ANulEndsTheLength) {
    TqBuffer in =
        BufferOf(Exactly("2\0"
                         "999ab"));
    TqString string;
    string.FromBuffer(in);
    EXPECT_EQ(Counted(string), "ab");
}

// Incomplete items.

// One report, the empty value, and the buffer used up.
void ExpectIncomplete(const std::string& bytes, unsigned int readPosition = 0) {
    for (const Sample& sample : EveryType()) {
        TightBuffer in(bytes);
        in.readPosition = readPosition;
        sample.value->FromBuffer(in);
        EXPECT_EQ(TakeReports(), Reports({"TqBuffer"})) << bytes;
        EXPECT_EQ(TextFormOf(*sample.value), sample.emptyText) << bytes;
        EXPECT_EQ(in.readPosition, in.length) << bytes;
    }
}

TEST(TqItem, AnItemIsIncompleteAtEveryTruncatedLength) {
    for (const Sample& sample : EveryType()) {
        for (std::size_t length = 0; length < sample.item.size(); ++length)
            ExpectIncomplete(sample.item.substr(0, length));
    }
}

TEST(TqItem, TheLastItemIsIncompleteAtEveryTruncatedLength) {
    const std::string before = "00002ok";
    for (const Sample& sample : EveryType()) {
        for (std::size_t length = 0; length < sample.item.size(); ++length)
            ExpectIncomplete(before + sample.item.substr(0, length), 7);
    }
}

TEST(TqItem, ALongItemIsIncompleteAtEveryTruncatedLength) {
    const std::string item = "00300" + Letters(300);
    for (std::size_t length = 0; length < item.size(); ++length)
        ExpectIncomplete(item.substr(0, length));
}

TEST(TqItem, AnItemThatEndsWithTheBufferIsComplete) {
    for (const Sample& sample : EveryType()) {
        const std::unique_ptr<TqDataType> original(sample.value->Clone());
        TightBuffer in(sample.item);
        sample.value->FromBuffer(in);
        EXPECT_TRUE(sample.value->Equals(original.get()));
        EXPECT_EQ(in.readPosition, in.length);
    }
}

TEST(TqItem, ANegativeLengthIsIncomplete) {
    for (const char* digits : {"-0001", "   -1", "-9999", "   -5", "   -6", "\n-001"})
        ExpectIncomplete(digits + Letters(20));
}

TEST(TqItem, ALengthBeyondTheBufferIsIncomplete) {
    for (const char* digits : {"00021", "99999", "+9999", "   21", "21xyz"})
        ExpectIncomplete(digits + Letters(20));
}

TEST(TqItem, AReadPositionBeyondTheBufferIsIncomplete) {
    for (const unsigned int beyond : {9u, 100u, 0xFFFFFFFFu}) ExpectIncomplete("00003abc", beyond);
}

TEST(TqItem, AnIncompleteItemGivesTheBlockOfAStringBack) {
    TightBuffer in("00009abc");
    TqString string(Letters(100).c_str());
    string.FromBuffer(in);
    EXPECT_EQ(Held(string), HeldInside(""));
    EXPECT_EQ(TakeReports(), Reports({"TqBuffer"}));
}

// Any bytes.

// Mostly what lengths are made of, so that the reads get somewhere.
std::string RandomBytes(Random& random) {
    const char often[] = "0000000000000123456789 -+x";
    std::string bytes(random.Below(80), '\0');
    for (char& byte : bytes) {
        byte = random.Below(8) == 0 ? static_cast<char>(random.Below(256))
                                    : often[random.Below(sizeof often - 1)];
    }
    return bytes;
}

// What is stated about reading an item, once more.
struct Expected {
    bool complete;
    std::string payload;
    unsigned int readPosition;
};

Expected Read(const std::string& bytes, unsigned int readPosition) {
    const Expected incomplete = {false, "", static_cast<unsigned int>(bytes.size())};
    if (bytes.size() - readPosition < 5) return incomplete;
    const long length = std::strtol(bytes.substr(readPosition, 5).c_str(), nullptr, 10);
    if (length < 0 || static_cast<std::size_t>(length) > bytes.size() - readPosition - 5)
        return incomplete;
    const unsigned int count = static_cast<unsigned int>(length);
    return {true, bytes.substr(readPosition + 5, count), readPosition + 5 + count};
}

// The payload as a string keeps it: counted whole, the text up to the first NUL.
std::string AsText(const std::string& payload) {
    std::string text = payload.substr(0, payload.find('\0'));
    text.resize(payload.size());
    return text;
}

// What the text form of the sample is once it has read the payload.
std::string TextFormAfter(const Sample& sample, const std::string& payload) {
    const short type = sample.value->TypeId();
    if (type == TqString::typeId) return AsText(payload);
    if (type == TqBuffer::typeId) return TextFormOf(BufferOf(payload));
    const std::unique_ptr<TqDataType> parsed(sample.value->Clone());
    parsed->FromString(payload.c_str());
    return TextFormOf(*parsed);
}

TEST(TqItem, AnyBytesAreReadAsStatedAndEveryLoopEnds) {
    Random random(1);
    const std::vector<Sample> samples = EveryType();
    unsigned int complete = 0, incomplete = 0;
    for (int round = 0; round < 10000; ++round) {
        const std::string bytes = RandomBytes(random);
        TightBuffer in(bytes);
        for (unsigned int reads = 0; in.readPosition < in.length; ++reads) {
            ASSERT_LE(reads, bytes.size() / 5);
            const Sample& sample = samples[random.Below(static_cast<unsigned int>(samples.size()))];
            const Expected expected = Read(bytes, in.readPosition);
            sample.value->FromBuffer(in);
            ASSERT_EQ(TakeReports(), expected.complete ? Reports() : Reports({"TqBuffer"}));
            ASSERT_EQ(in.readPosition, expected.readPosition);
            ASSERT_EQ(TextFormOf(*sample.value), TextFormAfter(sample, expected.payload));
            ++(expected.complete ? complete : incomplete);
        }
    }
    EXPECT_GT(complete, 10000u);
    EXPECT_GT(incomplete, 5000u);
}

}  // namespace
