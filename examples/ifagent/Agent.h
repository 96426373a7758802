#ifndef AGENT_H
#define AGENT_H

#include "Configuration.h"
#include "Poll.h"
#include "TqBaseRef.h"
#include "TqCallbackChain.h"
#include "TqFunctionCb.h"

/// Prints each change that it is told of.
class ChangePrinter : public TqCallback {
public:
    ChangePrinter() : TqCallback(nullptr) {}
    void Invoke(TqBaseObject* source, TqCallbackData* data) override;
};

/// Polls, sends what it has found, and has its monitors look at what has changed since.
class Agent {
public:
    explicit Agent(const Configuration& agentConfiguration);
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

    /// Polls `path` once and shows all there is to show.
    void PollOnce(const char* path, bool showItems);

    /// Prints what all polls together came to.
    void PrintSummary() const;

private:
    const Configuration& configuration;
    unsigned int pollCount;
    TqCounter changeCount;
    TqRef<Poll> latest;  ///< kept for the comparison with the next one

    // The chain borrows its callbacks: it goes first.
    ChangePrinter printChange;
    TqFunctionCb countChange;
    TqCallbackChain listeners;
};

#endif
