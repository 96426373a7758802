#ifndef DOWNLOAD_H
#define DOWNLOAD_H

#include "TqBuffer.h"

/// Fetches `fileName` by TFTP from `server`, an address or a host name, and appends it to
/// `content`. Complains and returns false when that fails. A server that is silent for half a
/// minute ends the program.
bool Download(const char* server, const char* fileName, TqBuffer& content);

#endif
