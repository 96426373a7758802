#ifndef OUTCOME_H
#define OUTCOME_H

#include <string>

/// How tqfetch ends: its exit status and the sentence for the user, empty when all went well.
struct Outcome {
    int status;
    std::string sentence;
};

/// The exit statuses; the man page lists them.
enum ExitStatus {
    exitComplete = 0,
    exitLocalFailure = 1,
    exitUsage = 2,
    exitUnknownHost = 3,
    exitSilence = 4,
    exitTooLarge = 5,
    exitNoSocket = 6,
    exitNotBound = 7,
    exitNoMemory = 8,
    exitNotSent = 9,
    exitDeadline = 10,
    exitServerError = 16,  ///< plus the server's error code, up to 7; 20 is any broken protocol
    exitOtherServerError = 24
};

/// What a result of the download comes to. `words` is what the server or the system says of it,
/// `seconds` how long was waited.
Outcome OutcomeOf(unsigned int result, const std::string& words = std::string(),
                  unsigned int seconds = 0);

#endif
