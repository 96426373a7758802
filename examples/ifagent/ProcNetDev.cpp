#include "ProcNetDev.h"

#include <ctype.h>
#include <errno.h>
#include <stdlib.h>
#include <string.h>

const char procNetDev[] = "/proc/net/dev";

namespace {

// The numbers of a line, as they stand in the file.
enum Field {
    rxBytes,
    rxPackets,
    rxErrs,
    rxDrop,
    rxFifo,
    rxFrame,
    rxCompressed,
    rxMulticast,
    txBytes,
    txPackets,
    txErrs,
    txDrop,
    txFifo,
    txColls,
    txCarrier,
    txCompressed,
    fieldCount
};

bool IsBlank(char c) {
    return isspace(static_cast<unsigned char>(c)) != 0;
}

bool IsDigit(char c) {
    return isdigit(static_cast<unsigned char>(c)) != 0;
}

const char* SkipBlanks(const char* text) {
    while (IsBlank(*text)) ++text;
    return text;
}

// Takes the next word as a number and moves `text` behind it. False, with a complaint, when the
// word is not a number that fits.
bool ParseNumber(const char*& text, unsigned long long& number, TqString& complaint) {
    const char* end = text;
    while (*end != '\0' && !IsBlank(*end)) ++end;
    const TqString word(text, static_cast<unsigned int>(end - text));

    char* stop = nullptr;
    errno = 0;
    number = strtoull(word.data, &stop, 10);
    text = end;
    if (IsDigit(word.data[0]) && *stop == '\0' && errno == 0) return true;

    complaint = TqString("\"") + word.data +
                (errno == ERANGE ? "\" is too large a number" : "\" is not a number");
    return false;
}

// All numbers of a line, neither more nor fewer.
bool ParseNumbers(const char* text, unsigned long long (&numbers)[fieldCount],
                  TqString& complaint) {
    unsigned int count = 0;
    for (text = SkipBlanks(text); *text != '\0'; text = SkipBlanks(text)) {
        unsigned long long number = 0;
        if (!ParseNumber(text, number, complaint)) return false;
        if (count < fieldCount) numbers[count] = number;
        ++count;
    }
    if (count == fieldCount) return true;

    complaint.Empty();
    complaint.AppendCounter(count);
    complaint += count == 1 ? " number where there should be " : " numbers where there should be ";
    complaint.AppendCounter(fieldCount);
    return false;
}

// The name is what stands before the last colon: that of an alias ("eth0:1") has one of its own.
bool ParseName(const char* line, const char* colon, TqString& name, TqString& complaint) {
    const char* start = SkipBlanks(line);
    if (colon == nullptr || colon <= start) {
        complaint = "no interface name with a colon behind it";
        return false;
    }
    for (const char* c = start; c != colon; ++c) {
        if (isgraph(static_cast<unsigned char>(*c))) continue;
        complaint = "an interface name with a blank or unprintable character";
        return false;
    }
    name.SetValue(start, static_cast<unsigned int>(colon - start));
    return true;
}

void SetCounters(Interface& interface, const unsigned long long (&numbers)[fieldCount]) {
    // Every packet is either for one station or for several. Drivers that count the latter apart
    // may be ahead of the sum.
    unsigned long long several = numbers[rxMulticast];
    unsigned long long all = numbers[rxPackets];
    interface.SetCounter(inOctets, numbers[rxBytes]);
    interface.SetCounter(inUcastPkts, all > several ? all - several : 0);
    interface.SetCounter(inNUcastPkts, several);
    interface.SetCounter(inDiscards, numbers[rxDrop]);
    interface.SetCounter(inErrors, numbers[rxErrs]);
    interface.SetCounter(outOctets, numbers[txBytes]);
    interface.SetCounter(outUcastPkts, numbers[txPackets]);
    interface.SetCounter(outDiscards, numbers[txDrop]);
    interface.SetCounter(outErrors, numbers[txErrs]);
}

}  // namespace

bool IsProcNetDevHeading(const char* line, unsigned int lineNumber) {
    return lineNumber <= 2 && strchr(line, '|') != nullptr;
}

bool ParseProcNetDevLine(const char* line, Interface& interface, TqString& complaint) {
    const char* colon = strrchr(line, ':');
    unsigned long long numbers[fieldCount] = {};
    if (!ParseName(line, colon, interface.name, complaint)) return false;
    if (!ParseNumbers(colon + 1, numbers, complaint)) return false;
    SetCounters(interface, numbers);
    return true;
}
