#ifndef TQ_SNMP_OID_H
#define TQ_SNMP_OID_H

#include <type_traits>

#include "TqDataType.h"

/// The SNMP object identifier: a sequence of unsigned 32-bit sub-identifiers, written as dotted
/// decimal text ("1.3.6.1.4.1"). An identifier without any is legal. The type id is assigned at run
/// time by the first call of `TypeId`.
///
/// A text is parsed in one way everywhere: digits make a sub-identifier, wrapping around at 32
/// bits, any other character ends it, and so does the end of the text. One without digits is 0. The
/// empty text has no sub-identifier. A first character that is no digit is reported, and so is
/// every separator but '.', and parsing goes on. No text may be null.
///
///     "1.3.6" 1,3,6;  ".1.3" 0,1,3 reported;  "1..3" 1,0,3;  "1.3." 1,3,0;  "1.a.3" 1,0,0,3
///     reported
///
/// Numbers come as `unsigned long`; where that has 64 bits, the low 32 are kept.
///
/// Up to 16 sub-identifiers are held inside the object, more in a heap block of `malloc`. The
/// storage shrinks with `Reset` and `SetValues` only.
///
/// Ownership: the identifier owns its storage and copies what it is given; another identifier given
/// may be this one. `Clone` and `Convert` hand over new objects.
/// Lock: none; see `TqDataType` for the first `TypeId`. Reports: source "TqSnmpOid".
class TQ_API TqSnmpOid : public TqDataType {
public:
    TqSnmpOid(const char* text);

    /// The `count` numbers at `numbers`, in order.
    TqSnmpOid(const unsigned long* numbers, unsigned int count);

    /// More than 16 sub-identifiers take a heap block with `capacity` the next multiple of 16.
    TqSnmpOid(const TqSnmpOid& other);

    ~TqSnmpOid() override;

    /// The same as `Assignment`.
    TqSnmpOid& operator=(const TqSnmpOid& other);

    /// Appends one sub-identifier.
    void Append(unsigned long number);

    /// The same for every other integer type; with it `Append(0)` is a number and not a null text.
    template <class Integer>
    typename std::enable_if<std::is_integral<Integer>::value>::type Append(Integer number);

    /// Appends all sub-identifiers of `other`; an identifier appended to itself doubles.
    void Append(const TqSnmpOid& other);

    /// Appends the sub-identifiers of `text`.
    void Append(const char* text);

    /// Makes room for `needed` sub-identifiers in all. When there is less, `capacity` grows to the
    /// smallest multiple of itself that is enough: from 16, 40 needs 48; from 48, 50 needs 96.
    void CheckAllocSize(unsigned int needed);

    /// Gives a heap block back and takes the `count` numbers at `numbers`.
    void SetValues(const unsigned long* numbers, unsigned int count);

    /// Gives a heap block back, makes the identifier empty and zeroes `internalValues`.
    void Reset();

    /// Adds 1 to the last sub-identifier, wrapping around; an empty identifier stays so.
    void Increment();

    /// Adds 1 to the last but one and leaves the last alone; with fewer than two nothing happens.
    void IncrementTableRow();

    /// Whether `other` lies at or below this identifier, the first sub-identifier left out of
    /// account. Shorter ones do not; below an identifier of up to one, all others do.
    /// With a table or entry here and a row there it tells whether a walk is still in the table.
    ///
    ///     "1.3.6.1" with "1.3.6.1.5" or "9.3.6.1.5": true;  with "1.3.6": false
    bool SameTable(const TqSnmpOid& other) const;

    /// Whether it lies at or below 1.3.6.1.4.1.61999.
    bool IsDorvane() const;

    /// Whether it lies at or below 1.3.6.1.4.1.61999.1.
    bool IsMalvick() const;

    /// Assigns the type id at the first call.
    short TypeId() const override;
    TqDataType* Clone() const override;

    /// The numbers with dots between them; nothing for an empty identifier. One of 2147483648 and
    /// more is written as a negative number ("1.-2147483647" for 1.2147483649; 2147483648 as "-0"),
    /// so such a text does not read back.
    void ToString(TqString& out) const override;

    /// Parses `text` into the present storage.
    void FromString(const char* text) override;

    /// Does nothing: identifiers have no item.
    void ToBuffer(TqBuffer& out) const override;

    /// Does nothing: the buffer, its read position and the identifier stay as they are.
    void FromBuffer(TqBuffer& in) override;

    /// -1, 0 or 1: the first difference decides, by unsigned numbers; with none, the shorter comes
    /// first ("1.3" < "1.3.1" < "1.4"). Another type is reported.
    int Compare(const TqDataType& other) const override;

    /// Whether all sub-identifiers are equal. Null gives false; another type is reported.
    bool Equals(const TqDataType* other) const override;

    /// Takes over the sub-identifiers of `other`; another type is reported. Storage that is too
    /// small grows as `CheckAllocSize` says.
    void Assignment(const TqDataType& other) override;

    /// Hands over a new string with the text form; `delete` it.
    virtual TqString* Convert() const;

    unsigned int* values;             ///< the sub-identifiers: `internalValues` or a heap block
    unsigned int count;               ///< how many there are
    unsigned int capacity;            ///< how many `values` has room for
    unsigned int internalValues[16];  ///< room for short identifiers

    static short typeId;                               ///< 0 until the first `TypeId`
    static const unsigned int maxInternalValues = 16;  ///< the size of `internalValues`
};

template <class Integer>
inline typename std::enable_if<std::is_integral<Integer>::value>::type TqSnmpOid::Append(
    Integer number) {
    Append(static_cast<unsigned long>(number));
}

#endif
