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

/// What to show beside the table.
struct Show {
    bool items;
    bool oids;
};

/// Polls, sends what it has found, and has its monitors look at what has changed since.
class Agent {
public:
    explicit Agent(const Configuration& agentConfiguration);
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

    /// Polls `path` once and shows all there is to show.
    void PollOnce(const char* path, const Show& show);

    /// Prints what all polls together came to.
    void PrintSummary() const;

private:
    void AddAddresses(Poll& poll) const;
    void ChooseWatched(Poll& poll) const;
    void Observe(const Poll& before, const Poll& after);
    void PrintTitle(const char* path, const TqDateTime& time);

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
