#include "Outcome.h"

#include "TqDownload.h"
#include "TqTftp.h"
#include "TqTftpText.h"

namespace {

const unsigned int knownErrors = 8;

int StatusOf(unsigned int result) {
    switch (result) {
        case TqDownload::complete:
            return exitComplete;
        case TqDownload::noServer:
            return exitUnknownHost;
        case TqDownload::silent:
            return exitSilence;
        case TqDownload::late:
            return exitDeadline;
        case TqDownload::tooLarge:
            return exitTooLarge;
        case TqDownload::noThread:
            return exitLocalFailure;
        case TFTP_NO_SOCKET:
            return exitNoSocket;
        case TFTP_NO_MEMORY:
            return exitNoMemory;
        case TFTP_NOT_SENT:
            return exitNotSent;
        default:
            break;
    }
    const unsigned int code = result - TFTP_SERVER_ERROR;
    if (code < knownErrors) return exitServerError + static_cast<int>(code);
    return code <= 0xFFFF ? exitOtherServerError : exitNotBound;
}

}  // namespace

Outcome OutcomeOf(unsigned int result, const std::string& words, unsigned int seconds) {
    return {StatusOf(result), TqTftpText(result, words.c_str(), seconds).data};
}
