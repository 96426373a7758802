#ifndef TQ_EXPORT_H
#define TQ_EXPORT_H

/// Marks what belongs to the public interface. The library is built with hidden visibility, so
/// only what carries this mark is seen by the programs that link it.
#define TQ_API __attribute__((visibility("default")))

/// Marks what reads an object that may be dead, or of another type than it is taken for, to report
/// just that: the undefined-behaviour sanitizer must not ask first.
#define TQ_READS_ANY_OBJECT __attribute__((no_sanitize("vptr")))

/// Marks a field that is changed under this mutex alone. Only where the library itself is compiled
/// does the compiler ask for it: applications read such fields as they like.
#ifdef TQ_CHECKS_LOCKS
#define TQ_GUARDED_BY(mutex) __attribute__((guarded_by(mutex)))
#else
#define TQ_GUARDED_BY(mutex)
#endif

/// Marks what is inlined even where a compiler saves space: what is left of it is smaller than the
/// call.
#define TQ_ALWAYS_INLINE inline __attribute__((always_inline))

/// Stands before the body of an operation that programs may compile in, because it is short and
/// runs often. The library has the operation all the same: for programs that were built before, for
/// those that take its address, and for compilers that do not know this. Such a body stands in the
/// header, and the class's own source defines the operation from it. Code that is built for size
/// calls it.
#if defined(__GNUC__) && !defined(__clang__) && !defined(__NO_INLINE__) && \
    !defined(__OPTIMIZE_SIZE__)
#define TQ_COMPILED_IN inline __attribute__((gnu_inline))
#endif

#endif
