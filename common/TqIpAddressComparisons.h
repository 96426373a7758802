#ifndef TQ_IP_ADDRESS_COMPARISONS_H
#define TQ_IP_ADDRESS_COMPARISONS_H

#include <type_traits>

// How addresses and masks compare with each other and with integers, in either order: what the
// class `TqIpAddress` has beside its own operators. As friends of the class they take part only
// where an address does.
//
// They fit their operands exactly. Without them most pairs are ambiguous with the comparison of
// plain numbers, to which an address converts; where they are not, as with 5 == address before
// C++20, that one passes over `valid`; and from C++20 on two masks are ambiguous with themselves
// the other way round.
#define TQ_IP_ADDRESS_COMPARISONS                                                                  \
private:                                                                                           \
    template <class A, class B = TqIpAddress>                                                      \
    struct AreAddresses                                                                            \
        : std::integral_constant<bool, std::is_base_of<TqIpAddress, A>::value &&                   \
                                           std::is_base_of<TqIpAddress, B>::value> {};             \
                                                                                                   \
    template <class N, class A>                                                                    \
    struct AreNumberAndAddress                                                                     \
        : std::integral_constant<bool, (std::is_integral<N>::value || std::is_enum<N>::value) &&   \
                                           AreAddresses<A>::value> {};                             \
                                                                                                   \
    template <class A, class B>                                                                    \
    friend typename std::enable_if<AreAddresses<A, B>::value, bool>::type operator==(const A& a,   \
                                                                                     const B& b) { \
        return static_cast<const TqIpAddress&>(a) == static_cast<const TqIpAddress&>(b);           \
    }                                                                                              \
                                                                                                   \
    template <class A, class N>                                                                    \
    friend typename std::enable_if<AreNumberAndAddress<N, A>::value, bool>::type operator==(       \
        const A& a, N number) {                                                                    \
        return static_cast<const TqIpAddress&>(a) == static_cast<unsigned long>(number);           \
    }                                                                                              \
                                                                                                   \
    template <class N, class A>                                                                    \
    friend typename std::enable_if<AreNumberAndAddress<N, A>::value, bool>::type operator==(       \
        N number, const A& a) {                                                                    \
        return static_cast<const TqIpAddress&>(a) == static_cast<unsigned long>(number);           \
    }                                                                                              \
                                                                                                   \
    template <class A, class B>                                                                    \
    friend typename std::enable_if<AreAddresses<A, B>::value, bool>::type operator!=(const A& a,   \
                                                                                     const B& b) { \
        return !(a == b);                                                                          \
    }                                                                                              \
                                                                                                   \
    template <class A, class N>                                                                    \
    friend typename std::enable_if<AreNumberAndAddress<N, A>::value, bool>::type operator!=(       \
        const A& a, N number) {                                                                    \
        return !(a == number);                                                                     \
    }                                                                                              \
                                                                                                   \
    template <class N, class A>                                                                    \
    friend typename std::enable_if<AreNumberAndAddress<N, A>::value, bool>::type operator!=(       \
        N number, const A& a) {                                                                    \
        return !(a == number);                                                                     \
    }

#endif
