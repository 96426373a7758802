#ifndef TFTP_SERVER_H
#define TFTP_SERVER_H

#include <signal.h>

#include <cstdint>
#include <list>
#include <string>

#include "UdpSocket.h"

/// A small TFTP server (RFC 1350) that only answers read requests in octet mode, for examples and
/// tests on loopback. It serves the regular files below one directory, by their names there or by
/// links that lead to one.
///
/// An error packet is never answered: two ends that did so could go on for ever.
///
/// A block is sent again when the client has been silent for a while, and when it repeats its
/// request or its acknowledgement of the block before, but then only after a pause: answering every
/// repeat with a repeat would multiply them.
class TftpServer {
public:
    struct Settings {
        std::string directory;
        int resendAfter = 1000;  ///< milliseconds of silence; 0 leaves it to the client
        int resends = 10;        ///< in a row, before the client is given up
        int repeatAfter = 500;   ///< milliseconds before a repeat is answered
    };

    /// Takes over the socket that the requests come to, bound to port 69 as a rule. Throws
    /// std::system_error when the directory cannot be read.
    TftpServer(UdpSocket listener, Settings settings);

    /// Throws std::system_error when there is no directory of that name, or it cannot be read.
    static void CheckDirectory(const std::string& directory);

    /// Answers what has come, waiting for it for up to so many milliseconds. Signals that are not
    /// in `blocked`, if that is given, are let through while it waits and end the wait.
    void Serve(int milliseconds, const sigset_t* blocked = nullptr);

private:
    struct Transfer {
        UdpSocket socket;
        Endpoint client;
        Octets file;
        unsigned int block;
        int resends;
        long long sentAt;
    };

    void Wait(int milliseconds, const sigset_t* blocked) const;
    void Answer(const Endpoint& client, const Octets& request);
    void Send(const Endpoint& client, const std::string& name);
    void Refuse(const Endpoint& client, unsigned int code, const char* text);
    bool Continue(Transfer& transfer, const Endpoint& sender, const Octets& packet);
    void Repeat(Transfer& transfer);
    bool Resend(Transfer& transfer);
    void SendBlock(Transfer& transfer);

    UdpSocket listener;
    Settings settings;
    std::list<Transfer> transfers;
};

#endif
