#ifndef PROGRESS_H
#define PROGRESS_H

#include <chrono>

/// One line on the terminal that counts: bytes, rate, time.
///
///     1048576 bytes  3.4 MB/s  0:03
class Progress {
public:
    /// Shows nothing ever unless `isShown`.
    explicit Progress(bool isShown);

    /// So many bytes have come up to now. Draws a few times a second.
    void Update(unsigned long long bytes);

    /// Draws the last state and ends the line.
    void End();

    /// Ends the line as it is. For signal handlers.
    static void EndLine();

private:
    using Clock = std::chrono::steady_clock;

    void Draw(Clock::time_point now);

    const bool isShown;
    const Clock::time_point start;
    Clock::time_point drawn;
    unsigned long long bytes = 0;
};

#endif
