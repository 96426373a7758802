#include "TqFile.h"

#include <cerrno>

#include "TqClassInfo.h"
#include "internal/TqPrivate.h"

namespace {

TQ_REPORTS_AS("TqFile")

// One for all files, so that reading lines allocates nothing on a device of little memory.
char line[1024];

FILE* OpenStream(const char* name, int mode) {
    static const char* const modes[] = {"r", "w", "r+", "a", "a+"};
    // Refused here: what an empty mode does differs between C libraries.
    if (mode < TqFile::read || mode > TqFile::readAppend) {
        errno = EINVAL;
        return nullptr;
    }
    return std::fopen(name, modes[mode - TqFile::read]);
}

}  // namespace

TQ_IMPLEMENT_CLASS(TqFile, TqBaseObject)

const int TqFile::read;
const int TqFile::write;
const int TqFile::readWrite;
const int TqFile::append;
const int TqFile::readAppend;

const int TqFile::fileUnknown;
const int TqFile::fileOpen;
const int TqFile::fileAtEnd;
const int TqFile::fileClosed;

TqFile::TqFile() : openMode(-1), stream(nullptr), fileState(fileUnknown) {}

// A state that no other file has: applications know a copy by it.
TqFile::TqFile(const TqFile& other)
    : TqBaseObject(other), openMode(-1), stream(nullptr), fileState(-1) {
    Report(__LINE__);
}

TqFile& TqFile::operator=(const TqFile& other) {
    TqBaseObject::operator=(other);
    Report(__LINE__);
    return *this;
}

TqFile::~TqFile() {
    // The stream stays open: applications hand it on and close it themselves.
    TqClearForGood(fileState);
}

TqBaseObject* TqFile::Clone() const {
    return new TqFile(*this);
}

int TqFile::Open(const char* name, int mode) {
    // Kept even when opening fails: programs name the file in what they complain of.
    fileName = name;
    openMode = mode;
    TQ_REPORT_IF(fileName.length == 0);
    // An earlier stream is not closed: applications keep its pointer and close it themselves.
    stream = OpenStream(fileName.data, openMode);
    fileState = stream != nullptr ? fileOpen : fileUnknown;
    return stream != nullptr;
}

int TqFile::Close() {
    if (stream == nullptr) return 1;
    // The closed stream stays in the object, where applications compare it with the pointer they
    // kept; the state tells that it is closed.
    if (std::fclose(stream) == EOF) return 0;
    fileState = fileClosed;
    return 1;
}

char* TqFile::NextLine() {
    if (stream == nullptr) return nullptr;
    // `fgets` and nothing beside it: the pieces of a long line, and a NUL inside one, come out as
    // programs know them from there.
    char* next = std::fgets(line, sizeof line, stream);
    if (next == nullptr) fileState = fileAtEnd;
    return next;
}
