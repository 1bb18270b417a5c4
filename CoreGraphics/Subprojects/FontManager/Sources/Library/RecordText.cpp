// RecordText.cpp: names in a database, read without making strings of them.

#include "Library/RecordText.h"

#include <CoreFoundation/CFURL.h>

#include "Database/FMDatabaseRecord.h"
#include "Database/RecordKind.h"
#include "Library/NameText.h"
#include "Library/SystemState.h"

#include <algorithm>
#include <climits>
#include <string_view>

namespace fm {
namespace {

// Hands the record's bytes to `read`; they are lent for the call.
template <typename Read>
auto withRecord(FMDatabaseRef database, const char* kind, FMFontId fontId, Read read)
    -> decltype(read(std::string_view())) {
    if (!database)
        return {};
    const auto hold = database->holdForReading();
    const auto value = database->find(RecordKey(kind, fontId));
    if (!value)
        return {};
    return read(std::string_view(reinterpret_cast<const char*>(value->data()), value->size()));
}

cf::Ref<CFStringRef> stringOfUTF8(std::string_view bytes) {
    return cf::adopt(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                             static_cast<CFIndex>(bytes.size()),
                                             kCFStringEncodingUTF8, false));
}

// Without a way out in between, which lets the compiler take many bytes at once.
bool isASCII(std::string_view bytes) {
    unsigned char bits = 0;
    for (const char c : bytes)
        bits = static_cast<unsigned char>(bits | static_cast<unsigned char>(c));
    return bits < 0x80;
}

std::u16string lowerCasedASCII(std::string_view bytes) {
    std::u16string text(bytes.size(), u'\0');
    std::ranges::transform(bytes, text.begin(), [](char c) {
        return static_cast<char16_t>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
    });
    return text;
}

std::optional<std::u16string> lowerCasedUTF8(std::string_view bytes) {
    if (isASCII(bytes))
        return lowerCasedASCII(bytes);
    const auto string = stringOfUTF8(bytes);
    return string ? std::optional(lowerCased(string.get())) : std::nullopt;
}

std::string pathOfURL(std::string_view url) {
    constexpr std::string_view start = "file:///";
    if (url.starts_with(start) && url.find_first_of("%?#;") == url.npos)
        return std::string(url.substr(start.size() - 1));
    const auto text = stringOfUTF8(url);
    const auto parsed =
        cf::adopt(text ? CFURLCreateWithString(nullptr, text.get(), nullptr) : nullptr);
    const auto path = pathOf(parsed.get());
    char bytes[PATH_MAX];
    return path && CFStringGetFileSystemRepresentation(path.get(), bytes, sizeof bytes)
               ? std::string(bytes)
               : std::string();
}

} // namespace

std::optional<std::u16string> lowerCasedRecord(FMDatabaseRef database, const char* kind,
                                               FMFontId fontId) {
    return withRecord(database, kind, fontId, lowerCasedUTF8);
}

bool isTextRecord(FMDatabaseRef database, const char* kind, FMFontId fontId) {
    return withRecord(database, kind, fontId,
                      [](std::string_view bytes) { return isASCII(bytes) || stringOfUTF8(bytes); });
}

std::string pathInRecord(FMDatabaseRef database, FMFontId fontId) {
    return withRecord(database, record::kLocation, fontId, pathOfURL);
}

} // namespace fm
