#include "Complaints.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "TqBuffer.h"
#include "TqString.h"

namespace {

unsigned int complaintCount = 0;

}  // namespace

void Complain(const char* format, ...) {
    ++complaintCount;
    char message[512];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message, sizeof message, format, arguments);
    va_end(arguments);

    const unsigned int count = static_cast<unsigned int>(strlen(message));
    TqString text;
    TqBuffer(reinterpret_cast<const unsigned char*>(message), count).ToString(text);
    fprintf(stderr, "ifagent: %s\n", text.data);
}

unsigned int ComplaintCount() {
    return complaintCount;
}
