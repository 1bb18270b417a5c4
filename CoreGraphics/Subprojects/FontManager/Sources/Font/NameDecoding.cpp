// NameDecoding.cpp: the bytes of name records as strings.

#include "Font/NameTable.h"

#include FT_TRUETYPE_IDS_H

#include <CoreFoundation/CFStringEncodingExt.h>

#include <cstddef>
#include <memory>
#include <new>
#include <span>

namespace fm {

namespace {

constexpr CFStringEncoding kUnicode = kCFStringEncodingUTF16BE;

// Names under Windows' national code pages are in the code page proper, beyond the bare standards.
CFStringEncoding windowsEncoding(FT_UShort encoding) {
    switch (encoding) {
    case TT_MS_ID_SJIS:
        return kCFStringEncodingDOSJapanese;
    case TT_MS_ID_PRC:
        return kCFStringEncodingDOSChineseSimplif;
    case TT_MS_ID_BIG_5:
        return kCFStringEncodingDOSChineseTrad;
    case TT_MS_ID_WANSUNG:
        return kCFStringEncodingDOSKorean;
    case TT_MS_ID_JOHAB:
        return kCFStringEncodingWindowsKoreanJohab;
    default:
        return kUnicode;
    }
}

// Scripts share their number with the encoding of most of their languages; a few Latin ones and
// Persian have encodings of their own.
CFStringEncoding macEncoding(FT_UShort script, FT_UShort language) {
    if (script == TT_MAC_ID_ROMAN) {
        switch (language) {
        case TT_MAC_LANGID_TURKISH:
            return kCFStringEncodingMacTurkish;
        case TT_MAC_LANGID_CROATIAN:
            return kCFStringEncodingMacCroatian;
        case TT_MAC_LANGID_ICELANDIC:
            return kCFStringEncodingMacIcelandic;
        case TT_MAC_LANGID_ROMANIAN:
            return kCFStringEncodingMacRomanian;
        default:
            return kCFStringEncodingMacRoman;
        }
    }
    return script == TT_MAC_ID_ARABIC && language == TT_MAC_LANGID_FARSI
               ? CFStringEncoding{kCFStringEncodingMacFarsi}
               : CFStringEncoding{script};
}

CFStringEncoding isoEncoding(FT_UShort encoding) {
    switch (encoding) {
    case TT_ISO_ID_7BIT_ASCII:
        return kCFStringEncodingASCII;
    case TT_ISO_ID_10646:
        return kUnicode;
    case TT_ISO_ID_8859_1:
        return kCFStringEncodingISOLatin1;
    default:
        return kCFStringEncodingInvalidId;
    }
}

CFStringEncoding encodingOf(const FT_SfntName& record) {
    switch (record.platform_id) {
    case TT_PLATFORM_APPLE_UNICODE:
        return kUnicode;
    case TT_PLATFORM_MACINTOSH:
        return macEncoding(record.encoding_id, record.language_id);
    case TT_PLATFORM_ISO:
        return isoEncoding(record.encoding_id);
    case TT_PLATFORM_MICROSOFT:
        return windowsEncoding(record.encoding_id);
    default:
        return kCFStringEncodingInvalidId;
    }
}

cf::Ref<CFStringRef> makeText(std::span<const FT_Byte> bytes, CFStringEncoding encoding) {
    return cf::adopt(CFStringCreateWithBytes(nullptr, bytes.data(),
                                             static_cast<CFIndex>(bytes.size()), encoding, false));
}

std::span<const FT_Byte> withoutEndMarks(std::span<const FT_Byte> bytes, std::size_t unit) {
    bytes = bytes.first(bytes.size() - bytes.size() % unit);
    while (bytes.size() >= unit) {
        for (const FT_Byte byte : bytes.last(unit)) {
            if (byte != 0)
                return bytes;
        }
        bytes = bytes.first(bytes.size() - unit);
    }
    return bytes;
}

// Whether every surrogate has its partner: strings would keep others, and could not be stored.
bool isWellFormed(std::span<const FT_Byte> utf16) {
    constexpr FT_Byte kHigh = 0xD8, kLow = 0xDC, kMask = 0xFC;
    for (std::size_t i = 0; i + 1 < utf16.size(); i += 2) {
        const int kind = utf16[i] & kMask;
        if (kind == kLow)
            return false;
        if (kind != kHigh)
            continue;
        i += 2;
        if (i >= utf16.size() || (utf16[i] & kMask) != kLow)
            return false;
    }
    return true;
}

// Code page texts are stored in 16-bit units: their single bytes come with a zero in front.
cf::Ref<CFStringRef> makeCodePageText(std::span<const FT_Byte> bytes, CFStringEncoding encoding) {
    const std::unique_ptr<FT_Byte[]> packed(new (std::nothrow) FT_Byte[bytes.size()]);
    if (!packed)
        return nullptr;
    std::size_t count = 0;
    for (const FT_Byte byte : bytes) {
        if (byte != 0)
            packed[count++] = byte;
    }
    return count > 0 ? makeText({packed.get(), count}, encoding) : nullptr;
}

} // namespace

cf::Ref<CFStringRef> decodeName(const FT_SfntName& record) {
    const CFStringEncoding encoding = encodingOf(record);
    const std::span<const FT_Byte> all(record.string, record.string ? record.string_len : 0);
    if (encoding == kCFStringEncodingInvalidId || !CFStringIsEncodingAvailable(encoding))
        return nullptr;
    if (encoding != kUnicode && record.platform_id == TT_PLATFORM_MICROSOFT)
        return makeCodePageText(all, encoding);
    const auto bytes = withoutEndMarks(all, encoding == kUnicode ? 2 : 1);
    if (bytes.empty() || (encoding == kUnicode && !isWellFormed(bytes)))
        return nullptr;
    return makeText(bytes, encoding);
}

} // namespace fm
