#ifndef TQ_STRING_H
#define TQ_STRING_H

#include "TqDataType.h"

/// The text value: a NUL-terminated string that keeps short texts inside the object and moves
/// longer ones to a heap block. Type id 1; its item is its characters ("00005hello").
///
/// Ownership: the string owns its storage. Texts handed in are copied; they may point into the
/// string itself and act as if they had been copied first.
/// Lock: none. Reports: source "TqString".
///
/// `data` is the text for every use of a C string, valid until the next change. The text is inside
/// the object exactly when `data == internalData`. Storage is never shrunk by assignment or
/// `Empty`; only `Clear`, `Free`, `SetValue` and `FromBuffer` give a heap block back.
///
/// `length` is the counted length. NULs can stand inside it (`SetValue` with a count beyond the
/// text, `TrimTrailingWS`); then the text is what stands before the first NUL, while `Length`,
/// `Equals` and `ToBuffer` still go by the count.
class TQ_API TqString : public TqDataType {
public:
    /// Null gives the empty string. Up to 31 characters are held inside; more take a heap block
    /// with `capacity` `length + 1`.
    TqString(const char* text = nullptr);

    /// The same as `SetValue(text, count)` on an empty string.
    TqString(const char* text, unsigned int count);

    /// Takes the length of `other` and its text up to the first NUL; sizes as the first
    /// constructor.
    TqString(const TqString& other);

    ~TqString() override;

    TqString& operator=(const TqString& other);

    /// Null calls `Clear`. A text shorter than `capacity` goes into the present storage, another
    /// into a new heap block with `capacity` `length + 1`.
    TqString& operator=(const char* text);

    /// Calls `Clear`, then takes `count` characters: inside up to 32 (one more than the
    /// constructors keep there), else in a heap block with `capacity` `count + 1`.
    /// Copying stops at a NUL in `text` and fills up with NULs; `length` is `count` all the same.
    /// A null `text` or a `count` of 0 leaves the string empty.
    void SetValue(const char* text, unsigned int count);

    /// Append one character; the two are the same. When the new length reaches `capacity` the
    /// storage grows to the smallest multiple of 16 above the new length.
    void AppendChar(char c);
    void AppendByte(unsigned char c);

    /// Appends `text`, which must not be null; grows as `AppendChar`.
    TqString& operator+=(const char* text);

    /// A new string: this one with `text`, not null, appended.
    TqString operator+(const char* text) const;

    /// Appends the decimal digits of `value`.
    void AppendCounter(unsigned int value);

    /// Appends the decimal digits of `value` with a '-' when negative. -2147483648 appends "-0".
    void AppendNumber(int value);

    /// Appends `value` with `precision` decimals, rounded by the system library's `sprintf`. A
    /// precision above 99 is reported and used all the same; of a result longer than 127 characters
    /// the first 127 are appended.
    void AppendFloat(float value, unsigned char precision);

    /// Compares case-insensitively and returns exactly -1, 0 or 1. Neither may be null.
    ///
    ///     StringICompare("abc", "ABD") == -1;  StringICompare("ab", "AB") == 0;
    static int StringICompare(const char* a, const char* b);

    /// Removes leading white space. Trims are for texts held inside the object: they work on
    /// `internalData` whatever `data` points at.
    TqString& TrimLeadingWS();

    /// Overwrites trailing white space with NULs; see `TrimLeadingWS`. `length` stays as it is.
    TqString& TrimTrailingWS();

    short TypeId() const override;
    TqDataType* Clone() const override;

    /// Assigns this string to `out`.
    void ToString(TqString& out) const override;

    /// The same as assigning `text`; null empties.
    void FromString(const char* text) override;

    /// A length above 99999 does not fit the five digits and gives a corrupt item.
    void ToBuffer(TqBuffer& out) const override;
    void FromBuffer(TqBuffer& in) override;

    /// The `strcmp` result of the two texts. Another type id than 1 is reported.
    int Compare(const TqDataType& other) const override;

    /// Whether the counted lengths are equal and the texts too.
    bool Equals(const TqDataType* other) const override;

    /// Takes the length and the text (up to its first NUL) of `other`, sized as assigning a text.
    void Assignment(const TqDataType& other) override;

    /// The counted length in characters.
    virtual unsigned int Length() const;

    /// The same as `Clear`.
    virtual void Free();

    /// Makes the text empty and keeps the storage; `Clear` and `Free` give it back.
    virtual void Empty();

    virtual bool IsEmpty() const;
    virtual bool IsNotEmpty() const;

    /// Makes the text empty and gives a heap block back.
    virtual void Clear();

    char* data;             ///< the text: `internalData` or a heap block of `capacity` bytes
    unsigned int length;    ///< the counted length; `data[length]` is a NUL
    unsigned int capacity;  ///< 32 inside the object, else the size of the heap block
    char internalData[33];  ///< room for 32 characters and a NUL

    static short typeId;  ///< 1, for naming the id without an object
};

#if !defined(TQ_STRING_BODY) && defined(TQ_COMPILED_IN)
#define TQ_STRING_BODY TQ_COMPILED_IN
#endif
#ifdef TQ_STRING_BODY
// NOLINTBEGIN(misc-definitions-in-headers): only the source of the class defines them

TQ_STRING_BODY void TqString::AppendChar(char c) {
    const unsigned int count = length;
    if (__builtin_expect(count + 1 >= capacity, 0)) {
        AppendByte(static_cast<unsigned char>(c));
        return;
    }
    char* place = data + count;
    place[0] = c;
    place[1] = '\0';
    length = count + 1;
}

// NOLINTEND(misc-definitions-in-headers)
#endif

#endif
