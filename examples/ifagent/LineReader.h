#ifndef LINE_READER_H
#define LINE_READER_H

#include "TqFile.h"
#include "TqString.h"

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

    /// Puts the next line, without its newline, into `line`; false at the end of the file.
    bool NextLine(TqString& line);

    /// Prints what is wrong with the present line.
    void Complain(const char* complaint) const;

    /// The number of the present line, from 1.
    unsigned int LineNumber() const { return lineNumber; }

private:
    TqFile file;
    unsigned int lineNumber;
};

#endif
