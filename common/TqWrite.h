#ifndef TQ_WRITE_H
#define TQ_WRITE_H

#include <type_traits>

#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqCounter.h"
#include "TqNumber.h"
#include "TqString.h"

class TqBaseRef;
class TqDateTime;
class TqSnmpOid;

/// Appends the items of all these values to `out`, one behind the other:
///
///     TqWrite(buffer, "eth0", counter, 42, true);  // 00004eth0 00007 1234567 0000242 00004True
///
/// Beside values it takes plain ones: a text as a string, `int` as a number, `unsigned int` as a
/// counter, `bool` as a boolean. What has no item (dates, object identifiers, handles, addresses)
/// and what would be changed by its item (a plain `float` or `double`, wider integers) does not
/// compile.
///
/// Ownership: nothing. Lock: none. Reports: those of the values.
template <class... Values>
inline void TqWrite(TqBuffer& out, const Values&... values);

// How the item of a value or of a plain variable is written and read.
template <class Value, class = void>
struct TqItemOf {
    static_assert(sizeof(Value) == 0,
                  "only values of the library, int, unsigned int, bool and texts have an item; "
                  "name the value that is meant, such as TqFloat(x) or TqText(address)");
    static void Write(TqBuffer&, const Value&) {}
    static void Read(TqBuffer&, Value&) {}
};

template <class Value>
struct TqItemOf<Value, typename std::enable_if<std::is_base_of<TqDataType, Value>::value>::type> {
    static_assert(!std::is_base_of<TqBaseRef, Value>::value &&
                      !std::is_same<TqDateTime, Value>::value &&
                      !std::is_same<TqSnmpOid, Value>::value,
                  "dates, object identifiers and handles have no item");
    static void Write(TqBuffer& out, const TqDataType& value) { value.ToBuffer(out); }
    static void Read(TqBuffer& in, TqDataType& value) { value.FromBuffer(in); }
};

template <>
struct TqItemOf<int> {
    static void Write(TqBuffer& out, int number) { TqNumber(number).ToBuffer(out); }
    static void Read(TqBuffer& in, int& number) {
        TqNumber value;
        value.FromBuffer(in);
        number = value.value;
    }
};

template <>
struct TqItemOf<unsigned int> {
    static void Write(TqBuffer& out, unsigned int number) { TqCounter(number).ToBuffer(out); }
    static void Read(TqBuffer& in, unsigned int& number) {
        TqCounter value;
        value.FromBuffer(in);
        number = value.count;
    }
};

template <>
struct TqItemOf<bool> {
    static void Write(TqBuffer& out, bool flag) { TqBoolean(flag ? 1 : 0).ToBuffer(out); }
    static void Read(TqBuffer& in, bool& flag) {
        TqBoolean value;
        value.FromBuffer(in);
        flag = value.state != 0;
    }
};

template <>
struct TqItemOf<const char*> {
    static void Write(TqBuffer& out, const char* text) { TqString(text).ToBuffer(out); }
};

template <>
struct TqItemOf<char*> : TqItemOf<const char*> {};

inline void TqWriteAll(TqBuffer&) {}

template <class First, class... Others>
inline void TqWriteAll(TqBuffer& out, const First& first, const Others&... others) {
    TqItemOf<typename std::decay<First>::type>::Write(out, first);
    TqWriteAll(out, others...);
}

template <class... Values>
inline void TqWrite(TqBuffer& out, const Values&... values) {
    TqWriteAll(out, values...);
}

#endif
