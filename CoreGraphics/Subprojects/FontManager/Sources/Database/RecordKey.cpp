// RecordKey.cpp: forming keys of kinds, ids and strings.

#include "RecordKey.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace fm {

namespace {

constexpr std::size_t kIdSize = 8;

cf::Ref<CFStringRef> lowerCase(CFStringRef string) {
    const auto copy = cf::adopt(CFStringCreateMutableCopy(nullptr, 0, string));
    if (copy)
        CFStringLowercase(copy.get(), nullptr);
    return cf::retain<CFStringRef>(copy.get());
}

// The size of the UTF-8, which is written if there is room. What UTF-16 cannot mean becomes "?".
std::size_t encode(CFStringRef string, std::byte* buffer, std::size_t capacity) {
    CFIndex size = 0;
    CFStringGetBytes(string, CFRangeMake(0, CFStringGetLength(string)), kCFStringEncodingUTF8, '?',
                     false, reinterpret_cast<UInt8*>(buffer), static_cast<CFIndex>(capacity),
                     &size);
    return static_cast<std::size_t>(size);
}

// Puts ASCII in lower case, which nearly all paths and names are; false for anything else.
bool lowerASCII(std::span<std::byte> bytes) {
    const bool isASCII = std::ranges::all_of(
        bytes, [](std::byte byte) { return std::to_integer<int>(byte) < 0x80; });
    for (std::byte& byte : isASCII ? bytes : bytes.first(0))
        if (byte >= std::byte{'A'} && byte <= std::byte{'Z'})
            byte |= std::byte{0x20};
    return isASCII;
}

} // namespace

RecordKey::RecordKey(const char* kind, FMFontId fontId) {
    std::memcpy(short_.data(), kind, kKindSize);
    size_ = kKindSize;
    if (fontId != record::kNoFont) {
        storeLittleEndian(short_.data() + kKindSize,
                          static_cast<std::uint64_t>(std::int64_t{fontId}));
        size_ += kIdSize;
    }
}

RecordKey::RecordKey(const char* kind, CFStringRef string) {
    if (!string)
        return;
    std::memcpy(short_.data(), kind, kKindSize);
    const std::size_t length = encode(string, nullptr, 0);
    const std::span room = std::span(short_).subspan(kKindSize);
    if (length <= room.size() && lowerASCII(room.first(encode(string, room.data(), length)))) {
        size_ = kKindSize + length;
        return;
    }
    const auto lower = lowerCase(string);
    if (!lower)
        return;
    const std::size_t needed = kKindSize + encode(lower.get(), nullptr, 0);
    long_.reset(new (std::nothrow) std::byte[needed]);
    if (!long_)
        return;
    std::memcpy(long_.get(), kind, kKindSize);
    size_ = kKindSize + encode(lower.get(), long_.get() + kKindSize, needed - kKindSize);
}

RecordKey::RecordKey(const char* kind, std::string_view text) {
    const std::span room = std::span(short_).subspan(kKindSize);
    if (text.size() <= room.size()) {
        std::memcpy(room.data(), text.data(), text.size());
        if (lowerASCII(room.first(text.size()))) {
            std::memcpy(short_.data(), kind, kKindSize);
            size_ = kKindSize + text.size();
            return;
        }
    }
    *this = RecordKey(
        kind, cf::adopt(CFStringCreateWithBytes(
                            nullptr, reinterpret_cast<const UInt8*>(text.data()),
                            static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false))
                  .get());
}

StringBytes stringBytes(CFStringRef string) {
    StringBytes result;
    const std::size_t size = encode(string, nullptr, 0);
    result.bytes.reset(new (std::nothrow) std::byte[size > 0 ? size : 1]);
    if (result.bytes)
        result.size = encode(string, result.bytes.get(), size);
    return result;
}

} // namespace fm
