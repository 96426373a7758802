// What tqfetch makes of a command line, of a text that it shows, and of netascii.

#include <getopt.h>

#include <algorithm>
#include <vector>

#include "../../tools/tqfetch/Message.h"
#include "../../tools/tqfetch/Netascii.h"
#include "../../tools/tqfetch/Options.h"
#include "../../tools/tqfetch/Outcome.h"
#include "../Exit.h"
#include "../Fuzz.h"
#include "../Values.h"

namespace Tqfetch {

// How many bytes of the text are one character of UTF-8; 0 when they are none.
std::size_t CharacterAt(const std::string& text, std::size_t at, unsigned int& point) {
    const auto byte = [&](std::size_t i) {
        return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0u;
    };
    point = byte(0);
    if (point < 0x80) return 1;
    const std::size_t length = point >= 0xF0 ? 4 : point >= 0xE0 ? 3 : 2;
    if (point < 0xC0 || point > 0xF7) return 0;
    point &= 0xFFu >> (length + 1);
    for (std::size_t i = 1; i < length; ++i) {
        if (byte(i) < 0x80 || byte(i) > 0xBF) return 0;
        point = point * 64 + byte(i) - 0x80;
    }
    const unsigned int least[] = {0, 0, 0x80, 0x800, 0x10000};
    return point < least[length] ? 0 : length;
}

// Takes back what `Shown` has done.
std::string Meant(const std::string& shown) {
    std::string meant;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (shown[i] != '\\') {
            meant += shown[i];
            continue;
        }
        const char kind = shown[++i];
        if (kind == 'x') {
            meant += static_cast<char>(std::stoi(shown.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            meant += kind == 'n' ? '\n' : kind == 'r' ? '\r' : kind == 't' ? '\t' : kind;
        }
    }
    return meant;
}

void Show(Input& input) {
    const std::string text = input.Rest();
    const std::string shown = Shown(text);
    MUST(Meant(shown) == text);
    for (std::size_t at = 0; at < shown.size();) {
        unsigned int point = 0;
        const std::size_t length = CharacterAt(shown, at, point);
        MUST(length > 0 && point >= 0x20 && (point < 0x7F || point > 0x9F));
        at += length;
    }
    Tell(shown);
}

// Netascii as a whole, as the standard has it.
std::string PlainDecoded(const std::string& text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : 'x';
        if (text[i] == '\r' && (next == '\n' || next == '\0')) {
            decoded += next == '\n' ? '\n' : '\r';
            ++i;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

void Decode(Input& input) {
    NetasciiDecoder decoder;
    std::string text;
    std::string decoded;
    while (!input.IsEmpty()) {
        const std::string block = input.Bytes(20);
        text += block;
        decoded += decoder.Decode(BytesOf(block), block.size());
    }
    decoded += decoder.End();
    MUST(decoded == PlainDecoded(text));
    Tell(decoded);
}

// What the program says with these arguments: its options, or the status it ends with.
int Parse(const std::vector<std::string>& words, Options& options) {
    std::vector<std::string> copies(words);
    std::vector<char*> arguments;
    for (std::string& copy : copies) arguments.push_back(&copy[0]);
    arguments.push_back(nullptr);
    const Printed elsewhere;
    optind = 0;
    try {
        options = ParseArguments(static_cast<int>(words.size()), arguments.data());
        return -1;
    } catch (const ProgramEnd& end) {
        return end.status;
    }
}

// Blanks, a sign and digits, from 1 to the seconds of a day.
bool IsTime(const std::string& text, unsigned int& seconds) {
    std::size_t at = 0;
    while (at < text.size() && IsBlank(text[at])) ++at;
    if (text[at] == '-') return false;
    if (text[at] == '+') ++at;
    const std::size_t first = at;
    seconds = 0;
    for (; at < text.size() && IsDigit(text[at]); ++at) {
        seconds = std::min(100000u, seconds * 10 + static_cast<unsigned int>(text[at] - '0'));
    }
    return at > first && at == text.size() && seconds >= 1 && seconds <= 86400;
}

void ParseOne(Input& input) {
    const unsigned int kind = input.Below(4);
    const std::string value = input.Rest().c_str();
    const char* const names[] = {"-t", "-T", "-m", "-o"};
    Options options;
    const int status = Parse({"tqfetch", names[kind], value, "host", "folder/file"}, options);
    unsigned int seconds = 0;
    bool isRight = !value.empty();
    if (kind < 2) isRight = IsTime(value, seconds);
    if (kind == 2) isRight = Lower(value) == "octet" || Lower(value) == "netascii";
    MUST(status == (isRight ? -1 : exitUsage));
    Tell(isRight ? 1 : 0);
    if (!isRight) return;
    MUST(options.timeout == (kind == 0 ? seconds : 30));
    MUST(options.deadline == (kind == 1 ? seconds : 0));
    MUST(options.mode == (kind == 2 ? Lower(value) : "octet"));
    MUST(options.output == (kind == 3 ? value : "file"));
    MUST(options.server == "host" && options.file == "folder/file");
}

void ParseAny(Input& input) {
    static const char* const known[] = {"-t",   "5",  "-T", "-m",      "octet",
                                        "-o",   "-q", "--", "--mode=", "--ti",
                                        "file", "-h", "-V", "--quiet", "-"};
    std::vector<std::string> words = {"tqfetch"};
    while (!input.IsEmpty() && words.size() < 10) {
        const unsigned int word = input.Below(16);
        words.push_back(word == 15 ? input.Text(12) : known[word]);
    }
    Options options;
    const int status = Parse(words, options);
    Tell(static_cast<unsigned int>(status));
    if (status != -1) {
        MUST(status == exitUsage || status == exitComplete);
        return;
    }
    MUST(options.timeout >= 1 && options.timeout <= 86400 && options.deadline <= 86400);
    MUST(options.mode == "octet" || options.mode == "netascii");
    MUST(!options.output.empty());
    for (const std::string& word : {options.server, options.file}) {
        MUST(std::find(words.begin(), words.end(), word) != words.end());
    }
    Tell(options.output);
}

void Fuzz(Input& input) {
    void (*const parts[])(Input&) = {Show, Decode, ParseOne, ParseAny};
    parts[input.Below(4)](input);
    MUST(TakeReports() == 0);
}

const Target target("tqfetch", Fuzz);

}  // namespace Tqfetch
