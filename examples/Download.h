#ifndef DOWNLOAD_H
#define DOWNLOAD_H

#include "TqBuffer.h"
#include "TqString.h"

/// Fetches `fileName` by TFTP from `server`, an address or a host name, and appends it to
/// `content`. False, with what went wrong in `complaint`, when that fails. More than a mebibyte
/// is too large.
///
/// It never hangs: a server that is silent for half a minute ends the program, with a message on
/// standard error and exit status 1. So call it before there is anything to tidy up. Meanwhile the
/// signal SIGALRM is its own.
bool Download(const char* server, const char* fileName, TqBuffer& content, TqString& complaint);

#endif
