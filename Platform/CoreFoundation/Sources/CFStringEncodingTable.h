// CFStringEncodingTable.h: what is known of each encoding.
#pragma once

#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFStringEncodingExt.h>

#include <array>
#include <span>

namespace cf {

enum class Shape : uint8_t {
    ASCII, // Bytes below 0x80 are the ASCII characters.
    Other, // Nothing may be told from a byte alone.
};

struct EncodingRow {
    CFStringEncoding encoding;
    const char* converter;   // ICU's name; nullptr where we convert by ourselves alone.
    const char* charSetName; // As registered with IANA, or the x- name in use.
    const char* name;
    uint16_t codepage;    // 0: none.
    uint8_t bytesPerUnit; // At most, with all shifts that an isolated character needs.
    uint8_t macScript;    // The Mac encoding of the same script.
    Shape shape;
};

// More than there are rows.
inline constexpr size_t kMaximumEncodings = 128;
// All that can be converted, the first of several rows with one converter being the usual one.
std::span<const EncodingRow> encodingRows();
// The row of `encoding`, or nullptr.
const EncodingRow* findEncoding(CFStringEncoding encoding);

// The characters of bytes 0x80 to 0xFF; U+FFFD where there is none.
using HighHalf = std::array<char16_t, 128>;
extern const HighHalf kMacRomanHighHalf;
extern const HighHalf kNextStepHighHalf;

} // namespace cf
