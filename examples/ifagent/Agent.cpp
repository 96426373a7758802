#include "Agent.h"

#include <stdio.h>

#include "Table.h"
#include "TimeText.h"
#include "TqClassInfo.h"
#include "Transfer.h"

namespace {

// A function as a listener; the counter to count up is its user data.
void CountChange(TqFunctionCb* callback, TqBaseObject*, TqCallbackData*) {
    ++static_cast<TqCounter*>(callback->UserData())->count;
}

void PrintUnwatched(const Poll& poll) {
    TqString names;
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        const Interface* interface = poll.InOrder(i);
        if (!interface->watched) (names += " ") += interface->name.data;
    }
    if (names.IsNotEmpty()) printf("not watched, for want of an allowed address:%s\n", names.data);
}

// By how much a counter has grown. `Compare` of counters is their difference modulo 2^32, and so
// right when the counter has started again at 0.
unsigned int Growth(const ValueChange& change) {
    return static_cast<unsigned int>(change.After().Compare(change.Before()));
}

}  // namespace

void ChangePrinter::Invoke(TqBaseObject* source, TqCallbackData* data) {
    const ValueChange& change = *static_cast<ValueChange*>(data);
    TqString before;
    TqString after;
    TqString oid;
    change.Before().ToString(before);
    change.After().ToString(after);
    change.after.Oid(change.index).ToString(oid);
    printf("%s: %s %s (%s) %s -> %s", source->ClassInfo()->name.data, change.after.name.data,
           interfaceValueNames[change.index].name, oid.data, before.data, after.data);
    if (change.After().TypeId() == TqCounter::typeId) printf(" (+%u)", Growth(change));
    printf("\n");
}

Agent::Agent(const Configuration& agentConfiguration)
    : configuration(agentConfiguration), pollCount(0), countChange(CountChange, &changeCount) {
    TqCallback* const callbacks[] = {&printChange, &countChange};
    for (TqCallback* callback : callbacks) listeners.InsertSlot(listeners.count + 1, callback);
}

void Agent::PollOnce(const char* path, const Show& show) {
    TqRef<Poll> current(new Poll);
    Poll* poll = static_cast<Poll*>(current.object);
    poll->enabled = configuration.poll;
    if (!poll->Read(path)) return;
    AddAddresses(*poll);
    ChooseWatched(*poll);

    PrintTitle(path, poll->time);
    PrintTable(*poll);
    PrintAddresses(*poll, configuration);
    PrintUnwatched(*poll);
    if (show.oids) PrintOids(*poll);
    CheckTransfer(*poll, show.items);
    if (latest.object != nullptr) Observe(*static_cast<Poll*>(latest.object), *poll);
    latest = current;
}

// The configured addresses of the interfaces that there are.
void Agent::AddAddresses(Poll& poll) const {
    for (unsigned int i = 1; i <= configuration.addresses.count; ++i) {
        Subnet* subnet = ItemOf(configuration.addresses, i);
        if (poll.Find(subnet->interfaceName.data) == nullptr) continue;
        poll.addresses.InsertSlot(poll.addresses.count + 1, static_cast<TqBaseObject*>(subnet));
    }
}

// An interface is watched when one of its addresses is in an allowed network, or all are allowed.
void Agent::ChooseWatched(Poll& poll) const {
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        ItemOf(poll.interfaces, i)->watched = TqBoolean(configuration.allowed.count == 0);
    }
    for (unsigned int i = 1; i <= poll.addresses.count; ++i) {
        const Subnet* subnet = ItemOf(poll.addresses, i);
        if (!configuration.Allows(subnet->address)) continue;
        poll.Find(subnet->interfaceName.data)->watched = TqBoolean(1);
    }
}

void Agent::Observe(const Poll& before, const Poll& after) {
    for (unsigned int i = 1; i <= configuration.monitors.count; ++i) {
        ItemOf(configuration.monitors, i)->Observe(before, after, listeners);
    }
}

void Agent::PrintTitle(const char* path, const TqDateTime& time) {
    if (pollCount > 0) printf("\n");
    ++pollCount;
    printf("poll %u of %s at %s UTC\n", pollCount, path, TimeText(time).data);
    printf("that time as the library writes it: %s\n\n", LibraryTimeText(time).data);
}

void Agent::PrintSummary() const {
    if (pollCount > 1) printf("\n%u changes in %u polls\n", changeCount.count, pollCount);
}
