#ifndef TQ_FILE_H
#define TQ_FILE_H

#include <cstdio>

#include "TqBaseObject.h"
#include "TqString.h"

/// A text file that is opened in one of five modes and read line by line:
///
///     TqFile file;
///     if (file.Open("/proc/net/dev", TqFile::read)) {
///         while (char* line = file.NextLine()) Use(line);
///         file.Close();
///     }
///
/// It is a thin wrapper around one stream of the standard library. Whoever wants to write uses
/// `stream`. There are no error texts: after a failure `errno` is the system's.
///
/// Ownership: who opens the file closes it. Neither the destructor nor another `Open` closes a
/// stream; one that is left open stays open until the process ends.
/// Lock: none, and one line buffer serves the files of all threads: read files on one thread.
/// Reports: source "TqFile".
class TQ_API TqFile : public TqBaseObject {
public:
    /// Not open.
    TqFile();

    /// Reports: a file is not copied. The new object is not open and has the state -1, by which
    /// copies are known.
    TqFile(const TqFile& other);

    /// Reports, and leaves the file as it was.
    TqFile& operator=(const TqFile& other);

    /// Leaves a stream open; sets the state to `fileUnknown`.
    ~TqFile() override;

    /// Hands over a copy, with the report of one.
    TqBaseObject* Clone() const override;

    // TqFileInfo, TqFileInitInfo(), ClassInfo() and NewInstance().
    TQ_DECLARE_CLASS(TqFile)

public:
    /// Opens the file `name` and returns 1; on failure returns 0, and `stream` is null then. Name
    /// and mode are kept either way. A null or empty name is reported and fails; so does, without a
    /// report and with `errno` EINVAL, a mode that is none of the five below.
    virtual int Open(const char* name, int mode);

    /// Closes the stream and returns 1; returns 0 and leaves the state alone when the system
    /// reports a failure, such as a full device. One that is not open: 1, and nothing happens.
    /// `stream` keeps its value: neither `NextLine` nor `Close` may follow before another `Open`.
    virtual int Close();

    /// The next line as `fgets` leaves it, with its newline, in a buffer that is valid until the
    /// next `NextLine` of any file. A line longer than 1023 characters comes in pieces, of which
    /// the last one has the newline. Null at the end, after a read error, and when not open.
    virtual char* NextLine();

    TqString fileName;  ///< given to the last `Open`
    int openMode;       ///< given to the last `Open`; -1 before
    FILE* stream;       ///< the open stream, or null
    int fileState;      ///< one of the states below; for information, no operation reads it

    // The modes.
    static const int read = 1;        ///< "r"
    static const int write = 2;       ///< "w": creates or truncates
    static const int readWrite = 3;   ///< "r+": of an existing file
    static const int append = 4;      ///< "a"
    static const int readAppend = 5;  ///< "a+"

    // The states.
    static const int fileUnknown = 0;  ///< not opened yet, or the last `Open` failed
    static const int fileOpen = 1;     ///< the last `Open` succeeded
    static const int fileAtEnd = 2;    ///< `NextLine` found no further line
    static const int fileClosed = 3;   ///< `Close` succeeded
};

/// The factory of `TqFile`: hands over a new object.
TQ_API TqBaseObject* TqFileNewFunc();

#endif
