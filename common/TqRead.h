#ifndef TQ_READ_H
#define TQ_READ_H

#include "TqBuffer.h"
#include "TqWrite.h"

/// Reads one item for each of these values at the read position of `in` and tells whether all of
/// them were there:
///
///     TqString name;
///     TqCounter octets;
///     bool isUp;
///     if (!TqRead(buffer, name, octets, isUp)) return Complain(buffer);
///
/// When one is missing or incomplete it returns false and changes nothing, neither a value nor the
/// read position; there is no report. An item is there when its length is five digits and not more
/// than what is left. What stands in it is then taken as the value's `FromBuffer` takes it, without
/// a failure. Each value is one item, as all of the library's are.
///
/// Beside values it reads `int`, `unsigned int` and `bool`, as `TqWrite` writes them.
///
/// Ownership: nothing. Lock: none. Reports: those of the values.
template <class... Values>
inline bool TqRead(TqBuffer& in, Values&... values);

/// Whether `count` items stand at the read position of `in`.
inline bool TqHasItems(const TqBuffer& in, unsigned int count) {
    const unsigned int digits = 5;
    unsigned int position = in.readPosition;
    for (; count > 0; --count) {
        if (position > in.length || in.length - position < digits) return false;
        unsigned int payload = 0;
        for (const unsigned int end = position + digits; position < end; ++position) {
            const unsigned char digit = in.data[position];
            if (digit < '0' || digit > '9') return false;
            payload = payload * 10 + (digit - '0');
        }
        if (in.length - position < payload) return false;
        position += payload;
    }
    return true;
}

inline void TqReadAll(TqBuffer&) {}

template <class First, class... Others>
inline void TqReadAll(TqBuffer& in, First& first, Others&... others) {
    TqItemOf<First>::Read(in, first);
    TqReadAll(in, others...);
}

template <class... Values>
inline bool TqRead(TqBuffer& in, Values&... values) {
    if (!TqHasItems(in, sizeof...(Values))) return false;
    TqReadAll(in, values...);
    return true;
}

#endif
