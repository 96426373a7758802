#ifndef SUBNET_H
#define SUBNET_H

#include "TqBaseObject.h"
#include "TqIpAddress.h"
#include "TqNetworkMask.h"
#include "TqString.h"

/// An address and its mask: that of an interface, or of a network to be compared with.
class Subnet : public TqBaseObject {
public:
    /// Takes over two texts. Returns false, with what is wrong in `complaint`, when one of them is
    /// not what it should be.
    bool Parse(const char* addressText, const char* maskText, TqString& complaint);

    /// The address of the network itself.
    TqIpAddress Network() const;

    /// Whether `other` is in the network.
    bool Contains(const TqIpAddress& other) const;

    TqIpAddress address;
    TqNetworkMask mask;      ///< invalid, for the library, when it says that there is one address
    TqString interfaceName;  ///< whose address it is, if anyone's
};

#endif
