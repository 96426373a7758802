#include "Watch.h"

#include <math.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>

#include "TqClassInfo.h"

namespace {

const size_t historyLength = 30;
const unsigned int longestWait = 3600;
const size_t mostFired = 5;
const unsigned int smallWidth = 50;  // of a terminal that has no room for state and history
const double noRate = -1;            // before the second poll
const char levels[] = "_.-:=+*#@";   // of the bar, from nothing to the most

const char red[] = "\033[31m";
const char green[] = "\033[32m";
const char yellow[] = "\033[33m";
const char reverse[] = "\033[7m";

volatile sig_atomic_t isOver = 0;
termios savedMode;
bool hasSavedMode = false;

void OnSignal(int number) {
    if (number != SIGWINCH) isOver = 1;
}

const int signals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGWINCH};

// They are taken in `Wait` alone: a poll or a screen is finished before.
void TakeSignals() {
    struct sigaction action;
    memset(&action, 0, sizeof action);
    action.sa_handler = OnSignal;
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int number : signals) {
        sigaction(number, &action, nullptr);
        sigaddset(&blocked, number);
    }
    sigprocmask(SIG_BLOCK, &blocked, nullptr);
}

long long Milliseconds() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

const char* ColourOf(const char* state) {
    if (strcmp(state, "up") == 0) return green;
    return strcmp(state, "down") == 0 ? red : "";
}

TqString RateText(double rate) {
    if (rate < 0) return TqString("-");
    const char* unit = " kMGT";
    for (; rate >= 9999.5 && unit[1] != '\0'; ++unit) rate /= 1000;
    char text[32];
    snprintf(text, sizeof text, "%.0f%s", rate, *unit == ' ' ? "" : std::string(1, *unit).c_str());
    return TqString(text);
}

TqString Cut(const TqString& text, unsigned int width) {
    return TqString(text.data, std::min(text.length, width));
}

// The last `width` of a history, its highest value as high as can be.
TqString Bar(const std::vector<double>& history, size_t width) {
    const size_t shown = std::min(width, history.size());
    double most = 0;
    for (const double value : history) most = std::max(most, value);
    TqString bar;
    for (size_t i = history.size() - shown; i < history.size(); ++i) {
        const double part = most > 0 ? history[i] / most : 0;
        bar.AppendChar(levels[lround(part * (sizeof levels - 2))]);
    }
    return bar;
}

}  // namespace

Watch::~Watch() {
    if (!isScreen) return;
    fputs("\033[?25h\033[?1049l", stdout);  // the cursor, and the screen that was there before
    fflush(stdout);
    if (hasSavedMode) tcsetattr(STDIN_FILENO, TCSAFLUSH, &savedMode);
}

void Watch::Open() {
    isOpen = true;
    isScreen = isatty(STDOUT_FILENO) != 0;
    TakeSignals();
    if (!isScreen) return;
    fputs("\033[?1049h\033[?25l", stdout);
    hasSavedMode = tcgetattr(STDIN_FILENO, &savedMode) == 0;
    if (!hasSavedMode) return;
    termios silent = savedMode;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
}

// Captured files are taken for polls at the configured interval.
double Watch::SecondsSince(const char* path, const Configuration& configuration) {
    const long long now = Milliseconds();
    const double measured = static_cast<double>(std::max(now - lastPoll, 1LL)) / 1000;
    lastPoll = now;
    return strcmp(path, procNetDev) == 0 ? measured : std::max(int(configuration.interval), 1);
}

void Watch::BeginPoll(const Poll& poll, const char* path, const Configuration& configuration) {
    if (!isOpen) Open();
    const double seconds = SecondsSince(path, configuration);
    title = TqString("ifagent  ") + TimeText(poll.time).data + " UTC";
    std::map<std::string, Row> before;
    before.swap(rows);
    for (unsigned int i = 1; i <= poll.interfaces.count; ++i) {
        const Interface& interface = *poll.InOrder(i);
        Row row = {TqString(interface.StateText()),
                   interface.counters[inOctets - firstCounter].count,
                   interface.counters[outOctets - firstCounter].count,
                   noRate,
                   noRate,
                   {}};
        const auto earlier = before.find(interface.name.data);
        if (earlier != before.end()) {
            // Unsigned, and so right when a counter has started again at 0.
            row.received = (row.inCount - earlier->second.inCount) / seconds;
            row.sent = (row.outCount - earlier->second.outCount) / seconds;
            row.history.swap(earlier->second.history);
            row.history.push_back(row.received + row.sent);
            if (row.history.size() > historyLength) row.history.erase(row.history.begin());
        }
        rows[interface.name.data] = row;
    }
}

void Watch::Invoke(TqBaseObject* source, TqCallbackData* data) {
    const ValueChange& change = *static_cast<ValueChange*>(data);
    const TqString text = source->ClassInfo()->name + ": " + change.after->name.data + " " +
                          valueNames[change.value].name + " " +
                          TextOf(*change.before->values[change.value]).data + " -> " +
                          TextOf(*change.after->values[change.value]).data;
    if (!isScreen) printf("%s\n", text.data);
    fired.push_back(text);
    if (fired.size() > mostFired) fired.erase(fired.begin());
}

void Watch::EndPoll() {
    if (isScreen) {
        Draw();
    } else {
        PrintLines();
    }
}

void Watch::PrintLines() const {
    for (const auto& row : rows) {
        printf("%s  %s  %s  received %s/s  sent %s/s\n", title.data, row.first.c_str(),
               row.second.state.data, RateText(row.second.received).data,
               RateText(row.second.sent).data);
    }
}

TqString Watch::Coloured(const char* colour, const char* text) const {
    if (!hasColour || *colour == '\0') return TqString(text);
    return TqString(colour) + text + "\033[0m";
}

// The name is cut where there is no room for it.
TqString Watch::Line(const std::string& name, const Row& row, unsigned int width) const {
    char text[160];
    const bool isHeading = row.received < noRate;
    const TqString received = isHeading ? TqString("in/s") : RateText(row.received);
    const TqString sent = isHeading ? TqString("out/s") : RateText(row.sent);
    const bool isSmall = width < smallWidth;
    const int nameWidth = isSmall ? std::max(int(width) - 18, 4) : 16;
    snprintf(text, sizeof text, "%-*.*s %7s %7s", nameWidth, nameWidth, name.c_str(), received.data,
             sent.data);
    TqString line = Cut(TqString(text), width);
    if (isSmall) return line;
    snprintf(text, sizeof text, "  %-7s", row.state.data);
    line += Coloured(ColourOf(row.state.data), text).data;
    line += "  ";
    const size_t room = width - 16 - 16 - 9 - 2 - 1;
    return line += Bar(row.history, std::min(room, historyLength)).data;
}

// Of the interfaces as many as there is room for above the changes.
std::vector<TqString> Watch::Screen(unsigned int width, size_t height) const {
    const Row headings = {TqString("state"), 0, 0, noRate - 1, 0, {}};
    std::vector<TqString> lines = {Coloured(reverse, Cut(title, width).data),
                                   Line("interface", headings, width)};
    const size_t reserved = lines.size() + (fired.empty() ? 0 : fired.size() + 1);
    const size_t room = height > reserved ? height - reserved : 0;
    size_t shown = 0;
    for (const auto& row : rows) {
        if (rows.size() > room && shown + 1 >= room) break;
        lines.push_back(Line(row.first, row.second, width));
        ++shown;
    }
    if (shown < rows.size()) {
        lines.push_back(TqString("and "));
        lines.back().AppendCounter(static_cast<unsigned int>(rows.size() - shown));
        lines.back() += " more";
    }
    if (!fired.empty()) lines.push_back(TqString());
    for (const TqString& text : fired) lines.push_back(Coloured(yellow, Cut(text, width).data));
    lines.resize(std::min(lines.size(), height));
    return lines;
}

// From the upper left corner, what was there before cleared to the right and below.
void Watch::Draw() const {
    winsize size = {};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    const char* lineEnd = "\033[H";
    for (const TqString& line : isKnown ? Screen(size.ws_col, size.ws_row) : Screen(80, 24)) {
        printf("%s%s\033[K", lineEnd, line.data);
        lineEnd = "\n";
    }
    fputs("\033[J", stdout);
    fflush(stdout);
}

bool Watch::Wait(unsigned int seconds) {
    sigset_t none;
    sigemptyset(&none);
    const long long end = Milliseconds() + seconds * 1000LL;
    while (isOver == 0) {
        const long long rest = std::max(end - Milliseconds(), 0LL);
        const timespec timeout = {static_cast<time_t>(rest / 1000),
                                  static_cast<long>(rest % 1000 * 1000000)};
        // Ended by a signal, either of the two that matter: what has changed is seen then.
        if (ppoll(nullptr, 0, &timeout, &none) == 0) return true;
        if (isScreen && isOver == 0) Draw();
    }
    return false;
}

// The last screen stays until the user has had enough.
void Watch::Finish(unsigned int) {
    while (isScreen && Wait(longestWait)) {
    }
}
