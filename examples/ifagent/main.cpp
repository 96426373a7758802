// A small management agent: it reads the counters of the machine's network interfaces, sends them
// as items through a byte buffer as it would to a manager, and shows what arrived.

#include <getopt.h>
#include <stdio.h>
#include <unistd.h>

#include <algorithm>

#include "Agent.h"
#include "DevelopmentAssert.h"
#include "Download.h"
#include "TqClassRegistry.h"

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
    "  -i, --items        show the bytes that are sent\n"
    "  -o, --oids         show each value with its object identifier\n"
    "  -m, --monitors     show what classes of monitors there are, and exit\n"
    "  -h, --help         show this, and exit\n\n"
    "A poll's time is UTC; beside it stands what the library makes of it, and how to read that.\n\n"
    "Exit status: 0 when all went well; 1 when something was complained of, and the rest done all\n"
    "the same; 2 when the command line is wrong.\n";

const option longOptions[] = {
    {"config", required_argument, nullptr, 'c'}, {"tftp", required_argument, nullptr, 't'},
    {"count", required_argument, nullptr, 'n'},  {"items", no_argument, nullptr, 'i'},
    {"oids", no_argument, nullptr, 'o'},         {"monitors", no_argument, nullptr, 'm'},
    {"help", no_argument, nullptr, 'h'},         {nullptr, 0, nullptr, 0},
};

const char defaults[] = "monitor TrafficMonitor\nmonitor FaultMonitor\nmonitor LinkMonitor\n";
const int mostPolls = 999999999;

enum ExitStatus { exitOk = 0, exitComplaints = 1, exitUsage = 2 };

struct CommandLine {
    const char* configPath;
    const char* tftpServer;  // where that is, if not here
    int pollCount;           // 0 until said
    bool showClasses;
    bool showHelp;
};

// Takes over one option. False after a complaint.
bool TakeOption(int letter, int argc, char** argv, CommandLine& commandLine, Agent& agent) {
    if (letter == 'i') agent.showItems = true;
    if (letter == 'o') agent.showOids = true;
    if (letter == 'm') commandLine.showClasses = true;
    if (letter == 'h') commandLine.showHelp = true;
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
    TqString complaint;
    if (path == nullptr) {
        reader.text.Append(reinterpret_cast<const unsigned char*>(defaults), sizeof defaults - 1);
    } else if (server == nullptr) {
        if (!reader.ReadFile()) return false;
    } else {
        if (!Download(server, path, reader.text, complaint)) return Complain("%s", complaint.data);
        printf("configuration: %s, %u bytes from %s\n\n", path, reader.text.length, server);
    }
    configuration.Read(reader);
    return true;
}

void Run(const CommandLine& commandLine, Agent& agent, char** paths, int pathCount) {
    if (!ReadConfiguration(commandLine, agent.configuration)) return;
    if (!agent.configuration.poll) {
        printf("poll is off: nothing to do\n");
        return;
    }
    const int pollCount =
        commandLine.pollCount > 0 ? commandLine.pollCount : std::max(pathCount, 1);
    for (int i = 0; i < pollCount; ++i) {
        if (i > 0) sleep(static_cast<unsigned int>(agent.configuration.interval.value));
        agent.PollOnce(pathCount > 0 ? paths[std::min(i, pathCount - 1)] : procNetDev);
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
    Agent agent;
    CommandLine commandLine = CommandLine();
    int letter = 0;
    while ((letter = getopt_long(argc, argv, "c:t:n:iomh", longOptions, nullptr)) != -1) {
        if (TakeOption(letter, argc, argv, commandLine, agent)) continue;
        fprintf(stderr, "Try \"ifagent --help\".\n");
        return exitUsage;
    }
    if (commandLine.showHelp) {
        fputs(usage, stdout);
    } else if (commandLine.showClasses) {
        TqClassRegistry::GetRegistry()->Dump();
    } else {
        Run(commandLine, agent, argv + optind, argc - optind);
    }
    return complaintCount + DevelopmentAssertCount() == 0 ? exitOk : exitComplaints;
}
