#ifndef PASS_PERSIST_H
#define PASS_PERSIST_H

#include "Agent.h"
#include "Table.h"

/// Serves the interface table to an SNMP daemon that has started this program for it, by the line
/// protocol of its "pass_persist" on standard input and output.
class PassPersist : public View {
public:
    /// Answers until the input ends. Has the agent poll when it is asked and the configured
    /// interval is over. Without a successful poll there is no table.
    void Serve(Agent& agent, const Sources& sources);

    void BeginPoll(const Poll& poll, const char*, const Configuration&) override;
    void Invoke(TqBaseObject*, TqCallbackData*) override {}

private:
    Table table;
};

#endif
