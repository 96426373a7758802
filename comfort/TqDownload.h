#ifndef TQ_DOWNLOAD_H
#define TQ_DOWNLOAD_H

#include <atomic>
#include <type_traits>

#include "TqBuffer.h"
#include "TqExport.h"
#include "TqString.h"

/// A whole download by TFTP, which comes to an end whatever server and network do:
///
///     TqDownload download("192.0.2.1", "config/router");
///     download.deadline = 60;
///     TqBuffer content;
///     if (download.ToBuffer(content) != TqDownload::complete) {
///         TqString reason;
///         download.AppendText(reason);
///         std::fprintf(stderr, "config/router: %s\n", reason.data);
///     }
///
/// Every fetch blocks until it has ended and returns a result: `complete`, one of the others below,
/// or what the TFTP client returns (`TFTP_RESULT`); `TqTftpText` has a sentence for each. It may be
/// made any number of times.
///
/// The TFTP client works in a thread that lasts as long as the fetch; receiver and watcher are
/// called on the caller's thread. No signal is needed, taken or let through to the client, but for
/// SIGURG, whose handler is this class's meanwhile and the one before afterwards. After four
/// seconds of silence the client prints to standard output what `select` does.
///
/// Ownership: copies the names that it is given; borrows what a fetch is given for the duration of
/// the fetch.
/// Lock: none of the caller's; `Cancel` alone may be called by another thread, or by a signal's
/// handler. Fetches of several threads wait for each other, since the client has one transfer at a
/// time; nobody else may use the client meanwhile.
/// Reports: none.
class TQ_API TqDownload {
public:
    /// Numbers that the TFTP client has no use for.
    enum RESULT : unsigned int {
        complete = 0,
        cancelled = 0x20000,  ///< by `Cancel`
        late = 0x20001,       ///< not complete within `deadline`
        silent = 0x20002,     ///< no new block, and no answer of the name service, for `patience`
        tooLarge = 0x20003,   ///< more blocks than TFTP has numbers
        tooMany = 0x20004,    ///< more than `mostBytes`
        refused = 0x20005,    ///< the receiver takes no more, or the file cannot be written
        noServer = 0x20006,   ///< the server's name has no address
        noThread = 0x20007,   ///< no thread for the transfer
        nested = 0x20008      ///< called by the receiver or watcher of another fetch
    };

    /// Gets the bytes in their order, piece by piece. False ends the fetch with `refused`.
    typedef bool (*Receiver)(void* user, const unsigned char* bytes, unsigned int count);

    /// Is told the number of bytes after each piece, with a `silence` of 0, and about five times a
    /// second while nothing comes, with the milliseconds since the last piece.
    typedef void (*Watcher)(void* user, unsigned long long bytes, unsigned int silence);

    /// `server` is a host name or an IPv4 address. Nothing happens yet.
    TqDownload(const char* server, const char* fileName);

    TqDownload(const TqDownload&) = delete;
    TqDownload& operator=(const TqDownload&) = delete;

    /// Appends the file to `buffer`, which is left as it was when the fetch fails.
    unsigned int ToBuffer(TqBuffer& buffer);

    /// Writes the file to `path`, which holds the whole file when the fetch is complete and is left
    /// as it was otherwise: what comes is kept in `path` with ".part" behind it. A link is
    /// replaced. Devices and pipes are written to directly.
    unsigned int ToFile(const char* path);

    /// Hands the file to `receive`. What that throws ends the fetch and comes out of it.
    unsigned int ToFunction(Receiver receive, void* user);

    /// The same for what can be called with bytes and count and gives a bool, a lambda for one.
    template <class Callable>
    unsigned int ToFunction(Callable&& callable);

    /// Finds the server's address, which a fetch does otherwise. A name service that does not
    /// answer within `patience` is `silent`.
    unsigned int FindServer();

    /// Ends the fetch within a second, and every later one at once.
    void Cancel();

    /// Appends what the last fetch came to, in a sentence that may be printed anywhere.
    void AppendText(TqString& text) const;

    TqString server;
    TqString fileName;
    TqString mode;                 ///< "octet", or "netascii", whose lines are left as they come
    unsigned int patience;         ///< seconds that may pass without a new block, 30; 0: any time
    unsigned int deadline;         ///< seconds that a fetch may take in all; 0, as at first: any
    unsigned long long mostBytes;  ///< 0, as at first: any number
    Watcher watch;                 ///< null, as at first: none
    void* watchUser;               ///< handed to it

    unsigned int result;       ///< of the last fetch
    unsigned long long bytes;  ///< that it brought
    TqString words;            ///< the server's or the system's reason for the result, as it came
    unsigned int address;      ///< of the server, in network byte order; 0: not known yet

private:
    class Transfer;

    bool IsOver(long long since);
    int TimeLeft(long long since) const;
    unsigned int Begin();
    unsigned int End(unsigned int outcome, const char* reason);
    unsigned int AwaitAddress();
    unsigned int Fetch(Receiver receive, void* user);
    unsigned int Receive(Transfer& transfer, Receiver receive, void* user);
    unsigned int Take(const unsigned char* block, unsigned int length, Receiver receive,
                      void* user);
    unsigned int AwaitTurn();
    void Watch(long long silence) const;

    template <class Callable>
    static bool Call(void* callable, const unsigned char* bytes, unsigned int count);

    long long begun;
    std::atomic<bool> isCancelled;
};

template <class Callable>
bool TqDownload::Call(void* callable, const unsigned char* bytes, unsigned int count) {
    return (*static_cast<Callable*>(callable))(bytes, count);
}

template <class Callable>
unsigned int TqDownload::ToFunction(Callable&& callable) {
    return ToFunction(&TqDownload::Call<typename std::remove_reference<Callable>::type>, &callable);
}

#endif
