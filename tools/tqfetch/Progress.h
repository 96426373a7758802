#ifndef PROGRESS_H
#define PROGRESS_H

#include <chrono>
#include <cstddef>

/// The line that a terminal shows: bytes, rate, minutes and seconds, and how long nothing has come
/// once that is a second or more. Made without the heap, for signal handlers.
///
///     1048576 bytes  3.4 MB/s  0:03
///     1048576 bytes  61.7 kB/s  0:17  waiting 14 s
class ProgressLine {
public:
    using Milliseconds = unsigned long long;

    /// `least` is the length of the line before, of which nothing may remain.
    ProgressLine(unsigned long long bytes, Milliseconds sinceStart, Milliseconds sinceNews,
                 std::size_t least);

    const char* Text() const { return text; }
    std::size_t Length() const { return length; }

private:
    void Add(const char* more);
    void AddNumber(unsigned long long number, unsigned int leastDigits = 1);
    void AddRate(unsigned long long bytesPerSecond);
    void AddTenths(unsigned long long tenths);

    char text[160];
    std::size_t length = 0;
};

/// That line on the terminal, for one transfer at a time.
class Progress {
public:
    /// Shows nothing ever unless `isShown`.
    explicit Progress(bool isShown);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    /// So many bytes have come up to now. Draws a few times a second.
    void Update(unsigned long long count);

    /// Draws the last state and ends the line.
    void End();

    /// Draws whenever nothing has come for another whole second.
    void ShowWaiting();

    /// Ends the line as it is. For signal handlers.
    static void EndLine();

private:
    using Clock = std::chrono::steady_clock;

    void Draw(Clock::time_point now);

    const bool isShown;
    const Clock::time_point start;
    Clock::time_point news;  // when the bytes last grew
    Clock::time_point drawn;
    unsigned long long bytes = 0;
    std::size_t length = 0;  // of what is on the terminal
};

#endif
