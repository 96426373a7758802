#include "TqNetworkMask.h"

#include "TqString.h"

TqNetworkMask::TqNetworkMask() {}

TqNetworkMask::TqNetworkMask(unsigned long number) : TqIpAddress(number) {
    // The number stays, valid or not: programs show the one that was refused.
    valid = isValidMask(number);
}

TqNetworkMask::TqNetworkMask(const TqNetworkMask& other) : TqIpAddress(other) {}

TqNetworkMask::TqNetworkMask(const TqString& text) {
    valid = TqNetworkMask::fromString(text.data);
}

TqNetworkMask::~TqNetworkMask() {}

TqNetworkMask& TqNetworkMask::operator=(const TqNetworkMask& other) {
    TqIpAddress::operator=(other);
    return *this;
}

TqNetworkMask& TqNetworkMask::operator=(const TqString& text) {
    TqIpAddress::operator=(text);
    return *this;
}

bool TqNetworkMask::fromUInt32(unsigned long number) {
    return isValidMask(number) && TqIpAddress::fromUInt32(number);
}

bool TqNetworkMask::fromString(const char* const& text) {
    return isValidMask(TqString(text)) && TqIpAddress::fromString(text);
}

bool TqNetworkMask::isValidMask(unsigned long number) {
    // The mask of a single host is refused and bit 31 not looked at: stored configurations hold
    // masks that a stricter or a looser rule would read otherwise.
    const unsigned int bits = static_cast<unsigned int>(number);
    if (bits == 0xFFFFFFFFu) return false;
    bool oneSeen = false;
    for (int bit = 0; bit <= 30; ++bit) {
        const bool one = (bits >> bit & 1) != 0;
        if (oneSeen && !one) return false;
        oneSeen = one;
    }
    return true;
}

bool TqNetworkMask::isValidMask(const TqString& text) {
    TqIpAddress parsed;
    return parsed.fromString(text.data) && isValidMask(parsed.getIpAddress());
}

bool TqNetworkMask::operator==(unsigned long number) const {
    return TqIpAddress::operator==(number);
}
