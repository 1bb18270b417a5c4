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
    const auto lower = string ? lowerCase(string) : nullptr;
    if (!lower)
        return;
    const std::size_t needed = kKindSize + encode(lower.get(), nullptr, 0);
    std::byte* bytes = short_.data();
    if (needed > short_.size()) {
        long_.reset(new (std::nothrow) std::byte[needed]);
        bytes = long_.get();
        if (!bytes)
            return;
    }
    std::memcpy(bytes, kind, kKindSize);
    size_ = kKindSize + encode(lower.get(), bytes + kKindSize, needed - kKindSize);
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
