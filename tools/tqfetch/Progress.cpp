#include "Progress.h"

#include <signal.h>
#include <unistd.h>

#include <cstdio>

namespace {

const std::chrono::milliseconds betweenDrawings(100);

volatile sig_atomic_t isLineOpen = 0;

void Rate(char* text, std::size_t size, double bytesPerSecond) {
    if (bytesPerSecond >= 1e6) {
        std::snprintf(text, size, "%.1f MB/s", bytesPerSecond / 1e6);
    } else if (bytesPerSecond >= 1e3) {
        std::snprintf(text, size, "%.1f kB/s", bytesPerSecond / 1e3);
    } else {
        std::snprintf(text, size, "%.0f B/s", bytesPerSecond);
    }
}

}  // namespace

Progress::Progress(bool shown) : isShown(shown), start(Clock::now()) {
    if (isShown) Draw(start);
}

void Progress::Update(unsigned long long count) {
    bytes = count;
    if (!isShown) return;
    const Clock::time_point now = Clock::now();
    if (now - drawn >= betweenDrawings) Draw(now);
}

void Progress::End() {
    if (isShown && isLineOpen != 0) Draw(Clock::now());
    EndLine();
}

void Progress::EndLine() {
    if (isLineOpen == 0) return;
    isLineOpen = 0;
    if (write(STDERR_FILENO, "\n", 1) != 1) return;  // nobody is left to be told
}

void Progress::Draw(Clock::time_point now) {
    drawn = now;
    const double seconds = std::chrono::duration<double>(now - start).count();
    const int whole = static_cast<int>(seconds);
    char rate[32];
    Rate(rate, sizeof rate, seconds > 0 ? static_cast<double>(bytes) / seconds : 0);
    char line[80];
    // Padded, so that a shorter rate leaves nothing of a longer one.
    const int length = std::snprintf(line, sizeof line, "\r%llu bytes  %s  %d:%02d    ", bytes,
                                     rate, whole / 60, whole % 60);
    isLineOpen = 1;
    if (write(STDERR_FILENO, line, static_cast<std::size_t>(length)) != length) return;
}
