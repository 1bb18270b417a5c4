// Fonts.h: fonts of the packages that tools/install-packages names, a kind each.
#pragma once

#include "XGFont.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGFont.h>
#include <FontManager/FMFont.h>

#include "Support/FontPaths.h"

#include <string_view>
#include <vector>

namespace test {

using Font = cf::Ref<CGFontRef>;

inline constexpr char kMonospacedFont[] =
    "/usr/share/fonts/truetype/liberation2/LiberationMono-Regular.ttf";
inline constexpr char kCFFFont[] = "/usr/share/fonts/opentype/urw-base35/NimbusRoman-Italic.otf";
inline constexpr char kType1Font[] = "/usr/share/fonts/type1/urw-base35/C059-Roman.t1";
inline constexpr char kCollection[] = "/usr/share/fonts/opentype/noto/NotoSerifCJK-Bold.ttc";

// Empty where there is no such font.
inline Font makeFont(const char* path, std::int64_t face = 0) {
    const auto text = cf::adopt(CFStringCreateWithCString(nullptr, path, kCFStringEncodingUTF8));
    const FMFontRef native = FMFontCreateWithPath(text.get(), face, true);
    auto font = cf::adopt(XGFontCreateWithFMFont(native));
    FMFontRelease(native);
    return font;
}

// The same font's file in memory.
inline Font makeFontInMemory(const char* path) {
    const auto provider = cf::adopt(CGDataProviderCreateWithFilename(path));
    return cf::adopt(CGFontCreateWithDataProvider(provider.get()));
}

inline std::vector<CGGlyph> glyphsOf(CGFontRef font, std::u16string_view text) {
    const std::vector<UniChar> characters(text.begin(), text.end());
    std::vector<CGGlyph> glyphs(text.size());
    CGFontGetGlyphsForUnichars(font, characters.data(), glyphs.data(), glyphs.size());
    return glyphs;
}

} // namespace test
