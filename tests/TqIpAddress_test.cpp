#include "TqIpAddress.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <string>

#include "Random.h"
#include "TqNetworkMask.h"
#include "TqString.h"
#include "Values.h"

namespace {

std::string TextOf(const TqIpAddress& address) {
    TqString out("what was there before");
    address.toString(out);
    return Counted(out);
}

bool IsValid(const char* text) {
    return TqIpAddress::isValidIpAddress(reinterpret_cast<const unsigned char*>(text));
}

// An address that holds something of its own, to see what a refused text leaves.
const unsigned int before = 0x09080706;

void ExpectParsed(const char* text, unsigned int address) {
    EXPECT_TRUE(IsValid(text)) << text;
    TqIpAddress parsed;
    EXPECT_TRUE(parsed.fromString(text)) << text;
    EXPECT_EQ(parsed.address, address) << text;
    EXPECT_EQ(parsed.valid, 1) << text;
}

void ExpectRefused(const char* text) {
    EXPECT_FALSE(IsValid(text)) << text;
    TqIpAddress kept(before);
    EXPECT_FALSE(kept.fromString(text)) << text;
    EXPECT_EQ(kept.address, before) << text;
    EXPECT_EQ(kept.valid, 1) << text;
    TqIpAddress invalid;
    EXPECT_FALSE(invalid.fromString(text)) << text;
    EXPECT_EQ(invalid.valid, 0) << text;
}

TqIpAddress NotValid(unsigned int address) {
    TqIpAddress result;
    result.address = address;
    return result;
}

// A number whose upper half, where there is one, must not count.
unsigned long Wide(unsigned int number) {
    return static_cast<unsigned long>(0xABCD00000000ull | number);
}

TEST(TqIpAddress, IsZeroAndNotValidByDefault) {
    const TqIpAddress address;
    EXPECT_EQ(address.address, 0u);
    EXPECT_EQ(address.valid, 0);
}

TEST(TqIpAddress, AcceptsAnyNumber) {
    for (unsigned int number : {0u, 1u, 0x0A010203u, 0xFFFFFFFFu}) {
        const TqIpAddress address(number);
        EXPECT_EQ(address.address, number);
        EXPECT_EQ(address.valid, 1);
        TqIpAddress set;
        EXPECT_TRUE(set.fromUInt32(number));
        EXPECT_EQ(set.address, number);
        EXPECT_EQ(set.valid, 1);
    }
}

TEST(TqIpAddress, KeepsTheLow32BitsOfAWiderNumber) {
    EXPECT_EQ(TqIpAddress(Wide(5)).address, 5u);
    TqIpAddress address;
    address.fromUInt32(Wide(0x0A010203));
    EXPECT_EQ(address.getIpAddress(), 0x0A010203ul);
    address.LogicalAND(Wide(0xFFFF0000));
    EXPECT_EQ(static_cast<unsigned long>(address), 0x0A010000ul);
}

TEST(TqIpAddress, CopiesBothFields) {
    const TqIpAddress address(before);
    const TqIpAddress copy(address);
    EXPECT_EQ(copy.address, before);
    EXPECT_EQ(copy.valid, 1);
    const TqIpAddress invalid = NotValid(7);
    const TqIpAddress invalidCopy(invalid);
    EXPECT_EQ(invalidCopy.address, 7u);
    EXPECT_EQ(invalidCopy.valid, 0);
}

TEST(TqIpAddress, AssignsBothFields) {
    TqIpAddress address(before);
    EXPECT_EQ(&(address = NotValid(7)), &address);
    EXPECT_EQ(address.address, 7u);
    EXPECT_EQ(address.valid, 0);
    const TqIpAddress& same = address;
    address = same;
    EXPECT_EQ(address.address, 7u);
}

TEST(TqIpAddress, IsMadeFromAString) {
    const TqIpAddress address(TqString("10.1.2.3"));
    EXPECT_EQ(address.address, 0x0A010203u);
    EXPECT_EQ(address.valid, 1);
    const TqIpAddress none(TqString("10.1.2"));
    EXPECT_EQ(none.address, 0u);
    EXPECT_EQ(none.valid, 0);
}

TEST(TqIpAddress, HasTheFirstFieldInTheMostSignificantByte) {
    ExpectParsed("10.1.2.3", 0x0A010203);
    ExpectParsed("0.0.0.0", 0);
    ExpectParsed("0.0.0.1", 1);
    ExpectParsed("128.0.0.0", 0x80000000);
    ExpectParsed("255.255.255.255", 0xFFFFFFFF);
}

TEST(TqIpAddress, RefusesAFieldAbove255) {
    ExpectRefused("256.1.1.1");
    ExpectRefused("1.256.1.1");
    ExpectRefused("1.1.256.1");
    ExpectRefused("1.1.1.256");
    ExpectRefused("1.1.1.65535");
}

TEST(TqIpAddress, RefusesFewerThanFourFields) {
    ExpectRefused("");
    ExpectRefused("1");
    ExpectRefused("1.2.3");
    ExpectRefused("1.2.3.");
    ExpectRefused("1.2.3.x");
    ExpectRefused("1..2.3");
    ExpectRefused(".1.2.3.4");
    ExpectRefused("x1.2.3.4");
    ExpectRefused("1,2,3,4");
}

TEST(TqIpAddress, IgnoresWhatStandsBehindTheLastField) {
    ExpectParsed("10.0.0.1xyz", 0x0A000001);
    ExpectParsed("1.2.3.4.5", 0x01020304);
    ExpectParsed("1.2.3.4 ", 0x01020304);
    ExpectParsed("1.2.3.0x10", 0x01020300);
}

TEST(TqIpAddress, AcceptsBlanksBeforeAFieldOnly) {
    ExpectParsed(" \t\n\v\f\r1. 2.  3.\n4", 0x01020304);
    ExpectRefused("1 .2.3.4");
    ExpectRefused("1.2.3 .4");
    ExpectRefused("   ");
    ExpectRefused("1.2.3. ");
}

TEST(TqIpAddress, AcceptsASignBeforeAField) {
    ExpectParsed("+1.+2.+3. +4", 0x01020304);
    ExpectParsed("-0.0.0.-0", 0);
    ExpectRefused("1.2.3.+");
    ExpectRefused("1.2.3.+ 4");
    ExpectRefused("1.2.3.++4");
    ExpectRefused("1.2.3.+-4");
}

TEST(TqIpAddress, RefusesANegativeField) {
    ExpectRefused("1.2.3.-4");
    ExpectRefused("-1.2.3.4");
    ExpectRefused("1.-255.3.4");
}

TEST(TqIpAddress, AcceptsLeadingZerosAsDecimal) {
    ExpectParsed("010.001.08.0000000000000255", 0x0A0108FF);
}

TEST(TqIpAddress, CountsAFieldByItsLow16Bits) {
    ExpectParsed("65536.1.1.1", 0x00010101);
    ExpectParsed("1.65546.1.131327", 0x010A01FF);
    ExpectRefused("1.1.1.65792");  // 256 and 65536
    ExpectParsed("1.1.1.-65536", 0x01010100);
    ExpectParsed("1.1.1.-65535", 0x01010101);
    ExpectParsed("1.1.1.-65281", 0x010101FF);
    ExpectRefused("1.1.1.-65280");
}

// The ends are 0x7FFFFFFF, whose low half is too large, and 0x80000000, whose low half is 0.
TEST(TqIpAddress, StopsAFieldAtTheEndsOf32Bits) {
    ExpectParsed("2147418112.1.1.1", 0x00010101);  // 0x7FFF0000
    ExpectRefused("2147483647.1.1.1");
    ExpectRefused("2147483648.1.1.1");
    ExpectRefused("4294967296.1.1.1");
    ExpectRefused("18446744073709551616.1.1.1");
    ExpectParsed("-2147483648.1.1.1", 0x00010101);
    ExpectParsed("-2147483649.1.1.1", 0x00010101);
    ExpectParsed("-4294967297.1.1.1", 0x00010101);
    ExpectParsed("-99999999999999999999999999.1.1.1", 0x00010101);
    ExpectParsed("-2147483647.1.1.1", 0x01010101);  // 0x80000001
    ExpectRefused("-2147483392.1.1.1");             // 0x80000100
}

// The reading that stands behind all of this. Where a long has 64 bits it stops elsewhere.
bool SystemReads(const std::string& text, unsigned int& address) {
    short fields[4] = {0, 0, 0, 0};
    if (std::sscanf(text.c_str(), "%hd.%hd.%hd.%hd", &fields[0], &fields[1], &fields[2],
                    &fields[3]) != 4) {
        return false;
    }
    address = 0;
    for (short field : fields) {
        if (static_cast<unsigned short>(field) > 255) return false;
        address = address << 8 | static_cast<unsigned short>(field);
    }
    return true;
}

// A field and what surrounds it, mostly right. Ten digits and more come where a long has 32 bits.
std::string RandomField(Random& random) {
    static const char* const blanks[] = {"", "", "", "", "", "", "", " ", "\t", "\n  "};
    static const char* const signs[] = {"", "", "", "", "", "", "", "+", "-", "- "};
    std::string field = blanks[random.Below(10)];
    field += signs[random.Below(10)];
    const unsigned int longest = sizeof(long) == 4 ? 14 : 10;
    unsigned int digits = random.Below(8) != 0 ? random.Below(3) + 1 : random.Below(longest);
    for (; digits > 0; --digits) field += static_cast<char>('0' + random.Below(10));
    return field;
}

TEST(TqIpAddress, AcceptsWhatTheSystemsReadingAccepts) {
    Random random(1);
    int accepted = 0;
    for (int i = 0; i < 100000; ++i) {
        std::string text = RandomField(random);
        for (int dots = 0; dots < 3; ++dots) {
            if (random.Below(64) != 0) text += '.';
            if (random.Below(64) == 0) text += 'x';
            text += RandomField(random);
        }
        if (random.Below(4) == 0) text += " x";
        unsigned int expected = 0;
        const bool valid = SystemReads(text, expected);
        TqIpAddress address;
        ASSERT_EQ(address.fromString(text.c_str()), valid) << text;
        ASSERT_EQ(IsValid(text.c_str()), valid) << text;
        ASSERT_EQ(address.address, expected * valid) << text;
        accepted += valid;
    }
    EXPECT_GT(accepted, 1000);
    EXPECT_LT(accepted, 99000);
}

TEST(TqIpAddress, ShowsTheFourFields) {
    EXPECT_EQ(TextOf(TqIpAddress(0x0A000001)), "10.0.0.1");
    EXPECT_EQ(TextOf(TqIpAddress(0xFFFEFDFC)), "255.254.253.252");
    EXPECT_EQ(TextOf(TqIpAddress(0x01020304)), "1.2.3.4");
    EXPECT_EQ(TextOf(TqIpAddress(0)), "0.0.0.0");
}

TEST(TqIpAddress, ShowsZerosWhenNotValidWhateverItHolds) {
    EXPECT_EQ(TextOf(TqIpAddress()), "0.0.0.0");
    EXPECT_EQ(TextOf(NotValid(0x0A000001)), "0.0.0.0");
}

// As appending its characters one by one would: an application's string may free nothing.
TEST(TqIpAddress, ShowingTakesNoMoreRoomThanItsCharacters) {
    class Kept : public TqString {
    public:
        using TqString::TqString;
        void Free() override {}
    };
    const struct {
        unsigned long address;
        const char* shown;
    } cases[] = {
        {0x0A000001, "10.0.0.1"}, {0x09630AFF, "9.99.10.255"}, {0x64C80001, "100.200.0.1"}};
    for (const auto& c : cases) {
        for (std::size_t length : {17u, 20u, 23u, 24u}) {
            Kept shown(Letters(static_cast<unsigned int>(length)).c_str());
            const std::string whole = shown.data + std::string(c.shown);
            TqIpAddress(c.address).toString(shown);
            EXPECT_EQ(shown.data, whole);
            EXPECT_EQ(shown.length, whole.size());
            EXPECT_EQ(shown.capacity, whole.size() < 32 ? 32u : 48u) << whole;
        }
    }
}

TEST(TqIpAddress, ShowingFreesWhatTheStringHeld) {
    for (const TqIpAddress& address : {TqIpAddress(0xFFFFFFFF), TqIpAddress()}) {
        TqString out(Letters(100).c_str());
        address.toString(out);
        EXPECT_EQ(out.data, out.internalData);
    }
}

TEST(TqIpAddress, GivesItsNumberValidOrNot) {
    EXPECT_EQ(TqIpAddress(before).getIpAddress(), before);
    EXPECT_EQ(NotValid(before).getIpAddress(), before);
    const unsigned long number = NotValid(0xFFFFFFFF);
    EXPECT_EQ(number, 0xFFFFFFFFul);
    EXPECT_EQ(TqIpAddress(0xFFFFFFFF).getIpAddress(), 0xFFFFFFFFul);
}

TEST(TqIpAddress, LogicalAndKeepsTheCommonBits) {
    TqIpAddress address(TqString("192.168.1.77"));
    address.LogicalAND(TqNetworkMask(TqString("255.255.255.0")));
    EXPECT_EQ(TextOf(address), "192.168.1.0");
    address.LogicalAND(0xFF0000FF);
    EXPECT_EQ(TextOf(address), "192.0.0.0");
    address.LogicalAND(0);
    EXPECT_EQ(address.address, 0u);
}

TEST(TqIpAddress, LogicalAndNeitherLooksAtValidNorChangesIt) {
    TqIpAddress valid(0x0F0F0F0F);
    valid.LogicalAND(NotValid(0x00FFFF00));
    EXPECT_EQ(valid.address, 0x000F0F00u);
    EXPECT_EQ(valid.valid, 1);
    TqIpAddress invalid = NotValid(0x0F0F0F0F);
    invalid.LogicalAND(TqIpAddress(0x00FFFF00));
    EXPECT_EQ(invalid.address, 0x000F0F00u);
    EXPECT_EQ(invalid.valid, 0);
    invalid.LogicalAND(0xFul);
    EXPECT_EQ(invalid.valid, 0);
}

TEST(TqIpAddress, AssignsATextThatParses) {
    TqIpAddress address;
    EXPECT_EQ(&(address = TqString("10.1.2.3")), &address);
    EXPECT_EQ(TextOf(address), "10.1.2.3");
    address = "10.1.2.4";
    EXPECT_EQ(TextOf(address), "10.1.2.4");
}

TEST(TqIpAddress, KeepsItsValueWhenAnAssignedTextDoesNotParse) {
    TqIpAddress address(before);
    EXPECT_EQ(&(address = TqString("10.1.2")), &address);
    EXPECT_EQ(address.address, before);
    EXPECT_EQ(address.valid, 1);
}

class Watched : public TqIpAddress {
public:
    using TqIpAddress::TqIpAddress;
    bool fromString(const char* const& text) override {
        last = text;
        return false;
    }
    static std::string last;
};

std::string Watched::last;

TEST(TqIpAddress, AssigningATextCallsTheVirtualFromString) {
    Watched address;
    TqIpAddress& plain = address;
    plain = TqString("10.1.2.3");
    EXPECT_EQ(Watched::last, "10.1.2.3");
    EXPECT_EQ(address.valid, 0);
}

TEST(TqIpAddress, ConstructionFromATextDoesNotCallTheVirtualFromString) {
    Watched::last = "";
    const Watched address(TqString("10.1.2.3"));
    EXPECT_EQ(Watched::last, "");
    EXPECT_EQ(address.address, 0x0A010203u);
}

TEST(TqIpAddress, IsEqualWhenBothFieldsAre) {
    EXPECT_TRUE(TqIpAddress(before) == TqIpAddress(before));
    EXPECT_FALSE(TqIpAddress(before) == TqIpAddress(7ul));
    EXPECT_FALSE(TqIpAddress(before) == NotValid(before));
    EXPECT_FALSE(NotValid(before) == TqIpAddress(before));
    EXPECT_TRUE(NotValid(before) == NotValid(before));
    EXPECT_FALSE(NotValid(before) == NotValid(7));
    EXPECT_TRUE(TqIpAddress() == TqIpAddress());
    EXPECT_FALSE(TqIpAddress() == TqIpAddress(0));
}

TEST(TqIpAddress, NotEqualIsTheNegation) {
    EXPECT_FALSE(TqIpAddress(before) != TqIpAddress(before));
    EXPECT_TRUE(TqIpAddress(before) != TqIpAddress(7ul));
    EXPECT_TRUE(TqIpAddress(0) != TqIpAddress());
    EXPECT_FALSE(NotValid(7) != NotValid(7));
}

TEST(TqIpAddress, IsEqualToANumberOnlyWhenValid) {
    EXPECT_TRUE(TqIpAddress(5ul) == 5ul);
    EXPECT_FALSE(TqIpAddress(5ul) == 6ul);
    EXPECT_FALSE(NotValid(5) == 5ul);
    EXPECT_FALSE(TqIpAddress() == 0ul);
    EXPECT_TRUE(TqIpAddress(5ul).operator==(5ul));
    EXPECT_TRUE(TqIpAddress(5ul).operator==(Wide(5)));
}

enum Port { telnet = 23 };

// Both orders and both operators say the same.
template <class A, class B>
bool Same(const A& a, const B& b) {
    const bool same = a == b;
    EXPECT_EQ(b == a, same);
    EXPECT_EQ(a != b, !same);
    EXPECT_EQ(b != a, !same);
    return same;
}

template <class Address>
void ExpectComparableWithNumbers() {
    const Address address(23ul);
    EXPECT_TRUE(Same(address, 23));
    EXPECT_TRUE(Same(address, 23u));
    EXPECT_TRUE(Same(address, 23l));
    EXPECT_TRUE(Same(address, 23ul));
    EXPECT_TRUE(Same(address, 23ll));
    EXPECT_TRUE(Same(address, short(23)));
    EXPECT_TRUE(Same(address, static_cast<unsigned char>(23)));
    EXPECT_TRUE(Same(address, telnet));
    EXPECT_TRUE(Same(address, Wide(23)));
    EXPECT_FALSE(Same(address, 24));
    EXPECT_FALSE(Same(address, 0));
    EXPECT_FALSE(Same(Address(), 0));
    EXPECT_FALSE(Same(Address(), 0u));
    EXPECT_FALSE(Same(Address(), 0l));
    EXPECT_FALSE(Same(Address(), 0ul));
    EXPECT_TRUE(Address(0xFFFFFFFEul) == -2);
    EXPECT_TRUE(-2l == Address(0xFFFFFFFEul));
}

// The mask rule accepts 0x7FFFFFE0 only by its number's upper bits; 23 is no mask and not valid.
class AnyMask : public TqNetworkMask {
public:
    AnyMask() {}
    // Past what the mask would say of the number. NOLINTNEXTLINE(bugprone-parent-virtual-call)
    AnyMask(unsigned long number) { TqIpAddress::fromUInt32(number); }
};

TEST(TqIpAddress, ComparesWithNumbersOfEveryTypeInBothOrders) {
    ExpectComparableWithNumbers<TqIpAddress>();
    ExpectComparableWithNumbers<AnyMask>();
    EXPECT_TRUE(Same(TqNetworkMask(0xFF000000ul), 0xFF000000u));
    EXPECT_FALSE(Same(TqNetworkMask(23ul), 23));
}

TEST(TqIpAddress, ComparesWithMasksInBothOrders) {
    const TqNetworkMask mask(0xFFFF0000ul);
    EXPECT_TRUE(Same(mask, mask));
    EXPECT_TRUE(Same(mask, TqIpAddress(0xFFFF0000ul)));
    EXPECT_FALSE(Same(mask, TqIpAddress(0xFFFF0001ul)));
    EXPECT_FALSE(Same(mask, NotValid(0xFFFF0000u)));
    EXPECT_FALSE(Same(mask, TqNetworkMask()));
    EXPECT_TRUE(Same(TqNetworkMask(), TqIpAddress()));
    EXPECT_FALSE(Same(TqNetworkMask(5ul), TqIpAddress(5ul)));
    EXPECT_TRUE(Same(TqNetworkMask(5ul), NotValid(5)));
}

TEST(TqIpAddress, RandomAddressesRoundTripThroughText) {
    Random random(2);
    for (int i = 0; i < 100000; ++i) {
        const TqIpAddress address(random.Number());
        const TqIpAddress back(TqString(TextOf(address).c_str()));
        ASSERT_TRUE(back == address) << TextOf(address);
    }
}

}  // namespace
