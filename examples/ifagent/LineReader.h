#ifndef LINE_READER_H
#define LINE_READER_H

#include "TqFile.h"
#include "TqString.h"

/// Makes so many bytes a text. False when there is a NUL among them, which no text can hold.
bool MakeText(const char* bytes, unsigned int length, TqString& line);

/// What is wrong with a line then.
extern const char nulComplaint[];

/// A text file, read line by line whatever the lines' length, that says what is wrong where.
class LineReader {
public:
    LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// Closes the file.
    ~LineReader();

    /// Opens `path`. When that fails it complains and returns false.
    bool Open(const char* path);

    /// Puts the next line, without its newline, into `line`; false at the end of the file. A line
    /// with a NUL is complained of and left out.
    bool NextLine(TqString& line);

    /// Prints what is wrong with the present line.
    void Complain(const char* complaint) const;

    /// The number of the present line, from 1.
    unsigned int LineNumber() const { return lineNumber; }

private:
    TqFile file;
    unsigned int lineNumber;
    char* bytes;  // of the present line, in a block of that capacity
    size_t capacity;
};

#endif
