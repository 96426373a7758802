#include "Message.h"

#include <poll.h>
#include <unistd.h>

#include <climits>

namespace {

// The number of bytes of the character at the start of the text that may be shown as they are, 0
// when it is none or may not.
std::size_t PlainLength(const char* text, std::size_t left) {
    const unsigned char first = static_cast<unsigned char>(*text);
    if (first < 0x80) return first >= ' ' && first != 0x7F && first != '\\' ? 1 : 0;
    const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (first < 0xC0 || first > 0xF4 || length > left) return 0;
    unsigned int point = first & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((text[i] & 0xC0) != 0x80) return 0;
        point = point << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    // Below are the other control characters, and characters that took too many bytes.
    const unsigned int least[] = {0xA0, 0x800, 0x10000};
    return point >= least[length - 2] ? length : 0;
}

void Escape(unsigned char c, std::string& text) {
    static const char digits[] = "0123456789abcdef";
    text += '\\';
    switch (c) {
        case '\n':
            text += 'n';
            break;
        case '\r':
            text += 'r';
            break;
        case '\t':
            text += 't';
            break;
        case '\\':
            text += '\\';
            break;
        default:
            text += 'x';
            text += digits[c >> 4];
            text += digits[c & 15];
    }
}

}  // namespace

std::string Shown(const std::string& text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = PlainLength(&text[i], text.size() - i);
        if (length == 0) {
            Escape(static_cast<unsigned char>(text[i]), shown);
        } else {
            shown.append(text, i, length);
        }
        i += length == 0 ? 1 : length;
    }
    return shown;
}

void WriteWithin(int milliseconds, const char* text, std::size_t length) {
    while (length > 0) {
        pollfd errors = {STDERR_FILENO, POLLOUT, 0};
        if (poll(&errors, 1, milliseconds) != 1) return;
        // A pipe that is ready takes so much without blocking.
        const ssize_t written = write(STDERR_FILENO, text, length < PIPE_BUF ? length : PIPE_BUF);
        if (written <= 0) return;
        text += written;
        length -= static_cast<std::size_t>(written);
    }
}
