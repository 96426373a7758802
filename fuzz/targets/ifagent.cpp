// What ifagent reads: its configuration, and the kernel's file of interfaces.

#include <algorithm>
#include <vector>

#include "../../examples/ifagent/Configuration.h"
#include "../Fuzz.h"
#include "../Values.h"
#include "TqClassRegistry.h"

namespace Ifagent {

std::vector<std::string> Split(const std::string& text, const std::string& separators) {
    std::vector<std::string> words;
    for (std::size_t at = 0; (at = text.find_first_not_of(separators, at)) != std::string::npos;) {
        const std::size_t end = std::min(text.find_first_of(separators, at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

// The lines, each without what ends it. A last one that is empty is none.
std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

/// A line of the kernel's file, as it is to be read.
struct Line {
    bool isRight = false;
    std::string name;
    unsigned long long numbers[16];
};

bool IsNumber(const std::string& word, unsigned long long& number) {
    if (word.find_first_not_of("0123456789") != std::string::npos) return false;
    const std::string digits = word.substr(std::min(word.find_first_not_of('0'), word.size()));
    const std::string most = "18446744073709551615";
    if (digits.size() > most.size() || (digits.size() == most.size() && digits > most))
        return false;
    number = digits.empty() ? 0 : std::stoull(digits);
    return true;
}

Line Read(const std::string& text) {
    const std::string blanks = " \t\v\f\r";
    Line line;
    const std::size_t start = std::min(text.find_first_not_of(blanks), text.size());
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon <= start) return line;
    line.name = text.substr(start, colon - start);
    for (const char c : line.name) {
        if (c <= ' ' || c > '~') return line;
    }
    const std::vector<std::string> words = Split(text.substr(colon + 1), blanks);
    line.isRight = words.size() == 16;
    for (std::size_t i = 0; line.isRight && i < 16; ++i) {
        line.isRight = IsNumber(words[i], line.numbers[i]);
    }
    return line;
}

void CheckCounters(const Interface& interface, const Line& line) {
    const int places[] = {0, 1, 7, 3, 2, 8, 9, 11, 10};
    for (int i = 0; i < 9; ++i) {
        unsigned long long expected = line.numbers[places[i]];
        if (i == 1) expected -= std::min(expected, line.numbers[7]);
        MUST(interface.counters[i].count == static_cast<unsigned int>(expected));
        MUST(interface.wrapped[i + 3] == (expected > 0xFFFFFFFFu));
    }
}

// The digits make lines that would rarely be found.
std::string AnyLine(Input& input) {
    std::string text = input.Text(8) + ":";
    const unsigned int count = input.Below(4) == 0 ? input.Below(20) : 16;
    for (unsigned int i = 0; i < count; ++i) {
        text += ' ' + std::to_string(input.Number());
        if (input.Below(8) == 0) text += input.Text(12);
    }
    return text;
}

void FuzzLine(Input& input) {
    const std::string text = input.Below(2) == 0 ? AnyLine(input) : input.Rest().c_str();
    const Line expected = Read(text);
    Interface interface;
    std::string copy = text;
    MUST(interface.Parse(&copy[0]) == expected.isRight);
    Tell(expected.isRight ? 1 : 0);
    if (!expected.isRight) return;
    MUST(expected.name == interface.name.data);
    CheckCounters(interface, expected);
}

std::string AnyFile(Input& input) {
    std::string text;
    while (!input.IsEmpty() && text.size() < 2000) {
        text += input.Below(4) == 0 ? input.Bytes(60) : AnyLine(input);
        text += '\n';
    }
    return text;
}

void FuzzPoll(Input& input) {
    const std::string text = AnyFile(input);
    std::vector<Line> expected;
    unsigned int number = 0;
    for (const std::string& line : LinesOf(text)) {
        ++number;
        if (line.find('\0') != std::string::npos) continue;
        if (number <= 2 && line.find('|') != std::string::npos) continue;
        const Line read = Read(line);
        bool isNew = read.isRight;
        for (const Line& other : expected) isNew = isNew && other.name != read.name;
        if (isNew) expected.push_back(read);
    }
    Poll poll;
    MUST(poll.Read(FileOf(text)) == !expected.empty());
    MUST(poll.interfaces.count == expected.size());
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        const Interface& interface = *poll.interfaces.At(i);
        MUST(expected[i - 1].name == interface.name.data);
        MUST(interface.index.value == static_cast<int>(i));
        CheckCounters(interface, expected[i - 1]);
        MUST(poll.Find(interface.name.data) == &interface);
        MUST(i == 1 || std::strcmp(poll.InOrder(i - 1)->name.data, poll.InOrder(i)->name.data) < 0);
        Tell(interface.name.data);
    }
}

/// What a configuration says, stated once more.
struct Plain {
    int poll = 1;
    int interval = 1;
    std::size_t monitors = 0;
    std::size_t allowed = 0;
    std::size_t addresses = 0;
    std::string manager;
    bool isInform = false;

    void Take(std::string line) {
        if (line.find('\0') != std::string::npos) return;
        line = line.substr(0, line.find('#'));
        const std::vector<std::string> words = Split(line, " \t\r");
        if (words.empty()) return;
        const std::size_t count = words.size() - 1;
        if (words[0] == "poll" && count == 1) poll = NumberOf(words[1]) > 0 ? 1 : 0;
        if (words[0] == "interval" && count == 1) TakeInterval(words[1]);
        if (words[0] == "monitor" && (count == 1 || count == 2)) monitors += IsMonitor(words[1]);
        if (words[0] == "allow" && count == 2) allowed += IsNetwork(words[1], words[2]);
        if (words[0] == "address" && count == 3) addresses += IsNetwork(words[2], words[3]);
        if (words[0] == "notify" && (count == 2 || (count == 3 && words[3] == "inform"))) {
            manager = words[1] + " " + words[2];
            isInform = count == 3;
        }
    }

private:
    void TakeInterval(const std::string& word) {
        const bool isNumber = word.size() <= 9 && word.find_first_not_of("0123456789") == word.npos;
        if (isNumber && std::stoi(word) <= 3600) interval = std::stoi(word);
    }
    static std::size_t IsMonitor(const std::string& word) {
        return word == "LinkMonitor" || word == "FaultMonitor" || word == "TrafficMonitor" ? 1 : 0;
    }
    static std::size_t IsNetwork(const std::string& address, const std::string& mask) {
        unsigned int number = 0;
        const bool isRight =
            AddressOf(address.c_str(), number) && AddressOf(mask.c_str(), number) && IsMask(number);
        return isRight ? 1 : 0;
    }
};

// Words that mean something, and others.
std::string AnyConfiguration(Input& input) {
    static const char* const known[] = {
        "poll",         "interval", "monitor",  "allow",     "address",     "notify", "inform",
        "LinkMonitor",  "Monitor",  "10.0.0.0", "255.0.0.0", "255.0.255.0", "On",     "off",
        "FaultMonitor", "3600",     "3601",     "#",         "\n",          "\n",     "\n"};
    std::string text;
    while (!input.IsEmpty() && text.size() < 2000) {
        const unsigned int word = input.Below(24);
        text += word < 21 ? known[word] : input.Bytes(12);
        text += word == 18 || word == 22 ? "" : " ";
    }
    return text;
}

void FuzzConfiguration(Input& input) {
    const std::string text = AnyConfiguration(input);
    Plain expected;
    for (const std::string& line : LinesOf(text)) expected.Take(line);
    LineReader reader("fuzz");
    reader.text.Append(BytesOf(text), SizeOf(text));
    Configuration read;
    read.Read(reader);
    MUST(int(read.poll) == expected.poll && int(read.interval) == expected.interval);
    MUST(read.monitors.count == expected.monitors);
    MUST(read.allowed.count == expected.allowed && read.addresses.count == expected.addresses);
    MUST(expected.manager.empty()
             ? read.manager.length == 0
             : (read.manager + " " + read.community.data).data == expected.manager);
    MUST(read.inform == expected.isInform);
    MUST(read.Allows(TqIpAddress(0x0A010203)) || read.allowed.count > 0);
    Tell(complaintCount);
    Tell(read.monitors.count);
}

void Fuzz(Input& input) {
    if (TqClassRegistry::GetRegistry()->ClassInfo("Monitor") == nullptr) RegisterMonitorClasses();
    const Printed elsewhere;
    complaintCount = 0;
    void (*const parts[])(Input&) = {FuzzLine, FuzzPoll, FuzzConfiguration};
    parts[input.Below(3)](input);
    MUST(TakeReports() == 0);
}

const Target target("ifagent", Fuzz);

}  // namespace Ifagent
