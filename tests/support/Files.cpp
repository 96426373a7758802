#include "Files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

TemporaryDirectory::TemporaryDirectory()
    : path((std::filesystem::temp_directory_path() / "tqcommon-XXXXXX").string()) {
    EXPECT_NE(mkdtemp(&path[0]), nullptr) << path;
    EXPECT_EQ(chmod(path.c_str(), 0755), 0);
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::vector<std::string> TemporaryDirectory::Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream stream(path, std::ios::binary);
    stream << bytes;
    stream.close();
    EXPECT_TRUE(stream) << path;
}

std::string ReadFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return "cannot read " + path;
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

std::string RandomBytes(std::size_t length, unsigned int seed) {
    std::mt19937 random(seed);
    std::string bytes(length, '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    return bytes;
}
