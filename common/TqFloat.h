#ifndef TQ_FLOAT_H
#define TQ_FLOAT_H

#include <cstring>

#include "TqDataType.h"
#include "TqHooks.h"

/// The single-precision floating-point value. Type id 5; its item is its text ("000023.").
///
/// The text form shows the integer part only, as stored configurations have it, so an item does not
/// give the fraction back: 3.75 is sent as "3." and received as 3.
///
/// Ownership: nothing beyond itself. Lock: none. Reports: source "TqFloat", and "./TqFloat" from
/// `Equals`.
class TQ_API TqFloat : public TqDataType {
public:
    TqFloat(float value = 0);
    TqFloat(const TqFloat& other);

    /// Leaves `value` 0.
    ~TqFloat() override;

    TqFloat& operator=(const TqFloat& other);

    short TypeId() const override;
    TqDataType* Clone() const override;

    /// The integer part, truncated toward zero, and behind it a point, which is reported: every
    /// text with a point is. An integer part of eight characters or more, its '-' counted, stands
    /// alone and is not reported. Beyond 32 bits the nearest end of the range is shown; a NaN
    /// shows as 0.
    ///
    ///     3.75f "3.";  -0.5f "0.";  -12.5f "-12.";  12345678.0f "12345678";  1e10f "2147483647"
    void ToString(TqString& out) const override;

    /// Converts `text`, not null, with `strtod` and narrows it to single precision. Nothing is
    /// checked: text that is no number gives 0, and what stands behind a number is ignored.
    void FromString(const char* text) override;

    void ToBuffer(TqBuffer& out) const override;

    /// Reads a string item and parses its text with `FromString`; an incomplete item gives 0.
    void FromBuffer(TqBuffer& in) override;

    /// The single-precision difference of the two values as an integer, truncated toward zero.
    /// It is coarse: values less than 1 apart compare as equal. Beyond 32 bits the result is the
    /// nearest end of the range; a NaN difference gives 0. Another type id than 5 is reported.
    ///
    ///     5.0f against 2.0f: 3;  1.5f against 1.0f: 0;  -3.0f against 1.0f: -4
    int Compare(const TqDataType& other) const override;

    /// Whether the values are equal by IEEE comparison: 0 equals -0, a NaN equals nothing. Null
    /// gives false; another type is reported.
    bool Equals(const TqDataType* other) const override;

    void Assignment(const TqDataType& other) override;

    float value;

    static short typeId;  ///< 5, for naming the id without an object
};

/// Whether two floats are equal by IEEE comparison, told by their bits: this is compiled with the
/// application's flags, and some of those make a NaN equal to anything.
inline bool TqSameFloat(float a, float b) {
    static_assert(sizeof(float) == sizeof(unsigned int), "single precision has 32 bits");
    const unsigned int magnitude = 0x7FFFFFFF;
    const unsigned int infinity = 0x7F800000;
    unsigned int bitsOfA;
    unsigned int bitsOfB;
    std::memcpy(&bitsOfA, &a, sizeof bitsOfA);
    std::memcpy(&bitsOfB, &b, sizeof bitsOfB);
    const bool bothZero = ((bitsOfA | bitsOfB) & magnitude) == 0;
    return bothZero || (bitsOfA == bitsOfB && (bitsOfA & magnitude) <= infinity);
}

// A value of another type is reported and then read as though it were a float.
TQ_READS_ANY_OBJECT inline bool TqFloat::Equals(const TqDataType* other) const {
    if (other == nullptr) return false;
    if (TypeId() != other->TypeId()) TqCallAssert("./TqFloat", __LINE__);
    return TqSameFloat(value, static_cast<const TqFloat*>(other)->value);
}

#endif
