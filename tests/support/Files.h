#ifndef FILES_H
#define FILES_H

#include <string>
#include <vector>

/// A directory of the test's own under the system's temporary one, gone with all that is in it when
/// the object goes. Everybody may read it.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory();

    const std::string& Path() const { return path; }
    std::string Path(const std::string& name) const { return path + "/" + name; }

    /// The names of what is in it, hidden files too, in order.
    std::vector<std::string> Names() const;

private:
    std::string path;
};

void WriteFile(const std::string& path, const std::string& bytes);

/// What the file holds; a text that tells of it when it cannot be read.
std::string ReadFile(const std::string& path);

/// So many bytes that look random, always the same for a seed.
std::string RandomBytes(std::size_t length, unsigned int seed);

#endif
