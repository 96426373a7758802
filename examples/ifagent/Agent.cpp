#include "Agent.h"

#include <stdio.h>

#include "Table.h"
#include "TqClassInfo.h"
#include "Transfer.h"

namespace {

// A function as a listener; the counter to count up is its user data.
void CountChange(TqFunctionCb* callback, TqBaseObject*, TqCallbackData*) {
    ++static_cast<TqCounter*>(callback->UserData())->count;
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
    change.Before().ToString(before);
    change.After().ToString(after);
    printf("%s: %s %s %s -> %s", source->ClassInfo()->name.data, change.after.name.data,
           interfaceValueNames[change.index].name, before.data, after.data);
    if (change.After().TypeId() == TqCounter::typeId) printf(" (+%u)", Growth(change));
    printf("\n");
}

Agent::Agent(const Configuration& agentConfiguration)
    : configuration(agentConfiguration), pollCount(0), countChange(CountChange, &changeCount) {
    TqCallback* const callbacks[] = {&printChange, &countChange};
    for (TqCallback* callback : callbacks) listeners.InsertSlot(listeners.count + 1, callback);
}

void Agent::PollOnce(const char* path, bool showItems) {
    TqRef<Poll> current(new Poll);
    Poll* poll = static_cast<Poll*>(current.object);
    poll->enabled = configuration.poll;
    if (!poll->Read(path)) return;

    printf("%spoll %u of %s\n\n", pollCount > 0 ? "\n" : "", pollCount + 1, path);
    ++pollCount;
    PrintTable(*poll);
    CheckTransfer(*poll, showItems);

    if (latest.object != nullptr) {
        for (unsigned int i = 1; i <= configuration.monitors.count; ++i) {
            ItemOf(configuration.monitors, i)
                ->Observe(*static_cast<Poll*>(latest.object), *poll, listeners);
        }
    }
    latest = current;
}

void Agent::PrintSummary() const {
    if (pollCount > 1) printf("\n%u changes in %u polls\n", changeCount.count, pollCount);
}
