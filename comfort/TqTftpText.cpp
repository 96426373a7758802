#include "TqTftpText.h"

#include "TqDownload.h"
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

const unsigned int knownErrors = sizeof serverErrors / sizeof *serverErrors;

bool IsEmpty(const char* words) {
    return words == nullptr || *words == '\0';
}

TqString ServerErrorText(unsigned int code, const char* words) {
    TqString text(code < knownErrors ? serverErrors[code]
                                     : "the server reports an error of its own");
    text += " (error ";
    text.AppendCounter(code);
    if (!IsEmpty(words)) (text += ": ") += words;
    text.AppendChar(')');
    return text;
}

TqString WithReason(const char* sentence, const char* words) {
    TqString text(sentence);
    if (!IsEmpty(words)) ((text += " (") += words) += ")";
    return text;
}

TqString WithTime(const char* sentence, const char* preposition, unsigned int seconds) {
    TqString text(sentence);
    if (seconds == 0) return text += " in time";
    text += preposition;
    text.AppendCounter(seconds);
    return text += seconds == 1 ? " second" : " seconds";
}

// The name service has complete sentences of its own.
TqString NameText(const char* words) {
    return IsEmpty(words) ? TqString("the server's name has no address") : TqString(words);
}

}  // namespace

TqString TqTftpText(unsigned int result, const char* words, unsigned int seconds) {
    switch (result) {
        case TqDownload::complete:
            return TqString();
        case TqDownload::cancelled:
            return WithReason("cancelled", words);
        case TqDownload::late:
            return WithTime("not complete", " after ", seconds);
        case TqDownload::silent:
            return IsEmpty(words) ? WithTime("no new block", " for ", seconds) : TqString(words);
        case TqDownload::tooLarge:
            return TqString(
                "the file is larger than TFTP allows: 65,535 blocks of 512 bytes, the last one "
                "short (33,553,919 bytes)");
        case TqDownload::tooMany:
            return WithReason("the file is larger than is wanted", words);
        case TqDownload::refused:
            return WithReason("what came could not be stored", words);
        case TqDownload::noServer:
            return NameText(words);
        case TqDownload::noThread:
            return WithReason("there is no thread for the transfer", words);
        case TqDownload::nested:
            return WithReason("a transfer is going on already", words);
        case TFTP_NOT_OPEN:
            return WithReason("no transfer is open", words);
        case TFTP_NO_SOCKET:
            return WithReason("the socket could not be created", words);
        case TFTP_NO_MEMORY:
            return WithReason("there is no memory for the request", words);
        case TFTP_NOT_SENT:
            return WithReason("the request could not be sent whole", words);
        default:
            break;
    }
    const unsigned int code = result - TFTP_SERVER_ERROR;
    if (code <= 0xFFFF) return ServerErrorText(code, words);
    return WithReason("the socket could not be bound to a port", words);
}
