#include "TqIpAddress.h"

#include <cctype>

#include "TqString.h"
#include "internal/TqAppending.h"
#include "internal/TqDigits.h"

namespace {

const int fieldCount = 4;

void SkipBlanks(const char*& text) {
    while (std::isspace(static_cast<unsigned char>(*text)) != 0) ++text;
}

bool SkipSign(const char*& text) {
    const bool negative = *text == '-';
    if (negative || *text == '+') ++text;
    return negative;
}

// The number at `text`, or `most` when it is larger.
unsigned int ReadDigits(const char*& text, unsigned int most) {
    unsigned int number = 0;
    for (; TqIsDigit(*text); ++text) {
        const unsigned int digit = static_cast<unsigned int>(*text - '0');
        number = number > (most - digit) / 10 ? most : number * 10 + digit;
    }
    return number;
}

// Of a field, which is at most 255.
unsigned int CountDigits(unsigned int field) {
    return 1u + (field >= 10) + (field >= 100);
}

// Writes a field and returns where it ends.
char* PutField(char* to, unsigned int field) {
    if (field >= 100) *to++ = static_cast<char>('0' + field / 100);
    if (field >= 10) *to++ = static_cast<char>('0' + field / 10 % 10);
    *to++ = static_cast<char>('0' + field % 10);
    return to;
}

// Reads what "%hd" reads where a long has 32 bits: a number outside of them is the nearest one
// inside, and what is stored are its low 16 bits. The system's sscanf would give other fields where
// a long has 64.
bool ReadField(const char*& text, unsigned int& field) {
    SkipBlanks(text);
    const bool negative = SkipSign(text);
    if (!TqIsDigit(*text)) return false;
    const unsigned int number = ReadDigits(text, negative ? 0x80000000u : 0x7FFFFFFFu);
    field = (negative ? 0u - number : number) & 0xFFFFu;
    return true;
}

// Nothing is stored until all four fields are read: a text that is none leaves the old address.
bool ReadAddress(const char* text, unsigned int& address) {
    unsigned int fields = 0;
    for (int i = 0; i < fieldCount; ++i) {
        if (i != 0 && *text++ != '.') return false;
        unsigned int field;
        if (!ReadField(text, field) || field > 255) return false;
        fields = fields << 8 | field;
    }
    address = fields;
    return true;
}

}  // namespace

TqIpAddress::TqIpAddress() : address(0), valid(0) {}

TqIpAddress::TqIpAddress(unsigned long number)
    : address(static_cast<unsigned int>(number)), valid(1) {}

TqIpAddress::TqIpAddress(const TqIpAddress& other) : address(other.address), valid(other.valid) {}

TqIpAddress::TqIpAddress(const TqString& text) : address(0), valid(0) {
    TqIpAddress::fromString(text.data);
}

TqIpAddress::~TqIpAddress() {}

TqIpAddress& TqIpAddress::operator=(const TqIpAddress& other) {
    address = other.address;
    valid = other.valid;
    return *this;
}

TqIpAddress& TqIpAddress::operator=(const TqString& text) {
    fromString(text.data);
    return *this;
}

bool TqIpAddress::fromUInt32(unsigned long number) {
    address = static_cast<unsigned int>(number);
    valid = 1;
    return true;
}

bool TqIpAddress::fromString(const char* const& text) {
    if (!ReadAddress(text, address)) return false;
    valid = 1;
    return true;
}

unsigned long TqIpAddress::getIpAddress() const {
    return address;
}

void TqIpAddress::toString(TqString& out) const {
    // Frees, unlike the value types: programs keep the texts of thousands of addresses.
    out.Free();
    if (valid == 0) {
        out = "0.0.0.0";
        return;
    }
    unsigned int count = 3;
    for (int shift = 24; shift >= 0; shift -= 8) count += CountDigits(address >> shift & 0xFF);
    char* end = TqPlaceFor(out, count);
    for (int shift = 24; shift >= 0; shift -= 8) {
        if (shift != 24) *end++ = '.';
        end = PutField(end, address >> shift & 0xFF);
    }
    TqCountAppended(out, count);
}

TqIpAddress::operator unsigned long() const {
    return address;
}

bool TqIpAddress::isValidIpAddress(const unsigned char* text) {
    unsigned int ignored;
    return ReadAddress(reinterpret_cast<const char*>(text), ignored);
}

void TqIpAddress::LogicalAND(const TqIpAddress& other) {
    address &= other.address;
}

void TqIpAddress::LogicalAND(unsigned long number) {
    address &= static_cast<unsigned int>(number);
}

bool TqIpAddress::operator==(const TqIpAddress& other) const {
    if (valid != other.valid) return false;
    return address == other.address;
}

bool TqIpAddress::operator!=(const TqIpAddress& other) const {
    return !(*this == other);
}

bool TqIpAddress::operator==(unsigned long number) const {
    return valid != 0 && address == static_cast<unsigned int>(number);
}
