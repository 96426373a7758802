#ifndef TEXT_H
#define TEXT_H

#include "TqBuffer.h"
#include "TqDateTime.h"
#include "TqString.h"

/// Prints what is wrong on standard error, behind "ifagent: " and the line that is being read, if
/// any. Bytes quoted from a file may be anything: what is not printable shows as '*'. Always false,
/// for the caller to return.
bool Complain(const char* format, ...) __attribute__((format(printf, 1, 2)));
extern unsigned int complaintCount;  ///< how often that has happened

TqString TextOf(const TqDataType& value);  ///< the text form, as the value of an expression

/// The number that `text` is, decimal digits and nothing else; -1 when it is not, or above `most`.
int WholeNumber(const char* text, int most);

/// A date as people write it: "2024-03-05 06:07:08".
TqString TimeText(const TqDateTime& date);

/// The library's own text of it, and how to read that: "02/05/0124 06:07:08", counting months from
/// 0 and years from 1900.
TqString LibraryTimeText(const TqDateTime& date);

/// A text that is read line by line, whatever the lines' length.
class LineReader {
public:
    explicit LineReader(const char* fileName) : name(fileName), lineNumber(0) {}

    /// Takes the file of that name on this machine. False, after a complaint, when there is none.
    bool ReadFile();

    /// Fetches the file of that name by TFTP from a server, an address or a host name; more than a
    /// mebibyte is too large. False, after a complaint, when that fails.
    bool Fetch(const char* server);

    /// Puts the next line, without its newline, into `line`; false at the end, which is to be
    /// reached. A line with a NUL, which no string can hold, is complained of and left out.
    bool NextLine(TqString& line);

    const char* name;         ///< of the text
    TqBuffer text;            ///< read as far as the present line
    unsigned int lineNumber;  ///< of that line, from 1
};

#endif
