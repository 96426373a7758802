#ifndef TFTP_PROXY_H
#define TFTP_PROXY_H

#include <list>
#include <map>
#include <random>

#include "UdpSocket.h"

/// A bad network: stands between TFTP clients and a server and loses, repeats, delays, truncates
/// and corrupts datagrams, in both directions, as a seed has it. Clients take it for the server;
/// each transfer port of the server has a port of the proxy's own.
class TftpProxy {
public:
    /// Each in percent of the datagrams.
    struct Troubles {
        unsigned int loss = 0;
        unsigned int duplication = 0;
        unsigned int delay = 0;  ///< by up to `longestDelay`; others overtake it meanwhile
        unsigned int truncation = 0;
        unsigned int corruption = 0;
        int longestDelay = 5;  ///< milliseconds

        /// What no receiver can notice (a payload that is shorter or different, the number of
        /// another block) happens only with this. Without it datagrams are truncated within their
        /// header, or made longer than any may be, and numbers are never near the right ones.
        bool isUnnoticed = false;

        /// Nothing happens to what comes to the proxy's request port.
        bool sparesRequests = false;

        /// The first so many datagrams from clients are lost.
        unsigned int firstLosses = 0;

        /// After so many milliseconds without a word from the server, clients get an error packet
        /// with code 0, as from a server that gives up. A client by itself never does, and damage
        /// can make the server believe that a transfer is over. 0: never.
        int endAfter = 0;
    };

    /// Takes over the socket that the requests come to.
    TftpProxy(UdpSocket listener, const Endpoint& server, const Troubles& troubles,
              unsigned int seed);

    /// Passes on what has come, waiting for it for up to so many milliseconds.
    void Serve(int milliseconds);

private:
    // What a client sends to one port of the proxy goes to one port of the server, by a socket that
    // is the client's alone.
    struct Client {
        explicit Client(const Endpoint& address) : toServer({address.host, 0}) {}
        UdpSocket toServer;
        std::map<Endpoint, UdpSocket> toClient;  // by the port of the server
    };

    struct Datagram {
        const UdpSocket* by;
        Endpoint to;
        Octets bytes;
    };

    void PassOn(const Datagram& datagram);
    void Disturb(Octets& bytes);
    void Truncate(Octets& bytes);
    void Corrupt(Octets& bytes);
    void SendWhatIsDue();
    void ReceiveRequests();
    void ReceiveFor(const Endpoint& address, Client& client);
    void EndIfSilent();

    unsigned int Below(unsigned int end) { return static_cast<unsigned int>(random() % end); }
    bool Happens(unsigned int percent) { return Below(100) < percent; }

    UdpSocket listener;
    Endpoint server;
    Troubles troubles;
    std::mt19937 random;
    std::map<Endpoint, Client> clients;
    std::multimap<long long, Datagram> waiting;  // by the time at which they go on
    unsigned int fromClients = 0;
    long long lastFromServer;
};

#endif
