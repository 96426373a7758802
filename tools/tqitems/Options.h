#ifndef OPTIONS_H
#define OPTIONS_H

#include <string>

#include "Items.h"

/// The exit statuses; the man page lists them.
enum ExitStatus {
    exitComplete = 0,
    exitFailure = 1,
    exitUsage = 2,
    exitCorrupt = 3,
    exitDiffers = 4,
};

/// What the command line says.
struct Options {
    bool encodes = false;
    bool isJson = false;
    TypeList types;
    std::string file = "-";
};

/// Ends the program when the command line is wrong, or asks for help or the version.
Options ParseArguments(int argc, char** argv);

#endif
