#include "Configuration.h"

#include <string.h>

#include "LineReader.h"

namespace {

const char blanks[] = " \t\r";

}  // namespace

Configuration::Configuration() : poll(1) {}

bool Configuration::Read(const char* path) {
    LineReader reader;
    if (!reader.Open(path)) return false;

    TqString line;
    while (reader.NextLine(line)) {
        const char* complaint = ReadLine(line.data);
        if (complaint != nullptr) reader.Complain(complaint);
    }
    return true;
}

// Takes over one line. Returns what is wrong with it, or null.
const char* Configuration::ReadLine(char* line) {
    line[strcspn(line, "#")] = '\0';
    char* rest = nullptr;
    const char* keyword = strtok_r(line, blanks, &rest);
    if (keyword == nullptr) return nullptr;

    const char* argument = strtok_r(nullptr, blanks, &rest);
    if (argument == nullptr) return "nothing behind the keyword";
    if (strcmp(keyword, "poll") == 0) {
        poll.FromString(argument);
        return nullptr;
    }
    return "unknown keyword";
}
