#ifndef PATIENCE_H
#define PATIENCE_H

#include <string>

/// What ends the program, from a signal handler too: everything is ready beforehand.
struct Farewell {
    std::string text;
    int status;
};

/// From now on every signal that ends the program removes the temporary file first. An alarm that
/// the parent has set ends nothing.
void HandleSignals();

/// Ends the program so many seconds from now. The farewell is borrowed until then. Throws
/// std::system_error when the system has no timer for it.
void StartDeadline(unsigned int seconds, const Farewell& last);

/// Ends the program at once, whatever may be waiting for its last words.
[[noreturn]] void GiveUp(const Farewell& last);

#endif
