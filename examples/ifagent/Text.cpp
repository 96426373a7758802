#include "Text.h"

#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "TqDownload.h"
#include "TqFile.h"
#include "TqNumber.h"

unsigned int complaintCount = 0;

static const LineReader* presentReader = nullptr;  // whose line is being looked at

bool Complain(const char* format, ...) {
    ++complaintCount;
    char message[512] = "";
    if (presentReader != nullptr) {
        snprintf(message, sizeof message, "%s:%u: ", presentReader->name,
                 presentReader->lineNumber);
    }
    const size_t start = strlen(message);
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message + start, sizeof message - start, format, arguments);
    va_end(arguments);
    const unsigned int length = static_cast<unsigned int>(strlen(message));
    const TqBuffer bytes(reinterpret_cast<const unsigned char*>(message), length);
    fprintf(stderr, "ifagent: %s\n", TextOf(bytes).data);
    return false;
}

TqString TextOf(const TqDataType& value) {
    TqString text;
    value.ToString(text);
    return text;
}

int WholeNumber(const char* text, int most) {
    // The number's own parser takes anything, and wraps around: ask first.
    const size_t digits = strspn(text, "0123456789");
    if (digits == 0 || digits > 9 || text[digits] != '\0') return -1;
    TqNumber number;
    number.FromString(text);
    return number > most ? -1 : int(number);
}

TqString TimeText(const TqDateTime& date) {
    char text[96];
    snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", date.time.tm_year + 1900,
             date.time.tm_mon + 1, date.time.tm_mday, date.time.tm_hour, date.time.tm_min,
             date.time.tm_sec);
    return TqString(text);
}

TqString LibraryTimeText(const TqDateTime& date) {
    return TqString("\"") + TextOf(date).data +
           (date.time.tm_mon == 0 ? "\", without the date, since January is month 0"
                                  : "\", counting months from 0 and years from 1900");
}

bool LineReader::ReadFile() {
    TqFile file;
    if (file.Open(name, TqFile::read) == 0) return Complain("%s: %s", name, strerror(errno));
    // Not the file's own NextLine: a text that ends at its first NUL does not tell where the line
    // ends that has one.
    unsigned char block[16384];
    while (const size_t count = fread(block, 1, sizeof block, file.stream)) {
        text.Append(block, static_cast<unsigned int>(count));
    }
    if (ferror(file.stream) != 0) Complain("%s: %s", name, strerror(errno));
    file.Close();
    return true;
}

bool LineReader::Fetch(const char* server) {
    TqDownload download(server, name);
    download.mostBytes = 1024 * 1024;
    if (download.ToBuffer(text) == TqDownload::complete) return true;
    TqString reason;
    download.AppendText(reason);
    return Complain("%s from %s: %s", name, server, reason.data);
}

bool LineReader::NextLine(TqString& line) {
    while (text.readPosition < text.length) {
        const char* start = reinterpret_cast<const char*>(text.data) + text.readPosition;
        const unsigned int rest = text.length - text.readPosition;
        unsigned int length = 0;
        while (length < rest && start[length] != '\n') ++length;
        text.readPosition += length + 1;
        ++lineNumber;
        presentReader = this;
        line.SetValue(start, length);
        if (memchr(start, '\0', length) == nullptr) return true;
        Complain("a NUL in the line");
    }
    presentReader = nullptr;
    return false;
}
