#include "Duty.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

const char ownName[] = "tqcommon";
const char floorName[] = "the stated steps";

std::vector<Duty>& Duties() {
    static std::vector<Duty> duties;
    return duties;
}

std::vector<Duty> ContestantsOf(const std::string& name) {
    std::vector<Duty> contestants;
    for (const Duty& duty : Duties()) {
        if (name == duty.name) contestants.push_back(duty);
    }
    std::stable_partition(contestants.begin(), contestants.end(),
                          [](const Duty& duty) { return duty.who == std::string(ownName); });
    return contestants;
}

Request ParseRequest(const std::string& text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos) return {text, 1};
    return {text.substr(0, colon),
            static_cast<unsigned int>(std::strtoul(text.c_str() + colon + 1, nullptr, 10))};
}

namespace {

// The same numbers on every machine and with every library.
class Random {
public:
    std::uint32_t Below(std::uint32_t limit) {
        state = state * 1664525 + 1013904223;
        return static_cast<std::uint32_t>((static_cast<std::uint64_t>(state) * limit) >> 32);
    }

private:
    std::uint32_t state = 1;
};

}  // namespace

std::string Letters(unsigned int length) {
    std::string text;
    for (unsigned int i = 0; i < length; ++i) text += static_cast<char>('a' + i % 26);
    return text;
}

std::string Lines(unsigned int count) {
    std::string text;
    for (unsigned int i = 0; i < count; ++i) {
        text += "eth" + std::to_string(i % 48) +
                " up 1500 00:0c:29:3e:5a:" + std::to_string(10 + i % 90) + "\n";
    }
    return text;
}

std::vector<std::string> ClassNames(unsigned int count) {
    std::vector<std::string> names;
    for (unsigned int i = 0; i < count; ++i) names.push_back("Monitor" + std::to_string(i));
    return names;
}

std::vector<std::string> RandomTexts(unsigned int count) {
    Random random;
    std::vector<std::string> texts(count);
    for (std::string& text : texts) {
        const unsigned int length = 8 + random.Below(9);
        while (text.size() < length) text += static_cast<char>('a' + random.Below(26));
    }
    return texts;
}

std::vector<unsigned long> Numbers(unsigned int count) {
    const unsigned long table[] = {1, 3, 6, 1, 2, 1, 2, 2, 1, 10, 10101};
    std::vector<unsigned long> numbers;
    for (unsigned int i = 0; i < count; ++i) numbers.push_back(table[i % 11]);
    return numbers;
}

std::string IdentifierText(unsigned int count) {
    std::string text;
    for (const unsigned long number : Numbers(count)) {
        if (!text.empty()) text += '.';
        text += std::to_string(number);
    }
    return text;
}
