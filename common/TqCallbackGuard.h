#ifndef TQ_CALLBACK_GUARD_H
#define TQ_CALLBACK_GUARD_H

#include "TqCallback.h"
#include "TqCallbackChain.h"

/// Keeps a callback in a chain for as long as the guard lives, however its scope is left:
///
///     TqCallableCb count([&] { ++changes; });
///     const TqCallbackGuard counting(port.changed, count);
///
/// Declare it behind the callback and the chain, both of which outlive it; in a class the same
/// order of members does.
///
/// Ownership: borrows both. Lock: none; the chain is changed on the thread of the guard.
/// Reports: none of its own.
class TqCallbackGuard {
public:
    /// Appends `added` to `changed`.
    TqCallbackGuard(TqCallbackChain& changed, TqCallback& added) : chain(changed), callback(added) {
        chain.Append(&callback);
    }

    /// Removes the first slot that holds the callback; none is fine, when it was taken out by hand.
    ~TqCallbackGuard() { chain.Remove(&callback); }

    TqCallbackGuard(const TqCallbackGuard&) = delete;
    TqCallbackGuard& operator=(const TqCallbackGuard&) = delete;

private:
    TqCallbackChain& chain;
    TqCallback& callback;
};

#endif
