#ifndef TQ_COUNTER_H
#define TQ_COUNTER_H

#include "TqNumber.h"

/// The non-negative count: an unsigned 32-bit number shown without a sign. Type id 3; its item is
/// its text ("0000217").
///
/// The inherited `value` is only what the inherited parser leaves behind; `count` is the counter.
/// Values above 2147483647 render right and do not read back: the parser wraps them to negative
/// numbers, which give 0.
///
/// Ownership: nothing beyond itself. Lock: none. Reports: source "TqCounter".
class TQ_API TqCounter : public TqNumber {
public:
    TqCounter(unsigned int count = 0);

    /// Takes the count of `other`; `value` is 0.
    TqCounter(const TqCounter& other);

    /// Takes the count of `other` and leaves `value` alone.
    TqCounter& operator=(const TqCounter& other);

    short TypeId() const override;
    TqDataType* Clone() const override;

    /// Unsigned decimal digits.
    void ToString(TqString& out) const override;

    /// Parses as `TqNumber`, into `value`; the count is that when it is above 0, else 0.
    void FromString(const char* text) override;

    /// The plain difference of the two counts, wrapping around at 32 bits. Another type id than 3
    /// is reported.
    int Compare(const TqDataType& other) const override;

    /// Whether the counts are equal. Another type is reported.
    bool Equals(const TqDataType* other) const override;

    void Assignment(const TqDataType& other) override;

    /// The count, wrapped into an `int`.
    operator int() const override;

    unsigned int count;

    static short typeId;  ///< 3, for naming the id without an object
};

#endif
