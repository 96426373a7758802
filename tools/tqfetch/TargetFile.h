#ifndef TARGET_FILE_H
#define TARGET_FILE_H

#include <sys/stat.h>

#include <cstddef>
#include <string>

/// A file that appears under its name when it is complete, and not before; what stood there until
/// then is replaced in one step and stays otherwise. Devices and pipes are written to directly, and
/// so is what this process has open, by whatever name: "-" or /dev/stdout.
/// Failures throw std::system_error, with the name that was asked for.
///
/// What has been written is in a temporary file in the directory of the target. Where the file
/// system can, that file has no name, so that nothing is left even of a process that is killed;
/// elsewhere its name is ".tqfetch-" and six characters.
class TargetFile {
public:
    explicit TargetFile(const std::string& path);
    TargetFile(const TargetFile&) = delete;
    TargetFile& operator=(const TargetFile&) = delete;

    /// Without `Complete`: nothing has happened.
    ~TargetFile();

    bool IsTerminal() const;

    void Write(const void* bytes, std::size_t count);
    void Complete();

    /// Removes the temporary file if it has a name. For signal handlers whose process ends.
    static void RemoveTemporary();

private:
    [[noreturn]] void Throw(int error) const;
    void Open(const std::string& path);
    void OpenInherited(int inherited);
    void OpenTemporary();
    void OpenNamedTemporary();
    void TakeOwnerAndMode(const struct stat& before);
    void NameTemporary();

    std::string name;       // for messages
    std::string target;     // empty: there is nothing to rename
    std::string temporary;  // empty: it has no name yet
    int descriptor = -1;
};

#endif
