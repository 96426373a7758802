// tqitems: shows the items of an encoded buffer, and makes them. Its man page is tqitems.1.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <system_error>

#include "Items.h"
#include "Json.h"
#include "Message.h"
#include "Options.h"

namespace {

// More than any device holds; an endless input ends here.
const std::size_t largestInput = 256u << 20;

std::string NameOf(const Options& options) {
    return options.file == "-" ? "standard input" : options.file;
}

int Complain(const Options& options, const std::string& problem, int status) {
    std::fprintf(stderr, "tqitems: %s\n", Shown(NameOf(options) + ": " + problem).c_str());
    return status;
}

[[noreturn]] void FailWithError() {
    throw std::runtime_error(std::strerror(errno));
}

std::string ReadAll(std::FILE* file) {
    std::string bytes;
    char block[65536];
    while (const std::size_t count = std::fread(block, 1, sizeof(block), file)) {
        bytes.append(block, count);
        if (bytes.size() > largestInput) throw std::runtime_error("more than 256 MiB");
    }
    if (std::ferror(file) != 0) FailWithError();
    return bytes;
}

std::string ReadInput(const std::string& name) {
    if (name == "-") return ReadAll(stdin);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "rbe"),
                                                               std::fclose);
    if (file == nullptr) FailWithError();
    return ReadAll(file.get());
}

// Whether all of it went out.
bool Print(const std::string& text) {
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (std::fflush(stdout) == 0 && isWritten) return true;
    std::fprintf(stderr, "tqitems: standard output: %s\n", std::strerror(errno));
    return false;
}

int Encode(const Options& options, const std::string& input) {
    try {
        const std::string bytes =
            options.isJson ? EncodeJson(input) : EncodeLines(input, options.types);
        return Print(bytes) ? exitComplete : exitFailure;
    } catch (const NotEncoded& problem) {
        return Complain(options, problem.what(), exitCorrupt);
    }
}

int Show(const Options& options, const std::string& input) {
    const Decoded decoded = Decode(input, options.types);
    if (!Print(options.isJson ? ToJson(decoded) : ToTable(decoded))) return exitFailure;
    if (decoded.problem.empty()) return decoded.Differs() ? exitDiffers : exitComplete;
    return Complain(options,
                    "corrupt at offset " + std::to_string(decoded.offset) + ": " + decoded.problem,
                    exitCorrupt);
}

}  // namespace

int main(int argc, char** argv) {
    const Options options = ParseArguments(argc, argv);
    try {
        const std::string input = ReadInput(options.file);
        return options.encodes ? Encode(options, input) : Show(options, input);
    } catch (const std::exception& problem) {
        return Complain(options, problem.what(), exitFailure);
    }
}
