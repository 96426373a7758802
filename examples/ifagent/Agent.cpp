#include "Agent.h"

#include <unistd.h>

#include "TqClassInfo.h"

// A function as a listener; the counter to count up is its user data.
static void CountChange(TqFunctionCb* callback, TqBaseObject*, TqCallbackData*) {
    ++static_cast<TqCounter*>(callback->UserData())->count;
}

bool View::Wait(unsigned int seconds) {
    sleep(seconds);
    return true;
}

Agent::Agent(View& shownBy) : view(shownBy), countChange(CountChange, &changeCount) {
    Listen(view);
    Listen(countChange);
}

void Agent::Listen(TqCallback& listener) {
    listeners.InsertSlot(listeners.count + 1, &listener);
}

bool Agent::PollOnce(const char* path) {
    TqRef<Poll> current(new Poll);
    Poll& poll = *static_cast<Poll*>(current.object);
    if (!poll.Read(path)) return false;
    AddAddresses(poll);

    view.BeginPoll(poll, path, configuration);
    for (unsigned int i = 1; latest.object != nullptr && i <= configuration.monitors.count; ++i) {
        Observe(*ItemOf(configuration.monitors, i), *static_cast<Poll*>(latest.object), poll);
    }
    view.EndPoll();
    latest = current;
    return true;
}

// Adds the configured addresses of the interfaces that there are. Watched is an interface when one
// of its addresses is in an allowed network, or when all are allowed.
void Agent::AddAddresses(Poll& poll) const {
    for (unsigned int i = 1; i <= configuration.addresses.count; ++i) {
        Subnet* subnet = ItemOf(configuration.addresses, i);
        if (poll.Find(subnet->interfaceName.data) == nullptr) continue;
        poll.addresses.InsertSlot(poll.addresses.count + 1, static_cast<TqBaseObject*>(subnet));
    }
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        ItemOf(poll.interfaces, i)->watched = configuration.allowed.count == 0;
    }
    for (unsigned int i = 1; i <= poll.addresses.count; ++i) {
        const Subnet* subnet = ItemOf(poll.addresses, i);
        if (!configuration.Allows(subnet->address)) continue;
        poll.Find(subnet->interfaceName.data)->watched = true;
    }
}

// Has a monitor look at what is in both polls.
void Agent::Observe(Monitor& monitor, const Poll& before, const Poll& after) {
    const TqString& only = monitor.interfaceName;
    for (unsigned int i = 1; i <= after.interfaces.count; ++i) {
        const Interface& interface = *ItemOf(after.interfaces, i);
        const Interface* earlier = before.Find(interface.name.data);
        const bool isMeant = only.IsEmpty() || only.Equals(&interface.name);
        if (earlier == nullptr || !interface.watched || !isMeant) continue;
        for (unsigned int v = 0; v < valueCount; ++v) {
            if (!monitor.Watches(v) || interface.values[v]->Equals(earlier->values[v])) continue;
            ValueChange change;
            change.before = earlier;
            change.after = &interface;
            change.value = v;
            listeners.Invoke(&monitor, &change);
        }
    }
}

void Agent::Finish() {
    view.Finish(changeCount.count);
}
