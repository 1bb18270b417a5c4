// RecordKey.h: the bytes under which a record of the font database is found.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FMBase.h>

#include "LittleEndian.h"
#include "RecordKind.h"

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

namespace fm {

using Bytes = std::span<const std::byte>;

// A kind, and what it is a record of.
class RecordKey {
public:
    // Of a font, or of none.
    explicit RecordKey(const char* kind, FMFontId fontId = record::kNoFont);
    // Of a string, in lower case. Without memory, or without a string, the key is not valid.
    RecordKey(const char* kind, CFStringRef string);
    // The same of its UTF-8.
    RecordKey(const char* kind, std::string_view text);

    bool isValid() const { return size_ > 0; }
    Bytes bytes() const { return {long_ ? long_.get() : short_.data(), size_}; }

private:
    static constexpr std::size_t kKindSize = 4;

    std::array<std::byte, 192> short_;
    std::unique_ptr<std::byte[]> long_; // Of keys that do not fit above, or are not ASCII.
    std::size_t size_ = 0;
};

// The UTF-8 of a string, without an end mark; nullptr as `bytes` without memory.
struct StringBytes {
    std::unique_ptr<std::byte[]> bytes;
    std::size_t size = 0;
};
StringBytes stringBytes(CFStringRef string);

} // namespace fm
