#ifndef TQ_MEMORY_H
#define TQ_MEMORY_H

// The memory behind values and lists.

#include <cstddef>
#include <cstdlib>

/// Reports that there is no more memory, and aborts the process.
[[noreturn]] void TqMemoryHasEnded();

/// `block`, which the C library was asked for. Where it has none the process ends here: what would
/// be stored through null comes to lie wherever the offset leads, in the program's own data even.
inline void* TqFound(void* block) {
    if (__builtin_expect(block == nullptr, 0)) TqMemoryHasEnded();
    return block;
}

inline void* TqAllocate(std::size_t bytes) {
    return TqFound(std::malloc(bytes));
}

/// The old block stays where it is when there is no memory.
inline void* TqReallocate(void* block, std::size_t bytes) {
    return TqFound(std::realloc(block, bytes));
}

#endif
