// Comparing addresses, masks and numbers means the same in each standard of the language, although
// the candidates for an operator are not the same ones. Fails with the line of the first
// comparison that says something else.
#include <cstdio>

#include "TqNetworkMask.h"
#include "TqString.h"

namespace {

int failedLine = 0;

void Expect(bool holds, int line) {
    if (!holds && failedLine == 0) failedLine = line;
}

#define EXPECT_SAME(a, b)                                 \
    do {                                                  \
        Expect((a) == (b) && (b) == (a), __LINE__);       \
        Expect(!((a) != (b)) && !((b) != (a)), __LINE__); \
    } while (0)

#define EXPECT_OTHER(a, b)                          \
    do {                                            \
        Expect(!((a) == (b)), __LINE__);            \
        Expect(!((b) == (a)), __LINE__);            \
        Expect((a) != (b) && (b) != (a), __LINE__); \
    } while (0)

struct Limits {
    static const unsigned int address = 0x0A000000;  // not defined anywhere
};
enum Kind { tenNet = 0x0A000000 };

// Derived by an application, with nothing of its own.
class Gateway : public TqIpAddress {
public:
    Gateway() {}
    Gateway(unsigned long number) : TqIpAddress(number) {}
};

template <class Address>
void ComparesWithNumbers() {
    Address address(0x0A000000ul);
    EXPECT_SAME(address, 0x0A000000);
    EXPECT_SAME(address, 0x0A000000u);
    EXPECT_SAME(address, 0x0A000000l);
    EXPECT_SAME(address, 0x0A000000ul);
    EXPECT_SAME(address, 0x0A000000ll);
    EXPECT_SAME(address, tenNet);
    EXPECT_SAME(address, Limits::address);
    EXPECT_OTHER(address, 0);
    EXPECT_OTHER(address, 1u);
    EXPECT_OTHER(address, -1);
    const Address notValid;
    EXPECT_OTHER(notValid, 0);
    EXPECT_OTHER(notValid, 0u);
    EXPECT_OTHER(notValid, 0l);
    EXPECT_OTHER(notValid, 0ul);
    unsigned long variable = 0;
    EXPECT_OTHER(notValid, variable);
}

void MasksCompareWithNumbers() {
    const TqNetworkMask mask(0xFF000000ul);
    EXPECT_SAME(mask, 0xFF000000u);
    EXPECT_SAME(mask, 0xFF000000ul);
    EXPECT_SAME(mask, -0x1000000);
    EXPECT_SAME(mask, -0x1000000l);
    EXPECT_OTHER(mask, 0);
    const TqNetworkMask none;
    EXPECT_OTHER(none, 0);
    const TqNetworkMask noMask(5ul);
    EXPECT_OTHER(noMask, 5);
    EXPECT_OTHER(noMask, 5ul);
}

void AddressesAndMasksCompare() {
    TqIpAddress address(0xFF000000ul);
    TqNetworkMask mask(0xFF000000ul);
    Gateway gateway(0xFF000000ul);
    EXPECT_SAME(address, address);
    EXPECT_SAME(mask, mask);
    EXPECT_SAME(gateway, gateway);
    EXPECT_SAME(address, mask);
    EXPECT_SAME(address, gateway);
    EXPECT_SAME(mask, gateway);
    const TqIpAddress notValid;
    const TqIpAddress zero(0);
    EXPECT_OTHER(notValid, zero);
    const TqNetworkMask none;
    EXPECT_SAME(notValid, none);
    EXPECT_OTHER(zero, none);
    EXPECT_OTHER(address, none);
}

void MembersCompare() {
    const TqIpAddress address(0xFF000000ul);
    const TqNetworkMask mask(0xFF000000ul);
    Expect(address.operator==(address) && address.operator==(mask), __LINE__);
    Expect(mask.operator==(address) && mask.operator==(mask), __LINE__);
    Expect(address.operator==(0xFF000000ul) && mask.operator==(0xFF000000ul), __LINE__);
    Expect(!address.operator!=(mask) && !mask.operator!=(address), __LINE__);
    Expect(address == TqString("255.0.0.0") && mask == TqString("255.0.0.0"), __LINE__);
}

}  // namespace

int main() {
    ComparesWithNumbers<TqIpAddress>();
    ComparesWithNumbers<Gateway>();
    MasksCompareWithNumbers();
    AddressesAndMasksCompare();
    MembersCompare();
    if (failedLine != 0) std::printf("%s:%d: the comparison fails\n", __FILE__, failedLine);
    return failedLine != 0;
}
