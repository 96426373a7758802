#ifndef TQ_NUMBER_H
#define TQ_NUMBER_H

#include "TqDataType.h"

/// The signed 32-bit integer value, with a lenient parser that also knows words for "true". Type
/// id 2; its item is its text ("00003-42"). `TqCounter` and `TqBoolean` derive from it and reuse
/// the parser.
///
/// Ownership: nothing beyond itself. Lock: none. Reports: source "TqNumber".
class TQ_API TqNumber : public TqDataType {
public:
    TqNumber(int value = 0);
    TqNumber(const TqNumber& other);
    TqNumber& operator=(const TqNumber& other);

    short TypeId() const override;
    TqDataType* Clone() const override;

    /// Decimal digits with a '-' when negative; -2147483648 gives "-0". Renders `operator int`.
    void ToString(TqString& out) const override;

    /// Parses `text`, not null. There is no failure: what is not understood gives 0.
    ///
    /// One '-' or '+' is skipped. Decimal digits then give the number, wrapping around at 32 bits;
    /// they end at the first other character, and there are no blanks before them and no other
    /// bases. Without a digit the value is 1 when the rest is, ignoring case, one of T, Y, On, Yes,
    /// One, True, Open, Enable, Enabled, and else 0; the sign plays no part then.
    ///
    ///     "-42" -42;  "12abc" 12;  " 5" 0;  "0x1F" 0;  "4294967296" 0;  "-Yes" 1;  "Off" 0
    void FromString(const char* text) override;

    void ToBuffer(TqBuffer& out) const override;

    /// Reads a string item and parses its text with `FromString`; an incomplete item gives 0.
    void FromBuffer(TqBuffer& in) override;

    /// The plain difference of the two values, wrapping around at 32 bits, so that 2147483647
    /// compares as less than -1. Another type id than 2 is reported.
    int Compare(const TqDataType& other) const override;

    /// Whether `operator int` of `other` gives this value. Another type is reported.
    bool Equals(const TqDataType* other) const override;

    void Assignment(const TqDataType& other) override;

    /// The value as a plain integer.
    virtual operator int() const;

    int value;

    static short typeId;  ///< 2, for naming the id without an object
};

#endif
