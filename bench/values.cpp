// Strings, buffers and items, beside the standard library doing the same.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "TqBuffer.h"
#include "TqCounter.h"
#include "TqNumber.h"
#include "TqString.h"

namespace {

void AppendCharTq(benchmark::State& state) {
    for (auto _ : state) {
        TqString text;
        for (int i = 0; i < state.range(0); ++i) text.AppendChar('x');
        benchmark::DoNotOptimize(text.data);
    }
}
BENCHMARK(AppendCharTq)->Arg(20)->Arg(500);

void AppendCharStd(benchmark::State& state) {
    for (auto _ : state) {
        std::string text;
        for (int i = 0; i < state.range(0); ++i) text.push_back('x');
        benchmark::DoNotOptimize(text.data());
    }
}
BENCHMARK(AppendCharStd)->Arg(20)->Arg(500);

void AssignTq(benchmark::State& state) {
    TqString text;
    for (auto _ : state) {
        text = "GigabitEthernet0/1";
        benchmark::DoNotOptimize(text.data);
    }
}
BENCHMARK(AssignTq);

void AssignStd(benchmark::State& state) {
    std::string text;
    for (auto _ : state) {
        text = "GigabitEthernet0/1";
        benchmark::DoNotOptimize(text.data());
    }
}
BENCHMARK(AssignStd);

void NumberTextTq(benchmark::State& state) {
    TqString text;
    int i = 0;
    for (auto _ : state) {
        TqNumber(1000000 + ++i).ToString(text);
        benchmark::DoNotOptimize(text.data);
    }
}
BENCHMARK(NumberTextTq);

void NumberTextSnprintf(benchmark::State& state) {
    char text[16];
    int i = 0;
    for (auto _ : state) {
        std::snprintf(text, sizeof text, "%d", 1000000 + ++i);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(NumberTextSnprintf);

// An item as the standard library would write it: "%05u" and the digits.
void ItemEncodeTq(benchmark::State& state) {
    const TqNumber number(1234567);
    TqBuffer buffer;
    for (auto _ : state) {
        buffer.TruncateAfter(0);
        number.ToBuffer(buffer);
        benchmark::DoNotOptimize(buffer.data);
    }
}
BENCHMARK(ItemEncodeTq);

void ItemEncodeSnprintf(benchmark::State& state) {
    const int number = 1234567;
    std::vector<char> buffer;
    for (auto _ : state) {
        buffer.clear();
        char text[16];
        char head[8];
        const int length = std::snprintf(text, sizeof text, "%d", number);
        std::snprintf(head, sizeof head, "%05u", static_cast<unsigned int>(length));
        buffer.insert(buffer.end(), head, head + 5);
        buffer.insert(buffer.end(), text, text + length);
        benchmark::DoNotOptimize(buffer.data());
    }
}
BENCHMARK(ItemEncodeSnprintf);

void ItemDecodeTq(benchmark::State& state) {
    TqBuffer buffer;
    TqNumber(1234567).ToBuffer(buffer);
    TqNumber number;
    for (auto _ : state) {
        buffer.readPosition = 0;
        number.FromBuffer(buffer);
        benchmark::DoNotOptimize(number.value);
    }
}
BENCHMARK(ItemDecodeTq);

void ItemDecodeStrtol(benchmark::State& state) {
    const std::string buffer = "000071234567";
    for (auto _ : state) {
        const std::string head = buffer.substr(0, 5);
        const std::string text =
            buffer.substr(5, static_cast<std::size_t>(std::strtol(head.c_str(), nullptr, 10)));
        long number = std::strtol(text.c_str(), nullptr, 10);
        benchmark::DoNotOptimize(number);
    }
}
BENCHMARK(ItemDecodeStrtol);

// A message of many items: the buffer reallocates exactly to what it holds.
void MessageTq(benchmark::State& state) {
    const TqCounter counter(123456789);
    for (auto _ : state) {
        TqBuffer buffer;
        for (int i = 0; i < state.range(0); ++i) counter.ToBuffer(buffer);
        benchmark::DoNotOptimize(buffer.data);
    }
}
BENCHMARK(MessageTq)->Arg(100)->Arg(10000);

void MessageStd(benchmark::State& state) {
    const unsigned int counter = 123456789;
    for (auto _ : state) {
        std::string buffer;
        for (int i = 0; i < state.range(0); ++i) {
            const std::string text = std::to_string(counter);
            char head[8];
            std::snprintf(head, sizeof head, "%05u", static_cast<unsigned int>(text.size()));
            buffer.append(head, 5).append(text);
        }
        benchmark::DoNotOptimize(buffer.data());
    }
}
BENCHMARK(MessageStd)->Arg(100)->Arg(10000);

}  // namespace
