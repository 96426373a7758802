#include "Progress.h"

#include <unistd.h>

#include <atomic>

#include "Message.h"

namespace {

const std::chrono::milliseconds betweenDrawings(100);

// The one whose line is not ended.
std::atomic<Progress*> open(nullptr);

using Duration = std::chrono::steady_clock::duration;

ProgressLine::Milliseconds ToMilliseconds(Duration duration) {
    return static_cast<ProgressLine::Milliseconds>(
        std::chrono::duration_cast<std::chrono::milliseconds>(duration).count());
}

std::chrono::seconds WholeSeconds(Duration duration) {
    return std::chrono::duration_cast<std::chrono::seconds>(duration);
}

}  // namespace

ProgressLine::ProgressLine(unsigned long long bytes, Milliseconds sinceStart,
                           Milliseconds sinceNews, std::size_t least) {
    Add("\r");
    AddNumber(bytes);
    Add(" bytes  ");
    AddRate(sinceStart > 0 ? bytes * 1000 / sinceStart : 0);
    Add("  ");
    AddNumber(sinceStart / 60000);
    Add(":");
    AddNumber(sinceStart / 1000 % 60, 2);
    if (sinceNews >= 1000) {
        Add("  waiting ");
        AddNumber(sinceNews / 1000);
        Add(" s");
    }
    while (length < least) Add(" ");
}

void ProgressLine::Add(const char* more) {
    while (*more != '\0' && length < sizeof text) text[length++] = *more++;
}

void ProgressLine::AddNumber(unsigned long long number, unsigned int leastDigits) {
    char digits[24];
    char* first = digits + sizeof digits - 1;
    *first = '\0';
    for (; number > 0 || leastDigits > 0; number /= 10) {
        *--first = static_cast<char>('0' + number % 10);
        if (leastDigits > 0) --leastDigits;
    }
    Add(first);
}

void ProgressLine::AddRate(unsigned long long bytesPerSecond) {
    if (bytesPerSecond < 1000) {
        AddNumber(bytesPerSecond);
        Add(" B/s");
    } else if (bytesPerSecond < 999950) {
        AddTenths((bytesPerSecond + 50) / 100);
        Add(" kB/s");
    } else {
        AddTenths((bytesPerSecond + 50000) / 100000);
        Add(" MB/s");
    }
}

void ProgressLine::AddTenths(unsigned long long tenths) {
    AddNumber(tenths / 10);
    Add(".");
    AddNumber(tenths % 10);
}

Progress::Progress(bool shown) : isShown(shown), start(Clock::now()), news(start) {
    if (isShown) Draw(start);
}

Progress::~Progress() {
    EndLine();
}

void Progress::Update(unsigned long long count) {
    bytes = count;
    if (!isShown) return;
    news = Clock::now();
    if (news - drawn >= betweenDrawings) Draw(news);
}

void Progress::End() {
    if (open != nullptr) Draw(Clock::now());
    EndLine();
}

void Progress::ShowWaiting() {
    if (open == nullptr) return;
    const Clock::time_point now = Clock::now();
    if (WholeSeconds(now - news) > WholeSeconds(drawn - news)) Draw(now);
}

void Progress::EndLine() {
    if (open.exchange(nullptr) == nullptr) return;
    WriteWithin(0, "\n", 1);
}

void Progress::Draw(Clock::time_point now) {
    drawn = now;
    const ProgressLine line(bytes, ToMilliseconds(now - start), ToMilliseconds(now - news), length);
    length = line.Length();
    open = this;
    WriteWithin(0, line.Text(), line.Length());
}
