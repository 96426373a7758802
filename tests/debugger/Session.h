#ifndef SESSION_H
#define SESSION_H

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

/// What a debugger is asked at each stop and what it has to say, in files of its own for each.
class Session {
public:
    Session(const char* written, void (*stop)()) : folder(written), lookHere(stop) {}

    /// What follows are names that this function knows.
    void In(const std::string& function) {
        Lines("(nothing of it)", "frame function (anonymous namespace)::" + function, {});
    }

    /// The debugger shows the value of `expression` as `text`.
    void Value(const std::string& expression, const std::string& text) {
        Limited("200", expression, text);
    }

    /// The same while it shows no more than `most` elements.
    void Limited(const std::string& most, const std::string& expression, const std::string& text) {
        Command("with print elements " + most + " -- output " + expression, {text});
    }

    /// The debugger's answer to `command`.
    void Command(const std::string& command, const std::vector<std::string>& lines) {
        Lines("", command, lines);
    }

    /// Of the debugger's answer to `command` the lines that have `wanted` in them.
    void Lines(const char* wanted, const std::string& command,
               const std::vector<std::string>& lines) {
        if (!asked.is_open()) Begin();
        asked << wanted << "\t" << command << "\n";
        expected << "> " << command << "\n";
        for (const std::string& line : lines) expected << "| " << line << "\n";
    }

    /// Lets the debugger have a look.
    void Stop() {
        asked.close();
        expected.close();
        lookHere();
        ++number;
    }

private:
    void Begin() {
        asked.open(folder + "/asked." + std::to_string(number));
        expected.open(folder + "/expected." + std::to_string(number));
    }

    std::string folder;
    void (*lookHere)();
    int number = 1;
    std::ofstream asked;
    std::ofstream expected;
};

/// As the debugger writes it.
inline std::string Address(const void* pointer) {
    char text[32];
    std::snprintf(text, sizeof text, "%p", pointer);
    return text;
}

#endif
