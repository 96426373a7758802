#include "LineReader.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>

#include "Complaints.h"

LineReader::LineReader() : lineNumber(0) {}

LineReader::~LineReader() {
    file.Close();
}

bool LineReader::Open(const char* path) {
    if (file.Open(path, TqFile::read) != 0) return true;
    ::Complain("%s: %s", path, strerror(errno));
    return false;
}

bool LineReader::NextLine(TqString& line) {
    line.Empty();
    // A long line comes in pieces, and only the last one ends in a newline.
    while (char* piece = file.NextLine()) {
        if (line.IsEmpty()) ++lineNumber;
        char* newline = strchr(piece, '\n');
        if (newline != nullptr) *newline = '\0';
        line += piece;
        if (newline != nullptr) return true;
    }
    if (ferror(file.stream) != 0) ::Complain("%s: %s", file.fileName.data, strerror(errno));
    return line.IsNotEmpty();
}

void LineReader::Complain(const char* complaint) const {
    ::Complain("%s:%u: %s", file.fileName.data, lineNumber, complaint);
}
