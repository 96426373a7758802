#include "Subnet.h"

bool Subnet::Parse(const char* addressText, const char* maskText, TqString& complaint) {
    if (!address.fromString(addressText)) {
        complaint = TqString("\"") + addressText + "\" is not an address";
        return false;
    }
    if (!mask.fromString(maskText)) {
        complaint = TqString("\"") + maskText + "\" is not a mask";
        return false;
    }
    return true;
}

TqIpAddress Subnet::Network() const {
    TqIpAddress network(address);
    network.LogicalAND(mask);
    return network;
}

bool Subnet::Contains(const TqIpAddress& other) const {
    TqIpAddress network(other);
    network.LogicalAND(mask);
    return network == Network();
}
