#ifndef LAYOUT_H
#define LAYOUT_H

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <vector>

// Where fields lie and which virtual operations stand where. Both are part of the binary interface.

/// The table slot of a virtual operation, -1 for one that is not virtual or not of the first base.
/// The two destructors have the slots 0 and 1, so that the first operation behind them has 2.
///
///     EXPECT_EQ(SlotOf(&TqString::TypeId), 2);
template <class Operation>
int SlotOf(Operation operation) {
    // A pointer to a member is two words: for a virtual one the byte offset in the table, else the
    // address of the code; and what is added to the object's address. That it is virtual is told by
    // a 1 added to the first word, or, where code addresses may be odd (MIPS), by the lowest bit of
    // the second, whose number is doubled then.
    std::ptrdiff_t words[2];
    static_assert(sizeof operation == sizeof words, "not a pointer to a member function");
    std::memcpy(words, &operation, sizeof words);
#ifdef __mips__
    if (words[1] != 1) return -1;
    const std::ptrdiff_t offset = words[0];
#else
    if ((words[0] & 1) == 0 || words[1] != 0) return -1;
    const std::ptrdiff_t offset = words[0] - 1;
#endif
    return static_cast<int>(offset / static_cast<std::ptrdiff_t>(sizeof(void*)));
}

using Offsets = std::vector<std::size_t>;

/// The offset of a field that is not static.
template <class Class, class Field>
std::size_t OffsetOf(const Class& object, const Field& field) {
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&field) -
                                    reinterpret_cast<const char*>(&object));
}

/// The offsets of the fields, then the size of the class.
///
///     const TqNumber n;
///     EXPECT_EQ(LayoutOf(n, n.value), PerTarget({4, 8}, {8, 16}));
template <class Class, class... Fields>
Offsets LayoutOf(const Class& object, const Fields&... fields) {
    return {OffsetOf(object, fields)..., sizeof(Class)};
}

/// The first for targets of 32 bits, the second for those of 64.
inline Offsets PerTarget(std::initializer_list<std::size_t> with32Bits,
                         std::initializer_list<std::size_t> with64Bits) {
    return sizeof(void*) == 4 ? with32Bits : with64Bits;
}

inline bool StrictlyIncreasing(const Offsets& offsets) {
    for (std::size_t i = 1; i < offsets.size(); ++i) {
        if (offsets[i - 1] >= offsets[i]) return false;
    }
    return true;
}

#endif
