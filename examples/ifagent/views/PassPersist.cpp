#include "PassPersist.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

namespace {

const unsigned int longestLine = 2048;  // an identifier has 128 numbers at most
const unsigned int mostNumbers = 128;

// The next line without its newline, at most `longestLine` long; what is longer or holds a NUL is
// no command and comes as an empty line. False at the end of the input.
bool NextLine(char (&line)[longestLine]) {
    if (fgets(line, longestLine, stdin) == nullptr) return false;
    char* end = strchr(line, '\n');
    if (end != nullptr) {
        *end = '\0';
        return true;
    }
    if (strlen(line) == longestLine - 1) {
        for (int c = 0; c != '\n' && c != EOF;) c = getchar();
    }
    line[0] = '\0';
    return true;
}

// Whether `text` is what the identifier's own parser takes without a report or a loss.
bool IsOid(const char* text) {
    for (unsigned int count = 1; count <= mostNumbers; ++count) {
        const size_t digits = strspn(text, "0123456789");
        if (digits == 0 || digits > 10 || strtoull(text, nullptr, 10) > 0xFFFFFFFFU) return false;
        text += digits;
        if (*text == '\0') return true;
        if (*text++ != '.') return false;
    }
    return false;
}

// What the daemon expects behind the identifier: the type and the value, a line each.
TqString TypeAndValue(const Interface& interface, unsigned int value) {
    if (value >= firstCounter) return TqString("counter\n") + TextOf(*interface.values[value]).data;
    if (value == nameValue) return TqString("string\n") + interface.name.data;
    TqString text("integer\n");
    if (value == indexValue) return text + TextOf(interface.index).data;
    return text + interface.OperStatus();
}

TqString Answer(const Table& table, const char* text, bool isNext) {
    const TqString none("NONE");
    if (*text == '.') ++text;
    if (!IsOid(text)) {
        Complain("\"%.80s\" is no identifier", text);
        return none;
    }
    TqSnmpOid oid(text);
    if (isNext && !table.Next(oid)) return none;
    const Interface* interface = nullptr;
    unsigned int value = 0;
    if (!table.Find(oid, interface, value)) return none;
    return TqString(".") + TextOf(oid).data + "\n" + TypeAndValue(*interface, value).data;
}

long long Milliseconds() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

}  // namespace

void PassPersist::BeginPoll(const Poll& poll, const char*, const Configuration&) {
    table = Table(poll);
}

void PassPersist::Serve(Agent& agent, const Sources& sources) {
    long long nextPoll = Milliseconds();
    int pollCount = 0;
    char line[longestLine];
    char operand[longestLine];
    while (NextLine(line)) {
        const bool isNext = strcmp(line, "getnext") == 0;
        if (strcmp(line, "PING") == 0) {
            puts("PONG");
        } else if (strcmp(line, "set") == 0) {
            if (NextLine(operand) && NextLine(line)) puts("not-writable");
        } else if (!isNext && strcmp(line, "get") != 0) {
            Complain("\"%.80s\" is no command", line);
            puts("NONE");
        } else if (NextLine(operand)) {
            if (Milliseconds() >= nextPoll) {
                if (!agent.PollOnce(sources.Path(pollCount++))) table = Table();
                nextPoll = Milliseconds() + agent.configuration.interval.value * 1000LL;
            }
            puts(Answer(table, operand, isNext).data);
        }
    }
}
