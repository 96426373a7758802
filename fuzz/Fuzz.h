#ifndef FUZZ_H
#define FUZZ_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

// What the fuzz targets share. A target takes arbitrary bytes, does with them what it is about, and
// compares every result with a plain second statement of the same rules:
//
//     namespace Trims {
//     void Fuzz(Input& input) {
//         TqString string(input.Text(32).c_str());
//         string.TrimLeadingWS();
//         MUST(TakeReports() == 0);
//         Tell(string.data);
//     }
//     const Target target("trims", Fuzz);
//     }
//
// Where the rules are broken the program ends. What a target tells is the outcome of the input: it
// is the same on each machine, whatever its byte order and the width of its words.

/// Ends the program with the place and the words of what does not hold.
#define MUST(holds) ((holds) ? (void)0 : Broken(__FILE__, __LINE__, #holds))
[[noreturn]] void Broken(const char* file, int line, const char* rule);

/// The bytes of one input, taken from the front. Behind the end there are zeros.
class Input {
public:
    Input(const unsigned char* bytes, std::size_t count) : at(bytes), end(bytes + count) {}

    bool IsEmpty() const { return at == end; }
    unsigned int Byte() { return at == end ? 0 : *at++; }

    /// A number from 0 to `limit` - 1, of a `limit` up to 256.
    unsigned int Below(unsigned int limit) { return Byte() % limit; }

    /// Any number of 32 bits; now and then one that is worth a try.
    unsigned int Number();

    /// Up to `most` bytes, of a `most` up to 255.
    std::string Bytes(unsigned int most);

    /// The same without NULs: up to the first of them.
    std::string Text(unsigned int most) { return std::string(Bytes(most).c_str()); }

    /// All that is left.
    std::string Rest();

private:
    const unsigned char* at;
    const unsigned char* const end;
};

/// Adds to the outcome.
void Tell(unsigned int number);
void Tell(const std::string& bytes);

/// How many reports there were since the last time. Their sources are told.
unsigned int TakeReports();

/// One target of the program.
class Target {
public:
    Target(const char* itsName, void (*itsFunction)(Input&));

    /// Runs it with these bytes. Returns the outcome.
    std::uint64_t Run(const unsigned char* bytes, std::size_t count) const;

    const char* const name;
    const Target* const next;

    static const Target* first;

private:
    void (*const function)(Input&);
};

/// Takes what is printed while this lives.
class Printed {
public:
    Printed();
    ~Printed();

    Printed(const Printed&) = delete;
    Printed& operator=(const Printed&) = delete;

    /// What was printed since the last time, cut when it is long.
    static std::string Take();

private:
    std::FILE* const output;
    std::FILE* const errors;
};

/// A file of the given bytes, the same one each time.
const char* FileOf(const std::string& bytes);

#endif
