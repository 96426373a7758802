#ifndef OPTIONS_H
#define OPTIONS_H

#include <string>

/// What the command line says.
struct Options {
    std::string mode = "octet";
    std::string output;
    std::string server;
    std::string file;
    unsigned int timeout = 30;
    unsigned int deadline = 0;  ///< 0: none
    bool isQuiet = false;
};

/// Ends the program when the command line is wrong, or asks for help or the version.
Options ParseArguments(int argc, char** argv);

#endif
