#ifndef TQ_DATA_TYPE_H
#define TQ_DATA_TYPE_H

#include "TqExport.h"

class TqBuffer;
class TqString;

/// The abstract root of every value type: text, bytes, numbers, flags, dates, object identifiers
/// and reference handles. One set of operations lets containers and applications treat any value
/// alike.
///
/// Which type a value has is told by its type id, a positive 16-bit number, and by nothing else.
/// The types of this library have fixed ids (string 1, number 2, counter 3, boolean 4, float 5,
/// buffer 6, reference handle 8, date 10; 7, 9 and 11 are never used), except `TqSnmpOid`. That
/// one, and the value types that applications derive, draw theirs at run time, from 12 upward, when
/// they are first asked:
///
///     short Celsius::typeId = 0;
///     short Celsius::TypeId() const {
///         TqDataType::NextId(&typeId);
///         return typeId;
///     }
///
/// Ownership: a value owns its contents. `Clone` hands over a new heap object to the caller.
/// Lock: none. A value shared between threads is guarded by its owner, and the first `TypeId` of
/// a type with a run-time id must not race with another first one: ask at start-up.
/// Reports name the source of the type that reports, and nothing here throws.
class TQ_API TqDataType {
public:
    TqDataType() {}
    TqDataType(const TqDataType&) {}
    TqDataType& operator=(const TqDataType&) { return *this; }
    virtual ~TqDataType();

    /// The type id. Two values are of the same type exactly when these are equal.
    virtual short TypeId() const = 0;

    /// Hands over a new object of the same type with the same value; `delete` it.
    virtual TqDataType* Clone() const = 0;

    /// Puts the text form into `out`, replacing what `out` held (the byte buffer alone appends).
    virtual void ToString(TqString& out) const = 0;

    /// Parses `text`, which must not be null where the type does not say otherwise. A type without
    /// a text form reports and changes nothing.
    virtual void FromString(const char* text) = 0;

    /// Appends the value's item, five decimal digits of length and the payload, at the end of
    /// `out`.
    virtual void ToBuffer(TqBuffer& out) const = 0;

    /// Reads one item at `in.readPosition` and moves that past it. An incomplete item is reported,
    /// leaves the value empty and uses up the rest of `in`.
    virtual void FromBuffer(TqBuffer& in) = 0;

    /// Orders this value against `other`: negative, 0 or positive as for `strcmp`; only the sign
    /// means something. Another type is reported and then compared as though it were of this type
    /// (the byte buffer returns -1): the caller sees to it that the layouts agree.
    virtual int Compare(const TqDataType& other) const = 0;

    /// Whether the values are equal under the type's own rule. Null is equal to nothing. Another
    /// type is reported and then compared as in `Compare` (the byte buffer returns false).
    virtual bool Equals(const TqDataType* other) const = 0;

    /// The negation of `Equals`, null included. Not to be overridden.
    virtual bool DoesNotEqual(const TqDataType* other) const;

    /// Takes over the value of `other`, which must be of this type: the plain types do not check
    /// it.
    virtual void Assignment(const TqDataType& other) = 0;

    /// Assigns a run-time type id: `*id` receives the next free one when it is 0 and stays as it is
    /// otherwise. There is no check for running out of ids.
    static void NextId(short* id);

    /// The id that `NextId` hands out next; 12 at first.
    static short currentFreeTypeId;
};

#endif
