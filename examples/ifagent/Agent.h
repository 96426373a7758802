#ifndef AGENT_H
#define AGENT_H

#include "Configuration.h"
#include "TqCallbackChain.h"
#include "TqFunctionCb.h"

/// Polls, sends what it has found, and has its monitors look at what has changed since.
class Agent : public TqCallback {
public:
    Agent();
    void PollOnce(const char* path);  ///< polls and shows all there is to show
    void PrintSummary() const;        ///< prints what all polls together came to
    void Invoke(TqBaseObject* source, TqCallbackData* data) override;  ///< prints a change

    Configuration configuration;
    bool showItems = false;  ///< the bytes that are sent
    bool showOids = false;   ///< each value with its object identifier

private:
    void AddAddresses(Poll& poll) const;
    void Observe(Monitor& monitor, const Poll& before, const Poll& after);

    unsigned int pollCount = 0;
    TqCounter changeCount;
    TqRef<Poll> latest;  ///< kept for the comparison with the next one

    TqFunctionCb countChange;
    TqCallbackChain listeners;  ///< borrows its callbacks, and so goes before them
};

#endif
