#ifndef TQ_DIGITS_H
#define TQ_DIGITS_H

/// Whether `c` is a decimal digit, whatever the locale says.
inline bool TqIsDigit(char c) {
    return c >= '0' && c <= '9';
}

#endif
