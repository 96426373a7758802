#ifndef TQ_CALLBACK_DATA_H
#define TQ_CALLBACK_DATA_H

#include "TqBaseObject.h"

/// The base class of what a callback is told. Applications derive their data classes from it.
///
/// Ownership: nothing beyond itself. Lock: none. Reports: source "TqCallbackData".
class TQ_API TqCallbackData : public TqBaseObject {
public:
    TqCallbackData();

    /// A fresh object, and a report.
    TqCallbackData(const TqCallbackData& other);

    /// A report; nothing changes.
    TqCallbackData& operator=(const TqCallbackData& other);

    ~TqCallbackData() override;
};

#endif
