#ifndef PROGRAM_H
#define PROGRAM_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Child.h"

/// A program that a test runs, for whatever target it was built. Its standard input is empty; its
/// two outputs are pipes or one pseudo-terminal, which also is its controlling terminal.
class Program {
public:
    struct Settings {
        std::string directory = ".";  ///< the working directory
        bool hasTerminal = false;
        bool hasErrorPipe = false;              ///< standard error is a pipe even with a terminal
        std::function<void()> prepare = [] {};  ///< runs in the child before the program
    };

    /// How it ended and what it printed. A terminal's output is in `output`.
    struct Result {
        int status = -1;  ///< the exit status, or minus the number of the signal
        std::string output;
        std::string errors;
    };

    /// Whether there are pseudo-terminals here.
    static bool MayHaveTerminal();

    /// Throws when it cannot be started.
    Program(const std::vector<std::string>& words, const Settings& settings);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();

    pid_t Id() const;
    void Signal(int number) const;

    /// Types into the terminal.
    void Type(const std::string& text) const;

    /// Waits for its end. One that does not end in time has status -9 and is ended.
    Result Finish();

private:
    void Start(const std::vector<std::string>& words, const Settings& settings, int output,
               int errors);

    std::unique_ptr<Child> child;
    int outputs[2];  // the reading ends: standard output or the terminal, standard error
    bool hasTerminal;
};

/// Runs one and waits for its end.
Program::Result RunProgram(const std::vector<std::string>& words,
                           const Program::Settings& settings = Program::Settings());

/// The command line for a program that this project built: with the emulator in front where there
/// is one.
std::vector<std::string> Built(const std::string& program, const std::vector<std::string>& words);

#endif
