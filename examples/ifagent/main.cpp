// A small management agent: it reads the counters of the machine's network interfaces, sends them
// as items through a byte buffer as it would to a manager, and shows what arrived.

#include <getopt.h>
#include <stdio.h>
#include <unistd.h>

#include "Agent.h"
#include "Complaints.h"
#include "Configuration.h"
#include "DevelopmentAssert.h"
#include "Monitor.h"
#include "ProcNetDev.h"
#include "TqClassRegistry.h"
#include "TqNumber.h"

namespace {

const char usage[] =
    "Usage: ifagent [OPTION]... [FILE]...\n"
    "Reads network interface counters, sends them through a byte buffer, and shows them and what\n"
    "has changed. Each FILE has the format of /proc/net/dev, which is the default.\n"
    "\n"
    "  -c, --config FILE  read what to do from FILE, lines such as \"poll On\"\n"
    "  -t, --tftp SERVER FILE\n"
    "                     fetch that file from a TFTP server instead\n"
    "  -n, --count N      poll N times; FILEs are read in turn, the last one again and again\n"
    "                     (default: each FILE once)\n"
    "  -i, --items        show the bytes that are sent\n"
    "  -o, --oids         show each value with its object identifier\n"
    "  -m, --monitors     show what classes of monitors there are, and exit\n"
    "  -h, --help         show this, and exit\n"
    "\n"
    "A poll's time is UTC; beside it stands what the library makes of it, and how to read that.\n"
    "\n"
    "Exit status: 0 when all went well; 1 when something was complained of, and the rest done all\n"
    "the same; 2 when the command line is wrong.\n";

const option longOptions[] = {
    {"config", required_argument, nullptr, 'c'}, {"tftp", required_argument, nullptr, 't'},
    {"count", required_argument, nullptr, 'n'},  {"items", no_argument, nullptr, 'i'},
    {"oids", no_argument, nullptr, 'o'},         {"monitors", no_argument, nullptr, 'm'},
    {"help", no_argument, nullptr, 'h'},         {nullptr, 0, nullptr, 0},
};

const int mostPolls = 999999999;

enum ExitStatus { exitOk = 0, exitComplaints = 1, exitUsage = 2 };

struct CommandLine {
    CommandLine();

    // The file of the `i`-th poll, from 0.
    const char* Path(int i) const;

    const char* configPath;
    const char* tftpServer;  // where that is, if not here
    char** paths;
    int pathCount;
    int pollCount;  // 0 until said
    Show show;
    bool showClasses;
    bool showHelp;
};

CommandLine::CommandLine()
    : configPath(nullptr),
      tftpServer(nullptr),
      paths(nullptr),
      pathCount(0),
      pollCount(0),
      show(),
      showClasses(false),
      showHelp(false) {}

const char* CommandLine::Path(int i) const {
    if (pathCount == 0) return procNetDev;
    return paths[i < pathCount ? i : pathCount - 1];
}

// False, after a complaint, when it is no number of polls.
bool ParseCount(const char* text, int& count) {
    TqNumber number;
    if (ParseWholeNumber(text, mostPolls, number) && number > 0) {
        count = number;
        return true;
    }
    Complain("\"%s\" is not a number of polls", text);
    return false;
}

// The option has two arguments, of which getopt knows one. False, after a complaint, when there is
// only that.
bool TakeTftp(int argc, char** argv, CommandLine& commandLine) {
    if (optind >= argc) {
        Complain("--tftp needs a server and a file");
        return false;
    }
    commandLine.tftpServer = optarg;
    commandLine.configPath = argv[optind++];
    return true;
}

// False after a complaint.
bool ParseCommandLine(int argc, char** argv, CommandLine& commandLine) {
    int letter = 0;
    while ((letter = getopt_long(argc, argv, "c:t:n:iomh", longOptions, nullptr)) != -1) {
        switch (letter) {
            case 'c':
                commandLine.configPath = optarg;
                commandLine.tftpServer = nullptr;
                break;
            case 't':
                if (!TakeTftp(argc, argv, commandLine)) return false;
                break;
            case 'n':
                if (!ParseCount(optarg, commandLine.pollCount)) return false;
                break;
            case 'i':
                commandLine.show.items = true;
                break;
            case 'o':
                commandLine.show.oids = true;
                break;
            case 'm':
                commandLine.showClasses = true;
                break;
            case 'h':
                commandLine.showHelp = true;
                break;
            default:
                return false;
        }
    }
    commandLine.paths = argv + optind;
    commandLine.pathCount = argc - optind;
    if (commandLine.pollCount == 0) {
        commandLine.pollCount = commandLine.pathCount > 0 ? commandLine.pathCount : 1;
    }
    return true;
}

// False, after a complaint, when there is none.
bool ReadConfiguration(const CommandLine& commandLine, Configuration& configuration) {
    if (commandLine.tftpServer != nullptr) {
        return configuration.Fetch(commandLine.tftpServer, commandLine.configPath);
    }
    if (commandLine.configPath != nullptr) return configuration.Read(commandLine.configPath);
    configuration.SetDefaults();
    return true;
}

void Run(const CommandLine& commandLine) {
    Configuration configuration;
    if (!ReadConfiguration(commandLine, configuration)) return;
    if (!configuration.poll) {
        printf("poll is off: nothing to do\n");
        return;
    }

    Agent agent(configuration);
    for (int i = 0; i < commandLine.pollCount; ++i) {
        if (i > 0) sleep(static_cast<unsigned int>(int(configuration.interval)));
        agent.PollOnce(commandLine.Path(i), commandLine.show);
    }
    agent.PrintSummary();
}

}  // namespace

int main(int argc, char** argv) {
    setvbuf(stdout, nullptr, _IOLBF, 0);  // in step with the complaints, also in a pipe
    InstallDevelopmentAssert();
    RegisterMonitorClasses();

    static char programName[] = "ifagent";
    argv[0] = programName;  // for the complaints of getopt
    CommandLine commandLine;
    if (!ParseCommandLine(argc, argv, commandLine)) {
        fprintf(stderr, "Try \"ifagent --help\".\n");
        return exitUsage;
    }
    if (commandLine.showHelp) {
        fputs(usage, stdout);
        return exitOk;
    }
    if (commandLine.showClasses) {
        TqClassRegistry::GetRegistry()->Dump();
        return exitOk;
    }
    Run(commandLine);
    return ComplaintCount() + DevelopmentAssertCount() == 0 ? exitOk : exitComplaints;
}
