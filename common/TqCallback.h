#ifndef TQ_CALLBACK_H
#define TQ_CALLBACK_H

#include "TqBaseObject.h"
#include "TqCallbackData.h"

/// The abstract callback: an object that is told, through `Invoke`, that something happened to a
/// source object. `TqFunctionCb` calls a function; applications derive their own.
///
/// Ownership: the callback borrows the caller's `userData`.
/// Lock: none. Callbacks run on the invoking thread.
/// Reports: source "TqCallback".
class TQ_API TqCallback : public TqBaseObject {
public:
    TqCallback(void* userData);

    /// A new object with no references and the same `userData`.
    TqCallback(const TqCallback& other);

    /// A report; nothing is copied.
    TqCallback& operator=(const TqCallback& other);

    ~TqCallback() override;

    /// The pointer given at construction.
    void* UserData() const;

    // TqCallbackInfo, TqCallbackInitInfo(), ClassInfo() and NewInstance().
    TQ_DECLARE_CLASS(TqCallback)

public:
    /// Tells that something happened to `source`; `data` has the details. Either may be null where
    /// invoker and callback agree on it.
    virtual void Invoke(TqBaseObject* source, TqCallbackData* data) = 0;

    void* userData;  ///< the caller's own value
};

/// The factory of `TqCallback`: null, the class is abstract.
TQ_API TqBaseObject* TqCallbackNewFunc();

#endif
