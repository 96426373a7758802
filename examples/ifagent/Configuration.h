#ifndef CONFIGURATION_H
#define CONFIGURATION_H

#include "Monitor.h"
#include "Subnet.h"
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

    /// The same for `fileName` on a TFTP server.
    bool Fetch(const char* server, const char* fileName);

    /// Whether an address is in one of the allowed networks; always true when none is named.
    bool Allows(const TqIpAddress& address) const;

    TqBoolean poll;               ///< "poll On": whether the interfaces are read at all
    TqNumber interval;            ///< "interval 5": seconds between two polls
    TqRefList<Monitor> monitors;  ///< "monitor LinkMonitor eth0", or of all interfaces
    TqRefList<Subnet> allowed;    ///< "allow 10.0.0.0 255.0.0.0"
    TqRefList<Subnet> addresses;  ///< "address eth0 10.1.2.3 255.0.0.0": what no kernel tells

private:
    struct Keyword;
    static const Keyword keywords[];

    void TakeLine(const char* source, unsigned int lineNumber, TqString& line);
    bool ReadLine(char* line, TqString& complaint);
    bool SetPoll(char** words, TqString& complaint);
    bool SetInterval(char** words, TqString& complaint);
    bool AddMonitor(char** words, TqString& complaint);
    bool AddAllowed(char** words, TqString& complaint);
    bool AddAddress(char** words, TqString& complaint);
};

#endif
