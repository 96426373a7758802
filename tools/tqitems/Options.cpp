#include "Options.h"

#include <getopt.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "Message.h"

namespace {

const char usage[] = "usage: tqitems [-e] [-j] [-t TYPE,...] [FILE|-]\n";

const char help[] =
    "Shows the items of an encoded buffer: FILE, or standard input.\n"
    "\n"
    "  -e, --encode         the other way: encode each line into an item\n"
    "  -t, --types=TYPE,... what the items are, in order; begins anew at its end:\n"
    "                       string, number, counter, boolean, float, buffer\n"
    "  -j, --json           print JSON; with -e, read it\n"
    "  -h, --help           print this\n"
    "  -V, --version        print the version\n";

const char version[] = "tqitems 1.0.0\n";

[[noreturn]] void Misused() {
    std::fputs(usage, stderr);
    std::fputs("Try 'tqitems --help'.\n", stderr);
    std::exit(exitUsage);
}

[[noreturn]] void Misused(const std::string& word, const std::string& problem) {
    std::fprintf(stderr, "tqitems: %s: %s\n", Shown(word).c_str(), problem.c_str());
    std::exit(exitUsage);
}

[[noreturn]] void PrintAndEnd(const std::string& text) {
    std::fputs(text.c_str(), stdout);
    std::exit(std::fflush(stdout) == 0 ? exitComplete : exitFailure);
}

TypeList ParseTypes(const std::string& text) {
    TypeList types;
    std::istringstream names(text + ",");
    for (std::string name; std::getline(names, name, ',');) {
        types.push_back(FindType(name));
        if (types.back() == nullptr) Misused(name, "no type; there are " + TypeNames());
    }
    return types;
}

}  // namespace

Options ParseArguments(int argc, char** argv) {
    static const option longOptions[] = {
        {"encode", no_argument, nullptr, 'e'},      {"json", no_argument, nullptr, 'j'},
        {"types", required_argument, nullptr, 't'}, {"help", no_argument, nullptr, 'h'},
        {"version", no_argument, nullptr, 'V'},     {nullptr, 0, nullptr, 0}};
    Options options;
    int letter;
    while ((letter = getopt_long(argc, argv, "ejt:hV", longOptions, nullptr)) != -1) {
        switch (letter) {
            case 'e':
                options.encodes = true;
                break;
            case 'j':
                options.isJson = true;
                break;
            case 't':
                options.types = ParseTypes(optarg);
                break;
            case 'h':
                PrintAndEnd(std::string(usage) + help);
            case 'V':
                PrintAndEnd(version);
            default:
                Misused();
        }
    }
    if (argc - optind > 1) Misused();
    if (options.encodes && options.isJson && !options.types.empty()) {
        Misused("-t", "JSON says itself what its items are");
    }
    if (optind < argc) options.file = argv[optind];
    return options;
}
