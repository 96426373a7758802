#include "Outcome.h"

#include "TqTftp.h"

namespace {

const char* const serverErrors[] = {
    "the server reports an error without a number",
    "the server has no such file",
    "the server does not give access to the file",
    "the server's disk is full",
    "the server broke the protocol, or says that the request is illegal",
    "the server does not know this transfer",
    "the server says that the file exists already",
    "the server does not know the user",
};

Outcome ServerErrorOutcome(unsigned int code, const std::string& words) {
    const bool isKnown = code < sizeof serverErrors / sizeof *serverErrors;
    const std::string sentence =
        isKnown ? serverErrors[code] : "the server reports an error of its own";
    const std::string reason = words.empty() ? std::string() : ": " + words;
    return {isKnown ? exitServerError + static_cast<int>(code) : exitOtherServerError,
            sentence + " (error " + std::to_string(code) + reason + ")"};
}

std::string Time(unsigned int seconds) {
    return std::to_string(seconds) + (seconds == 1 ? " second" : " seconds");
}

}  // namespace

Outcome OutcomeOf(unsigned int result, const std::string& words) {
    switch (result) {
        case 0:
            return {exitComplete, std::string()};
        case TFTP_NO_SOCKET:
            return {exitNoSocket, "the socket could not be created"};
        case TFTP_NO_MEMORY:
            return {exitNoMemory, "there is no memory for the request"};
        case TFTP_NOT_SENT:
            return {exitNotSent, "the request could not be sent whole"};
        default:
            break;
    }
    const unsigned int code = result - TFTP_SERVER_ERROR;
    if (code <= 0xFFFF) return ServerErrorOutcome(code, words);
    return {exitNotBound, "the socket could not be bound to a port"};
}

Outcome SilenceOutcome(unsigned int seconds) {
    return {exitSilence, "no new block for " + Time(seconds)};
}

Outcome DeadlineOutcome(unsigned int seconds) {
    return {exitDeadline, "not complete after " + Time(seconds)};
}

Outcome TooLargeOutcome() {
    return {exitTooLarge,
            "the file is larger than TFTP allows: 65,535 blocks of 512 bytes, the last one short "
            "(33,553,919 bytes)"};
}
