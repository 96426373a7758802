#include "TargetFile.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <system_error>

namespace {

// The name that a signal handler removes; null when there is nothing to remove.
std::atomic<const char*> removable(nullptr);

[[noreturn]] void Throw(const std::string& path) {
    throw std::system_error(errno, std::generic_category(), path);
}

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

// A link to a file that is there is followed: its target is what gets replaced.
std::string WithoutLinks(const std::string& path) {
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) != nullptr ? resolved : path;
}

std::string DirectoryOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

mode_t ModeOfNewFiles() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// A file without a name gets one through /proc.
int OpenNamelessFile(const std::string& directory) {
    if (access("/proc/self/fd", X_OK) != 0) return -1;
    return open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
}

}  // namespace

TargetFile::TargetFile(const std::string& path, int standardOutput) : descriptor(-1) {
    if (path == "-") {
        descriptor = fcntl(standardOutput, F_DUPFD_CLOEXEC, 0);
        if (descriptor < 0) Throw("standard output");
        return;
    }
    struct stat status;
    const bool exists = stat(path.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (descriptor < 0) Throw(path);
        return;
    }
    target = WithoutLinks(path);
    OpenTemporary(DirectoryOf(target));
    fchmod(descriptor, exists ? status.st_mode & 0777 : ModeOfNewFiles());
}

TargetFile::~TargetFile() {
    RemoveTemporary();
    if (descriptor >= 0) close(descriptor);
}

void TargetFile::OpenTemporary(const std::string& directory) {
    descriptor = OpenNamelessFile(directory);
    if (descriptor < 0) OpenNamedTemporary(directory);
}

void TargetFile::OpenNamedTemporary(const std::string& directory) {
    std::string name = directory + "/.tqfetch-XXXXXX";
    const SignalsHeld held;
    descriptor = mkostemp(&name[0], O_CLOEXEC);
    if (descriptor < 0) Throw(target);
    temporary = name;
    removable = temporary.c_str();
}

void TargetFile::NameTemporary() {
    const std::string own = "/proc/self/fd/" + std::to_string(descriptor);
    const std::string start = DirectoryOf(target) + "/.tqfetch-";
    const SignalsHeld held;
    for (unsigned int number = static_cast<unsigned int>(getpid()); temporary.empty(); ++number) {
        const std::string name = start + std::to_string(number);
        if (linkat(AT_FDCWD, own.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            temporary = name;
        } else if (errno != EEXIST) {
            Throw(target);
        }
    }
    removable = temporary.c_str();
}

void TargetFile::Write(const void* bytes, std::size_t count) {
    const char* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t written = write(descriptor, next, count);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) Throw(target.empty() ? "output" : target);
        next += written;
        count -= static_cast<std::size_t>(written);
    }
}

void TargetFile::Complete() {
    if (target.empty()) return;
    // The name must not outlive a loss of power that the content does not.
    if (fsync(descriptor) != 0) Throw(target);
    if (temporary.empty()) NameTemporary();
    const SignalsHeld held;
    if (rename(temporary.c_str(), target.c_str()) != 0) Throw(target);
    removable = nullptr;
}

void TargetFile::RemoveTemporary() {
    const char* name = removable.exchange(nullptr);
    if (name != nullptr) unlink(name);
}
