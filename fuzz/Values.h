#ifndef FUZZ_VALUES_H
#define FUZZ_VALUES_H

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include "TqBuffer.h"
#include "TqString.h"

// The rules of texts and items, stated once more the plain way.

inline std::string Counted(const TqString& string) {
    return std::string(string.data, string.length);
}

inline std::string Counted(const TqBuffer& buffer) {
    return std::string(reinterpret_cast<const char*>(buffer.data), buffer.length);
}

inline const unsigned char* BytesOf(const std::string& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

inline unsigned int SizeOf(const std::string& text) {
    return static_cast<unsigned int>(text.size());
}

inline int SignOf(long long number) {
    return (number > 0) - (number < 0);
}

inline bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

inline bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

inline std::string Lower(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

/// What a string holds that is set to `count` characters of a text: those up to the first NUL, and
/// NULs.
inline std::string Padded(const std::string& text, std::size_t count) {
    std::string padded = text.substr(0, count).c_str();
    padded.resize(count, '\0');
    return padded;
}

/// The digits and the payload.
inline std::string ItemOf(const std::string& payload) {
    const std::string digits = std::to_string(payload.size());
    return std::string(5 - digits.size(), '0') + digits + payload;
}

/// The item of `bytes` at `position`.
struct PlainItem {
    bool isWhole;
    std::string payload;
    std::size_t behind;  // where the next one is; at the end when this one is not whole
};

inline PlainItem ItemAt(const std::string& bytes, std::size_t position) {
    const PlainItem none = {false, "", bytes.size()};
    if (position > bytes.size() || bytes.size() - position < 5) return none;
    const long long length = std::atoll(bytes.substr(position, 5).c_str());
    const std::size_t payload = position + 5;
    if (length < 0 || length > static_cast<long long>(bytes.size() - payload)) return none;
    const std::size_t count = static_cast<std::size_t>(length);
    return {true, bytes.substr(payload, count), payload + count};
}

/// What a number makes of a text.
inline int NumberOf(const std::string& text) {
    std::string rest = text;
    const bool isNegative = text[0] == '-';
    if (isNegative || text[0] == '+') rest = text.substr(1);
    unsigned int number = 0;
    for (std::size_t i = 0; i < rest.size() && IsDigit(rest[i]); ++i) {
        number = number * 10 + static_cast<unsigned int>(rest[i] - '0');
    }
    if (!rest.empty() && IsDigit(rest[0])) {
        return static_cast<int>(isNegative ? 0u - number : number);
    }
    for (const char* word : {"t", "y", "on", "yes", "one", "true", "open", "enable", "enabled"}) {
        if (Lower(rest) == word) return 1;
    }
    return 0;
}

/// Four fields with points between them, each read as the system reads a short number where a long
/// has 32 bits. False where that is no address.
inline bool AddressOf(const char* text, unsigned int& address) {
    address = 0;
    for (int field = 0; field < 4; ++field) {
        if (field > 0 && *text++ != '.') return false;
        char* end = nullptr;
        long long number = std::strtoll(text, &end, 10);
        if (end == text) return false;
        if (number > INT_MAX) number = INT_MAX;
        if (number < INT_MIN) number = INT_MIN;
        const unsigned int stored = static_cast<unsigned int>(number) & 0xFFFFu;
        if (stored > 255) return false;
        address = address << 8 | stored;
        text = end;
    }
    return true;
}

/// Ones from some bit up to bit 30, whatever bit 31 is, but not all of them.
inline bool IsMask(unsigned int number) {
    if (number == 0xFFFFFFFFu) return false;
    for (int zeros = 0; zeros <= 31; ++zeros) {
        const unsigned int ones = 0x7FFFFFFFu & ~((1u << zeros) - 1);
        if ((number & 0x7FFFFFFFu) == ones) return true;
    }
    return false;
}

inline std::string DottedText(unsigned int address) {
    return std::to_string(address >> 24) + "." + std::to_string(address >> 16 & 255) + "." +
           std::to_string(address >> 8 & 255) + "." + std::to_string(address & 255);
}

/// As `TqString::AppendNumber` writes it.
inline std::string NumberText(int number) {
    return number == INT_MIN ? "-0" : std::to_string(number);
}

#endif
