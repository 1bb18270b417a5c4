// String.cpp: strings beside the C and C++ libraries' own work on the same bytes.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>

namespace {

std::string sample(int64_t length) {
    std::string text(size_t(length), 'a');
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = char('a' + i * 7 % 26);
    return text;
}

cf::Ref<CFStringRef> stringOf(const std::string& text) {
    return cf::adopt(CFStringCreateWithCString(nullptr, text.c_str(), kCFStringEncodingUTF8));
}

// The text of a mutable string is hashed each time, as that of an immutable one is once.
void hash(benchmark::State& state) {
    const auto string =
        cf::adopt(CFStringCreateMutableCopy(nullptr, 0, stringOf(sample(state.range(0))).get()));
    for (auto _ : state)
        benchmark::DoNotOptimize(CFHash(string.get()));
}
void hashBare(benchmark::State& state) {
    const std::string text = sample(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(std::hash<std::string_view>()(text));
}

void equal(benchmark::State& state) {
    const auto a = stringOf(sample(state.range(0)));
    const auto b = stringOf(sample(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(CFEqual(a.get(), b.get()));
}
void equalBare(benchmark::State& state) {
    const std::string a = sample(state.range(0));
    const std::string b = sample(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(a == b);
}

void create(benchmark::State& state) {
    const std::string text = sample(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(stringOf(text).get());
}
void createBare(benchmark::State& state) {
    const std::string text = sample(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(std::string(text.c_str()).data());
}

void find(benchmark::State& state) {
    const auto text = stringOf(sample(state.range(0)) + "needle");
    const auto sought = stringOf("needle");
    for (auto _ : state)
        benchmark::DoNotOptimize(CFStringFind(text.get(), sought.get(), 0));
}
void findBare(benchmark::State& state) {
    const std::string text = sample(state.range(0)) + "needle";
    for (auto _ : state)
        benchmark::DoNotOptimize(text.find("needle"));
}

void constant(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(CFSTR("a constant of some length"));
}

void format(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(
            cf::adopt(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@ %d %.2f"), CFSTR("name"),
                                               42, 1.5))
                .get());
}
void formatBare(benchmark::State& state) {
    char buffer[64];
    for (auto _ : state) {
        std::snprintf(buffer, sizeof buffer, "%s %d %.2f", "name", 42, 1.5);
        benchmark::DoNotOptimize(std::string(buffer).data());
    }
}

BENCHMARK(hash)->Arg(16)->Arg(1024);
BENCHMARK(hashBare)->Arg(16)->Arg(1024);
BENCHMARK(equal)->Arg(16)->Arg(1024);
BENCHMARK(equalBare)->Arg(16)->Arg(1024);
BENCHMARK(create)->Arg(16)->Arg(1024);
BENCHMARK(createBare)->Arg(16)->Arg(1024);
BENCHMARK(find)->Arg(1024);
BENCHMARK(findBare)->Arg(1024);
BENCHMARK(constant);
BENCHMARK(format);
BENCHMARK(formatBare);

} // namespace
