#ifndef MESSAGE_H
#define MESSAGE_H

#include <cstddef>
#include <string>

/// The text as it can be shown in one line of a terminal: control characters, backslashes and what
/// is no UTF-8 become \n, \t, \r, \\ or \x and two digits.
std::string Shown(const std::string& text);

/// Writes to standard error, to a terminal or pipe that takes nothing for up to so many
/// milliseconds; what it does not take then is lost. For signal handlers too.
void WriteWithin(int milliseconds, const char* text, std::size_t length);

#endif
