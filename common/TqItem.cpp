#include "TqItem.h"

#include <cstdlib>

#include "TqBuffer.h"
#include "TqPrivate.h"

namespace {

// What is not just digits is taken as strtol does: leading blanks and a sign are fine, anything
// else ends the number. A negative length turns into one that no buffer holds.
unsigned int ParseUnusualLength(const unsigned char* digits) {
    char text[tqItemDigits + 1];
    std::memcpy(text, digits, tqItemDigits);
    text[tqItemDigits] = '\0';
    return static_cast<unsigned int>(std::strtol(text, nullptr, 10));
}

unsigned int ParseLength(const unsigned char* digits) {
    unsigned int length = 0;
    for (unsigned int i = 0; i < tqItemDigits; ++i) {
        if (digits[i] < '0' || digits[i] > '9') return ParseUnusualLength(digits);
        length = length * 10 + digits[i] - '0';
    }
    return length;
}

}  // namespace

void TqWriteItem(TqBuffer& out, unsigned int statedLength, const void* payload,
                 unsigned int count) {
    // A length of more digits loses its last ones and the item is corrupt, deliberately: payloads
    // are limited to 99999 bytes.
    while (statedLength > 99999) statedLength /= 10;
    unsigned char digits[tqItemDigits];
    for (unsigned int i = tqItemDigits; i > 0; --i) {
        digits[i - 1] = static_cast<unsigned char>('0' + statedLength % 10);
        statedLength /= 10;
    }
    TqMakeRoom(out, tqItemDigits + count);
    out.Append(digits, tqItemDigits);
    out.Append(static_cast<const unsigned char*>(payload), count);
}

TqItemPayload TqReadItem(TqBuffer& in) {
    const TqItemPayload none = {nullptr, 0};
    const unsigned char* digits = in.data + in.readPosition;
    const unsigned char* payload = in.AdvanceReadContext(tqItemDigits);
    if (payload != nullptr) {
        const unsigned int count = ParseLength(digits);
        if (in.AdvanceReadContext(count) != nullptr) return {payload, count};
    }
    in.readPosition = in.length;
    return none;
}
