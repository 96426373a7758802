#ifndef CONFIGURATION_H
#define CONFIGURATION_H

#include "Monitor.h"
#include "TqBaseRefList.h"
#include "TqBoolean.h"
#include "TqNumber.h"
#include "TqString.h"

/// Parses decimal digits and nothing else. Returns false, and `number` stays as it is, when `text`
/// is something else or above `most`.
bool ParseWholeNumber(const char* text, int most, TqNumber& number);

/// What the agent is to do, from a file of lines such as "poll On". Empty lines and what follows a
/// '#' mean nothing.
class Configuration {
public:
    /// Polling is on, every second, and nothing watched.
    Configuration();

    /// Watches all there is to watch: for an agent without a file.
    void SetDefaults();

    /// Takes over the lines of `path`. One that is not understood is complained of and left out.
    /// Returns whether the file could be read at all.
    bool Read(const char* path);

    TqBoolean poll;               ///< "poll On": whether the interfaces are read at all
    TqNumber interval;            ///< "interval 5": seconds between two polls
    TqRefList<Monitor> monitors;  ///< "monitor LinkMonitor eth0", or of all interfaces

private:
    bool ReadLine(char* line, TqString& complaint);
    bool SetInterval(const char* text, TqString& complaint);
    bool AddMonitor(const char* className, const char* interfaceName, TqString& complaint);
};

#endif
