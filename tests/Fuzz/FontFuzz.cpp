// FontFuzz.cpp: fonts of any bytes; every query is asked of them, of glyphs that they have and
// lack.

#include <CoreFoundation/CFRef.h>
#include <FontManager/FontManager.h>
#include <Host/Host.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

constexpr std::array<UTF32Char, 12> kCodePoints = {
    0, '\t', ' ', 'A', 0xE9, 0x5D0, 0x2011, 0x4E00, 0xF041, 0x10280, 0x1F600, 0x110000};
constexpr std::array<UniChar, 8> kCharacters = {'A',    0xD800, 0xDE80, 0xDC00,
                                                0xD800, 0xF041, '\n',   0xFFFF};

// The first glyphs, the last, and such as there are none.
constexpr size_t kAskedGlyphs = 8;
std::array<CGGlyph, kAskedGlyphs> askedGlyphs(CFIndex count) {
    const auto last = static_cast<CGGlyph>(count > 0 ? count - 1 : 0);
    return {0,    1, 2, 3, static_cast<CGGlyph>(last / 2), last, static_cast<CGGlyph>(last + 1),
            65535};
}

void askForGlyphs(FMFontRef font) {
    const CFIndex count = FMFontGetNumberOfGlyphs(font);
    std::array<CGGlyph, kCodePoints.size()> glyphs;
    FMFontGetGlyphsForCodePoints(font, kCodePoints.data(), glyphs.data(), glyphs.size());
    for (const CGGlyph glyph : glyphs)
        require(glyph == 0 || glyph < count);
    require(glyphs.back() == 0);
    FMFontGetGlyphsForCharactersBijectively(font, kCharacters.data(), glyphs.data(),
                                            kCharacters.size());
    require(glyphs[2] == 0 && glyphs[3] == 0 && glyphs[4] == 0);

    const auto asked = askedGlyphs(count);
    std::array<CGSize, kAskedGlyphs> advances;
    std::array<CGRect, kAskedGlyphs> rects;
    require(FMFontGetAdvancesForGlyphs(font, asked.data(), advances.data(), asked.size()));
    require(FMFontGetBoundingRectsForGlyphs(font, asked.data(), rects.data(), asked.size()));
    for (size_t i = 0; i < asked.size(); ++i) {
        require(std::isfinite(advances[i].width) && advances[i].height == 0);
        require(rects[i].size.width >= 0 && rects[i].size.height >= 0);
        require(asked[i] < count || (advances[i].width == 0 && rects[i].size.width == 0));
        const auto path = cf::adopt(FMFontCopyPathForGlyph(font, asked[i]));
        require(asked[i] < count || !path);
        require(CGPathIsEmpty(path.get()) ||
                std::isfinite(CGPathGetBoundingBox(path.get()).origin.x));
        const auto name = cf::adopt(FMFontCopyGlyphName(font, asked[i]));
        FMFontGetGlyphWithCFName(font, name.get());
        require(
            std::isfinite(FMFontGetKerningForGlyph(font, asked[i], asked[(i + 1) % asked.size()])));
        std::array<CGFloat, 4> carets;
        FMFontGetLigatureCaretPositions(font, asked[i], carets.data(), 4);
    }
}

void askForTables(FMFontRef font) {
    const auto tags = cf::adopt(FMFontCopyAvailableTables(font));
    const CFIndex count = FMFontGetAvailableTablesCount(font);
    require(tags ? CFArrayGetCount(tags.get()) == count : count == 0);
    // Fonts have some twenty; a directory of thousands names the same bytes again and again.
    for (CFIndex i = 0; i < count && i < 32; ++i) {
        const auto tag = static_cast<uint32_t>(
            reinterpret_cast<uintptr_t>(CFArrayGetValueAtIndex(tags.get(), i)));
        const auto table = cf::adopt(FMFontCopyTable(font, tag));
        require(!table || CFDataGetLength(table.get()) > 0);
    }
}

template <typename Record>
void countCall(const Record*, void* calls) {
    ++*static_cast<CFIndex*>(calls);
}

void countSettings(const FMFeature* feature, void* font) {
    CFIndex calls = 0;
    FMFontIterateAATFeatureSettings(static_cast<FMFontRef>(font), feature->type,
                                    countCall<FMFeatureSetting>, &calls);
}

void askForVariety(FMFontRef font) {
    CFIndex axes = 0, styles = 0, features = 0;
    FMFontIterateMMVariationAxes(font, countCall<FMVariationAxis>, &axes);
    FMFontIterateMMVariationNamedStyles(font, countCall<FMVariationNamedStyle>, &styles);
    FMFontIterateAATFeatures(font, countCall<FMFeature>, &features);
    FMFontIterateAATFeatures(font, countSettings, font);
    require(axes == FMFontGetMMVariationAxisCount(font));
    require(styles == FMFontGetMMVariationNamedStyleCount(font));
    require(features == FMFontGetAATFeaturesCount(font));
    require(FMFontGetMMVariationDesignCount(font) >= 0);
}

void askForCoverage(FMFontRef font) {
    const auto set = cf::adopt(FMFontCopyCharacterSet(font));
    const auto languages = cf::adopt(FMFontCopySupportedLanguages(font));
    require(set && languages);
    // In charmaps out of order FreeType walks over characters that it does not find: what the set
    // says of them is not asked.
    require(!CFCharacterSetIsLongCharacterMember(set.get(), 0x110000));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    HostLogSetThreshold(kHostLogFault);
    // Collections have a second face.
    for (const int64_t faceIndex : {0, 1}) {
        const FMFontRef font = FMFontCreateFromMemory(bytes, size, faceIndex, true);
        if (!font)
            break;
        askForGlyphs(font);
        askForTables(font);
        askForVariety(font);
        askForCoverage(font);
        FMFontPurge(font);
        askForVariety(font);
        FMFontRelease(font);
    }
    return 0;
}
