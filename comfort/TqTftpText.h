#ifndef TQ_TFTP_TEXT_H
#define TQ_TFTP_TEXT_H

#include "TqExport.h"
#include "TqString.h"

/// A sentence for people about a result of the TFTP client or of `TqDownload`; empty for 0. It
/// begins with a small letter and has no full stop, to stand behind the names of server and file:
///
///     TqTftpText(0x811)                     // the server has no such file (error 1)
///     TqTftpText(0x811, "Not here")         // the server has no such file (error 1: Not here)
///     TqTftpText(TqDownload::silent)        // no new block in time
///     TqTftpText(TqDownload::late, "", 60)  // not complete after 60 seconds
///
/// `words` is what the server (`TFTP_error_text`) or the system (`strerror`) says of it, and stands
/// there as it is; null is none. `seconds` is how long was waited; 0 is not said.
/// A number that nobody documents is taken for the result of a failed `bind`, which the client
/// hands on.
TQ_API TqString TqTftpText(unsigned int result, const char* words = nullptr,
                           unsigned int seconds = 0);

#endif
