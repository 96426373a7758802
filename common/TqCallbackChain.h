#ifndef TQ_CALLBACK_CHAIN_H
#define TQ_CALLBACK_CHAIN_H

#include "TqBasePtrList.h"
#include "TqCallback.h"

/// An ordered list of callbacks that are invoked together. Callbacks enter and leave it as list
/// items, which `Append` and `Remove` turn into `TqCallback*`:
///
///     TqFunctionCb tell(TellOperator, &console);
///     TqCallbackChain chain;
///     chain.Append(&tell);
///     chain.Invoke(port, &change);
///     chain.Remove(&tell);
///
/// Ownership: the chain borrows its callbacks. Whoever made one removes it, then frees it.
/// Lock: none. Invoke and change a chain on one thread, or guard it in its owner.
/// Reports: source "TqCallbackChain".
class TQ_API TqCallbackChain : public TqPtrList<TqCallback> {
public:
    TqCallbackChain();

    /// An empty chain, and a report.
    TqCallbackChain(const TqCallbackChain& other);

    /// A report; nothing changes.
    TqCallbackChain& operator=(const TqCallbackChain& other);

    ~TqCallbackChain() override;

    /// Invokes every callback in slot order with these two arguments. Callbacks may insert and
    /// remove: one appended on the way is invoked in the same walk. Destroying or assigning to the
    /// chain from inside a callback is reported.
    void Invoke(TqBaseObject* source, TqCallbackData* data);
};

#endif
