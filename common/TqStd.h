#ifndef TQ_STD_H
#define TQ_STD_H

#include <cstddef>
#include <cstring>
#include <functional>
#include <iterator>
#include <ostream>
#include <type_traits>

#include "TqBaseRef.h"
#include "TqBoolean.h"
#include "TqBuffer.h"
#include "TqCounter.h"
#include "TqFloat.h"
#include "TqListItems.h"
#include "TqNetworkMask.h"
#include "TqNumber.h"
#include "TqSnmpOid.h"
#include "TqString.h"
#include "TqText.h"

#if defined(__has_include) && __cplusplus >= 202002L
#if __has_include(<format>)
#include <format>
#include <string_view>
#endif
#endif

/// What the standard library asks of a type, for the library's own. No other header includes this
/// one; where it is included, values go
///
/// - into streams, and where C++20 is on and the compiler's library has it into `std::format`, as
///   their `TqText`. That holds for numbers and addresses too, which without this header are
///   streamed as the plain numbers to which they convert;
/// - into `std::map` and `std::set`: strings, buffers, object identifiers and floats have `<` and
///   `==`, as their own `Compare` and `Equals` order them, but floats exactly. Numbers, addresses
///   and masks have those of the plain numbers, handles those of the addresses of their objects;
/// - into `std::unordered_map` and `std::unordered_set`: all of these have a `std::hash`;
/// - into algorithms: what `begin()` of a typed list gives is an iterator that goes through once.
///
///     std::cout << counter << " on " << address << '\n';
///     std::map<TqString, TqRef<Port>> ports;
///     const auto found = std::find_if(list.begin(), list.end(), isUp);
///
/// Dates are no keys: their copies are empty. Of two strings that differ behind a NUL only, neither
/// is less, and yet they are not equal.
///
/// Ownership: nothing. Lock: none. Reports: those of the values' texts.

// Which types these are.

template <class Value>
struct TqHasText : std::integral_constant<bool, (std::is_base_of<TqDataType, Value>::value ||
                                                 std::is_base_of<TqIpAddress, Value>::value) &&
                                                    !std::is_base_of<TqBaseRef, Value>::value> {};

template <class Value>
struct TqIsOrdered : std::integral_constant<bool, std::is_base_of<TqString, Value>::value ||
                                                      std::is_base_of<TqBuffer, Value>::value ||
                                                      std::is_base_of<TqSnmpOid, Value>::value ||
                                                      std::is_base_of<TqFloat, Value>::value ||
                                                      std::is_base_of<TqBaseRef, Value>::value> {};

// Streams.

template <class Value>
inline typename std::enable_if<TqHasText<Value>::value, std::ostream&>::type operator<<(
    std::ostream& out, const Value& value) {
    return out << TqText(value).data;
}

// Order.

inline bool TqIsLess(const TqDataType& a, const TqDataType& b) {
    return a.Compare(b) < 0;
}
inline bool TqIsLess(const TqFloat& a, const TqFloat& b) {
    return a.value < b.value;
}
inline bool TqIsLess(const TqBaseRef& a, const TqBaseRef& b) {
    return std::less<const TqBaseObject*>()(a.object, b.object);
}

template <class Value>
inline typename std::enable_if<TqIsOrdered<Value>::value, bool>::type operator==(const Value& a,
                                                                                 const Value& b) {
    return a.Equals(&b);
}

template <class Value>
inline typename std::enable_if<TqIsOrdered<Value>::value, bool>::type operator!=(const Value& a,
                                                                                 const Value& b) {
    return !a.Equals(&b);
}

template <class Value>
inline typename std::enable_if<TqIsOrdered<Value>::value, bool>::type operator<(const Value& a,
                                                                                const Value& b) {
    return TqIsLess(a, b);
}

// Hashes.

/// FNV-1a of these bytes.
inline std::size_t TqHashOfBytes(const void* bytes, std::size_t count) {
    std::size_t hash = 2166136261u;
    for (std::size_t i = 0; i < count; ++i) {
        hash = (hash ^ static_cast<const unsigned char*>(bytes)[i]) * 16777619u;
    }
    return hash;
}

inline std::size_t TqHashOf(const TqString& string) {
    return TqHashOfBytes(string.data, std::strlen(string.data));
}
inline std::size_t TqHashOf(const TqBuffer& buffer) {
    return TqHashOfBytes(buffer.data, buffer.length);
}
inline std::size_t TqHashOf(const TqSnmpOid& oid) {
    return TqHashOfBytes(oid.values, oid.count * sizeof *oid.values);
}
inline std::size_t TqHashOf(const TqNumber& number) {
    return std::hash<int>()(number.operator int());
}
inline std::size_t TqHashOf(const TqFloat& number) {
    return std::hash<float>()(number.value);
}
inline std::size_t TqHashOf(const TqIpAddress& address) {
    return std::hash<unsigned int>()(address.address);
}
inline std::size_t TqHashOf(const TqBaseRef& handle) {
    return std::hash<const TqBaseObject*>()(handle.object);
}

template <class Value>
struct TqHash {
    std::size_t operator()(const Value& value) const { return TqHashOf(value); }
};

namespace std {

template <>
struct hash<TqString> : TqHash<TqString> {};
template <>
struct hash<TqBuffer> : TqHash<TqBuffer> {};
template <>
struct hash<TqSnmpOid> : TqHash<TqSnmpOid> {};
template <>
struct hash<TqNumber> : TqHash<TqNumber> {};
template <>
struct hash<TqCounter> : TqHash<TqCounter> {};
template <>
struct hash<TqBoolean> : TqHash<TqBoolean> {};
template <>
struct hash<TqFloat> : TqHash<TqFloat> {};
template <>
struct hash<TqIpAddress> : TqHash<TqIpAddress> {};
template <>
struct hash<TqNetworkMask> : TqHash<TqNetworkMask> {};
template <class T>
struct hash<TqRef<T>> : TqHash<TqRef<T>> {};

// Iterators.

template <class T, class Stored>
struct iterator_traits<TqListWalk<T, Stored>> {
    typedef input_iterator_tag iterator_category;
    typedef T* value_type;
    typedef ptrdiff_t difference_type;
    typedef T* const* pointer;
    typedef T* reference;
};

// Texts.

#if defined(__cpp_lib_format) || (__cplusplus >= 202002L && defined(_LIBCPP_FORMAT) && \
                                  !defined(_LIBCPP_HAS_NO_INCOMPLETE_FORMAT))
template <class Value>
requires TqHasText<Value>::value struct formatter<Value, char> : formatter<string_view, char> {
    template <class Context>
    auto format(const Value& value, Context& context) const {
        const TqString text = TqText(value);
        return formatter<string_view, char>::format(string_view(text.data), context);
    }
};
#endif

}  // namespace std

#endif
