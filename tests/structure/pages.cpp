// Runs the programs of a page of docs/, named by its argument, each in a process of its own, since
// some change the state of theirs. In front of what each prints stands the line of the page on
// which it begins.

#include <arpa/inet.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <typeinfo>

#include "Tq.h"
#include "TqDownload.h"
#include "TqReportSentence.h"
#include "TqTftpText.h"

namespace {

void PrintReport(const char* file, int) {
    printf("report: %s\n", file);
}

struct Program {
    const char* page;
    int line;
    void (*run)();
};

#include "pages_programs.h"

[[noreturn]] void RunHere(const Program& program) {
    TqRegisterAssertCb(PrintReport);
    program.run();
    exit(0);
}

bool Run(const Program& program) {
    printf("line %d:\n", program.line);
    fflush(stdout);
    const pid_t child = fork();
    if (child == 0) RunHere(program);
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || WIFSIGNALED(status)) return false;
    if (status != 0) printf("exit status %d\n", WEXITSTATUS(status));
    return true;
}

}  // namespace

int main(int, char** arguments) {
    for (const Program& program : programs) {
        if (strcmp(program.page, arguments[1]) == 0 && !Run(program)) return 1;
    }
    return 0;
}
