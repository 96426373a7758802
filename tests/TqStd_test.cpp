#include "TqStd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iomanip>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Reports.h"
#include "TqBasePtrList.h"
#include "TqDateTime.h"
#include "Values.h"

namespace {

template <class Value>
std::string Streamed(const Value& value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

// A set of either kind takes each of these once.
template <class Value>
void ExpectAreKeys(const Value& a, const Value& b) {
    const std::set<Value> ordered{a, b, a, b};
    EXPECT_EQ(ordered.size(), 2u);
    EXPECT_EQ(ordered.count(a), 1u);
    const std::unordered_set<Value> hashed{a, b, a, b};
    EXPECT_EQ(hashed.size(), 2u);
    EXPECT_EQ(hashed.count(b), 1u);
    EXPECT_EQ(std::hash<Value>()(a), std::hash<Value>()(Value(a)));
    EXPECT_NE(std::hash<Value>()(a), std::hash<Value>()(b));
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_TRUE(a == a);
    EXPECT_TRUE(a != b);
}

TEST(TqStd, StreamsTheTextOfAnyValue) {
    EXPECT_EQ(Streamed(TqString("eth0")), "eth0");
    EXPECT_EQ(Streamed(TqNumber(-42)), "-42");
    EXPECT_EQ(Streamed(TqCounter(4000000000u)), "4000000000");
    EXPECT_EQ(Streamed(TqBoolean(1)), "True");
    EXPECT_EQ(Streamed(TqSnmpOid("1.3.6")), "1.3.6");
    EXPECT_EQ(Streamed(BufferOf("a\n")), "a*");
    EXPECT_EQ(Streamed(TqIpAddress(0x0A000001)), "10.0.0.1");
    EXPECT_EQ(Streamed(TqNetworkMask(0xFF000000)), "255.0.0.0");
    const tm march = {8, 7, 6, 5, 2, 124, 0, 0, 0, 0, nullptr};
    EXPECT_EQ(Streamed(TqDateTime(&march)), "02/05/0124 06:07:08");
    const TqBoolean flag(0);
    const TqDataType& value = flag;
    EXPECT_EQ(Streamed(value), "False");
}

TEST(TqStd, KeepsToTheWidthOfTheStream) {
    std::ostringstream out;
    out << std::setw(6) << TqNumber(42) << std::left << std::setw(5) << TqString("ab") << '|';
    EXPECT_EQ(out.str(), "    42ab   |");
}

TEST(TqStd, MakesKeysOfValues) {
    ExpectAreKeys(TqString("a"), TqString("b"));
    ExpectAreKeys(BufferOf("a"), BufferOf("ab"));
    ExpectAreKeys(TqSnmpOid("1.3"), TqSnmpOid("1.3.1"));
    ExpectAreKeys(TqNumber(-1), TqNumber(2));
    ExpectAreKeys(TqCounter(1), TqCounter(2));
    ExpectAreKeys(TqBoolean(0), TqBoolean(1));
    ExpectAreKeys(TqFloat(1.25f), TqFloat(1.5f));
    ExpectAreKeys(TqIpAddress(1ul), TqIpAddress(2ul));
    ExpectAreKeys(TqNetworkMask(0x80000000ul), TqNetworkMask(0xC0000000ul));
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqStd, MakesKeysOfHandles) {
    TqBaseObject objects[2];
    for (TqBaseObject& object : objects) ++object.refCount;
    ExpectAreKeys(TqRef<TqBaseObject>(&objects[0]), TqRef<TqBaseObject>(&objects[1]));
    for (TqBaseObject& object : objects) --object.refCount;
}

TEST(TqStd, FindsTextsOfAnyLengthInAMap) {
    std::map<TqString, int> numbers;
    std::unordered_map<TqString, int> hashed;
    for (int i = 0; i < 100; ++i) {
        const std::string text(static_cast<std::size_t>(i), 'x');
        hashed[text.c_str()] = numbers[text.c_str()] = i;
    }
    EXPECT_EQ(numbers.size(), 100u);
    EXPECT_EQ(numbers["xxx"], 3);
    EXPECT_EQ(hashed.at(std::string(77, 'x').c_str()), 77);
}

// Texts and their hashes as they are known of FNV-1a; where a hash has more bits, these are its
// last.
TEST(TqStd, HashesOfTextsAreThoseOfTheirFunction) {
    const auto hash = [](const char* text) {
        return static_cast<std::uint32_t>(std::hash<TqString>()(text));
    };
    EXPECT_EQ(hash(""), 0x811C9DC5u);
    EXPECT_EQ(hash("a"), 0xE40C292Cu);
    EXPECT_EQ(hash("foobar"), 0xBF9CF968u);
}

TEST(TqStd, EqualFloatsHaveEqualHashes) {
    EXPECT_TRUE(TqFloat(0.0f) == TqFloat(-0.0f));
    EXPECT_EQ(std::hash<TqFloat>()(TqFloat(0.0f)), std::hash<TqFloat>()(TqFloat(-0.0f)));
}

TEST(TqStd, LetsAlgorithmsGoThroughATypedList) {
    int numbers[] = {10, 20, 30};
    TqPtrList<int> list;
    for (int& number : numbers) list.Append(&number);
    const std::vector<int*> copied(list.begin(), list.end());
    EXPECT_EQ(copied, (std::vector<int*>{&numbers[0], &numbers[1], &numbers[2]}));
    const auto isTwenty = [](const int* number) { return *number == 20; };
    EXPECT_EQ(*std::find_if(list.begin(), list.end(), isTwenty), &numbers[1]);
    EXPECT_EQ(std::count_if(list.begin(), list.end(), isTwenty), 1);
    EXPECT_EQ(list.walkDepth, 0u);
}

}  // namespace
