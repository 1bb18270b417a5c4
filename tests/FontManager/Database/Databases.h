// Databases.h: font databases for tests, and a look at their files that is not ours.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <FontManager/FontManager.h>

#include "Support/TemporaryFolder.h"

#include <cdb.h>
#include <fcntl.h>
#include <unistd.h>

#include <map>
#include <string>

namespace test {

using Database = cf::Ref<FMDatabaseRef>;
using String = cf::Ref<CFStringRef>;

inline Database makeDatabase() {
    return cf::adopt(FMDatabaseCreateInMemory());
}

inline String string(const std::string& text) {
    return cf::adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                             CFIndex(text.size()), kCFStringEncodingUTF8, false));
}

// "(none)" for NULL.
inline std::string text(const String& string) {
    char buffer[1024];
    const bool isText =
        string && CFStringGetCString(string.get(), buffer, sizeof buffer, kCFStringEncodingUTF8);
    return isText ? buffer : "(none)";
}

inline cf::Ref<CFURLRef> url(const std::string& path) {
    return cf::adopt(
        CFURLCreateWithFileSystemPath(nullptr, string(path).get(), kCFURLPOSIXPathStyle, false));
}

inline bool persist(const Database& database, const std::string& path) {
    return FMDatabasePersistToDisk(database.get(), url(path).get());
}

inline Database open(const std::string& path) {
    return cf::adopt(FMDatabaseOpenWithURL(url(path).get()));
}

// All records of a file by TinyCDB's own reader; empty where it finds none.
inline std::map<std::string, std::string> recordsIn(const std::string& path) {
    std::map<std::string, std::string> records;
    const int descriptor = ::open(path.c_str(), O_RDONLY);
    struct cdb reader;
    if (cdb_init(&reader, descriptor) == 0) {
        unsigned position = 0;
        cdb_seqinit(&position, &reader);
        while (cdb_seqnext(&position, &reader) > 0)
            records.emplace(
                std::string(static_cast<const char*>(cdb_getkey(&reader)), cdb_keylen(&reader)),
                std::string(static_cast<const char*>(cdb_getdata(&reader)), cdb_datalen(&reader)));
        cdb_free(&reader);
    }
    close(descriptor);
    return records;
}

// A number in 8 bytes, the lowest first.
inline std::string number(uint64_t value) {
    std::string bytes;
    for (int i = 0; i < 8; ++i)
        bytes += char(value >> (8 * i) & 0xff);
    return bytes;
}

} // namespace test
