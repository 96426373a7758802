#ifndef TQ_NETWORK_MASK_H
#define TQ_NETWORK_MASK_H

#include "TqIpAddress.h"

/// A network mask: an address that admits only what passes the mask rule. Texts, numbers and
/// comparisons are those of `TqIpAddress`.
///
/// The rule looks at bits 0 to 30: above a 1 there is no 0. Bit 31 is never looked at, so
/// 0x7FFFFF00 is a mask; and 0xFFFFFFFF is none. Configurations were written against both.
///
///     0, 0x80000000, 0xFFFFFF00, 0xFFFFFFFE, 0x7FFFFFFF masks;  0xFFFFFFFF, 1, 0xFF00FF00 none
///
/// Ownership: nothing beyond itself. Lock: none. Reports: none, failures are answered with false.
class TQ_API TqNetworkMask : public TqIpAddress {
public:
    /// Address 0, not valid.
    TqNetworkMask();

    /// Unlike with `fromUInt32`, the number is kept even when it is no mask; `valid` says whether
    /// it is one.
    TqNetworkMask(unsigned long number);

    TqNetworkMask(const TqNetworkMask& other);

    /// The mask that `text` says; 0 and not valid when it says none.
    TqNetworkMask(const TqString& text);

    ~TqNetworkMask() override;

    TqNetworkMask& operator=(const TqNetworkMask& other);
    TqNetworkMask& operator=(const TqString& text);

    /// Takes a number that is a mask and returns true; changes nothing and returns false else.
    bool fromUInt32(unsigned long number) override;

    /// Takes the mask that `text` says and returns true; changes nothing and returns false when it
    /// says no address or no mask.
    bool fromString(const char* const& text) override;

    static bool isValidMask(unsigned long number);

    /// Whether `text` says an address that is a mask.
    static bool isValidMask(const TqString& text);

    using TqIpAddress::operator==;
    bool operator==(unsigned long number) const;
};

#endif
