#include "LineReader.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "Complaints.h"

const char nulComplaint[] = "a NUL in the line";

bool MakeText(const char* bytes, unsigned int length, TqString& line) {
    line.SetValue(bytes, length);
    return memchr(bytes, '\0', length) == nullptr;
}

LineReader::LineReader() : lineNumber(0), bytes(nullptr), capacity(0) {}

LineReader::~LineReader() {
    free(bytes);
    file.Close();
}

bool LineReader::Open(const char* path) {
    if (file.Open(path, TqFile::read) != 0) return true;
    ::Complain("%s: %s", path, strerror(errno));
    return false;
}

bool LineReader::NextLine(TqString& line) {
    // Not the file's own NextLine: a text that ends at its first NUL does not tell where the line
    // ends that has one.
    ssize_t length = 0;
    while ((length = getline(&bytes, &capacity, file.stream)) >= 0) {
        ++lineNumber;
        if (length > 0 && bytes[length - 1] == '\n') --length;
        if (MakeText(bytes, static_cast<unsigned int>(length), line)) return true;
        Complain(nulComplaint);
    }
    if (ferror(file.stream) != 0) ::Complain("%s: %s", file.fileName.data, strerror(errno));
    return false;
}

void LineReader::Complain(const char* complaint) const {
    ::Complain("%s:%u: %s", file.fileName.data, lineNumber, complaint);
}
