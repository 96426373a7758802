#ifndef TQ_TEXT_H
#define TQ_TEXT_H

#include <type_traits>

#include "TqDataType.h"
#include "TqIpAddress.h"
#include "TqString.h"

/// The text form of a value, of an address or of a mask, as a string of its own:
///
///     std::puts(TqText(counter).data);
///     names.Append(TqText(address).data);
///
/// It is what `ToString`, and `toString` of an address, puts out, with the reports that go with it.
/// Plain numbers and texts are no values: name the type, as in `TqText(TqNumber(5))`.
///
/// Ownership: hands over a new string. Lock: none. Reports: those of the value.
template <class Value>
inline TqString TqText(const Value& value);

// Which of the two hierarchies a value belongs to.
template <class Value, class = void>
struct TqTextOf {
    static_assert(sizeof(Value) == 0, "TqText takes a value, an address or a mask of the library");
    static void Put(const Value&, TqString&) {}
};

template <class Value>
struct TqTextOf<Value, typename std::enable_if<std::is_base_of<TqDataType, Value>::value>::type> {
    static void Put(const TqDataType& value, TqString& out) { value.ToString(out); }
};

template <class Value>
struct TqTextOf<Value, typename std::enable_if<std::is_base_of<TqIpAddress, Value>::value>::type> {
    static void Put(const TqIpAddress& value, TqString& out) { value.toString(out); }
};

template <class Value>
inline TqString TqText(const Value& value) {
    TqString text;
    TqTextOf<Value>::Put(value, text);
    return text;
}

#endif
