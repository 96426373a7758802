#ifndef TARGET_FILE_H
#define TARGET_FILE_H

#include <cstddef>
#include <string>

/// A file that appears under its name when it is complete, and not before; what stood there until
/// then is replaced in one step and stays otherwise. Devices and pipes are written to directly.
/// Failures throw std::system_error.
///
/// What has been written is in a temporary file in the directory of the target. Where the file
/// system can, that file has no name, so that nothing is left even of a process that is killed;
/// elsewhere its name is ".tqfetch-" and six characters.
class TargetFile {
public:
    /// `standardOutput` is the descriptor to use for "-".
    TargetFile(const std::string& path, int standardOutput);
    TargetFile(const TargetFile&) = delete;
    TargetFile& operator=(const TargetFile&) = delete;

    /// Without `Complete`: nothing has happened.
    ~TargetFile();

    void Write(const void* bytes, std::size_t count);
    void Complete();

    /// Removes the temporary file if it has a name. For signal handlers whose process ends.
    static void RemoveTemporary();

private:
    void OpenTemporary(const std::string& directory);
    void OpenNamedTemporary(const std::string& directory);
    void NameTemporary();

    std::string target;     // empty: there is nothing to rename
    std::string temporary;  // empty: it has no name yet
    int descriptor;
};

#endif
