#ifndef PATIENCE_H
#define PATIENCE_H

#include <string>

/// What ends the program from a signal handler: everything is ready beforehand.
struct Farewell {
    std::string text;
    int status;
};

/// From now on every signal that ends the program removes the temporary file first.
void HandleSignals();

/// Ends the program so many seconds from now. The farewell is borrowed until then. Throws
/// std::system_error when the system has no timer for it.
void StartDeadline(unsigned int seconds, const Farewell& last);

/// While this lives, one signal is sent so many seconds from its making: it ends the program.
class Limit {
public:
    Limit(unsigned int seconds, const Farewell& last);
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;
    ~Limit();
};

/// While this lives, signals come several times a second and interrupt whatever blocks.
class Ticks {
public:
    Ticks();
    Ticks(const Ticks&) = delete;
    Ticks& operator=(const Ticks&) = delete;
    ~Ticks();
};

/// While this and the ticks live, something is awaited for so many seconds; then the program ends.
class Wait {
public:
    Wait(unsigned int seconds, const Farewell& last);
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;
    ~Wait();
};

#endif
