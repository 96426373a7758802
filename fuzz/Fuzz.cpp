#include "Fuzz.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "TqHooks.h"

// What the C library's buffers hold has been written, though the memory sanitizer did not see it.
#ifdef __has_feature
#if __has_feature(memory_sanitizer)
#include <sanitizer/msan_interface.h>
#define FUZZ_IS_WRITTEN(bytes, count) __msan_unpoison(bytes, count)
#endif
#endif
#ifndef FUZZ_IS_WRITTEN
#define FUZZ_IS_WRITTEN(bytes, count)
#endif

namespace {

std::uint64_t outcome;
unsigned int reports;

void TellByte(unsigned int byte) {
    outcome = (outcome ^ byte) * 1099511628211u;
}

void TellReport(const char* source, int) {
    ++reports;
    for (; *source != '\0'; ++source) TellByte(static_cast<unsigned char>(*source));
}

char printed[1 << 17];
std::size_t printedCount;

ssize_t KeepPrinted(void*, const char* text, std::size_t count) {
    const std::size_t room = sizeof printed - printedCount;
    const std::size_t kept = count < room ? count : room;
    std::memcpy(printed + printedCount, text, kept);
    FUZZ_IS_WRITTEN(printed + printedCount, kept);
    printedCount += kept;
    return static_cast<ssize_t>(count);
}

std::FILE* Sink() {
    static std::FILE* sink;
    if (sink == nullptr) {
        cookie_io_functions_t functions = cookie_io_functions_t();
        functions.write = KeepPrinted;
        sink = fopencookie(nullptr, "w", functions);
        std::setvbuf(sink, nullptr, _IOLBF, 1024);
    }
    return sink;
}

}  // namespace

void Broken(const char* file, int line, const char* rule) {
    dprintf(STDERR_FILENO, "%s:%d: does not hold: %s\n", file, line, rule);
    std::abort();
}

unsigned int Input::Number() {
    static const unsigned int worthTrying[] = {0u,          1u,          0xFFFFFFFFu, 0x80000000u,
                                               0x7FFFFFFFu, 0xFFFFFFFEu, 0x10000u,    0xFFFFFFFCu,
                                               0xFFFFFFFBu, 0xFFFFFF00u, 100000u,     99999u,
                                               0xFFFFu,     0x80000001u, 0xFFFFFFC0u, 0xFFFFFFF0u};
    const unsigned int kind = Byte();
    if (kind < 128) return kind;
    if (kind < 192) return worthTrying[kind % 16];
    unsigned int number = 0;
    for (int i = 0; i < 4; ++i) number = number << 8 | Byte();
    return number;
}

std::string Input::Bytes(unsigned int most) {
    std::size_t count = Below(most + 1);
    const std::size_t left = static_cast<std::size_t>(end - at);
    if (count > left) count = left;
    const std::string bytes(reinterpret_cast<const char*>(at), count);
    at += count;
    return bytes;
}

std::string Input::Rest() {
    const std::string bytes(reinterpret_cast<const char*>(at), static_cast<std::size_t>(end - at));
    at = end;
    return bytes;
}

void Tell(unsigned int number) {
    for (int shift = 24; shift >= 0; shift -= 8) TellByte(number >> shift & 0xFF);
}

void Tell(const std::string& bytes) {
    Tell(static_cast<unsigned int>(bytes.size()));
    for (const char c : bytes) TellByte(static_cast<unsigned char>(c));
}

unsigned int TakeReports() {
    const unsigned int taken = reports;
    reports = 0;
    return taken;
}

const Target* Target::first;

Target::Target(const char* itsName, void (*itsFunction)(Input&))
    : name(itsName), next(first), function(itsFunction) {
    first = this;
}

std::uint64_t Target::Run(const unsigned char* bytes, std::size_t count) const {
    TqRegisterAssertCb(TellReport);
    outcome = 14695981039346656037u;
    reports = 0;
    Input input(bytes, count);
    function(input);
    return outcome;
}

Printed::Printed() : output(stdout), errors(stderr) {
    stdout = Sink();
    stderr = Sink();
}

Printed::~Printed() {
    std::fflush(Sink());
    printedCount = 0;
    stdout = output;
    stderr = errors;
}

std::string Printed::Take() {
    std::fflush(Sink());
    const std::string text(printed, printedCount);
    printedCount = 0;
    return text;
}

const char* FileOf(const std::string& bytes) {
    static const int descriptor = memfd_create("fuzz", 0);
    static char name[32];
    std::snprintf(name, sizeof name, "/proc/self/fd/%d", descriptor);
    MUST(ftruncate(descriptor, 0) == 0);
    MUST(pwrite(descriptor, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
    return name;
}
