#ifndef AGENT_H
#define AGENT_H

#include "Configuration.h"
#include "TqCallbackChain.h"
#include "TqFunctionCb.h"

/// Where polls are read from: the kernel, or files in turn, the last one again and again.
struct Sources {
    const char* Path(int poll) const {  ///< polls count from 0
        return count == 0 ? procNetDev : paths[poll < count ? poll : count - 1];
    }

    char** paths;
    int count;
};

/// Shows what the agent finds. It is called back with each change (`ValueChange`) between the two
/// calls about the later poll; the caller is the monitor that saw it.
class View : public TqCallback {
public:
    View() : TqCallback(nullptr) {}
    virtual void BeginPoll(const Poll& poll, const char* path, const Configuration&) = 0;
    virtual void EndPoll() {}
    virtual bool Wait(unsigned int seconds);              ///< between two polls; false to end
    virtual void Finish(unsigned int /*changeCount*/) {}  ///< after the last poll
};

/// Polls, and has its monitors look at what has changed since.
class Agent {
public:
    explicit Agent(View& shownBy);      ///< borrows it
    void Listen(TqCallback& listener);  ///< tells it of changes too, and borrows it
    bool PollOnce(const char* path);    ///< false, after a complaint, when there is nothing
    void Finish();                      ///< when all polls are made

    Configuration configuration;
    TqRef<Poll> latest;  ///< kept for the comparison with the next one; null before the first

private:
    void AddAddresses(Poll& poll) const;
    void Observe(Monitor& monitor, const Poll& before, const Poll& after);

    View& view;
    TqCounter changeCount;
    TqFunctionCb countChange;
    TqCallbackChain listeners;  ///< borrows its callbacks, and so goes before them
};

#endif
