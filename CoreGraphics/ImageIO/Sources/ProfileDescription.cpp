// ProfileDescription.cpp: what a colour profile calls itself.

#include "ProfileDescription.h"

#include "BigEndian.h"

#include <algorithm>

namespace imageio {
namespace {

constexpr std::uint32_t kDescription = 0x64657363;    // "desc", a tag and its type in version 2.
constexpr std::uint32_t kLocalizedTexts = 0x6D6C7563; // "mluc", its type since version 4.

// What there is of so many bytes from `offset` on.
Bytes part(Bytes bytes, std::size_t offset, std::size_t size) {
    const std::size_t start = std::min(offset, bytes.size());
    return bytes.subspan(start, std::min(size, bytes.size() - start));
}

// Behind the header of 128 bytes comes the table of tags: name, place and size of each.
Bytes findTag(Bytes profile, std::uint32_t name) {
    constexpr std::size_t kTable = 128, kFirst = 132, kEntry = 12;
    constexpr std::uint32_t kMostTags = 1000;
    const std::uint32_t count = std::min(u32(profile, kTable), kMostTags);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t entry = kFirst + i * kEntry;
        if (u32(profile, entry) == name)
            return part(profile, u32(profile, entry + 4), u32(profile, entry + 8));
    }
    return {};
}

cf::Ref<CFStringRef> makeText(Bytes bytes, CFStringEncoding encoding) {
    if (bytes.empty())
        return nullptr;
    return cf::adopt(CFStringCreateWithBytes(nullptr, bytes.data(),
                                             static_cast<CFIndex>(bytes.size()), encoding, false));
}

// A count that includes the NUL, then the letters.
cf::Ref<CFStringRef> plainText(Bytes tag) {
    const Bytes letters = part(tag, 12, u32(tag, 8));
    const auto end = std::ranges::find(letters, std::uint8_t(0));
    const Bytes text = letters.first(static_cast<std::size_t>(end - letters.begin()));
    return makeText(text, kCFStringEncodingISOLatin1);
}

// Records of a language, a country, and the size and place of a text in UTF-16.
cf::Ref<CFStringRef> localizedText(Bytes tag) {
    constexpr std::size_t kFirst = 16;
    constexpr std::uint32_t kMostTexts = 1000, kEnglish = 0x656E; // "en"
    const std::uint32_t count = std::min(u32(tag, 8), kMostTexts), recordSize = u32(tag, 12);
    std::size_t chosen = kFirst;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t record = kFirst + std::size_t(i) * recordSize;
        if (u16(tag, record) == kEnglish) {
            chosen = record;
            break;
        }
    }
    const Bytes text = part(tag, u32(tag, chosen + 8), u32(tag, chosen + 4) & ~1u);
    return count > 0 ? makeText(text, kCFStringEncodingUTF16BE) : nullptr;
}

} // namespace

cf::Ref<CFStringRef> profileDescription(Bytes profile) {
    const Bytes tag = findTag(profile, kDescription);
    switch (u32(tag, 0)) {
    case kDescription:
        return plainText(tag);
    case kLocalizedTexts:
        return localizedText(tag);
    default:
        return nullptr;
    }
}

} // namespace imageio
