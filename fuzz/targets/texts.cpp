// Every parser of a text, the lenient one of each type and the strict one, beside a plain statement
// of what they take.

#include <cmath>
#include <ctime>
#include <vector>

#include "../Fuzz.h"
#include "../Values.h"
#include "TqNetworkMask.h"
#include "TqParse.h"

namespace Texts {

/// What a strict parser answers.
struct Answer {
    bool isRight;
    std::size_t end;
};

// The strict parser of `value`, compared with the answer.
template <class Value>
void Parse(const std::string& text, Value& value, const Answer& answer) {
    const char* end = "";
    MUST(TqParse(text.c_str(), value, &end) == answer.isRight);
    MUST(end == text.c_str() + answer.end);
    Tell(answer.isRight ? 1 : 0);
    Tell(static_cast<unsigned int>(answer.end));
}

std::size_t DigitsAt(const std::string& text, std::size_t place) {
    std::size_t digits = 0;
    while (place + digits < text.size() && IsDigit(text[place + digits])) ++digits;
    return digits;
}

// The number that the digits say, as far as anybody cares.
unsigned long long DigitsSay(const std::string& text, std::size_t place) {
    unsigned long long number = 0;
    for (std::size_t i = 0; i < DigitsAt(text, place); ++i) {
        number = number * 10 + static_cast<unsigned int>(text[place + i] - '0');
        if (number > 1000000000000u) number = 1000000000000u;
    }
    return number;
}

Answer Integer(const std::string& text, std::size_t sign, unsigned long long most) {
    const std::size_t digits = DigitsAt(text, sign);
    if (digits == 0 || DigitsSay(text, sign) > most) return {false, sign};
    return {sign + digits == text.size(), sign + digits};
}

void ParseNumber(const std::string& text) {
    const bool isNegative = text[0] == '-';
    const std::size_t sign = isNegative || text[0] == '+' ? 1 : 0;
    const Answer answer = Integer(text, sign, isNegative ? 2147483648u : 2147483647u);
    TqNumber strict(77);
    Parse(text, strict, answer);
    MUST(strict.value == (answer.isRight ? std::atoll(text.c_str()) : 77));
    TqNumber lenient(77);
    lenient.FromString(text.c_str());
    MUST(lenient.value == NumberOf(text));
    MUST(!answer.isRight || lenient.value == strict.value);
    Tell(static_cast<unsigned int>(lenient.value));
}

void ParseCounter(const std::string& text) {
    const Answer answer = Integer(text, text[0] == '+' ? 1 : 0, 4294967295u);
    TqCounter strict(77);
    Parse(text, strict, answer);
    MUST(strict.count == (answer.isRight ? std::atoll(text.c_str()) : 77));
    TqCounter lenient(77);
    lenient.FromString(text.c_str());
    const int number = NumberOf(text);
    MUST(lenient.count == static_cast<unsigned int>(number > 0 ? number : 0));
    Tell(lenient.count);
}

// Those that are false and those that are true, in turn.
const std::vector<std::string> words = {
    "0",    "1",   "f",     "t",    "n",      "y",    "off",     "on",     "no",       "yes",
    "zero", "one", "false", "true", "closed", "open", "disable", "enable", "disabled", "enabled"};

void ParseBoolean(const std::string& text) {
    std::size_t word = 0;
    while (word < words.size() && words[word] != Lower(text)) ++word;
    const bool isRight = word < words.size();
    TqBoolean strict(static_cast<int>(text.size() % 2));
    Parse(text, strict, {isRight, isRight ? text.size() : 0});
    MUST(strict.state == static_cast<int>(isRight ? word % 2 : text.size() % 2));
    TqBoolean lenient(1);
    lenient.FromString(text.c_str());
    MUST(lenient.state == (NumberOf(text) > 0 ? 1 : 0));
    MUST(TqBoolean(text.c_str()).state == lenient.state);
    Tell(static_cast<unsigned int>(lenient.state));
}

Answer FloatForm(const std::string& text) {
    std::size_t at = text[0] == '-' || text[0] == '+' ? 1 : 0;
    const std::size_t before = DigitsAt(text, at);
    at += before;
    std::size_t behind = 0;
    if (text[at] == '.') {
        behind = DigitsAt(text, at + 1);
        at += 1 + behind;
    }
    if (before + behind == 0) return {false, at};
    if (text[at] == 'e' || text[at] == 'E') {
        const std::size_t sign = text[at + 1] == '-' || text[at + 1] == '+' ? 1 : 0;
        const std::size_t digits = DigitsAt(text, at + 1 + sign);
        if (digits > 0) at += 1 + sign + digits;
    }
    return {at == text.size(), at};
}

void ParseFloat(const std::string& text) {
    const float expected = static_cast<float>(std::strtod(text.c_str(), nullptr));
    Answer answer = FloatForm(text);
    if (answer.isRight && std::isinf(expected)) answer = {false, 0};
    TqFloat strict(77);
    Parse(text, strict, answer);
    MUST(strict.value == (answer.isRight ? expected : 77));
    TqFloat lenient(77);
    lenient.FromString(text.c_str());
    MUST(lenient.value == expected || (lenient.value != lenient.value && expected != expected));
}

void ParseOid(const std::string& text) {
    std::vector<unsigned int> numbers;
    Answer answer = {false, 0};
    for (std::size_t at = 0;; ++at) {
        const Answer number = Integer(text, at, 4294967295u);
        answer = number;
        if (number.end == at) break;
        numbers.push_back(static_cast<unsigned int>(DigitsSay(text, at)));
        at = number.end;
        if (text[at] != '.') break;
    }
    TqSnmpOid strict("7.7");
    Parse(text, strict, answer);
    if (!answer.isRight) numbers = {7, 7};
    MUST(std::vector<unsigned int>(strict.values, strict.values + strict.count) == numbers);
    MUST(TakeReports() == 0);

    numbers.clear();
    unsigned int reports = !text.empty() && !IsDigit(text[0]) ? 1 : 0;
    unsigned int number = 0;
    for (const char c : text) {
        if (IsDigit(c)) {
            number = number * 10 + static_cast<unsigned int>(c - '0');
            continue;
        }
        if (c != '.') ++reports;
        numbers.push_back(number);
        number = 0;
    }
    if (!text.empty()) numbers.push_back(number);
    TqSnmpOid lenient("1.3");
    lenient.FromString(text.c_str());
    MUST(std::vector<unsigned int>(lenient.values, lenient.values + lenient.count) == numbers);
    MUST(TakeReports() == reports);
    Tell(lenient.count);
}

Answer AddressForm(const std::string& text) {
    std::size_t at = 0;
    for (int field = 0; field < 4; ++field) {
        if (field > 0 && text[at++] != '.') return {false, at - 1};
        const std::size_t digits = DigitsAt(text, at);
        const bool hasZero = digits > 1 && text[at] == '0';
        if (digits == 0 || hasZero || DigitsSay(text, at) > 255) return {false, at};
        at += digits;
    }
    return {at == text.size(), at};
}

void ParseAddress(const std::string& text) {
    unsigned int expected = 0;
    const bool isAddress = AddressOf(text.c_str(), expected);
    const Answer answer = AddressForm(text);
    MUST(isAddress || !answer.isRight);
    TqIpAddress strict;
    Parse(text, strict, answer);
    MUST(strict.address == (answer.isRight ? expected : 0));
    TqIpAddress lenient(7);
    MUST(lenient.fromString(text.c_str()) == isAddress);
    MUST(lenient.address == (isAddress ? expected : 7) && lenient.valid == 1);
    MUST(TqIpAddress::isValidIpAddress(BytesOf(text)) == isAddress);
    Tell(lenient.address);
}

void ParseMask(const std::string& text) {
    unsigned int number = 0;
    const bool isMask = AddressOf(text.c_str(), number) && IsMask(number);
    Answer answer = AddressForm(text);
    if (answer.isRight && !isMask) answer = {false, 0};
    TqNetworkMask strict;
    Parse(text, static_cast<TqIpAddress&>(strict), answer);
    MUST(strict.valid == (answer.isRight ? 1 : 0));
    MUST(strict.address == (answer.isRight ? number : 0));
    TqNetworkMask lenient;
    MUST(lenient.fromString(text.c_str()) == isMask);
    MUST(lenient.address == (isMask ? number : 0));
    MUST(TqNetworkMask::isValidMask(TqString(text.c_str())) == isMask);
    Tell(lenient.address);
}

// Takes one field and what stands behind it.
bool TakesField(const std::string& text, std::size_t& at, std::size_t digits, int least, int most,
                char behind, int& field) {
    field = static_cast<int>(DigitsSay(text, at) % 100000);
    if (DigitsAt(text, at) != digits || field < least || field > most) return false;
    at += digits;
    if (text[at] != behind) return false;
    if (behind != '\0') ++at;
    return true;
}

Answer DateForm(const std::string& text, tm& date) {
    std::size_t at = 0;
    const bool isRight = TakesField(text, at, 2, 1, 11, '/', date.tm_mon) &&
                         TakesField(text, at, 2, 1, 31, '/', date.tm_mday) &&
                         TakesField(text, at, 4, 1, 9999, ' ', date.tm_year) &&
                         TakesField(text, at, 2, 0, 23, ':', date.tm_hour) &&
                         TakesField(text, at, 2, 0, 59, ':', date.tm_min) &&
                         TakesField(text, at, 2, 0, 60, '\0', date.tm_sec);
    if (!isRight) return {false, at};
    tm noon = date;
    noon.tm_hour = 12;
    noon.tm_min = noon.tm_sec = 0;
    // The system makes another day of one that the calendar does not have.
    if (timegm(&noon) == -1 || noon.tm_mday != date.tm_mday) return {false, 3};
    date.tm_wday = noon.tm_wday;
    date.tm_yday = noon.tm_yday;
    return {true, at};
}

void ParseDate(const std::string& text) {
    tm expected = tm();
    const Answer answer = DateForm(text, expected);
    tm before = tm();
    before.tm_hour = 7;
    TqDateTime date(&before);
    Parse(text, date, answer);
    if (!answer.isRight) expected = before;
    MUST(date.time.tm_sec == expected.tm_sec && date.time.tm_min == expected.tm_min);
    MUST(date.time.tm_hour == expected.tm_hour && date.time.tm_mday == expected.tm_mday);
    MUST(date.time.tm_mon == expected.tm_mon && date.time.tm_year == expected.tm_year);
    MUST(date.time.tm_wday == expected.tm_wday && date.time.tm_yday == expected.tm_yday);
    TqString put;
    date.ToString(put);
    MUST(!answer.isRight || text == put.data);
    date.FromString(text.c_str());
    MUST(TakeReports() == 1);
}

void ParseNothing(const std::string& text) {
    TqBuffer buffer;
    buffer.FromString(text.c_str());
    MUST(TakeReports() == 1 && buffer.length == 0);
    TqString string(text.c_str());
    MUST(text == string.data);
    int number = 77;
    const char* end = text.c_str();
    MUST(!TqParse(nullptr, number, &end) && number == 77 && end == nullptr);
    MUST(TakeReports() == 1);
}

void Fuzz(Input& input) {
    void (*const parsers[])(const std::string&) = {ParseNumber, ParseCounter, ParseBoolean,
                                                   ParseFloat,  ParseOid,     ParseAddress,
                                                   ParseMask,   ParseDate,    ParseNothing};
    const unsigned int kind = input.Byte();
    // Now and then a word, which is seldom found by chance.
    const std::string start = kind < 234 ? "" : words[input.Below(20)];
    // Behind its end stands a NUL and nothing else.
    const std::string text = (start + input.Rest()).c_str();
    parsers[kind % 9](text);
    MUST(TakeReports() == 0);
}

const Target target("texts", Fuzz);

}  // namespace Texts
