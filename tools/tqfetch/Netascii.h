#ifndef NETASCII_H
#define NETASCII_H

#include <cstddef>
#include <string>

/// Turns netascii, as it comes block by block, into text of this system: CR LF ends a line, CR NUL
/// is a CR. A CR before anything else stays one.
class NetasciiDecoder {
public:
    /// The text of the next bytes. A CR at their end is held back.
    std::string Decode(const unsigned char* bytes, std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) Take(static_cast<char>(bytes[i]), text);
        return text;
    }

    /// What was held back.
    std::string End() {
        std::string held(hasReturn ? 1 : 0, '\r');
        hasReturn = false;
        return held;
    }

private:
    void Take(char c, std::string& text) {
        if (hasReturn) {
            hasReturn = false;
            if (c == '\n') return text.push_back('\n');
            text.push_back('\r');
            if (c == '\0') return;
        }
        if (c == '\r') {
            hasReturn = true;
        } else {
            text.push_back(c);
        }
    }

    bool hasReturn = false;
};

#endif
