#ifndef DUTY_H
#define DUTY_H

#include <functional>
#include <string>
#include <vector>

/// Does a duty so many times.
using Work = std::function<void(unsigned int times)>;

/// A duty as one library does it. Every library that registers under the same duty does the same
/// with the same data, so that their times and instructions compare.
struct Duty {
    const char* name;
    const char* who;
    /// Makes all that the work needs, for data of this size, so that only the work is measured. An
    /// empty function says that the library cannot do it at this size.
    Work (*prepare)(unsigned int size);
};

/// All that are linked into the program.
std::vector<Duty>& Duties();

/// Those of one duty, this library first.
std::vector<Duty> ContestantsOf(const std::string& name);

struct RegisterDuty {
    RegisterDuty(const char* name, const char* who, Work (*prepare)(unsigned int size)) {
        Duties().push_back({name, who, prepare});
    }
};

/// The name of this library among the contestants.
extern const char ownName[];

/// And of what does only what is stated of this library's storage and calls, and nothing else: the
/// least that a duty takes here.
extern const char floorName[];

/// What a program is asked to measure, as it stands in its arguments: "DUTY:SIZE".
struct Request {
    std::string duty;
    unsigned int size;
};
Request ParseRequest(const std::string& text);

/// Makes the compiler believe that the value is looked at, and everything else too.
template <class T>
inline void Keep(const T& value) {
    asm volatile("" : : "r"(&value) : "memory");
}

/// The pointer, of which the compiler no longer knows where it leads.
template <class T>
inline T* Opaque(T* pointer) {
    asm volatile("" : "+r"(pointer));
    return pointer;
}

/// A text of so many letters, the same in each run.
std::string Letters(unsigned int length);

/// Lines of a table of interfaces, the same in each run.
std::string Lines(unsigned int count);

/// Names of classes.
std::vector<std::string> ClassNames(unsigned int count);

/// Texts in random order, the same in each run.
std::vector<std::string> RandomTexts(unsigned int count);

/// An identifier of so many numbers, and its text.
std::vector<unsigned long> Numbers(unsigned int count);
std::string IdentifierText(unsigned int count);

/// The number that the work with texts of numbers starts with.
const int firstNumber = 1234567;

#endif
