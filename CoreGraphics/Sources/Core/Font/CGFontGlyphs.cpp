// CGFontGlyphs.cpp: glyphs of characters, their measures and their outlines.

#include "XGFont.h"
#include <CoreGraphics/CGFont.h>
#include <FontManager/FMFontGlyphs.h>
#include <FontManager/FMGlyph.h>

#include "Core/Font/CGFontRecord.h"
#include "Core/Object/Saturate.h"

#include <algorithm>
#include <array>
#include <memory>

namespace {

// Advances are asked for in portions that need no memory.
constexpr size_t kPortion = 128;

// Calls `store(index, advance)` for each glyph; false when the font cannot tell.
template <typename Store>
bool forEachAdvance(CGFontRef font, const CGGlyph* glyphs, size_t count, Store store) {
    std::array<CGSize, kPortion> portion;
    for (size_t first = 0; first < count; first += kPortion) {
        const size_t many = std::min(kPortion, count - first);
        if (!FMFontGetAdvancesForGlyphs(font->font.get(), glyphs + first, portion.data(), many))
            return false;
        for (size_t index = 0; index < many; ++index)
            store(first + index, portion[index]);
    }
    return true;
}

struct ReleaseGlyph {
    void operator()(FMGlyphRef glyph) const { FMGlyphRelease(glyph); }
};
using GlyphPtr = std::unique_ptr<FMGlyph, ReleaseGlyph>;

} // namespace

bool CGFontGetGlyphsForUnichars(CGFontRef font, const UniChar* characters, CGGlyph* glyphs,
                                size_t count) {
    return FMFontGetGlyphsForCharactersBijectively(XGFontGetFMFont(font), characters, glyphs,
                                                   count);
}

bool CGFontGetGlyphBBoxes(CGFontRef font, const CGGlyph* glyphs, size_t count, CGRect* boxes) {
    return font && glyphs && boxes && count > 0 &&
           FMFontGetBoundingRectsForGlyphs(font->font.get(), glyphs, boxes, count);
}

bool CGFontGetGlyphAdvances(CGFontRef font, const CGGlyph* glyphs, size_t count, int* advances) {
    return font && glyphs && advances && count > 0 &&
           forEachAdvance(font, glyphs, count, [&](size_t index, CGSize advance) {
               advances[index] = cg::saturate<int>(advance.width);
           });
}

bool CGFontGetGlyphAdvancesForStyle(CGFontRef font, const CGAffineTransform* transform, int,
                                    const CGGlyph* glyphs, size_t count, CGSize* advances) {
    if (!font || !glyphs || !advances || count == 0)
        return false;
    const CGAffineTransform matrix = transform ? *transform : CGAffineTransformIdentity;
    const auto unitsPerEm = static_cast<CGFloat>(std::max(CGFontGetUnitsPerEm(font), 1));
    return forEachAdvance(font, glyphs, count, [&](size_t index, CGSize advance) {
        const CGSize mapped = CGSizeApplyAffineTransform(advance, matrix);
        advances[index] = CGSizeMake(mapped.width / unitsPerEm, mapped.height / unitsPerEm);
    });
}

// ---- Outlines

CGPathRef XGFontCreateGlyphPath(CGFontRef font, const CGAffineTransform* transform, CGGlyph glyph) {
    auto path =
        cf::adopt(font && glyph != 0 ? FMFontCopyPathForGlyph(font->font.get(), glyph) : nullptr);
    if (path && transform && !CGAffineTransformIsIdentity(*transform))
        path = cf::adopt(CGPathCreateCopyByTransformingPath(path.get(), transform));
    return path.release();
}

CGPathRef XGFontCreateGlyphPathAndInfo(CGFontRef font, const CGAffineTransform* transform,
                                       CGGlyph glyph, int32_t* info, CGFloat* advance,
                                       CGFloat fontSize) {
    const int unitsPerEm = CGFontGetUnitsPerEm(font);
    if (!(fontSize > 0) || unitsPerEm <= 0 || glyph == 0)
        return nullptr;
    const GlyphPtr record(FMFontCopyGlyph(font->font.get(), glyph, nullptr));
    if (!record || record->format != kFMGlyphFormatOutline || CGPathIsEmpty(record->path))
        return nullptr;
    const CGFloat scale = fontSize / static_cast<CGFloat>(unitsPerEm);
    CGAffineTransform matrix = CGAffineTransformMakeScale(scale, scale);
    if (transform)
        matrix = CGAffineTransformConcat(matrix, *transform);
    auto path = cf::adopt(XGFontCreateGlyphPath(font, &matrix, glyph));
    if (!path)
        return nullptr;
    if (info)
        *info = record->info;
    if (advance)
        *advance = record->advance.width * scale;
    return path.release();
}
