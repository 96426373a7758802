#ifndef SANITIZERS_H
#define SANITIZERS_H

// Which sanitizers this is compiled for: the compilers tell it differently.

#ifdef __has_feature
#define TQ_HAS_FEATURE(name) __has_feature(name)
#else
#define TQ_HAS_FEATURE(name) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || TQ_HAS_FEATURE(address_sanitizer)
#define TQ_ADDRESS_SANITIZED 1
#endif

#if defined(__SANITIZE_THREAD__) || TQ_HAS_FEATURE(thread_sanitizer)
#define TQ_THREAD_SANITIZED 1
#endif

#endif
