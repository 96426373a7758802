#ifndef TQ_FUNCTION_CB_H
#define TQ_FUNCTION_CB_H

#include "TqCallback.h"

/// The callback that calls a plain function. The function receives the callback itself first, so
/// that it can read its `userData`.
///
/// Ownership: borrows `userData`. Lock: none. Reports: source "TqFunctionCb".
class TQ_API TqFunctionCb : public TqCallback {
public:
    /// Null is allowed for the function: `Invoke` then does nothing.
    TqFunctionCb(void (*function)(TqFunctionCb*, TqBaseObject*, TqCallbackData*), void* userData);

    /// A new object with no references, the same function and the same `userData`.
    TqFunctionCb(const TqFunctionCb& other);

    /// Two reports, "TqCallback" and "TqFunctionCb"; nothing is copied.
    TqFunctionCb& operator=(const TqFunctionCb& other);

    ~TqFunctionCb() override;

    /// Hands over a new `TqFunctionCb` made with the copy constructor.
    TqBaseObject* Clone() const override;

    /// Calls the function with this callback and the arguments as they are.
    void Invoke(TqBaseObject* source, TqCallbackData* data) override;

    void (*function)(TqFunctionCb*, TqBaseObject*, TqCallbackData*);  ///< may be null
};

#endif
