#ifndef CONFIGURATION_H
#define CONFIGURATION_H

#include "TqBoolean.h"

/// What the agent is to do, from a file of lines such as "poll On". Empty lines and what follows a
/// '#' mean nothing.
class Configuration {
public:
    /// Polling is on.
    Configuration();

    /// Takes over the lines of `path`. One that is not understood is complained of and left out.
    /// Returns whether the file could be read at all.
    bool Read(const char* path);

    TqBoolean poll;  ///< "poll On": whether the interfaces are read at all

private:
    const char* ReadLine(char* line);
};

#endif
