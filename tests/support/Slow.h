#ifndef SLOW_H
#define SLOW_H

// TQ_SLOW: everything takes several times as long, so tests that are long anyway are shorter here,
// or left to other builds.
#if defined(TQ_EMULATED) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TQ_SLOW 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TQ_SLOW 1
#endif
#endif

#endif
