// Languages.cpp: languages that a face declares, and languages that its characters suffice for.

#include "Face/Languages.h"

#include <CoreFoundation/CFString.h>

#include "Face/Coverage.h"
#include "Face/ExemplarCharacters.h"
#include "Face/SfntTables.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace fm {

namespace {

constexpr uint32_t tagOf(const char (&name)[5]) {
    uint32_t tag = 0;
    for (int i = 0; i < 4; ++i)
        tag = tag << 8 | static_cast<uint8_t>(name[i]);
    return tag;
}

using Bytes = std::span<const UInt8>;

uint32_t bigEndian32(Bytes bytes, size_t offset) {
    return offset + 4 <= bytes.size()
               ? uint32_t{bytes[offset]} << 24 | uint32_t{bytes[offset + 1]} << 16 |
                     uint32_t{bytes[offset + 2]} << 8 | bytes[offset + 3]
               : 0;
}

// The `meta` table: version, flags, an unused number, a count, then for each entry a tag and the
// place and length of its text.
std::string_view metadata(Bytes table, uint32_t tag) {
    constexpr size_t kHeaderSize = 16, kEntrySize = 12;
    const uint32_t count = bigEndian32(table, 12);
    for (uint32_t i = 0; i < count && kHeaderSize + (i + 1) * kEntrySize <= table.size(); ++i) {
        const size_t entry = kHeaderSize + i * kEntrySize;
        const uint32_t offset = bigEndian32(table, entry + 4);
        const uint32_t length = bigEndian32(table, entry + 8);
        if (bigEndian32(table, entry) != tag)
            continue;
        if (offset > table.size() || length > table.size() - offset)
            return {};
        return {reinterpret_cast<const char*>(table.data()) + offset, length};
    }
    return {};
}

bool isLowerCase(char letter) {
    return letter >= 'a' && letter <= 'z';
}

bool isTagCharacter(char letter) {
    return isLowerCase(letter) || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9') || letter == '-';
}

// Declarations name languages or scripts alone; a language is two or three small letters in front.
bool namesLanguage(std::string_view tag) {
    const size_t length = std::min(tag.find('-'), tag.size());
    return (length == 2 || length == 3) &&
           std::all_of(tag.begin(), tag.begin() + static_cast<ptrdiff_t>(length), isLowerCase) &&
           std::all_of(tag.begin(), tag.end(), isTagCharacter);
}

void appendOnce(CFMutableArrayRef languages, std::string_view tag) {
    const auto language = cf::adopt(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(tag.data()),
                                static_cast<CFIndex>(tag.size()), kCFStringEncodingASCII, false));
    const auto all = CFRangeMake(0, CFArrayGetCount(languages));
    if (language && !CFArrayContainsValue(languages, all, language.get()))
        CFArrayAppendValue(languages, language.get());
}

// A list such as "en, zh-Hant, Cyrl".
void appendDeclared(CFMutableArrayRef languages, std::string_view list) {
    while (!list.empty()) {
        const size_t end = std::min(list.find(','), list.size());
        std::string_view tag = list.substr(0, end);
        tag.remove_prefix(std::min(tag.find_first_not_of(' '), tag.size()));
        tag = tag.substr(0, tag.find_last_not_of(' ') + 1);
        if (namesLanguage(tag))
            appendOnce(languages, tag);
        list.remove_prefix(std::min(end + 1, list.size()));
    }
}

void appendDeclared(CFMutableArrayRef languages, FT_Face face) {
    const auto meta = copyTable(face, tagOf("meta"));
    if (!meta)
        return;
    const Bytes table(CFDataGetBytePtr(meta.get()),
                      static_cast<size_t>(CFDataGetLength(meta.get())));
    appendDeclared(languages, metadata(table, tagOf("dlng")));
    appendDeclared(languages, metadata(table, tagOf("slng")));
}

void appendCovered(CFMutableArrayRef languages, FT_Face face) {
    const CharacterRanges covered = makeCharacterRanges();
    if (!covered)
        return;
    forEachMappedRange(face, [&](uint32_t first, uint32_t last) {
        uset_addRange(covered.get(), static_cast<UChar32>(first), static_cast<UChar32>(last));
    });
    for (const ExemplarCharacters& language : exemplarCharacters())
        if (uset_containsAll(covered.get(), language.characters.get()))
            appendOnce(languages, language.tag.data());
}

} // namespace

cf::Ref<CFArrayRef> copyLanguages(FT_Face face) {
    auto languages =
        cf::adopt(CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
    if (!languages)
        return nullptr;
    appendDeclared(languages.get(), face);
    appendCovered(languages.get(), face);
    return cf::adopt<CFArrayRef>(languages.release());
}

} // namespace fm
