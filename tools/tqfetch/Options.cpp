#include "Options.h"

#include <getopt.h>
#include <strings.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "Message.h"
#include "Outcome.h"

namespace {

const char usage[] =
    "usage: tqfetch [-m octet|netascii] [-o FILE|-] [-t SECONDS] [-T SECONDS] [-q]\n"
    "               SERVER FILE\n";

const char help[] =
    "Fetches FILE from the TFTP server SERVER, a host name or an IPv4 address.\n"
    "\n"
    "  -m, --mode=octet|netascii  how the file comes: as it is (the default), or as\n"
    "                             text whose lines are ended as on this system\n"
    "  -o, --output=FILE          where it goes: another file than the one of the same\n"
    "                             name in this directory, or - for standard output\n"
    "  -t, --timeout=SECONDS      give up after so long without a new block; 30\n"
    "  -T, --deadline=SECONDS     give up when all is not done after so long\n"
    "  -q, --quiet                show no progress on a terminal\n"
    "  -h, --help                 print this\n"
    "  -V, --version              print the version\n";

const char version[] = "tqfetch 1.0.0\n";

const unsigned int longestTime = 24 * 60 * 60;

[[noreturn]] void Misused() {
    std::fputs(usage, stderr);
    std::fputs("Try 'tqfetch --help'.\n", stderr);
    std::exit(exitUsage);
}

[[noreturn]] void Misused(const std::string& word, const std::string& problem) {
    std::fprintf(stderr, "tqfetch: %s: %s\n", Shown(word).c_str(), problem.c_str());
    std::exit(exitUsage);
}

[[noreturn]] void PrintAndEnd(const std::string& text) {
    std::fputs(text.c_str(), stdout);
    std::exit(std::fflush(stdout) == 0 ? exitComplete : exitLocalFailure);
}

unsigned int ParseTime(const char* text) {
    char* end = nullptr;
    errno = 0;
    const long seconds = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || errno != 0 || seconds < 1 ||
        seconds > static_cast<long>(longestTime)) {
        Misused(text, "not a number of seconds from 1 to " + std::to_string(longestTime));
    }
    return static_cast<unsigned int>(seconds);
}

std::string ParseMode(const char* text) {
    for (const char* mode : {"octet", "netascii"}) {
        if (strcasecmp(text, mode) == 0) return mode;
    }
    Misused(text, "no mode; there are octet and netascii");
}

std::string ParseOutput(const std::string& text) {
    if (text.empty()) Misused("-o", "the name of a file is missing");
    return text;
}

// What stands behind the last slash.
std::string OwnNameFor(const std::string& file) {
    std::string name = file.substr(file.rfind('/') + 1);
    if (name.empty() || name == "." || name == ".." || name == "-") {
        Misused(file, "no name for a file here; use -o");
    }
    return name;
}

}  // namespace

Options ParseArguments(int argc, char** argv) {
    static const option longOptions[] = {
        {"mode", required_argument, nullptr, 'm'},    {"output", required_argument, nullptr, 'o'},
        {"timeout", required_argument, nullptr, 't'}, {"deadline", required_argument, nullptr, 'T'},
        {"quiet", no_argument, nullptr, 'q'},         {"help", no_argument, nullptr, 'h'},
        {"version", no_argument, nullptr, 'V'},       {nullptr, 0, nullptr, 0}};
    Options options;
    int letter;
    while ((letter = getopt_long(argc, argv, "m:o:t:T:qhV", longOptions, nullptr)) != -1) {
        switch (letter) {
            case 'm':
                options.mode = ParseMode(optarg);
                break;
            case 'o':
                options.output = ParseOutput(optarg);
                break;
            case 't':
                options.timeout = ParseTime(optarg);
                break;
            case 'T':
                options.deadline = ParseTime(optarg);
                break;
            case 'q':
                options.isQuiet = true;
                break;
            case 'h':
                PrintAndEnd(std::string(usage) + help);
            case 'V':
                PrintAndEnd(version);
            default:
                Misused();
        }
    }
    if (argc - optind != 2) Misused();
    options.server = argv[optind];
    options.file = argv[optind + 1];
    if (options.output.empty()) options.output = OwnNameFor(options.file);
    return options;
}
