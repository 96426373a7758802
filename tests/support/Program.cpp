#include "Program.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>
#include <system_error>

#include "Scale.h"
#include "UdpSocket.h"

namespace {

const int longest = 120000 * Slowness();  // milliseconds

void Check(bool isFine, const char* what) {
    if (!isFine) throw std::system_error(errno, std::generic_category(), what);
}

void MakePipe(int& reading, int& writing) {
    int ends[2];
    Check(pipe2(ends, O_CLOEXEC) == 0, "pipe");
    reading = ends[0];
    writing = ends[1];
}

bool MakeTerminal(int& master, int& terminal) {
    master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0) return false;
    terminal = -1;
    if (grantpt(master) == 0 && unlockpt(master) == 0) {
        terminal = open(ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    }
    if (terminal < 0) close(master);
    return terminal >= 0;
}

// Appends what there is to read. Whether there may be more.
bool ReadMore(int descriptor, std::string& text) {
    char bytes[65536];
    const ssize_t count = read(descriptor, bytes, sizeof bytes);
    if (count > 0) text.append(bytes, static_cast<std::size_t>(count));
    return count > 0 || (count < 0 && errno == EINTR);
}

}  // namespace

Program::Program(const std::vector<std::string>& words, const Settings& settings)
    : outputs{-1, -1}, hasTerminal(settings.hasTerminal) {
    int output = -1;
    int errors = -1;
    if (hasTerminal) {
        Check(MakeTerminal(outputs[0], output), "pseudo-terminal");
    } else {
        MakePipe(outputs[0], output);
    }
    if (!hasTerminal || settings.hasErrorPipe) MakePipe(outputs[1], errors);
    Start(words, settings, output, errors < 0 ? output : errors);
    close(output);
    if (errors >= 0) close(errors);
}

bool Program::MayHaveTerminal() {
    int master;
    int terminal;
    if (!MakeTerminal(master, terminal)) return false;
    close(terminal);
    close(master);
    return true;
}

Program::~Program() {
    child.reset();
    for (const int descriptor : outputs) {
        if (descriptor >= 0) close(descriptor);
    }
}

void Program::Start(const std::vector<std::string>& words, const Settings& settings, int output,
                    int errors) {
    std::vector<std::string> copies = words;
    std::vector<char*> arguments;
    for (std::string& word : copies) arguments.push_back(&word[0]);
    arguments.push_back(nullptr);
    child.reset(new Child([&] {
        setsid();
        if (hasTerminal) ioctl(output, TIOCSCTTY, 0);
        const int input = open("/dev/null", O_RDONLY);
        dup2(input, STDIN_FILENO);
        dup2(output, STDOUT_FILENO);
        dup2(errors, STDERR_FILENO);
        if (input > STDERR_FILENO) close(input);
        if (chdir(settings.directory.c_str()) != 0) _exit(126);
        settings.prepare();
        execvp(arguments[0], arguments.data());
        dprintf(STDERR_FILENO, "%s: %s\n", arguments[0], strerror(errno));
        _exit(127);
    }));
}

pid_t Program::Id() const {
    return child->Id();
}

void Program::Signal(int number) const {
    kill(child->Id(), number);
}

void Program::Type(const std::string& text) const {
    Check(write(outputs[0], text.data(), text.size()) == static_cast<ssize_t>(text.size()),
          "pseudo-terminal");
}

Program::Result Program::Finish() {
    Result result;
    std::string* texts[] = {&result.output, &result.errors};
    const long long end = Now() + longest;
    pollfd waiting[] = {{outputs[0], POLLIN, 0}, {outputs[1], POLLIN, 0}};
    while ((waiting[0].fd >= 0 || waiting[1].fd >= 0) && Now() < end) {
        poll(waiting, 2, 1000);
        for (int i = 0; i < 2; ++i) {
            if (waiting[i].revents == 0) continue;
            if (!ReadMore(waiting[i].fd, *texts[i])) waiting[i].fd = -1;
            waiting[i].revents = 0;
        }
    }
    int status = 0;
    if (!child->Wait(static_cast<int>(std::max(0LL, end - Now())), status)) {
        result.status = -SIGKILL;
    } else if (WIFEXITED(status)) {
        result.status = WEXITSTATUS(status);
    } else {
        result.status = -WTERMSIG(status);
    }
    return result;
}

Program::Result RunProgram(const std::vector<std::string>& words,
                           const Program::Settings& settings) {
    return Program(words, settings).Finish();
}

std::vector<std::string> Built(const std::string& program, const std::vector<std::string>& words) {
    std::istringstream emulator(TQ_EMULATOR);
    std::vector<std::string> command;
    for (std::string word; emulator >> word;) command.push_back(word);
    command.push_back(program);
    command.insert(command.end(), words.begin(), words.end());
    return command;
}
