#ifndef TQ_DIGITS_H
#define TQ_DIGITS_H

// Decimal digits, read and written whatever the locale says.

/// Whether `c` is a decimal digit.
inline bool TqIsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The number that a digit stands for; 10 or more when `c` is none.
inline unsigned int TqDigitOf(char c) {
    return static_cast<unsigned int>(static_cast<unsigned char>(c)) - '0';
}

/// 0, and then the least number of 2 digits, of 3 and so on.
extern const unsigned int tqLeastOfDigits[];

/// How many digits `value` has.
inline unsigned int TqCountDigits(unsigned int value) {
    // A bit is 0.301 digits: that is right, or one too few.
    const unsigned int bits = 32 - static_cast<unsigned int>(__builtin_clz(value | 1));
    const unsigned int digits = bits * 1233 / 4096;
    return digits + (value >= tqLeastOfDigits[digits]);
}

/// The two digits of each number below 100, one behind the other.
extern const char tqDigitPairs[];

/// Puts the two digits of `value`, below 100, to `to`.
template <class Char>
inline void TqPutPair(Char* to, unsigned int value) {
    to[0] = static_cast<Char>(tqDigitPairs[2 * value]);
    to[1] = static_cast<Char>(tqDigitPairs[2 * value + 1]);
}

/// Writes the digits of `value` so that they end before `end`, and returns where they begin. Two at
/// a time: dividing takes longest.
inline char* TqPutDigits(char* end, unsigned int value) {
    for (; value >= 100; value /= 100) {
        end -= 2;
        TqPutPair(end, value % 100);
    }
    if (value >= 10) {
        end -= 2;
        TqPutPair(end, value);
    } else {
        *--end = static_cast<char>('0' + value);
    }
    return end;
}

#endif
