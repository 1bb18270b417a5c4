// FontLibrary.cpp: the font library: the first name of a process, names later on, and fallback,
// beside fontconfig's match and sort.
//
// Processes are started anew for the first name: cold without a database, warm with the one that
// the cold run leaves. They report their own time, so that loading the program counts for neither.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FontManager.h>
#include <Host/Host.h>

#include <benchmark/benchmark.h>
#include <fontconfig/fontconfig.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr const char* kName = "DejaVu Sans Bold";
constexpr const char* kReport = "--first-name";

// A long text of many scripts: every fifth code point of their blocks, over and over.
const std::vector<UTF32Char>& mixedText() {
    static const auto& text = *[] {
        auto* const codePoints = new std::vector<UTF32Char>;
        const UTF32Char blocks[][2] = {
            {0x20, 0x250},    {0x370, 0x600},   {0x600, 0x700},     {0x900, 0x980},
            {0xE00, 0xE80},   {0x1E00, 0x2070}, {0x2190, 0x2400},   {0x3040, 0x3100},
            {0x4E00, 0x9FA0}, {0xAC00, 0xD7A4}, {0x1D400, 0x1D500}, {0x1F300, 0x1F650},
        };
        for (UTF32Char offset = 0; offset < 5; ++offset)
            for (const auto& [start, end] : blocks)
                for (UTF32Char codePoint = start + offset; codePoint < end; codePoint += 5)
                    codePoints->push_back(codePoint);
        return codePoints;
    }();
    return text;
}

cf::Ref<CFStringRef> string(const char* text) {
    return cf::adopt(CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8));
}

// ---- The first name -----------------------------------------------------------------------------

// Private memory of this process in KiB: what its mapped files take is not its own.
long privateMemory() {
    std::FILE* const file = std::fopen("/proc/self/smaps_rollup", "r");
    char line[256];
    long sum = 0;
    while (file && std::fgets(line, sizeof line, file)) {
        long value = 0;
        if (std::sscanf(line, "Private_Dirty: %ld", &value) == 1 ||
            std::sscanf(line, "Private_Clean: %ld", &value) == 1)
            sum += value;
    }
    if (file)
        std::fclose(file);
    return sum;
}

// What a child prints: seconds to the first name, KiB that the library adds once it is warm, fonts.
void reportFirstName() {
    const long before = privateMemory();
    const auto start = std::chrono::steady_clock::now();
    const FMLibraryRef library = FMLibraryGetShared();
    const FMFontRef font = FMLibraryCopyFontWithName(library, string(kName).get(), 0);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    HostTaskWaitForAll();
    const auto names = cf::adopt(FMLibraryCopyDBFontNames(library));
    std::printf("%.9f %ld %ld %d\n", time.count(), privateMemory() - before,
                static_cast<long>(CFArrayGetCount(names.get())), font ? 1 : 0);
}

struct FirstName {
    double seconds = 0;
    long kibibytes = 0;
    long fonts = 0;
};

bool runChild(const std::string& cache, FirstName& result) {
    const std::string command = "XDG_CACHE_HOME='" + cache + "' " +
                                std::filesystem::read_symlink("/proc/self/exe").string() + " " +
                                kReport;
    std::FILE* const pipe = popen(command.c_str(), "r");
    int found = 0;
    const bool isRead = std::fscanf(pipe, "%lf %ld %ld %d", &result.seconds, &result.kibibytes,
                                    &result.fonts, &found) == 4;
    return pclose(pipe) == 0 && isRead && found;
}

void firstName(benchmark::State& state, bool isWarm) {
    const std::string cache = "/tmp/nimbra-first-name-" + std::to_string(getpid());
    FirstName last;
    // The first run after the list of fonts was written finds all caches settled.
    for (int run = 0; isWarm && run < 2; ++run)
        runChild(cache, last);
    for (auto _ : state) {
        if (!isWarm)
            std::filesystem::remove_all(cache);
        if (!runChild(cache, last))
            state.SkipWithError("the child does not find the font");
        state.SetIterationTime(last.seconds);
    }
    std::filesystem::remove_all(cache);
    state.counters["fonts"] = static_cast<double>(last.fonts);
    state.counters["added_KiB"] = static_cast<double>(last.kibibytes);
}
BENCHMARK_CAPTURE(firstName, cold, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstName, warm, true)->UseManualTime()->Unit(benchmark::kMillisecond);

// ---- Names later on -----------------------------------------------------------------------------

void lookUp(benchmark::State& state, const char* name, uint32_t options) {
    const FMLibraryRef library = FMLibraryGetShared();
    HostTaskWaitForAll();
    const auto key = string(name);
    for (auto _ : state) {
        const FMFontRef font = FMLibraryCopyFontWithName(library, key.get(), options);
        benchmark::DoNotOptimize(font);
        FMFontRelease(font);
    }
}
BENCHMARK_CAPTURE(lookUp, hit, kName, 0);
BENCHMARK_CAPTURE(lookUp, inferredRemembered, "dejavu-sans bold", 0);
BENCHMARK_CAPTURE(lookUp, inferred, "dejavu-sans bold", 1);
BENCHMARK_CAPTURE(lookUp, missRemembered, "no font of this name", 0);
BENCHMARK_CAPTURE(lookUp, miss, "no font of this name", 1);

void matchInFontconfig(benchmark::State& state) {
    for (auto _ : state) {
        FcPattern* const pattern =
            FcNameParse(reinterpret_cast<const FcChar8*>("DejaVu Sans:bold"));
        FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
        FcDefaultSubstitute(pattern);
        FcResult result = FcResultNoMatch;
        FcPattern* const match = FcFontMatch(nullptr, pattern, &result);
        benchmark::DoNotOptimize(match);
        FcPatternDestroy(match);
        FcPatternDestroy(pattern);
    }
}
BENCHMARK(matchInFontconfig)->Unit(benchmark::kMicrosecond);

// ---- Fallback -----------------------------------------------------------------------------------

void queryKnown(benchmark::State& state) {
    const FMLibraryRef library = FMLibraryGetShared();
    uint32_t start = 0, end = 0, set = 0;
    for (const UTF32Char codePoint : mixedText())
        FMLibraryQueryFallback(library, codePoint, &start, &end, &set);
    std::size_t index = 0;
    for (auto _ : state) {
        FMLibraryQueryFallback(library, mixedText()[index], &start, &end, &set);
        benchmark::DoNotOptimize(set);
        index = index + 1 < mixedText().size() ? index + 1 : 0;
    }
}
BENCHMARK(queryKnown);

FMFallback::FontList noFonts(uint32_t, FMFallback*) {
    return {};
}

// The time of a code point, of a text that is new to a fallback; reading what the fonts map is
// counted apart.
void queryUnknown(benchmark::State& state) {
    const FMLibraryRef library = FMLibraryGetShared();
    for (auto _ : state) {
        state.PauseTiming();
        FMFallback fallback(library, noFonts);
        fallback.query('A');
        state.ResumeTiming();
        for (const UTF32Char codePoint : mixedText())
            benchmark::DoNotOptimize(fallback.query(codePoint));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(mixedText().size()));
}
BENCHMARK(queryUnknown)->Unit(benchmark::kMillisecond);

void readAllCoverage(benchmark::State& state) {
    const FMLibraryRef library = FMLibraryGetShared();
    for (auto _ : state) {
        FMFallback fallback(library, noFonts);
        benchmark::DoNotOptimize(fallback.query('A'));
    }
}
BENCHMARK(readAllCoverage)->Unit(benchmark::kMillisecond);

// fontconfig's way: one list of fonts for the text's style, then the first that has the code point.
void sortInFontconfig(benchmark::State& state) {
    for (auto _ : state) {
        FcPattern* const pattern = FcNameParse(reinterpret_cast<const FcChar8*>("sans-serif"));
        FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
        FcDefaultSubstitute(pattern);
        FcResult result = FcResultNoMatch;
        FcFontSet* const sorted = FcFontSort(nullptr, pattern, FcTrue, nullptr, &result);
        for (const UTF32Char codePoint : mixedText())
            for (int font = 0; sorted && font < sorted->nfont; ++font) {
                FcCharSet* characters = nullptr;
                FcPatternGetCharSet(sorted->fonts[font], FC_CHARSET, 0, &characters);
                if (characters && FcCharSetHasChar(characters, codePoint))
                    break;
            }
        if (sorted)
            FcFontSetDestroy(sorted);
        FcPatternDestroy(pattern);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(mixedText().size()));
}
BENCHMARK(sortInFontconfig)->Unit(benchmark::kMillisecond);

} // namespace

int main(int count, char** arguments) {
    if (count == 2 && std::strcmp(arguments[1], kReport) == 0) {
        reportFirstName();
        return EXIT_SUCCESS;
    }
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
