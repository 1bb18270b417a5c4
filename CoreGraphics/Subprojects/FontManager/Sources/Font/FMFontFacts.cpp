// FMFontFacts.cpp: format, restrictions and encoding: facts read off a face once.

#include <CoreFoundation/CFStringEncodingExt.h>
#include <FontManager/FMFont.h>

#include "Font/FaceUse.h"
#include "Font/LibraryQueries.h"

#include FT_TRUETYPE_IDS_H
#include FT_TRUETYPE_TABLES_H

#include <array>

namespace {

// ---- Format

constexpr FT_ULong kLayoutTables[] = {
    FT_MAKE_TAG('B', 'A', 'S', 'E'),
    FT_MAKE_TAG('G', 'D', 'E', 'F'),
    FT_MAKE_TAG('G', 'P', 'O', 'S'),
    FT_MAKE_TAG('G', 'S', 'U', 'B'),
};

bool isLayoutTable(FT_ULong tag) {
    for (const FT_ULong layout : kLayoutTables) {
        if (tag == layout)
            return true;
    }
    return false;
}

// The walk ends where the directory does, or cannot be read on.
bool hasLayoutTable(FT_Face face) {
    FT_ULong tag = 0;
    FT_ULong length = 0;
    for (FT_UInt i = 0; FT_Sfnt_Table_Info(face, i, &tag, &length) == 0; ++i) {
        if (isLayoutTable(tag))
            return true;
    }
    return false;
}

FMFontFormat formatOf(FT_Face face) {
    if (FT_IS_SFNT(face)) {
        if (!hasLayoutTable(face))
            return kFMFontFormatTrueType;
        return FT_IS_SCALABLE(face) ? kFMFontFormatOpenType : kFMFontFormatOpenTypeBitmap;
    }
    if (FT_IS_SCALABLE(face))
        return kFMFontFormatPostScript;
    return FT_HAS_FIXED_SIZES(face) ? kFMFontFormatBitmap : kFMFontFormatOther;
}

// ---- Restrictions

std::uint8_t restrictionsOf(FT_Face face) {
    const FT_UShort embedding = FT_Get_FSType_Flags(face);
    constexpr FT_UShort kReserved = 0x0001;
    constexpr FT_UShort kNoOutlines =
        FT_FSTYPE_RESTRICTED_LICENSE_EMBEDDING | FT_FSTYPE_BITMAP_EMBEDDING_ONLY;
    return static_cast<std::uint8_t>((embedding & kReserved ? 1 : 0) |
                                     (embedding & FT_FSTYPE_NO_SUBSETTING ? 2 : 0) |
                                     (embedding & kNoOutlines ? 4 : 0));
}

// ---- String encoding

constexpr std::int32_t kNoEncoding = -1;
constexpr std::int32_t kUnicode = kCFStringEncodingUnicode;

struct CharmapEncoding {
    FT_UShort platform;
    FT_UShort encoding;
    std::int32_t result;
};

constexpr CharmapEncoding kCharmapEncodings[] = {
    {TT_PLATFORM_APPLE_UNICODE, TT_APPLE_ID_DEFAULT, kUnicode},
    {TT_PLATFORM_APPLE_UNICODE, TT_APPLE_ID_UNICODE_1_1, kUnicode},
    {TT_PLATFORM_APPLE_UNICODE, TT_APPLE_ID_ISO_10646, kUnicode},
    {TT_PLATFORM_APPLE_UNICODE, TT_APPLE_ID_UNICODE_2_0, kUnicode},
    {TT_PLATFORM_APPLE_UNICODE, TT_APPLE_ID_UNICODE_32, kUnicode},
    {TT_PLATFORM_ISO, TT_ISO_ID_7BIT_ASCII, kCFStringEncodingASCII},
    {TT_PLATFORM_ISO, TT_ISO_ID_10646, kUnicode},
    {TT_PLATFORM_ISO, TT_ISO_ID_8859_1, kCFStringEncodingISOLatin1},
    {TT_PLATFORM_MICROSOFT, TT_MS_ID_SYMBOL_CS, kUnicode},
    {TT_PLATFORM_MICROSOFT, TT_MS_ID_UNICODE_CS, kUnicode},
    {TT_PLATFORM_MICROSOFT, TT_MS_ID_UCS_4, kUnicode},
    {TT_PLATFORM_MICROSOFT, TT_MS_ID_SJIS, kCFStringEncodingShiftJIS},
    {TT_PLATFORM_MICROSOFT, TT_MS_ID_PRC, kCFStringEncodingGB_2312_80},
    {TT_PLATFORM_MICROSOFT, TT_MS_ID_BIG_5, kCFStringEncodingBig5},
    {TT_PLATFORM_MICROSOFT, TT_MS_ID_WANSUNG, kCFStringEncodingKSC_5601_87},
    {TT_PLATFORM_MICROSOFT, TT_MS_ID_JOHAB, kCFStringEncodingKSC_5601_92_Johab},
    {TT_PLATFORM_ADOBE, 3, kCFStringEncodingISOLatin1},
};

std::int32_t encodingOf(FT_UShort platform, FT_UShort encoding) {
    // Script numbers are the numbers of their string encodings.
    if (platform == TT_PLATFORM_MACINTOSH)
        return encoding;
    for (const CharmapEncoding& known : kCharmapEncodings) {
        if (known.platform == platform && known.encoding == encoding)
            return known.result;
    }
    return kNoEncoding;
}

// Deliberate: whatever has Unicode's bit is called plain Unicode. That gathers its forms, and takes
// character maps that nobody knows for Unicode, too: fonts with such maps are asked for Unicode
// characters all the same.
std::int32_t collapsed(std::int32_t encoding) {
    return encoding & kUnicode ? kUnicode : encoding;
}

std::int32_t encodingOf(FT_Face face) {
    const FT_CharMap map = face->charmap;
    return map ? collapsed(encodingOf(map->platform_id, map->encoding_id)) : kNoEncoding;
}

} // namespace

FMFontFormat FMFontGetFormat(FMFontRef font) {
    if (!font)
        return kFMFontFormatUnknown;
    if (const FMFontFormat known = font->format.load(std::memory_order_relaxed))
        return known;
    const std::lock_guard hold(font->mutex);
    FMFontFormat format = kFMFontFormatUnknown;
    if (!FMFontIsActive(font))
        format = fm::askLibrary(*font, FMLibraryGetFontFormat).value_or(format);
    if (format == kFMFontFormatUnknown) {
        const fm::FaceUse use(font);
        format = use ? formatOf(use.face()) : kFMFontFormatUnknown;
    }
    font->format.store(format, std::memory_order_relaxed);
    return format;
}

uint8_t FMFontGetRestrictions(FMFontRef font) {
    if (!font)
        return 0;
    if (font->has(fm::kStatusRestrictionsValid))
        return font->restrictions.load(std::memory_order_relaxed);
    const std::lock_guard hold(font->mutex);
    auto restrictions = fm::askLibrary(*font, FMLibraryGetFontRestrictions);
    if (!restrictions) {
        const fm::FaceUse use(font);
        if (!use)
            return 0;
        restrictions = restrictionsOf(use.face());
    }
    font->restrictions.store(*restrictions, std::memory_order_relaxed);
    font->set(fm::kStatusRestrictionsValid);
    return *restrictions;
}

int32_t FMFontGetStringEncoding(FMFontRef font) {
    if (!font)
        return kNoEncoding;
    const std::int32_t known = font->stringEncoding.load(std::memory_order_relaxed);
    if (known != fm::kUnknownEncoding)
        return known;
    const std::lock_guard hold(font->mutex);
    auto encoding = fm::askLibrary(*font, FMLibraryGetFontStringEncoding);
    if (!encoding) {
        const fm::FaceUse use(font);
        encoding = use ? encodingOf(use.face()) : kNoEncoding;
    }
    font->stringEncoding.store(*encoding, std::memory_order_relaxed);
    return *encoding;
}

CFIndex FMFontGetNumberOfGlyphs(FMFontRef font) {
    if (!font)
        return 0;
    const CFIndex known = font->glyphCount.load(std::memory_order_relaxed);
    if (known != fm::kUnknownGlyphCount)
        return known;
    const std::lock_guard hold(font->mutex);
    auto count = fm::askLibrary(*font, FMLibraryGetFontNumberOfGlyphs);
    if (!count) {
        const fm::FaceUse use(font);
        if (!use)
            return 0;
        count = static_cast<std::int32_t>(use.face()->num_glyphs);
    }
    font->glyphCount.store(*count, std::memory_order_relaxed);
    return *count;
}
