#include "LineReader.h"

#include <errno.h>
#include <string.h>

#include "Complaints.h"

LineReader::LineReader() : stream(nullptr), lineNumber(0) {}

LineReader::~LineReader() {
    if (stream != nullptr) fclose(stream);
}

bool LineReader::Open(const char* path) {
    fileName = path;
    stream = fopen(path, "r");
    if (stream != nullptr) return true;
    ::Complain("%s: %s", path, strerror(errno));
    return false;
}

bool LineReader::NextLine(TqString& line) {
    line.Empty();
    char piece[1024];
    while (fgets(piece, sizeof piece, stream) != nullptr) {
        if (line.IsEmpty()) ++lineNumber;
        char* newline = strchr(piece, '\n');
        if (newline != nullptr) *newline = '\0';
        line += piece;
        if (newline != nullptr) return true;
    }
    return line.IsNotEmpty();
}

void LineReader::Complain(const char* complaint) const {
    ::Complain("%s:%u: %s", fileName.data, lineNumber, complaint);
}
