// FontDatabase.cpp: the font database beside bare TinyCDB over the same file.
//
// The fonts are made up, of records as long as those of real ones, so that no font file is
// measured. Keys are looked up in turn over all fonts.

#include <CoreFoundation/CFRef.h>
#include <FontManager/FontManager.h>

#include <benchmark/benchmark.h>
#include <cdb.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kFonts = 500;
using Database = cf::Ref<FMDatabaseRef>;
using String = cf::Ref<CFStringRef>;

String string(const std::string& text) {
    return cf::adopt(CFStringCreateWithCString(nullptr, text.c_str(), kCFStringEncodingUTF8));
}

std::string pathOf(int64_t font) {
    return "/usr/share/fonts/truetype/family/Family-" + std::to_string(font) + ".ttf";
}

constexpr const char* kTexts[] = {"0200", "0201", "0202", "0203", "0204", "0205", "0206", "0213"};
constexpr const char* kNumbers[] = {"0207", "0209", "0210", "0211", "0212", "0215", "0216"};
constexpr const char* kText = "A Family Sans:unique id:Semibold Italic:OpenType TrueType:0:3528";

Database makeDatabase() {
    Database database = cf::adopt(FMDatabaseCreateInMemory());
    const String text = string(kText);
    const FMFontMetrics metrics = {.unitsPerEm = 1000};
    for (int font = 0; font < kFonts; ++font) {
        const auto id = static_cast<FMFontId>(FMDatabaseGetNextFontId(database.get(), true));
        for (const char* const kind : kTexts)
            FMDatabaseStoreString(database.get(), kind, id, text.get());
        for (const char* const kind : kNumbers)
            FMDatabaseStoreUInt64(database.get(), kind, id, 3);
        FMDatabaseStoreFontMetrics(database.get(), id, &metrics);
        FMDatabaseStoreLastModified(database.get(), string(pathOf(id)).get(), 1);
    }
    return database;
}

// The database on disk, for as long as the program runs.
struct File {
    File() : name("/tmp/nimbra-fonts-" + std::to_string(getpid()) + ".db") {
        url = cf::adopt(CFURLCreateWithFileSystemPath(nullptr, string(name).get(),
                                                      kCFURLPOSIXPathStyle, false));
        if (!FMDatabasePersistToDisk(makeDatabase().get(), url.get()))
            std::abort();
    }
    ~File() { std::remove(name.c_str()); }

    std::string name;
    cf::Ref<CFURLRef> url;
};

const File& file() {
    static const File file;
    return file;
}

struct BareFile {
    BareFile() : descriptor(open(file().name.c_str(), O_RDONLY | O_CLOEXEC)) {
        if (cdb_init(&reader, descriptor) != 0)
            std::abort();
    }
    ~BareFile() {
        cdb_free(&reader);
        close(descriptor);
    }

    int descriptor;
    struct cdb reader;
};

std::string keyOf(int64_t id) {
    return "0212" + std::string(reinterpret_cast<const char*>(&id), sizeof id);
}

// Ids that there are, or that there are not.
void findNumber(benchmark::State& state) {
    const Database database = cf::adopt(FMDatabaseOpenWithURL(file().url.get()));
    const auto first = static_cast<FMFontId>(state.range(0));
    FMFontId id = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(FMDatabaseGetFontNumberOfGlyphs(database.get(), first + id));
        id = (id + 1) % kFonts;
    }
}

void findNumberBare(benchmark::State& state) {
    BareFile bare;
    int64_t id = 0;
    for (auto _ : state) {
        const std::string key = keyOf(state.range(0) + id);
        int64_t value = 0;
        if (cdb_find(&bare.reader, key.data(), static_cast<unsigned>(key.size())) > 0)
            cdb_readdata(&bare.reader, &value);
        benchmark::DoNotOptimize(value);
        id = (id + 1) % kFonts;
    }
}

void findTime(benchmark::State& state) {
    const Database database = cf::adopt(FMDatabaseOpenWithURL(file().url.get()));
    std::vector<String> paths;
    for (int id = 0; id < kFonts; ++id)
        paths.push_back(string(pathOf(state.range(0) + id)));
    size_t at = 0;
    for (auto _ : state) {
        int64_t seconds = 0;
        FMDatabaseFetchLastModified(database.get(), paths[at].get(), &seconds);
        benchmark::DoNotOptimize(seconds);
        at = (at + 1) % kFonts;
    }
}

void copyName(benchmark::State& state) {
    const Database database = cf::adopt(FMDatabaseOpenWithURL(file().url.get()));
    FMFontId id = 0;
    for (auto _ : state) {
        CFRelease(FMDatabaseCopyFontFullName(database.get(), id + 1));
        id = (id + 1) % kFonts;
    }
}

void openFile(benchmark::State& state) {
    for (auto _ : state)
        FMDatabaseRelease(FMDatabaseOpenWithURL(file().url.get()));
}

void openFileBare(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(BareFile().reader.cdb_mem);
}

void storeFonts(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(makeDatabase().get());
}

void persistFonts(benchmark::State& state) {
    const Database database = makeDatabase();
    for (auto _ : state)
        if (!FMDatabasePersistToDisk(database.get(), file().url.get()))
            state.SkipWithError("the database cannot be written");
}

// The same records straight into a file.
void persistFontsBare(benchmark::State& state) {
    std::vector<std::pair<std::string, std::string>> records;
    {
        BareFile bare;
        unsigned position = 0;
        cdb_seqinit(&position, &bare.reader);
        while (cdb_seqnext(&position, &bare.reader) > 0)
            records.emplace_back(std::string(static_cast<const char*>(cdb_getkey(&bare.reader)),
                                             cdb_keylen(&bare.reader)),
                                 std::string(static_cast<const char*>(cdb_getdata(&bare.reader)),
                                             cdb_datalen(&bare.reader)));
    }
    const std::string temporary = file().name + ".bare";
    for (auto _ : state) {
        const int descriptor =
            open(temporary.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
        struct cdb_make maker;
        cdb_make_start(&maker, descriptor);
        for (const auto& [key, value] : records)
            cdb_make_add(&maker, key.data(), static_cast<unsigned>(key.size()), value.data(),
                         static_cast<unsigned>(value.size()));
        cdb_make_finish(&maker);
        close(descriptor);
        if (std::rename(temporary.c_str(), (file().name + ".renamed").c_str()) != 0)
            state.SkipWithError("the file cannot be renamed");
    }
    std::remove((file().name + ".renamed").c_str());
}

BENCHMARK(findNumber)->ArgName("from")->Arg(1)->Arg(100000);
BENCHMARK(findNumberBare)->ArgName("from")->Arg(1)->Arg(100000);
BENCHMARK(findTime)->ArgName("from")->Arg(1)->Arg(100000);
BENCHMARK(copyName);
BENCHMARK(openFile);
BENCHMARK(openFileBare);
BENCHMARK(storeFonts)->Unit(benchmark::kMicrosecond);
BENCHMARK(persistFonts)->Unit(benchmark::kMicrosecond);
BENCHMARK(persistFontsBare)->Unit(benchmark::kMicrosecond);

} // namespace
