// Addresses against inet_pton and inet_ntop.

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "Random.h"
#include "TqIpAddress.h"
#include "TqString.h"
#include "Values.h"

namespace {

const int texts = 100000;

bool PeerParses(const std::string& text, unsigned int& address) {
    in_addr parsed;
    if (inet_pton(AF_INET, text.c_str(), &parsed) != 1) return false;
    address = ntohl(parsed.s_addr);
    return true;
}

// How an address text may differ from what the peer accepts.
struct Differences {
    int blanks = 0;
    int signs = 0;
    int leadingZeros = 0;
    int wrapped = 0;  // a number beyond 16 bits
    int behind = 0;   // more text
};

int Within32Bits(double number, bool negative) {
    if (negative) return static_cast<int>(std::max(-number, -2147483648.0));
    return static_cast<int>(std::min(number, 2147483647.0));
}

// A text with the stated differences taken out: what the peer must accept exactly when we accept
// the whole.
std::string WithoutDifferences(const std::string& text, Differences& differences) {
    std::string plain;
    std::size_t at = 0;
    for (int field = 0; field < 4; ++field) {
        if (field != 0) {
            if (text[at] != '.') return "";
            plain += text[at++];
        }
        const std::size_t first = text.find_first_not_of(" \t\n\v\f\r", at);
        if (first == std::string::npos) return "";
        differences.blanks += first != at ? 1 : 0;
        at = first;
        const bool negative = text[at] == '-';
        if (negative || text[at] == '+') {
            ++differences.signs;
            ++at;
        }
        const std::size_t end = std::min(text.find_first_not_of("0123456789", at), text.size());
        if (end == at) return "";
        const int number = Within32Bits(std::stod(text.substr(at, end - at)), negative);
        differences.leadingZeros += text[at] == '0' && end - at > 1 ? 1 : 0;
        differences.wrapped += number > 0xFFFF || number < 0 ? 1 : 0;
        plain += std::to_string(number & 0xFFFF);
        at = end;
    }
    differences.behind += at != text.size() ? 1 : 0;
    return plain;
}

int Total(const Differences& d) {
    return d.blanks + d.signs + d.leadingZeros + d.wrapped + d.behind;
}

template <unsigned int count>
const char* OneOf(Random& random, const char* const (&choices)[count]) {
    return choices[random.Below(count)];
}

std::string RandomField(Random& random) {
    static const char* const blanks[] = {"", "", "", "", "", "", "", "", " ", "\t\n"};
    static const char* const signs[] = {"", "", "", "", "", "", "", "", "+", "-"};
    static const char* const digits[] = {"0", "7", "10", "192", "255", "256", "007", "65536", ""};
    std::string field = OneOf(random, blanks);
    if (random.Below(4) == 0) field = OneOf(random, blanks);
    if (random.Below(4) == 0) field += OneOf(random, signs);
    if (random.Below(2) == 0) return field + std::to_string(random.Below(256));
    if (random.Below(8) == 0) return field + std::to_string(random.Below(999999999));
    return field + OneOf(random, digits);
}

std::string RandomText(Random& random) {
    static const char* const separators[] = {".", ".", ".", ".", ".", ".", ".", ".", ".",  ".",
                                             ".", ".", ".", ".", ".", ".", ".", "",  " .", ".."};
    static const char* const ends[] = {"", "", "", "", "", ".", ".5", "xyz", " ", "/24"};
    std::string text = RandomField(random);
    for (int i = 0; i < 3; ++i) text += OneOf(random, separators) + RandomField(random);
    return text + OneOf(random, ends);
}

TEST(AddressPeer, AcceptsTheSameTextsButForTheStatedDifferences) {
    Random random(1);
    Differences seen;
    int byBoth = 0;
    int byUs = 0;
    for (int i = 0; i < texts; ++i) {
        const std::string text = RandomText(random);
        Differences differences;
        const std::string plain = WithoutDifferences(text, differences);
        TqIpAddress ours;
        const bool accepted = ours.fromString(text.c_str());
        unsigned int expected = 0;
        ASSERT_EQ(accepted, PeerParses(plain, expected)) << text;
        ASSERT_EQ(ours.address, expected) << text;
        unsigned int unchanged = 0;
        const bool byPeer = PeerParses(text, unchanged);
        ASSERT_EQ(byPeer, accepted && Total(differences) == 0) << text;
        if (!accepted) continue;
        ++(byPeer ? byBoth : byUs);
        seen.blanks += differences.blanks;
        seen.signs += differences.signs;
        seen.leadingZeros += differences.leadingZeros;
        seen.wrapped += differences.wrapped;
        seen.behind += differences.behind;
    }
    EXPECT_GT(byBoth, 1000);
    EXPECT_GT(byUs, 1000);
    for (int count : {seen.blanks, seen.signs, seen.leadingZeros, seen.wrapped, seen.behind}) {
        EXPECT_GT(count, 100);
    }
}

TEST(AddressPeer, ShowsTheSameTexts) {
    Random random(2);
    for (int i = 0; i < texts; ++i) {
        const unsigned int number = random.Number() & (random.Number() | random.Number());
        in_addr address;
        address.s_addr = htonl(number);
        char expected[INET_ADDRSTRLEN];
        ASSERT_NE(inet_ntop(AF_INET, &address, expected, sizeof expected), nullptr);
        TqString text;
        TqIpAddress(number).toString(text);
        ASSERT_EQ(Counted(text), expected);
    }
}

}  // namespace
