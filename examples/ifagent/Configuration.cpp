#include "Configuration.h"

#include <string.h>

#include "LineReader.h"

namespace {

const char blanks[] = " \t\r";
const int longestInterval = 3600;

}  // namespace

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
    TqString complaint;
    AddMonitor("TrafficMonitor", nullptr, complaint);
    AddMonitor("FaultMonitor", nullptr, complaint);
    AddMonitor("LinkMonitor", nullptr, complaint);
}

bool Configuration::Read(const char* path) {
    LineReader reader;
    if (!reader.Open(path)) return false;

    TqString line;
    TqString complaint;
    while (reader.NextLine(line)) {
        if (!ReadLine(line.data, complaint)) reader.Complain(complaint.data);
    }
    return true;
}

// Takes over one line, which is cut into words. False, with a complaint, when it is not understood.
bool Configuration::ReadLine(char* line, TqString& complaint) {
    line[strcspn(line, "#")] = '\0';
    char* rest = nullptr;
    const char* keyword = strtok_r(line, blanks, &rest);
    if (keyword == nullptr) return true;

    const char* argument = strtok_r(nullptr, blanks, &rest);
    const char* second = strtok_r(nullptr, blanks, &rest);
    if (argument == nullptr) {
        complaint = TqString("nothing behind \"") + keyword + "\"";
        return false;
    }
    if (strcmp(keyword, "poll") == 0) {
        poll.FromString(argument);
        return true;
    }
    if (strcmp(keyword, "interval") == 0) return SetInterval(argument, complaint);
    if (strcmp(keyword, "monitor") == 0) return AddMonitor(argument, second, complaint);
    complaint = TqString("unknown keyword \"") + keyword + "\"";
    return false;
}

bool Configuration::SetInterval(const char* text, TqString& complaint) {
    if (ParseWholeNumber(text, longestInterval, interval)) return true;
    complaint = "an interval is a number of seconds up to ";
    complaint.AppendNumber(longestInterval);
    return false;
}

bool Configuration::AddMonitor(const char* className, const char* interfaceName,
                               TqString& complaint) {
    TqRef<Monitor> monitor = MakeMonitor(className, complaint);
    if (monitor.object == nullptr) return false;
    if (interfaceName != nullptr)
        static_cast<Monitor*>(monitor.object)->interfaceName = interfaceName;
    monitors.InsertSlot(monitors.count + 1, monitor.object);
    return true;
}
