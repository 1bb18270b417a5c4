// TextBytes.cpp: bytes to characters to glyphs.

#include "Core/Context/TextBytes.h"

#include "XGFont.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FMFont.h>
#include <FontManager/FMFontGlyphs.h>

#include <algorithm>
#include <array>

namespace cg {

namespace {

using Characters = std::array<UniChar, 256>;

// What each byte of an encoding of single bytes means; Latin 1 where it means nothing.
Characters charactersOf(CFStringEncoding encoding) {
    Characters characters;
    for (size_t code = 0; code < characters.size(); ++code) {
        const auto byte = static_cast<UInt8>(code);
        const auto text = cf::adopt(CFStringCreateWithBytes(nullptr, &byte, 1, encoding, false));
        characters[code] = text && CFStringGetLength(text.get()) == 1
                               ? CFStringGetCharacterAtIndex(text.get(), 0)
                               : static_cast<UniChar>(code);
    }
    return characters;
}

const Characters& macRoman() {
    static const Characters characters = charactersOf(kCFStringEncodingMacRoman);
    return characters;
}

UniChar latin1(char byte) {
    return static_cast<unsigned char>(byte);
}

// Portions of a few hundred bytes, so that no memory is needed.
template <typename CharacterOf>
size_t glyphsOfSingleBytes(CGFontRef font, std::string_view bytes, CGGlyph* glyphs,
                           CharacterOf characterOf) {
    Characters portion;
    for (size_t first = 0; first < bytes.size(); first += portion.size()) {
        const std::string_view part = bytes.substr(first, portion.size());
        std::transform(part.begin(), part.end(), portion.begin(), characterOf);
        std::fill_n(glyphs + first, part.size(), CGGlyph{0});
        CGFontGetGlyphsForUnichars(font, portion.data(), glyphs + first, part.size());
    }
    return bytes.size();
}

size_t glyphsOfText(CGFontRef font, CFStringRef text, size_t most, CGGlyph* glyphs) {
    Characters portion;
    const size_t count = std::min(most, static_cast<size_t>(CFStringGetLength(text)));
    for (size_t first = 0; first < count; first += portion.size()) {
        const size_t many = std::min(portion.size(), count - first);
        CFStringGetCharacters(text,
                              CFRangeMake(static_cast<CFIndex>(first), static_cast<CFIndex>(many)),
                              portion.data());
        std::fill_n(glyphs + first, many, CGGlyph{0});
        CGFontGetGlyphsForUnichars(font, portion.data(), glyphs + first, many);
    }
    return count;
}

} // namespace

size_t glyphsOfBytes(CGFontRef font, CGTextEncoding encoding, std::string_view bytes,
                     CGGlyph* glyphs) {
    const auto asMacRoman = [](char byte) { return macRoman()[static_cast<unsigned char>(byte)]; };
    if (encoding == kCGEncodingMacRoman)
        return glyphsOfSingleBytes(font, bytes, glyphs, asMacRoman);
    const int32_t own = FMFontGetStringEncoding(XGFontGetFMFont(font));
    if (own == kCFStringEncodingMacRoman)
        return glyphsOfSingleBytes(font, bytes, glyphs, asMacRoman);
    const bool isOther = own >= 0 && own != kCFStringEncodingUnicode;
    const auto text = cf::adopt(
        isOther ? CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                          static_cast<CFIndex>(bytes.size()),
                                          static_cast<CFStringEncoding>(own), false)
                : nullptr);
    return text ? glyphsOfText(font, text.get(), bytes.size(), glyphs)
                : glyphsOfSingleBytes(font, bytes, glyphs, latin1);
}

} // namespace cg
