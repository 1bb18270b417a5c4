// Dictionary.cpp: looking keys up beside std::unordered_map.
//
// Keys are looked up in random order, three of four of them there. Integers are keys without
// callbacks; strings are CFString beside std::string, found by a copy of the key, so that contents
// are compared.

#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using Dictionary = cf::Ref<CFMutableDictionaryRef>;

const void* pointer(intptr_t value) {
    return reinterpret_cast<const void*>(value);
}

std::vector<intptr_t> shuffledKeys(intptr_t count) {
    std::vector<intptr_t> keys;
    for (intptr_t i = 0; i < count * 4 / 3; ++i)
        keys.push_back(i * 16 + 16);
    std::shuffle(keys.begin(), keys.end(), std::mt19937(1));
    return keys;
}

std::string textOf(intptr_t key) {
    return "some key " + std::to_string(key);
}

void findIntegers(benchmark::State& state) {
    const Dictionary dictionary =
        cf::adopt(CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr));
    for (intptr_t i = 0; i < state.range(0); ++i)
        CFDictionarySetValue(dictionary.get(), pointer(i * 16 + 16), pointer(i));
    const auto keys = shuffledKeys(state.range(0));
    size_t at = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(CFDictionaryGetValue(dictionary.get(), pointer(keys[at])));
        at = at + 1 == keys.size() ? 0 : at + 1;
    }
}

void findIntegersInMap(benchmark::State& state) {
    std::unordered_map<intptr_t, intptr_t> map;
    for (intptr_t i = 0; i < state.range(0); ++i)
        map[i * 16 + 16] = i;
    const auto keys = shuffledKeys(state.range(0));
    size_t at = 0;
    for (auto _ : state) {
        const auto found = map.find(keys[at]);
        benchmark::DoNotOptimize(found == map.end() ? 0 : found->second);
        at = at + 1 == keys.size() ? 0 : at + 1;
    }
}

// What a call costs that the compiler cannot look into, as every call of a C interface is.
[[gnu::noinline]] intptr_t findBehindCall(const std::unordered_map<intptr_t, intptr_t>& map,
                                          intptr_t key) {
    asm volatile("");
    const auto found = map.find(key);
    return found == map.end() ? 0 : found->second;
}

void findIntegersInMapBehindCall(benchmark::State& state) {
    std::unordered_map<intptr_t, intptr_t> map;
    for (intptr_t i = 0; i < state.range(0); ++i)
        map[i * 16 + 16] = i;
    const auto keys = shuffledKeys(state.range(0));
    size_t at = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(findBehindCall(map, keys[at]));
        at = at + 1 == keys.size() ? 0 : at + 1;
    }
}

cf::Ref<CFStringRef> makeString(intptr_t key) {
    return cf::adopt(
        CFStringCreateWithCString(nullptr, textOf(key).c_str(), kCFStringEncodingUTF8));
}

void findStrings(benchmark::State& state) {
    const Dictionary dictionary =
        cf::adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, nullptr));
    for (intptr_t i = 0; i < state.range(0); ++i)
        CFDictionarySetValue(dictionary.get(), makeString(i * 16 + 16).get(), pointer(i));
    std::vector<cf::Ref<CFStringRef>> keys;
    for (const intptr_t key : shuffledKeys(state.range(0)))
        keys.push_back(makeString(key));
    size_t at = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(CFDictionaryGetValue(dictionary.get(), keys[at].get()));
        at = at + 1 == keys.size() ? 0 : at + 1;
    }
}

void findStringsInMap(benchmark::State& state) {
    std::unordered_map<std::string, intptr_t> map;
    for (intptr_t i = 0; i < state.range(0); ++i)
        map[textOf(i * 16 + 16)] = i;
    std::vector<std::string> keys;
    for (const intptr_t key : shuffledKeys(state.range(0)))
        keys.push_back(textOf(key));
    size_t at = 0;
    for (auto _ : state) {
        const auto found = map.find(keys[at]);
        benchmark::DoNotOptimize(found == map.end() ? 0 : found->second);
        at = at + 1 == keys.size() ? 0 : at + 1;
    }
}

BENCHMARK(findIntegers)->Name("integers/dictionary")->Range(16, 65536);
BENCHMARK(findIntegersInMap)->Name("integers/std")->Range(16, 65536);
BENCHMARK(findIntegersInMapBehindCall)->Name("integers/std-behind-call")->Range(16, 65536);
BENCHMARK(findStrings)->Name("strings/dictionary")->Range(16, 65536);
BENCHMARK(findStringsInMap)->Name("strings/std")->Range(16, 65536);

} // namespace
