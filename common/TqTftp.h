#ifndef TQ_TFTP_H
#define TQ_TFTP_H

#include "TqExport.h"

/// A client that fetches a file from a TFTP server (RFC 1350, read requests only), one block of up
/// to 512 bytes at a time:
///
///     // Once a second. Interrupts the receive, so that a lost packet is sent again; a server that
///     // stays silent ends the program, for nothing else gets out of a read.
///     volatile sig_atomic_t secondsLeft;
///     extern "C" void Tick(int) {
///         if (--secondsLeft <= 0) _exit(3);
///     }
///
///     void StartTicking() {
///         struct sigaction action = {};  // no SA_RESTART: that would not interrupt anything
///         action.sa_handler = Tick;
///         sigaction(SIGALRM, &action, nullptr);
///         const itimerval everySecond = {{1, 0}, {1, 0}};
///         setitimer(ITIMER_REAL, &everySecond, nullptr);
///     }
///
///     // Not to standard output: the client prints there. Returns 0, or a TFTP_RESULT, or all ones
///     // when the system refuses.
///     unsigned int Fetch(const char* server, const char* name, FILE* file) {
///         secondsLeft = 30;
///         StartTicking();
///         TFTP_OPEN_STRUCT request = {inet_addr(server), name, "octet"};
///         const unsigned int opened = TFTP_open(&request);
///         if (opened != 0) return opened;  // nothing is open: closing could close descriptor 0
///         while (TFTP_eof() == 0) {
///             unsigned int length;
///             const unsigned char* data = TFTP_read(&length);
///             if (data == nullptr) return length;  // the result; the transfer is closed
///             secondsLeft = 30;
///             if (fwrite(data, 1, length, file) != length) {
///                 TFTP_close();
///                 return ~0u;
///             }
///         }
///         return TFTP_close();
///     }
///
/// Ownership: one transfer, held in process-wide state; it owns its socket and its packets. The
/// request is borrowed for the duration of `TFTP_open`. The bytes that `TFTP_read` returns stay the
/// client's and are valid until the next call.
/// Lock: none. One transfer at a time, and never two threads in the client at once.
/// Reports: none; failures are result codes. What `select` does other than finding a datagram is
/// printed to standard output in one line.
///
/// Every call blocks. Once the time-out has run out without a datagram, the receive waits without
/// an end: nothing is sent again until some datagram arrives or a signal interrupts
/// the receive. An application that wants lost packets to be recovered has a signal delivered
/// periodically, with a handler that was installed without SA_RESTART; there is no limit on the
/// number of resends.

/// What can go wrong. A server's error packet with code n gives `TFTP_SERVER_ERROR + n`, so that an
/// "Illegal Operation" of the server's (code 4) and one of its own faults are the same result.
enum TFTP_RESULT : unsigned int {
    TFTP_NOT_OPEN = 0x704,      ///< closing what is not open
    TFTP_NO_SOCKET = 0x800,     ///< no socket, or one that `select` cannot hold
    TFTP_NO_MEMORY = 0x802,     ///< no memory for the request packet
    TFTP_NOT_SENT = 0x803,      ///< the request packet was not sent whole
    TFTP_SERVER_ERROR = 0x810,  ///< plus the code of the server's error packet
    TFTP_VIOLATION = 0x814      ///< the server broke the protocol, or the receive failed
};

/// What `TFTP_open` fetches.
struct TFTP_OPEN_STRUCT {
    unsigned int serverAddress;  ///< IPv4, network byte order, as in `in_addr::s_addr`
    const char* fileName;        ///< sent as it is
    const char* mode;            ///< "octet" or "netascii"; sent as it is, never interpreted
};

/// Sends the read request, a `TFTP_OPEN_STRUCT`, to port 69 of its server.
/// Returns 0, or a `TFTP_RESULT` or the nonzero result of `bind`; the transfer is closed then.
/// Opening again without closing starts over with a new socket; the one before stays open and is
/// lost to the process.
TQ_API unsigned int TFTP_open(void* request);

/// Waits for the next block and acknowledges it.
/// Returns its data, with their number (0 to 512) in `length`. On failure returns null, with a
/// `TFTP_RESULT` in `length`; the transfer is closed then. A transfer that is not open fails at
/// once with `TFTP_VIOLATION`.
///
/// The end of the file is a block with fewer than 512 bytes, so a file of 512 bytes ends with a
/// block of none. Block numbers do not wrap: 65535 blocks, the last one short, are the largest
/// file; a larger one fails with `TFTP_VIOLATION` at the block after the last number.
TQ_API unsigned char* TFTP_read(unsigned int* length);

/// 1 once the last block has been read or the transfer has been closed, 0 during a transfer and
/// before the first one.
TQ_API unsigned int TFTP_eof();

/// The server's own words in the error packet that ended the last transfer, with their number in
/// `length`; none when it ended in another way or goes on. They are as they came, up to 512 bytes
/// that may hold anything and need not end with a NUL, and are valid until the next `TFTP_open`.
TQ_API const unsigned char* TFTP_error_text(unsigned int* length);

/// Ends the transfer and releases what it holds. A failed `TFTP_read` or `TFTP_open` has done so.
/// Returns the result of closing the socket, 0 as a rule; `TFTP_NOT_OPEN` when there is none.
///
/// Before the first `TFTP_open` the descriptor is 0: closing, or a failing read, then closes the
/// process's descriptor 0, its standard input as a rule.
TQ_API unsigned int TFTP_close();

/// Error packets, ready to be sent: opcode 5, a code, a text, and zeros up to 34 bytes. The client
/// itself sends `_tftp_error_tid` to a stranger's port and `_tftp_error_op` to who breaks the
/// protocol.
extern TQ_API const unsigned char _tftp_error_exists[34];  ///< 6, "File Already Exists"
extern TQ_API const unsigned char _tftp_error_nofile[34];  ///< 1, "File Not Found"
extern TQ_API const unsigned char _tftp_error_to[34];      ///< 0, "Excessive Retransmissions"
extern TQ_API const unsigned char _tftp_error_busy[34];    ///< 0, "TFTP Server Busy"
extern TQ_API const unsigned char _tftp_error_srv[34];     ///< 0, "TFTP Server Failure"
extern TQ_API const unsigned char _tftp_error_accvio[34];  ///< 2, "Access Violation"
extern TQ_API const unsigned char _tftp_error_op[34];      ///< 4, "Illegal Operation"
extern TQ_API const unsigned char _tftp_error_tid[34];     ///< 5, "Invalid TID"

/// When to send again: a time-out learnt from the round trips, doubled whenever it runs out. All
/// times are milliseconds; clock readings are only ever subtracted, so the wrap of the 32-bit clock
/// does no harm. The client itself begins every `TFTP_read` with a restart and so takes no sample:
/// within a transfer its time-out only grows, from 4000.
struct TFTP_TO_STRUCT {
    unsigned int startTime;    ///< the clock when the present wait began
    unsigned int sampleValid;  ///< 1 when the wait began with a first transmission
    unsigned int timeout;      ///< how long to wait before sending again
    unsigned int smoothedRtt;  ///< the smoothed round-trip time
    unsigned int rttVariance;  ///< the smoothed deviation from it
};

/// Begins the wait after a first transmission, with a time-out of 4000. Returns 4000.
TQ_API unsigned int TFTP_timeout_init(TFTP_TO_STRUCT* to);

/// Begins the wait after a transmission that is no use as a sample. Returns the time-out.
TQ_API unsigned int TFTP_timeout_restart(TFTP_TO_STRUCT* to);

/// The answer is here: takes the time it needed as a sample, if it may be one, and begins the next
/// wait. Returns the new time-out: the smoothed time plus four deviations, unbounded.
TQ_API unsigned int TFTP_timeout_update(TFTP_TO_STRUCT* to);

/// Returns what is left of the time-out. Once nothing is, doubles it, to 60000 at most, begins the
/// next wait and returns the new time-out. Tells which in `expired` (1 when it ran out, else 0),
/// which may be null.
TQ_API unsigned int TFTP_timeout_left(TFTP_TO_STRUCT* to, unsigned int* expired);

/// The wall clock in milliseconds, in 32 bits. A remainder above 500 microseconds rounds up, one
/// of exactly 500 down.
TQ_API unsigned int RTCS_time_get();

#endif
