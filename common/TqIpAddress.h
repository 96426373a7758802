#ifndef TQ_IP_ADDRESS_H
#define TQ_IP_ADDRESS_H

#include "TqExport.h"
#include "TqIpAddressComparisons.h"

class TqString;

/// An IPv4 address, and whether there is a valid one. `TqNetworkMask` derives from it. Not a
/// `TqDataType`: it has operations of its own, in lower camel case, and no item.
///
/// The number of an address has the first field of the text in its most significant byte: 10.1.2.3
/// is 0x0A010203. Numbers come as `unsigned long`; where that has 64 bits, the low 32 count.
///
/// Text conversion and comparisons look at `valid`; the numeric accessors and `LogicalAND` do not.
///
/// An address text is four decimal fields with single dots between them, each at most 255. As with
/// `sscanf` and "%hd", blanks and a sign may stand before each field, what stands behind the last
/// field is ignored, and a field counts by the low 16 bits of its value, which stops at the ends of
/// the 32-bit range. So a negative field is too large, except where those bits say otherwise.
/// No text may be null.
///
///     "10.0.0.1", " 10. 0. 0.+1", "10.0.0.1xyz" 10.0.0.1;  "1.2.3.4.5" 1.2.3.4
///     "256.1.1.1", "1.2.3", "1.2.3.-4", "1 .2.3.4", "" no address
///
/// Addresses, masks and integers of every type compare with == and != in either order
/// (TqIpAddressComparisons.h).
///
/// Ownership: nothing beyond itself. Lock: none. Reports: none, failures are answered with false.
class TQ_API TqIpAddress {
public:
    /// Address 0, not valid.
    TqIpAddress();

    /// The address with this number, valid whatever it is.
    TqIpAddress(unsigned long number);

    TqIpAddress(const TqIpAddress& other);

    /// The address that `text` says; 0 and not valid when it says none.
    TqIpAddress(const TqString& text);

    virtual ~TqIpAddress();

    TqIpAddress& operator=(const TqIpAddress& other);

    /// Calls the virtual `fromString`, so that a mask behind this reference takes masks only. A
    /// text that is refused leaves the old value.
    TqIpAddress& operator=(const TqString& text);

    /// Takes the number. Always true.
    virtual bool fromUInt32(unsigned long number);

    /// Takes the address that `text` says and returns true; when it says none, changes nothing and
    /// returns false.
    virtual bool fromString(const char* const& text);

    /// The number, valid or not.
    virtual unsigned long getIpAddress() const;

    /// Frees `out` and puts the four fields into it, "0.0.0.0" when not valid.
    virtual void toString(TqString& out) const;

    operator unsigned long() const;

    /// Whether `text` says an address.
    static bool isValidIpAddress(const unsigned char* text);

    /// Keeps the bits that the argument has too. Neither looks at a `valid` nor changes it.
    void LogicalAND(const TqIpAddress& other);
    void LogicalAND(unsigned long number);

    /// Whether the `valid` flags are equal and the addresses too. So two that are not valid differ
    /// when they hold different addresses.
    bool operator==(const TqIpAddress& other) const;
    bool operator!=(const TqIpAddress& other) const;

    /// Whether this is valid and has the number.
    bool operator==(unsigned long number) const;

    unsigned int address;  ///< the number
    int valid;             ///< 1 when `address` was accepted, else 0

    TQ_IP_ADDRESS_COMPARISONS
};

#endif
