#include "Configuration.h"

#include <stdio.h>
#include <string.h>

#include "Complaints.h"
#include "Download.h"
#include "LineReader.h"
#include "TqBuffer.h"

namespace {

const char blanks[] = " \t\r";
const int longestInterval = 3600;
const unsigned int mostWords = 4;

// Cuts `line` into words; the rest of them are null. Returns how many there are, or `mostWords + 1`
// when there are more.
unsigned int SplitWords(char* line, char* (&words)[mostWords]) {
    line[strcspn(line, "#")] = '\0';
    for (char*& word : words) word = nullptr;
    unsigned int count = 0;
    char* rest = nullptr;
    for (char* word = strtok_r(line, blanks, &rest); word != nullptr;
         word = strtok_r(nullptr, blanks, &rest)) {
        if (count == mostWords) return mostWords + 1;
        words[count++] = word;
    }
    return count;
}

}  // namespace

// A line begins with a keyword, and so many words follow it.
struct Configuration::Keyword {
    const char* name;
    unsigned int fewest;
    unsigned int most;
    bool (Configuration::*take)(char** words, TqString& complaint);
};

const Configuration::Keyword Configuration::keywords[] = {
    {"poll", 1, 1, &Configuration::SetPoll},       {"interval", 1, 1, &Configuration::SetInterval},
    {"monitor", 1, 2, &Configuration::AddMonitor}, {"allow", 2, 2, &Configuration::AddAllowed},
    {"address", 3, 3, &Configuration::AddAddress},
};

bool ParseWholeNumber(const char* text, int most, TqNumber& number) {
    // The number's own parser takes anything, and wraps around: ask first.
    const size_t digits = strspn(text, "0123456789");
    if (digits == 0 || digits > 9 || text[digits] != '\0') return false;

    TqNumber parsed;
    parsed.FromString(text);
    if (parsed > most) return false;
    number = parsed;
    return true;
}

Configuration::Configuration() : poll(1), interval(1) {}

void Configuration::SetDefaults() {
    char lines[][32] = {"monitor TrafficMonitor", "monitor FaultMonitor", "monitor LinkMonitor"};
    TqString complaint;
    for (char* line : lines) ReadLine(line, complaint);
}

bool Configuration::Read(const char* path) {
    LineReader reader;
    if (!reader.Open(path)) return false;

    TqString line;
    while (reader.NextLine(line)) TakeLine(path, reader.LineNumber(), line);
    return true;
}

bool Configuration::Fetch(const char* server, const char* fileName) {
    TqBuffer content;
    if (!Download(server, fileName, content)) return false;
    printf("configuration: %s, %u bytes from %s\n\n", fileName, content.length, server);

    const char* start = reinterpret_cast<const char*>(content.data);
    const char* end = start + content.length;
    for (unsigned int lineNumber = 1; start < end; ++lineNumber) {
        const void* newline = memchr(start, '\n', static_cast<size_t>(end - start));
        const char* lineEnd = newline != nullptr ? static_cast<const char*>(newline) : end;
        TqString line;
        if (MakeText(start, static_cast<unsigned int>(lineEnd - start), line)) {
            TakeLine(fileName, lineNumber, line);
        } else {
            Complain("%s:%u: %s", fileName, lineNumber, nulComplaint);
        }
        start = lineEnd + 1;
    }
    return true;
}

bool Configuration::Allows(const TqIpAddress& address) const {
    for (unsigned int i = 1; i <= allowed.count; ++i) {
        if (ItemOf(allowed, i)->Contains(address)) return true;
    }
    return allowed.count == 0;
}

void Configuration::TakeLine(const char* source, unsigned int lineNumber, TqString& line) {
    TqString complaint;
    if (!ReadLine(line.data, complaint)) {
        Complain("%s:%u: %s", source, lineNumber, complaint.data);
    }
}

// Takes over one line, which is cut into words. False, with a complaint, when it is not understood.
bool Configuration::ReadLine(char* line, TqString& complaint) {
    char* words[mostWords];
    const unsigned int count = SplitWords(line, words);
    if (count == 0) return true;

    for (const Keyword& keyword : keywords) {
        if (strcmp(words[0], keyword.name) != 0) continue;
        if (count - 1 >= keyword.fewest && count - 1 <= keyword.most) {
            return (this->*keyword.take)(words, complaint);
        }
        complaint = TqString(count - 1 < keyword.fewest ? "too few" : "too many") +
                    " words behind \"" + keyword.name + "\"";
        return false;
    }
    complaint = TqString("unknown keyword \"") + words[0] + "\"";
    return false;
}

bool Configuration::SetPoll(char** words, TqString&) {
    poll.FromString(words[1]);
    return true;
}

bool Configuration::SetInterval(char** words, TqString& complaint) {
    if (ParseWholeNumber(words[1], longestInterval, interval)) return true;
    complaint = "an interval is a number of seconds up to ";
    complaint.AppendNumber(longestInterval);
    return false;
}

bool Configuration::AddMonitor(char** words, TqString& complaint) {
    TqRef<Monitor> monitor = MakeMonitor(words[1], complaint);
    if (monitor.object == nullptr) return false;
    static_cast<Monitor*>(monitor.object)->interfaceName = words[2];
    monitors.InsertSlot(monitors.count + 1, monitor.object);
    return true;
}

bool Configuration::AddAllowed(char** words, TqString& complaint) {
    TqRef<Subnet> network(new Subnet);
    if (!static_cast<Subnet*>(network.object)->Parse(words[1], words[2], complaint)) return false;
    allowed.InsertSlot(allowed.count + 1, network.object);
    return true;
}

bool Configuration::AddAddress(char** words, TqString& complaint) {
    TqRef<Subnet> address(new Subnet);
    Subnet* subnet = static_cast<Subnet*>(address.object);
    if (!subnet->Parse(words[2], words[3], complaint)) return false;
    subnet->interfaceName = words[1];
    addresses.InsertSlot(addresses.count + 1, address.object);
    return true;
}
