// FontDatabaseFuzz.cpp: databases of any bytes, asked for all that they could hold.
//
// Hardly any bytes pass for a header, whose tables must fit the file. An input whose first byte is
// odd therefore gets one: its next 256 bytes say how many places each table has, the rest are
// records and tables.

#include <CoreFoundation/CFRef.h>
#include <FontManager/FontManager.h>

#include <ConstantDatabase/ConstantDatabase.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr size_t kTables = 256;
constexpr const char* kKinds[] = {"0100", "0102", "0200", "0203", "0206", "0207", "0208",
                                  "0212", "0216", "0217", "0300", "0600", "0800"};

void require(bool condition) {
    if (!condition)
        std::abort();
}

void appendWord(std::vector<uint8_t>& bytes, size_t word) {
    for (int i = 0; i < 4; ++i)
        bytes.push_back(static_cast<uint8_t>(word >> (8 * i)));
}

std::vector<uint8_t> withHeader(const uint8_t* bytes, size_t size) {
    const size_t rest = size - std::min(size, kTables);
    std::vector<uint8_t> file;
    size_t places = 0;
    for (size_t i = 0; i < std::min(size, kTables); ++i)
        places += bytes[i] % 8;
    size_t position = kTables * 8 + (rest > places * 8 ? rest - places * 8 : 0);
    for (size_t i = 0; i < kTables; ++i) {
        appendWord(file, position);
        const size_t length = i < size ? bytes[i] % 8 : 0;
        appendWord(file, length);
        position += length * 8;
    }
    file.insert(file.end(), bytes + (size - rest), bytes + size);
    file.resize(position); // With empty places where there are not enough bytes.
    return file;
}

// Over memory of exactly that size, so that the sanitizer sees its end.
void readRecords(const std::vector<uint8_t>& file) {
    const auto reader = constantdatabase::Reader::overBytes(std::as_bytes(std::span(file)));
    if (!reader)
        return;
    size_t sum = 0;
    const auto add = [&](constantdatabase::Bytes bytes) {
        for (const std::byte byte : bytes)
            sum += std::to_integer<size_t>(byte);
    };
    reader->forEach([&](constantdatabase::Bytes key, constantdatabase::Bytes value) {
        add(key);
        add(value);
        reader->find(key);
    });
    for (const char* const kind : kKinds)
        if (const auto value = reader->find(std::as_bytes(std::span(kind, 4))))
            add(*value);
    require(sum <= file.size() * 255 * (1 + std::size(kKinds)));
}

void readFonts(FMDatabaseRef database) {
    const CFIndex count = FMDatabaseGetFontsCount(database);
    FMDatabaseIsLatestVersion(database);
    FMDatabaseFetchLastModified(database, CFSTR("/a"), nullptr);
    for (FMFontId id = -1; id <= std::min<CFIndex>(count, 3); ++id) {
        FMFontMetrics metrics;
        FMDatabaseGetFontMetrics(database, id, &metrics);
        FMDatabaseGetFontNumberOfGlyphs(database, id);
        const auto nimbraId = cf::adopt(FMDatabaseCopyFontNimbraId(database, id));
        FMDatabaseHasFontNimbraId(database, nimbraId.get());
        const auto location = cf::adopt(FMDatabaseCopyFontLocation(database, id));
        uint32_t* values = nullptr;
        size_t size = 0;
        if (FMDatabaseCopyCharmaps(database, id, &values, &size))
            require(values && size <= SIZE_MAX / 4);
        std::free(values);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    if (size == 0)
        return 0;
    const std::vector<uint8_t> file = bytes[0] % 2 == 0
                                          ? std::vector<uint8_t>(bytes + 1, bytes + size)
                                          : withHeader(bytes + 1, size - 1);
    readRecords(file);

    static const int memory = memfd_create("database", MFD_CLOEXEC);
    static const auto url = cf::adopt(CFURLCreateWithString(
        nullptr,
        cf::adopt(
            CFStringCreateWithFormat(nullptr, nullptr, CFSTR("file:///proc/self/fd/%d"), memory))
            .get(),
        nullptr));
    require(ftruncate(memory, 0) == 0 &&
            pwrite(memory, file.data(), file.size(), 0) == static_cast<ssize_t>(file.size()));
    if (const auto database = cf::adopt(FMDatabaseOpenWithURL(url.get())))
        readFonts(database.get());
    return 0;
}
