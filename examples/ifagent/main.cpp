// A small management agent: it reads the counters of the machine's network interfaces, sends them
// as items through a byte buffer as it would to a manager, and shows what arrived.

#include <errno.h>
#include <getopt.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

#include "TqClassRegistry.h"
#include "TqDevelopmentAssert.h"
#include "views/Json.h"
#include "views/Notifier.h"
#include "views/PassPersist.h"
#include "views/Report.h"
#include "views/Watch.h"

namespace {

const char usage[] =
    "Usage: ifagent [OPTION]... [FILE]...\n"
    "Reads network interface counters, sends them through a byte buffer, and shows them and what\n"
    "has changed. Each FILE has the format of /proc/net/dev, which is the default.\n\n"
    "  -c, --config FILE  read what to do from FILE, lines such as \"poll On\"\n"
    "  -t, --tftp SERVER FILE\n"
    "                     fetch that file from a TFTP server instead\n"
    "  -n, --count N      poll N times; FILEs are read in turn, the last one again and again\n"
    "                     (default: each FILE once)\n"
    "  -1, --once         poll once, the same as --count 1\n"
    "  -j, --json         print a line of JSON for each poll, with its changes, and nothing else\n"
    "  -w, --watch        show bytes a second, drawn anew with each poll, until Ctrl-C; piped, "
    "lines\n"
    "      --no-color     without colours; NO_COLOR in the environment says the same\n"
    "  -p, --pass-persist serve the table to an SNMP daemon that has started this program\n"
    "  -i, --items        show the bytes that are sent\n"
    "  -o, --oids         show each value with its object identifier\n"
    "  -m, --monitors     show what classes of monitors there are, and exit\n"
    "  -h, --help         show this, and exit\n\n"
    "A poll's time is UTC; beside it stands what the library makes of it, and how to read that.\n\n"
    "Exit status, which stays as it is for scripts: 0 when all went well; 1 when something was\n"
    "complained of on standard error, and the rest done all the same; 2 when the command line is\n"
    "wrong, and nothing was done.\n";

const option longOptions[] = {
    {"config", required_argument, nullptr, 'c'},
    {"tftp", required_argument, nullptr, 't'},
    {"count", required_argument, nullptr, 'n'},
    {"items", no_argument, nullptr, 'i'},
    {"oids", no_argument, nullptr, 'o'},
    {"monitors", no_argument, nullptr, 'm'},
    {"once", no_argument, nullptr, '1'},
    {"json", no_argument, nullptr, 'j'},
    {"pass-persist", no_argument, nullptr, 'p'},
    {"watch", no_argument, nullptr, 'w'},
    {"no-color", no_argument, nullptr, 'C'},
    {"help", no_argument, nullptr, 'h'},
    {nullptr, 0, nullptr, 0},
};

const char defaults[] = "monitor TrafficMonitor\nmonitor FaultMonitor\nmonitor LinkMonitor\n";
const int mostPolls = 999999999;

enum ExitStatus { exitOk = 0, exitComplaints = 1, exitUsage = 2 };

struct CommandLine {
    const char* configPath;
    const char* tftpServer;  // where that is, if not here
    int pollCount;           // 0 until said
    char mode;               // the letter of the option that says what to do; 0 for the report
    bool colour;
};

// Takes over one option. False after a complaint.
bool TakeOption(int letter, int argc, char** argv, CommandLine& commandLine, Report& report) {
    if (letter == 'i') report.showItems = true;
    if (letter == 'o') report.showOids = true;
    if (strchr("mhjpw", letter) != nullptr) commandLine.mode = static_cast<char>(letter);
    if (letter == 'C') commandLine.colour = false;
    if (letter == '1') commandLine.pollCount = 1;
    if (letter == 'c') {
        commandLine.configPath = optarg;
        commandLine.tftpServer = nullptr;
    }
    if (letter == 't') {
        // The option has two arguments, of which getopt knows one.
        if (optind >= argc) return Complain("--tftp needs a server and a file");
        commandLine.tftpServer = optarg;
        commandLine.configPath = argv[optind++];
    }
    if (letter == 'n') {
        commandLine.pollCount = WholeNumber(optarg, mostPolls);
        if (commandLine.pollCount <= 0) return Complain("\"%s\" is not a number of polls", optarg);
    }
    return letter != '?';
}

// False, after a complaint, when there is none.
bool ReadConfiguration(const CommandLine& commandLine, Configuration& configuration) {
    const char* path = commandLine.configPath;
    const char* server = commandLine.tftpServer;
    LineReader reader(path);
    if (path == nullptr) {
        reader.text.Append(reinterpret_cast<const unsigned char*>(defaults), sizeof defaults - 1);
    } else if (server == nullptr) {
        if (!reader.ReadFile()) return false;
    } else {
        if (!reader.Fetch(server)) return false;
        if (commandLine.mode == 0) {
            printf("configuration: %s, %u bytes from %s\n\n", path, reader.text.length, server);
        }
    }
    configuration.Read(reader);
    return true;
}

void Run(const CommandLine& commandLine, const Sources& sources, Report& report) {
    Json json;
    PassPersist service;
    Watch watch(commandLine.colour);
    View* view = &report;
    if (commandLine.mode == 'j') view = &json;
    if (commandLine.mode == 'p') view = &service;
    if (commandLine.mode == 'w') view = &watch;
    Agent agent(*view);
    if (!ReadConfiguration(commandLine, agent.configuration)) return;
    if (!agent.configuration.poll) {
        if (commandLine.mode == 0) printf("poll is off: nothing to do\n");
        return;
    }
    Notifier notifier(agent.configuration);
    if (agent.configuration.manager.IsNotEmpty()) agent.Listen(notifier);
    if (commandLine.mode == 'p') return service.Serve(agent, sources);
    int pollCount = std::max(sources.count, 1);
    if (commandLine.mode == 'w' && sources.count == 0) pollCount = mostPolls;
    if (commandLine.pollCount > 0) pollCount = commandLine.pollCount;
    for (int i = 0; i < pollCount; ++i) {
        if (i > 0 && !view->Wait(static_cast<unsigned int>(int(agent.configuration.interval))))
            break;
        agent.PollOnce(sources.Path(i));
    }
    agent.Finish();
}

}  // namespace

int main(int argc, char** argv) {
    setvbuf(stdout, nullptr, _IOLBF, 0);  // in step with the complaints, also in a pipe
    TqDevelopmentAssert::Install();
    RegisterMonitorClasses();

    static char programName[] = "ifagent";
    argv[0] = programName;  // for the complaints of getopt
    Report report;
    CommandLine commandLine = CommandLine();
    const char* noColour = getenv("NO_COLOR");
    commandLine.colour = noColour == nullptr || *noColour == '\0';
    int letter = 0;
    while ((letter = getopt_long(argc, argv, "c:t:n:1ijpwomh", longOptions, nullptr)) != -1) {
        if (TakeOption(letter, argc, argv, commandLine, report)) continue;
        fprintf(stderr, "Try \"ifagent --help\".\n");
        return exitUsage;
    }
    if (commandLine.mode == 'h') {
        fputs(usage, stdout);
    } else if (commandLine.mode == 'm') {
        TqClassRegistry::GetRegistry()->Dump();
    } else {
        Run(commandLine, {argv + optind, argc - optind}, report);
    }
    if (fflush(stdout) != 0 || ferror(stdout) != 0) Complain("output: %s", strerror(errno));
    return complaintCount + TqDevelopmentAssert::Count() == 0 ? exitOk : exitComplaints;
}
