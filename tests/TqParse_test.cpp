#include "TqParse.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "Random.h"
#include "Reports.h"
#include "TqNetworkMask.h"
#include "Values.h"

namespace {

// Where the parser of a value stopped, or -1 when all was taken.
template <class Value>
int StopOf(const char* text, Value& value) {
    const char* end = nullptr;
    const bool isTaken = TqParse(text, value, &end);
    EXPECT_EQ(TqParse(text, value), isTaken) << "with and without the place";
    if (!isTaken) return static_cast<int>(end - text);
    EXPECT_EQ(*end, '\0');
    return -1;
}

struct Refused {
    const char* text;
    int stop;
};

TEST(TqParse, TakesNumbersInTheirWholeRange) {
    int number = 0;
    EXPECT_EQ(StopOf("42", number), -1);
    EXPECT_EQ(number, 42);
    EXPECT_EQ(StopOf("-2147483648", number), -1);
    EXPECT_EQ(number, -2147483647 - 1);
    EXPECT_EQ(StopOf("+2147483647", number), -1);
    EXPECT_EQ(number, 2147483647);
    EXPECT_EQ(StopOf("-0007", number), -1);
    EXPECT_EQ(number, -7);
    EXPECT_EQ(StopOf("-0", number), -1);
    EXPECT_EQ(number, 0);
}

TEST(TqParse, RefusesWhatIsNoNumberAndLeavesTheOldOne) {
    const Refused refused[] = {{"", 0},
                               {"-", 1},
                               {"+-1", 1},
                               {" 5", 0},
                               {"5 ", 1},
                               {"12abc", 2},
                               {"0x1F", 1},
                               {"Yes", 0},
                               {"1.5", 1},
                               {"2147483648", 0},
                               {"-2147483649", 1},
                               {"4294967296", 0},
                               {"99999999999999999999999999999999", 0}};
    for (const Refused& each : refused) {
        TqNumber number(7);
        EXPECT_EQ(StopOf(each.text, number), each.stop) << each.text;
        EXPECT_EQ(number.value, 7) << each.text;
    }
}

TEST(TqParse, TakesCountersUpToTheirLast) {
    TqCounter counter;
    EXPECT_EQ(StopOf("4294967295", counter), -1);
    EXPECT_EQ(counter.count, 4294967295u);
    EXPECT_EQ(StopOf("+0", counter), -1);
    EXPECT_EQ(counter.count, 0u);
    counter.count = 7;
    for (const Refused& each :
         {Refused{"4294967296", 0}, {"-1", 0}, {"-0", 0}, {"", 0}, {"1e3", 1}, {"True", 0}}) {
        EXPECT_EQ(StopOf(each.text, counter), each.stop) << each.text;
        EXPECT_EQ(counter.count, 7u);
    }
}

TEST(TqParse, KnowsAWordForNoBesideEachForYes) {
    for (const char* word :
         {"1", "T", "y", "on", "YES", "One", "true", "Open", "Enable", "eNABLED"}) {
        TqBoolean flag(0);
        EXPECT_EQ(StopOf(word, flag), -1) << word;
        EXPECT_EQ(flag.state, 1) << word;
        EXPECT_EQ(TqBoolean(word).state, 1) << "as the lenient parser has it: " << word;
    }
    for (const char* word :
         {"0", "f", "N", "Off", "no", "Zero", "FALSE", "closed", "Disable", "Disabled"}) {
        TqBoolean flag(1);
        EXPECT_EQ(StopOf(word, flag), -1) << word;
        EXPECT_EQ(flag.state, 0) << word;
        EXPECT_EQ(TqBoolean(word).state, 0) << "as the lenient parser has it: " << word;
    }
}

TEST(TqParse, RefusesWordsThatItDoesNotKnow) {
    for (const char* word : {"", "2", "-1", "Tru", "Truee", " on", "on ", "maybe", "-Yes"}) {
        bool flag = true;
        EXPECT_EQ(StopOf(word, flag), 0) << word;
        EXPECT_TRUE(flag);
    }
}

TEST(TqParse, TakesFloats) {
    const struct {
        const char* text;
        float value;
    } taken[] = {{"0", 0.0f},
                 {"3.", 3.0f},
                 {".5", 0.5f},
                 {"-12.5", -12.5f},
                 {"2.5e3", 2500.f},
                 {"+1E-2", 0.01f},
                 {"3.4028235e38", FLT_MAX},
                 {"-3.4028235e38", -FLT_MAX},
                 {"1e-60", 0.0f}};
    for (const auto& each : taken) {
        TqFloat number(7);
        EXPECT_EQ(StopOf(each.text, number), -1) << each.text;
        EXPECT_EQ(number.value, each.value) << each.text;
    }
}

TEST(TqParse, RefusesWhatIsNoFloat) {
    for (const Refused& each : {Refused{"", 0},
                                {".", 1},
                                {"-.", 2},
                                {"abc", 0},
                                {" 1", 0},
                                {"1 ", 1},
                                {"1e", 1},
                                {"1e+", 1},
                                {"1.5.2", 3},
                                {"0x10", 1},
                                {"inf", 0},
                                {"nan", 0},
                                {"1e39", 0},
                                {"-1e39", 0},
                                {"-1e400", 0},
                                {"3.4028236e38", 0}}) {
        TqFloat number(7);
        EXPECT_EQ(StopOf(each.text, number), each.stop) << each.text;
        EXPECT_EQ(number.value, 7) << each.text;
    }
}

TEST(TqParse, TakesIdentifiers) {
    TqSnmpOid oid("9");
    EXPECT_EQ(StopOf("1.3.6.1.4.1.4294967295.0", oid), -1);
    EXPECT_EQ(oid.count, 8u);
    EXPECT_EQ(oid.values[6], 4294967295u);
    EXPECT_EQ(StopOf("0", oid), -1);
    EXPECT_EQ(oid.count, 1u);
    std::string longOne = "1";
    for (int i = 0; i < 40; ++i) longOne += ".7";
    EXPECT_EQ(StopOf(longOne.c_str(), oid), -1);
    EXPECT_EQ(oid.count, 41u);
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqParse, RefusesWhatIsNoIdentifierAndReportsNothing) {
    for (const Refused& each : {Refused{"", 0},
                                {".1.3", 0},
                                {"1..3", 2},
                                {"1.3.", 4},
                                {"1.a.3", 2},
                                {"1.3 ", 3},
                                {"1.-3", 2},
                                {"1.4294967296", 2}}) {
        TqSnmpOid oid("1.2");
        EXPECT_EQ(StopOf(each.text, oid), each.stop) << each.text;
        EXPECT_EQ(oid.count, 2u) << each.text;
    }
    EXPECT_EQ(TakeReports(), Reports());
}

TEST(TqParse, TakesAddresses) {
    TqIpAddress address;
    EXPECT_EQ(StopOf("10.0.0.1", address), -1);
    EXPECT_EQ(address.address, 0x0A000001u);
    EXPECT_EQ(address.valid, 1);
    EXPECT_EQ(StopOf("255.255.255.255", address), -1);
    EXPECT_EQ(address.address, 0xFFFFFFFFu);
    EXPECT_EQ(StopOf("0.0.0.0", address), -1);
    EXPECT_EQ(address.address, 0u);
}

TEST(TqParse, RefusesWhatIsNoAddress) {
    for (const Refused& each : {Refused{"", 0},
                                {"1.2.3", 5},
                                {"1.2.3.", 6},
                                {"1.2.3.4.5", 7},
                                {"1.2.3.4 ", 7},
                                {" 1.2.3.4", 0},
                                {"1.2.3.-4", 6},
                                {"1.2.+3.4", 4},
                                {"256.1.1.1", 0},
                                {"1.2.3.4294967300", 6},
                                {"010.0.0.1", 0},
                                {"1.2.3.00", 6},
                                {"10.0.0.1xyz", 8}}) {
        TqIpAddress address(5ul);
        EXPECT_EQ(StopOf(each.text, address), each.stop) << each.text;
        EXPECT_EQ(address.address, 5u) << each.text;
    }
}

TEST(TqParse, TakesMasksThatAreOnes) {
    TqNetworkMask mask;
    EXPECT_EQ(StopOf("255.255.255.0", mask), -1);
    EXPECT_EQ(mask.address, 0xFFFFFF00u);
    EXPECT_EQ(StopOf("255.0.255.0", mask), 0);
    EXPECT_EQ(StopOf("255.255.255.255", mask), 0);
    EXPECT_EQ(mask.address, 0xFFFFFF00u);
    TqIpAddress& behindItsBase = mask;
    EXPECT_EQ(StopOf("255.0.255.0", behindItsBase), 0);
}

TEST(TqParse, TakesTheTextOfADate) {
    TqDateTime date;
    EXPECT_EQ(StopOf("02/05/0124 06:07:08", date), -1);
    EXPECT_EQ(date.time.tm_year, 124);
    EXPECT_EQ(date.time.tm_mon, 2);
    EXPECT_EQ(date.time.tm_mday, 5);
    EXPECT_EQ(date.time.tm_hour, 6);
    EXPECT_EQ(date.time.tm_min, 7);
    EXPECT_EQ(date.time.tm_sec, 8);
    EXPECT_EQ(date.time.tm_wday, 2) << "5 March 2024 was a Tuesday";
    EXPECT_EQ(date.time.tm_yday, 64);
}

TEST(TqParse, RefusesWhatIsNoDate) {
    for (const Refused& each : {Refused{"", 0},
                                {"06:07:08", 2},
                                {"00/05/0124 06:07:08", 0},
                                {"12/05/0124 06:07:08", 0},
                                {"2/05/0124 06:07:08", 0},
                                {"02/32/0124 06:07:08", 3},
                                {"02/00/0124 06:07:08", 3},
                                {"03/31/0124 06:07:08", 3},
                                {"01/30/0124 06:07:08", 3},
                                {"01/29/0123 06:07:08", 3},
                                {"02.05.0124 06:07:08", 2},
                                {"02/05.0124 06:07:08", 5},
                                {"02/05/124 06:07:08", 6},
                                {"02/05/0124T06:07:08", 10},
                                {"02/05/0124  06:07:08", 11},
                                {"02/05/0124 24:07:08", 11},
                                {"02/05/0124 06.07.08", 13},
                                {"02/05/0124 06:07.08", 16},
                                {"02/05/0124 06:60:08", 14},
                                {"02/05/0124 06:07:61", 17},
                                {"02/05/0124 06:07:08.5", 19}}) {
        TqDateTime date;
        date.time.tm_year = 7;
        EXPECT_EQ(StopOf(each.text, date), each.stop) << each.text;
        EXPECT_EQ(date.time.tm_year, 7) << each.text;
    }
    TqDateTime leap;
    EXPECT_EQ(StopOf("01/29/0124 00:00:00", leap), -1);
}

// The calendar of the C library knows the days of the week and of the year.
TEST(TqParse, ReckonsTheDaysOfADateAsTheCLibraryDoes) {
    Random random(11);
    for (int i = 0; i < 2000; ++i) {
        const time_t moment = static_cast<time_t>(random.Below(0x7FFFFFFF));
        tm broken = tm();
        gmtime_r(&moment, &broken);
        if (broken.tm_mon == 0) continue;
        const TqDateTime written(&broken);
        TqDateTime read;
        ASSERT_TRUE(TqParse(TextOf(written).c_str(), read)) << TextOf(written);
        EXPECT_EQ(read.time.tm_wday, broken.tm_wday) << TextOf(written);
        EXPECT_EQ(read.time.tm_yday, broken.tm_yday) << TextOf(written);
        EXPECT_EQ(TextOf(read), TextOf(written));
    }
}

TEST(TqParse, ReportsNullAndFails) {
    int number = 7;
    const char* end = "";
    EXPECT_FALSE(TqParse(nullptr, number, &end));
    EXPECT_EQ(end, nullptr);
    EXPECT_EQ(TakeReports(), Reports({"./TqParse"}));
    TqFloat fraction(7);
    TqBoolean flag(1);
    TqSnmpOid oid("1");
    TqIpAddress address(7ul);
    TqDateTime date;
    EXPECT_FALSE(TqParse(nullptr, fraction));
    EXPECT_FALSE(TqParse(nullptr, flag));
    EXPECT_FALSE(TqParse(nullptr, oid));
    EXPECT_FALSE(TqParse(nullptr, address));
    EXPECT_FALSE(TqParse(nullptr, date));
    EXPECT_EQ(TakeReports(), Reports(5, "./TqParse"));
    EXPECT_EQ(number, 7);
}

// What it takes it understands as the lenient parser does.
TEST(TqParse, NeverDisagreesWithTheLenientParser) {
    const char alphabet[] = "0123456789012345.-+ eTx";
    Random random(12);
    for (int i = 0; i < 200000; ++i) {
        std::string text;
        for (unsigned int length = random.Below(8); length > 0; --length) {
            text += alphabet[random.Below(sizeof alphabet - 1)];
        }
        TqNumber number, lenientNumber;
        TqFloat fraction, lenientFraction;
        if (TqParse(text.c_str(), number)) {
            lenientNumber.FromString(text.c_str());
            EXPECT_EQ(number.value, lenientNumber.value) << text;
        }
        if (TqParse(text.c_str(), fraction)) {
            lenientFraction.FromString(text.c_str());
            EXPECT_EQ(fraction.value, lenientFraction.value) << text;
        }
        TqIpAddress address;
        if (TqParse(text.c_str(), address)) {
            EXPECT_TRUE(address == TqIpAddress(TqString(text.c_str()))) << text;
        }
        TqSnmpOid oid("");
        if (TqParse(text.c_str(), oid)) {
            EXPECT_EQ(oid.Compare(TqSnmpOid(text.c_str())), 0) << text;
        }
    }
    EXPECT_EQ(TakeReports(), Reports());
}

}  // namespace
