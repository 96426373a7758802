#include "TargetFile.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <signal.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <system_error>

namespace {

const char ownDescriptors[] = "/proc/self/fd";
const int mostLinks = 40;  // as the system has it

// The name that a signal handler removes; null when there is nothing to remove.
std::atomic<const char*> removable(nullptr);

// Keeps signals away between the making of a file and the note that it must go.
class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_BLOCK, &all, &before);
    }
    ~SignalsHeld() { sigprocmask(SIG_SETMASK, &before, nullptr); }

private:
    sigset_t before;
};

// Empty when there is no such thing.
std::string WithoutLinks(const std::string& path) {
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) != nullptr ? resolved : std::string();
}

std::string DirectoryOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool IsInProc(const std::string& path) {
    struct statfs system;
    return statfs(DirectoryOf(path).c_str(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
}

// Where the links of a path first come to /proc, whose links are open files and no names of files.
// Empty when they do not.
std::string PlaceInProc(std::string path) {
    for (int links = 0; links < mostLinks; ++links) {
        if (IsInProc(path)) return path;
        char next[PATH_MAX];
        const ssize_t length = readlink(path.c_str(), next, sizeof next);
        if (length <= 0) break;
        const std::string start = next[0] == '/' ? "" : DirectoryOf(path) + "/";
        path = start + std::string(next, static_cast<std::size_t>(length));
    }
    return std::string();
}

// The descriptor of this process that a path on /proc is, -1 when it is something else.
int OwnDescriptor(const std::string& path) {
    const std::string directory = WithoutLinks(DirectoryOf(path));
    if (directory != WithoutLinks(ownDescriptors) &&
        directory != WithoutLinks("/proc/thread-self/fd")) {
        return -1;
    }
    const std::string last = path.substr(path.rfind('/') + 1);
    const int number = std::atoi(last.c_str());
    return last == std::to_string(number) ? number : -1;
}

bool IsSameFile(const std::string& path, const struct stat& status) {
    struct stat own;
    return lstat(path.c_str(), &own) == 0 && own.st_dev == status.st_dev &&
           own.st_ino == status.st_ino;
}

mode_t ModeOfNewFiles() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

std::string PlaceOf(int descriptor) {
    return ownDescriptors + ("/" + std::to_string(descriptor));
}

// A file without a name gets one through /proc: without that it is of no use.
int OpenNamelessFile(const std::string& directory) {
    const int descriptor = open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (descriptor < 0 || access(PlaceOf(descriptor).c_str(), F_OK) == 0) return descriptor;
    close(descriptor);
    return -1;
}

}  // namespace

TargetFile::TargetFile(const std::string& path) : name(path == "-" ? "standard output" : path) {
    if (path == "-") {
        OpenInherited(STDOUT_FILENO);
    } else {
        Open(path);
    }
}

TargetFile::~TargetFile() {
    RemoveTemporary();
    if (descriptor >= 0) close(descriptor);
}

bool TargetFile::IsTerminal() const {
    return isatty(descriptor) != 0;
}

void TargetFile::Throw(int error) const {
    throw std::system_error(error, std::generic_category(), name);
}

void TargetFile::Open(const std::string& path) {
    // Whatever else the system says about the path, it does not want it followed.
    struct stat status;
    const bool exists = stat(path.c_str(), &status) == 0;
    if (!exists && errno != ENOENT) Throw(errno);

    const std::string inProc = PlaceInProc(path);
    const int own = inProc.empty() ? -1 : OwnDescriptor(inProc);
    if (own >= 0) return OpenInherited(own);
    if (!inProc.empty() || (exists && !S_ISREG(status.st_mode))) {
        descriptor = open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
        if (descriptor < 0) Throw(errno);
        return;
    }
    // A link to a file that is there is followed, and that one replaced; any other is itself.
    target = exists ? WithoutLinks(path) : path;
    if (exists && !IsSameFile(target, status)) Throw(ENOENT);
    OpenTemporary();
    if (exists) {
        TakeOwnerAndMode(status);
    } else {
        fchmod(descriptor, ModeOfNewFiles());
    }
}

// What was closed at the start is there by now, but only for reading.
void TargetFile::OpenInherited(int inherited) {
    const int flags = fcntl(inherited, F_GETFL);
    if (flags >= 0 && (flags & O_ACCMODE) == O_RDONLY) Throw(EBADF);
    descriptor = fcntl(inherited, F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) Throw(errno);
}

void TargetFile::OpenTemporary() {
    descriptor = OpenNamelessFile(DirectoryOf(target));
    if (descriptor < 0) OpenNamedTemporary();
}

void TargetFile::OpenNamedTemporary() {
    std::string path = DirectoryOf(target) + "/.tqfetch-XXXXXX";
    const SignalsHeld held;
    descriptor = mkostemp(&path[0], O_CLOEXEC);
    if (descriptor < 0) Throw(errno);
    temporary = path;
    removable = temporary.c_str();
}

// Where the group cannot be kept, the one that the file gets instead may do what all others may.
void TargetFile::TakeOwnerAndMode(const struct stat& before) {
    mode_t mode = before.st_mode & 0777;
    if (fchown(descriptor, before.st_uid, before.st_gid) != 0 &&
        fchown(descriptor, static_cast<uid_t>(-1), before.st_gid) != 0) {
        mode = (mode & 0707) | (mode & (mode << 3) & 0070);
    }
    fchmod(descriptor, mode);
}

void TargetFile::NameTemporary() {
    const std::string own = PlaceOf(descriptor);
    const std::string start = DirectoryOf(target) + "/.tqfetch-";
    const SignalsHeld held;
    for (unsigned int number = static_cast<unsigned int>(getpid()); temporary.empty(); ++number) {
        const std::string path = start + std::to_string(number);
        if (linkat(AT_FDCWD, own.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            temporary = path;
        } else if (errno != EEXIST) {
            Throw(errno);
        }
    }
    removable = temporary.c_str();
}

void TargetFile::Write(const void* bytes, std::size_t count) {
    const char* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = write(descriptor, next, count);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) Throw(errno);
        next += written;
        count -= static_cast<std::size_t>(written);
    }
}

void TargetFile::Complete() {
    // The name must not outlive a loss of power that the content does not.
    if (!target.empty() && fsync(descriptor) != 0) Throw(errno);
    if (!target.empty() && temporary.empty()) NameTemporary();
    // Some file systems tell only now that there was no room.
    const int closed = close(descriptor);
    descriptor = -1;
    if (closed != 0) Throw(errno);
    if (target.empty()) return;
    const SignalsHeld held;
    if (rename(temporary.c_str(), target.c_str()) != 0) Throw(errno);
    removable = nullptr;
}

void TargetFile::RemoveTemporary() {
    const char* path = removable.exchange(nullptr);
    if (path != nullptr) unlink(path);
}
