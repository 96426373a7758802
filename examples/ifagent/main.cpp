// A small management agent: it reads the counters of the machine's network interfaces, sends them
// as items through a byte buffer as it would to a manager, and shows what arrived.

#include <getopt.h>
#include <stdio.h>

#include "Complaints.h"
#include "Configuration.h"
#include "Poll.h"
#include "ProcNetDev.h"
#include "Table.h"
#include "TqBuffer.h"
#include "TqHooks.h"

namespace {

const char usage[] =
    "Usage: ifagent [OPTION]... [FILE]\n"
    "Reads network interface counters, sends them through a byte buffer and shows them.\n"
    "FILE has the format of /proc/net/dev, which is the default.\n"
    "\n"
    "  -c, --config FILE  read what to do from FILE, lines such as \"poll On\"\n"
    "  -i, --items        show the bytes that are sent\n"
    "  -h, --help         show this and exit\n"
    "\n"
    "Exit status: 0 when all went well; 1 when something was complained of, and the rest done all\n"
    "the same; 2 when the command line is wrong.\n";

const option longOptions[] = {
    {"config", required_argument, nullptr, 'c'},
    {"items", no_argument, nullptr, 'i'},
    {"help", no_argument, nullptr, 'h'},
    {nullptr, 0, nullptr, 0},
};

enum ExitStatus { exitOk = 0, exitComplaints = 1, exitUsage = 2 };

struct CommandLine {
    const char* configPath;
    const char* devPath;
    bool showItems;
    bool showHelp;
};

// False after a complaint.
bool ParseCommandLine(int argc, char** argv, CommandLine& commandLine) {
    int letter;
    while ((letter = getopt_long(argc, argv, "c:ih", longOptions, nullptr)) != -1) {
        switch (letter) {
            case 'c':
                commandLine.configPath = optarg;
                break;
            case 'i':
                commandLine.showItems = true;
                break;
            case 'h':
                commandLine.showHelp = true;
                break;
            default:
                return false;
        }
    }
    if (optind < argc) commandLine.devPath = argv[optind++];
    if (optind == argc) return true;
    Complain("one file at a time, not \"%s\" too", argv[optind]);
    return false;
}

// The library's reports are faults of this program: say so and go on.
void PrintReport(const char* file, int line) {
    Complain("check failed in %s, line %d", file, line);
}

void Run(const CommandLine& commandLine) {
    Configuration configuration;
    if (commandLine.configPath != nullptr && !configuration.Read(commandLine.configPath)) return;
    if (!configuration.poll) {
        printf("poll is off: nothing to do\n");
        return;
    }

    Poll sent;
    sent.enabled = configuration.poll;
    if (!sent.Read(commandLine.devPath)) return;
    PrintTable(sent);

    TqBuffer buffer;
    sent.Send(buffer);
    if (commandLine.showItems) PrintItems(buffer);

    Poll received;
    received.Receive(buffer);
    ComparePolls(sent, received, buffer.length);
}

}  // namespace

int main(int argc, char** argv) {
    setvbuf(stdout, nullptr, _IOLBF, 0);  // in step with the complaints, also in a pipe
    TqRegisterAssertCb(PrintReport);

    static char programName[] = "ifagent";
    argv[0] = programName;  // for the complaints of getopt
    CommandLine commandLine = {nullptr, procNetDev, false, false};
    if (!ParseCommandLine(argc, argv, commandLine)) {
        fprintf(stderr, "Try \"ifagent --help\".\n");
        return exitUsage;
    }
    if (commandLine.showHelp) {
        fputs(usage, stdout);
        return exitOk;
    }
    Run(commandLine);
    return ComplaintCount() == 0 ? exitOk : exitComplaints;
}
