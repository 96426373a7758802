#ifndef TQ_BOOLEAN_H
#define TQ_BOOLEAN_H

#include "TqNumber.h"

/// The flag, shown as "True" and "False". Type id 4; its items are "00004True" and "00005False".
///
/// The inherited `value` is only what the inherited parser leaves behind; `state` is the flag.
///
/// Ownership: nothing beyond itself. Lock: none. Reports: source "TqBoolean".
class TQ_API TqBoolean : public TqNumber {
public:
    /// The state is 1 for any value but 0.
    TqBoolean(int state = 0);

    /// The same as `StringToValue(text)`.
    TqBoolean(const char* text);

    /// Takes the state of `other`; `value` is 0.
    TqBoolean(const TqBoolean& other);

    /// Takes the state of `other` and leaves `value` alone.
    TqBoolean& operator=(const TqBoolean& other);

    /// Parses as `TqNumber`, into `value`; the state is 1 when that is above 0, else 0.
    ///
    ///     "2" true;  "-1" false;  "open" true;  "On" true;  "no" false
    void StringToValue(const char* text);

    short TypeId() const override;
    TqDataType* Clone() const override;
    void ToString(TqString& out) const override;

    /// The same as `StringToValue(text)`.
    void FromString(const char* text) override;

    /// The difference of the two states. Another type id than 4 is reported.
    int Compare(const TqDataType& other) const override;

    /// Whether both are true or both false: any two states other than 0 are equal. Another type is
    /// reported.
    bool Equals(const TqDataType* other) const override;

    void Assignment(const TqDataType& other) override;

    /// The state as it is.
    operator int() const override;

    int state;  ///< 0 or 1; any other value that is put here counts as true and stays as it is

    static short typeId;  ///< 4, for naming the id without an object
};

#endif
