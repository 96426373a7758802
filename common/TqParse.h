#ifndef TQ_PARSE_H
#define TQ_PARSE_H

#include <cfloat>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "TqBoolean.h"
#include "TqCounter.h"
#include "TqDateTime.h"
#include "TqFloat.h"
#include "TqHooks.h"
#include "TqIpAddress.h"
#include "TqNumber.h"
#include "TqSnmpOid.h"
#include "TqString.h"

/// Parsing that can fail, beside the lenient `FromString` of each type, which cannot:
///
///     int mtu;
///     const char* stopped;
///     if (!TqParse(word, mtu, &stopped)) Complain(word, stopped);
///
/// Each of these returns true when all of `text` is the text form of the type, and stores it. Else
/// it returns false and stores nothing. `end`, when not null, receives where it stopped: the end of
/// the text after a success, else the first character that does not fit, which is the first digit
/// of an integer that is out of range, and the beginning, sign included, of a float that is and of
/// a word that is not known.
///
/// There are no blanks before, in or behind any form. Null for `text` is reported and fails; `end`
/// is null then.
///
/// Ownership: nothing. Lock: none. Reports: source "./TqParse".

/// Decimal digits, behind one '-' or '+' or none, from -2147483648 to 2147483647. No words.
inline bool TqParse(const char* text, int& number, const char** end = nullptr);
inline bool TqParse(const char* text, TqNumber& number, const char** end = nullptr);

/// Decimal digits, behind one '+' or none, up to 4294967295.
inline bool TqParse(const char* text, unsigned int& number, const char** end = nullptr);
inline bool TqParse(const char* text, TqCounter& counter, const char** end = nullptr);

/// Ignoring case: 1, T, Y, On, Yes, One, True, Open, Enable, Enabled, or
/// 0, F, N, Off, No, Zero, False, Closed, Disable, Disabled.
inline bool TqParse(const char* text, bool& flag, const char** end = nullptr);
inline bool TqParse(const char* text, TqBoolean& flag, const char** end = nullptr);

/// Decimal digits with a point among them, before or behind them, or none, behind one '-' or '+' or
/// none, and an exponent behind them or none, within what a float holds. "3." is one, as it is what
/// `ToString` puts out; a hexadecimal form, "inf" and "nan" are not. Where the locale of the
/// process has another point than '.', the fraction does not fit, as in `FromString`.
inline bool TqParse(const char* text, float& number, const char** end = nullptr);
inline bool TqParse(const char* text, TqFloat& number, const char** end = nullptr);

/// Numbers up to 4294967295 with single dots between them, at least one.
inline bool TqParse(const char* text, TqSnmpOid& oid, const char** end = nullptr);

/// Four numbers up to 255, without leading zeros, with single dots between them; into a mask only
/// what is one by its rule. What is none stops at the beginning.
inline bool TqParse(const char* text, TqIpAddress& address, const char** end = nullptr);

/// The whole form that `ToString` puts out, "02/05/0124 06:07:08", of a day that the calendar has.
/// Month and year are the stored ones, so there is no January (see `TqDateTime`). Day of the week
/// and of the year are reckoned; daylight saving is 0.
inline bool TqParse(const char* text, TqDateTime& date, const char** end = nullptr);

/// Anything else does not compile: strings and buffers take every text, handles have none.
template <class Value>
inline typename std::enable_if<
    !std::is_base_of<TqNumber, Value>::value && !std::is_base_of<TqFloat, Value>::value &&
        !std::is_base_of<TqSnmpOid, Value>::value && !std::is_base_of<TqIpAddress, Value>::value &&
        !std::is_base_of<TqDateTime, Value>::value,
    bool>::type
TqParse(const char*, Value&, const char** = nullptr) {
    static_assert(sizeof(Value) == 0,
                  "TqParse takes int, unsigned int, bool, float, and the values that have a text "
                  "form which can be wrong");
    return false;  // never compiled
}

/// Takes a text piece by piece, from its beginning. What does not fit is not taken.
class TqScanner {
public:
    explicit TqScanner(const char* text) : begin(text), at(text != nullptr ? text : "") {
        if (text == nullptr) TqCallAssert("./TqParse", __LINE__);
    }

    bool Takes(char c) {
        if (*at != c) return false;
        ++at;
        return true;
    }

    /// One of '-' and '+', or none. Returns whether it was a '-'.
    bool TakesMinus() {
        const bool isMinus = Takes('-');
        if (!isMinus) Takes('+');
        return isMinus;
    }

    /// How many digits there are.
    unsigned int TakesDigits() {
        const char* const first = at;
        while (IsDigit(*at)) ++at;
        return static_cast<unsigned int>(at - first);
    }

    /// Digits that say a number up to `limit`.
    bool TakesNumber(unsigned int& number, unsigned int limit) {
        const char* next = at;
        unsigned long long value = 0;
        for (; IsDigit(*next); ++next) {
            value = value * 10 + static_cast<unsigned int>(*next - '0');
            if (value > limit) return false;
        }
        if (next == at) return false;
        at = next;
        number = static_cast<unsigned int>(value);
        return true;
    }

    /// Exactly `count` digits that say a number from `least` to `most`.
    bool TakesField(int& number, unsigned int count, int least, int most) {
        const char* const first = at;
        unsigned int value = 0;
        const bool isNumber = TakesNumber(value, static_cast<unsigned int>(most));
        number = static_cast<int>(value);
        if (isNumber && static_cast<unsigned int>(at - first) == count && number >= least) {
            return true;
        }
        at = first;
        return false;
    }

    /// Whether the number here begins with a zero that it does not need.
    bool IsAtLeadingZero() const { return at[0] == '0' && IsDigit(at[1]); }

    const char* Place() const { return at; }
    void GoTo(const char* place) { at = place; }

    /// Tells where it stands, and whether that is the end of a text that was `understood`.
    bool Ends(bool understood, const char** end) const {
        if (end != nullptr) *end = begin == nullptr ? nullptr : at;
        return understood && *at == '\0';
    }

private:
    static bool IsDigit(char c) { return c >= '0' && c <= '9'; }

    const char* const begin;
    const char* at;
};

inline bool TqParse(const char* text, int& number, const char** end) {
    TqScanner scanner(text);
    const bool isNegative = scanner.TakesMinus();
    unsigned int magnitude = 0;
    const bool isNumber = scanner.TakesNumber(magnitude, isNegative ? 2147483648u : 2147483647u);
    if (!scanner.Ends(isNumber, end)) return false;
    number = static_cast<int>(isNegative ? 0u - magnitude : magnitude);
    return true;
}

inline bool TqParse(const char* text, TqNumber& number, const char** end) {
    return TqParse(text, number.value, end);
}

inline bool TqParse(const char* text, unsigned int& number, const char** end) {
    TqScanner scanner(text);
    scanner.Takes('+');
    unsigned int value = 0;
    if (!scanner.Ends(scanner.TakesNumber(value, 4294967295u), end)) return false;
    number = value;
    return true;
}

inline bool TqParse(const char* text, TqCounter& counter, const char** end) {
    return TqParse(text, counter.count, end);
}

inline bool TqParse(const char* text, bool& flag, const char** end) {
    static const char* const words[][2] = {{"0", "1"},
                                           {"F", "T"},
                                           {"N", "Y"},
                                           {"Off", "On"},
                                           {"No", "Yes"},
                                           {"Zero", "One"},
                                           {"False", "True"},
                                           {"Closed", "Open"},
                                           {"Disable", "Enable"},
                                           {"Disabled", "Enabled"}};
    TqScanner scanner(text);
    for (const auto& pair : words) {
        for (int i = 0; i < 2 && text != nullptr; ++i) {
            if (TqString::StringICompare(text, pair[i]) != 0) continue;
            flag = i == 1;
            scanner.GoTo(text + std::strlen(text));
            return scanner.Ends(true, end);
        }
    }
    return scanner.Ends(false, end);
}

inline bool TqParse(const char* text, TqBoolean& flag, const char** end) {
    bool isTrue = false;
    if (!TqParse(text, isTrue, end)) return false;
    flag.state = isTrue ? 1 : 0;
    return true;
}

inline bool TqTakesFloat(TqScanner& scanner) {
    scanner.TakesMinus();
    unsigned int digits = scanner.TakesDigits();
    if (scanner.Takes('.')) digits += scanner.TakesDigits();
    if (digits == 0) return false;
    const char* const exponent = scanner.Place();
    if (!scanner.Takes('e') && !scanner.Takes('E')) return true;
    scanner.TakesMinus();
    if (scanner.TakesDigits() == 0) scanner.GoTo(exponent);
    return true;
}

inline bool TqParse(const char* text, float& number, const char** end) {
    TqScanner scanner(text);
    if (!scanner.Ends(TqTakesFloat(scanner), end)) return false;
    char* stopped = nullptr;
    const double value = std::strtod(text, &stopped);
    // Half a step above the largest float, from where on a number is rounded to infinity.
    const double limit = 3.40282356779733661637539395458e38;
    const double largest = FLT_MAX;
    const bool isInRange = value > -limit && value < limit;
    if (stopped != scanner.Place() || !isInRange) {
        scanner.GoTo(isInRange ? stopped : text);
        return scanner.Ends(false, end);
    }
    number = static_cast<float>(value > largest ? largest : value < -largest ? -largest : value);
    return true;
}

inline bool TqParse(const char* text, TqFloat& number, const char** end) {
    return TqParse(text, number.value, end);
}

inline bool TqTakesOid(TqScanner& scanner, TqSnmpOid& oid) {
    do {
        unsigned int number = 0;
        if (!scanner.TakesNumber(number, 4294967295u)) return false;
        oid.Append(number);
    } while (scanner.Takes('.'));
    return true;
}

inline bool TqParse(const char* text, TqSnmpOid& oid, const char** end) {
    TqScanner scanner(text);
    TqSnmpOid parsed("");
    if (!scanner.Ends(TqTakesOid(scanner, parsed), end)) return false;
    oid = parsed;
    return true;
}

inline bool TqTakesAddress(TqScanner& scanner, unsigned int& number) {
    for (int field = 0; field < 4; ++field) {
        unsigned int value = 0;
        if (field > 0 && !scanner.Takes('.')) return false;
        if (scanner.IsAtLeadingZero() || !scanner.TakesNumber(value, 255)) return false;
        number = number << 8 | value;
    }
    return true;
}

inline bool TqParse(const char* text, TqIpAddress& address, const char** end) {
    TqScanner scanner(text);
    unsigned int number = 0;
    if (!scanner.Ends(TqTakesAddress(scanner, number), end)) return false;
    // A mask behind this reference takes masks only.
    if (address.fromUInt32(number)) return true;
    scanner.GoTo(text);
    return scanner.Ends(false, end);
}

/// Adds what follows from year, month and day. False when there is no such day.
inline bool TqCompleteDate(tm& date) {
    static const int before[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
    const int year = date.tm_year + 1900;
    const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    const int days = before[date.tm_mon + 1] - before[date.tm_mon];
    if (date.tm_mday > days + (isLeap && date.tm_mon == 1 ? 1 : 0)) return false;
    date.tm_yday = before[date.tm_mon] + date.tm_mday - 1 + (isLeap && date.tm_mon > 1 ? 1 : 0);
    const int past = year - 1;
    date.tm_wday = (past * 365 + past / 4 - past / 100 + past / 400 + date.tm_yday + 1) % 7;
    return true;
}

inline bool TqTakesDate(TqScanner& scanner, tm& date) {
    const bool isDate = scanner.TakesField(date.tm_mon, 2, 1, 11) && scanner.Takes('/') &&
                        scanner.TakesField(date.tm_mday, 2, 1, 31) && scanner.Takes('/') &&
                        scanner.TakesField(date.tm_year, 4, 1, 9999) && scanner.Takes(' ') &&
                        scanner.TakesField(date.tm_hour, 2, 0, 23) && scanner.Takes(':') &&
                        scanner.TakesField(date.tm_min, 2, 0, 59) && scanner.Takes(':') &&
                        scanner.TakesField(date.tm_sec, 2, 0, 60);
    return isDate;
}

inline bool TqParse(const char* text, TqDateTime& date, const char** end) {
    TqScanner scanner(text);
    tm parsed = tm();
    if (!scanner.Ends(TqTakesDate(scanner, parsed), end)) return false;
    if (TqCompleteDate(parsed)) {
        date.SetTime(&parsed);
        return true;
    }
    scanner.GoTo(text + sizeof "MM");  // the day
    return scanner.Ends(false, end);
}

#endif
