// Runs the stored inputs of a target and prints one line for each, its number and its outcome:
//
//     fuzz_replay strings corpora/strings.pack
//     fuzz_replay strings found/strings-overlap
//
// A pack holds inputs one behind the other, each behind its length in two bytes, the high one
// first. Any other file is one input.

#include <cinttypes>
#include <cstring>

#include "Fuzz.h"

namespace {

const Target* Find(const char* name) {
    const Target* target = Target::first;
    while (target != nullptr && std::strcmp(target->name, name) != 0) target = target->next;
    return target;
}

// By the C library: the memory sanitizer cannot look into the streams of the other one.
bool Read(const char* path, std::string& content) {
    std::FILE* const file = std::fopen(path, "rb");
    if (file == nullptr) return false;
    char piece[4096];
    for (std::size_t count = 1; count > 0;) {
        count = std::fread(piece, 1, sizeof piece, file);
        content.append(piece, count);
    }
    const bool isComplete = std::ferror(file) == 0;
    std::fclose(file);
    return isComplete;
}

void Print(const Target& target, const std::string& what, const unsigned char* bytes,
           std::size_t count) {
    // An own block for each: a sanitizer then sees a read behind its end.
    const std::string input(reinterpret_cast<const char*>(bytes), count);
    std::printf("%s %s %016" PRIx64 "\n", target.name, what.c_str(),
                target.Run(reinterpret_cast<const unsigned char*>(input.data()), input.size()));
}

bool Unpack(const Target& target, const std::string& pack) {
    const unsigned char* const bytes = reinterpret_cast<const unsigned char*>(pack.data());
    unsigned int number = 0;
    for (std::size_t at = 0; at < pack.size();) {
        if (pack.size() - at < 2) return false;
        const std::size_t count = std::size_t(bytes[at]) << 8 | bytes[at + 1];
        at += 2;
        if (pack.size() - at < count) return false;
        Print(target, std::to_string(++number), bytes + at, count);
        at += count;
    }
    return true;
}

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    const Target* const target = argc > 2 ? Find(argv[1]) : nullptr;
    if (target == nullptr) {
        std::fprintf(stderr, "usage: fuzz_replay TARGET FILE...\n");
        return 2;
    }
    for (int i = 2; i < argc; ++i) {
        const std::string path = argv[i];
        std::string content;
        if (!Read(path.c_str(), content)) {
            std::fprintf(stderr, "%s: cannot be read\n", argv[i]);
            return 1;
        }
        if (!EndsWith(path, ".pack")) {
            const unsigned char* const bytes =
                reinterpret_cast<const unsigned char*>(content.data());
            Print(*target, path.substr(path.rfind('/') + 1), bytes, content.size());
        } else if (!Unpack(*target, content)) {
            std::fprintf(stderr, "%s: cut\n", argv[i]);
            return 1;
        }
    }
    return 0;
}
