#ifndef NOTIFIER_H
#define NOTIFIER_H

#include "Configuration.h"
#include "TqCallback.h"

/// Tells a network manager of each change, by the program "snmptrap" of net-snmp: linkUp and
/// linkDown, and for a counter a notification with its new value.
class Notifier : public TqCallback {
public:
    explicit Notifier(const Configuration& configured)
        : TqCallback(nullptr), configuration(configured) {}  ///< borrows it

    /// Returns when the notification has been sent and, if it is an inform, acknowledged. A failure
    /// is complained of.
    void Invoke(TqBaseObject* source, TqCallbackData* data) override;

private:
    const Configuration& configuration;
};

#endif
