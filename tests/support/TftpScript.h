#ifndef TFTP_SCRIPT_H
#define TFTP_SCRIPT_H

#include <string>
#include <vector>

#include "TftpHost.h"
#include "UdpSocket.h"

/// A conversation of the client with scripted peers, written down as data:
///
///     Play({Opens("motd", "octet"),
///           Arrives(RequestPort(), Request("motd", "octet")),
///           Sends(transferPort, Data(1, "hello")),
///           Reads("hello"),
///           Arrives(transferPort, Acknowledgement(1)),
///           Closes(0)});
///
/// Packets travel over real sockets. Time is the script's own: it stands still except where the
/// script lets it pass, so every wait has an exact length.
///
/// What happens to the client (Sends, Passes, Interrupts, SelectFails, ReceiveFails) stands before
/// the Reads or Fails during which it happens, in the order in which it happens; all of it must
/// have happened when the read returns. What the client did (Arrives, Waits, Prints) stands behind.
/// Every datagram that the client sends must be mentioned, in its order.
struct Step {
    enum Kind {
        opens,
        arrives,
        sends,
        passes,
        interrupts,
        selectFails,
        receiveFails,
        reads,
        fails,
        waits,
        prints,
        endOfFile,
        closes
    };

    Kind kind;
    Endpoint peer = {0, 0};
    Octets bytes = Octets();
    unsigned int number = 0;
    std::string mode = std::string();
    std::vector<unsigned int> numbers = std::vector<unsigned int>();
};

/// TFTP_open for a file of host 1 returns 0.
Step Opens(const std::string& fileName, const std::string& mode);

/// The client has sent this, and it has come to this peer.
Step Arrives(const Endpoint& peer, const Octets& datagram);

/// A peer sends this to the client.
Step Sends(const Endpoint& peer, const Octets& datagram);

/// So many milliseconds pass without a datagram.
Step Passes(unsigned int milliseconds);

/// A signal interrupts whatever the client waits in, select or the receive.
Step Interrupts();

/// The next select, or receive, fails with this error.
Step SelectFails(int error);
Step ReceiveFails(int error);

/// TFTP_read returns these data, or fails with this result code.
Step Reads(const Octets& data);
Step Fails(unsigned int code);

/// The seconds that the client was prepared to wait, select by select, since the last mention.
Step Waits(const std::vector<unsigned int>& seconds);

/// What the client printed since the last mention, every line number written as 0. What is not
/// mentioned does not matter.
Step Prints(const std::string& text);

/// TFTP_eof or TFTP_close returns this.
Step EndOfFile(unsigned int flag);
Step Closes(unsigned int result);

/// Plays the steps. Whatever differs is a failure of the running test.
void Play(const std::vector<Step>& steps);

/// Packets.
Octets Request(const std::string& fileName, const std::string& mode);
Octets Data(unsigned int block, const Octets& data);
Octets Acknowledgement(unsigned int block);
Octets Error(unsigned int code, const std::string& text);

/// The 34 bytes of the client's own error packets.
Octets IllegalOperation();
Octets InvalidTid();

/// A block's worth of data that differs from block to block.
Octets Block(unsigned int number, std::size_t length = 512);

#endif
