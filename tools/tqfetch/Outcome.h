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
    exitServerError = 16,  ///< plus the server's error code, up to 7; 20 is any broken protocol
    exitOtherServerError = 24
};

/// What a result code of the TFTP client comes to. A code that none of its functions documents is
/// the result of a failed `bind`.
Outcome OutcomeOf(unsigned int result);

/// No new block for so long.
Outcome SilenceOutcome(unsigned int seconds);

/// More blocks than there are numbers.
Outcome TooLargeOutcome();

#endif
