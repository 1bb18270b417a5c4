// GlyphRenderer.cpp: which kind of record a glyph becomes, and how.

#include "Glyph/GlyphRenderer.h"

#include <CoreFoundation/CFRef.h>
#include <FontManager/FMFontGlyphs.h>

#include "Core/Object/Saturate.h"
#include "Face/FreeType.h"
#include "Font/FaceUse.h"
#include "Glyph/GlyphPixels.h"
#include "Glyph/SizedFace.h"
#include "Glyph/StrikeScaler.h"

#include FT_OUTLINE_H

#include <cmath>

namespace fm {

namespace {

constexpr FT_Pos kMostMaskPixels = 256;
constexpr FT_Int32 kUnhinted = FT_LOAD_NO_HINTING | FT_LOAD_NO_AUTOHINT;

// Glyphs are pixels in the font: in all bitmap fonts, and in some that have colours.
bool hasStrikes(FT_Face face) {
    return FT_HAS_FIXED_SIZES(face) && (!FT_IS_SCALABLE(face) || FT_HAS_COLOR(face));
}

bool isPixels(const FT_GlyphSlot slot) {
    return slot->format == FT_GLYPH_FORMAT_BITMAP;
}

CGSize unscaledAdvance(FMFontRef font, CGGlyph glyph) {
    CGSize advance = CGSizeZero;
    FMFontGetAdvancesForGlyphs(font, &glyph, &advance, 1);
    return advance;
}

// From font units, by the size and matrix of a mask's key.
CGSize scaledAdvance(FMFontRef font, FT_Face face, const GlyphKey& key) {
    const CGSize advance = unscaledAdvance(font, key.glyph);
    const double scale = key.size / 64.0 / 65536.0 / unitsPerEm(face);
    const auto along = [&](double byWidth, double byHeight) {
        return static_cast<CGFloat>((advance.width * byWidth + advance.height * byHeight) * scale);
    };
    return {along(key.matrix[0], key.matrix[2]), along(key.matrix[1], key.matrix[3])};
}

// ---- Without a size

GlyphPointer measure(FMFontRef font, FT_Face face, const GlyphKey& key) {
    GlyphPointer record;
    if (hasStrikes(face)) {
        record = makeGlyphRecord(
            key, FT_HAS_COLOR(face) ? kFMGlyphFormatColor : kFMGlyphFormatGreyMask, 0, 0);
    } else if (FT_Load_Glyph(face, key.glyph, FT_LOAD_NO_SCALE) == 0 &&
               (record = makeGlyphRecord(key, kFMGlyphFormatOutline, 0, 0))) {
        record->info = static_cast<std::int32_t>(face->glyph->metrics.horiBearingX);
        setPath(*record, cf::adopt(FMFontCopyPathForGlyph(font, key.glyph)).get());
    }
    if (record)
        record->advance = unscaledAdvance(font, key.glyph);
    return record;
}

// ---- Outlines in pixels

GlyphPointer outline(FMFontRef font, FT_Face face, const GlyphKey& key) {
    GlyphPointer record = makeGlyphRecord(key, kFMGlyphFormatOutline, 0, 0);
    if (!record)
        return nullptr;
    const CGAffineTransform matrix = outlineMatrix(key, unitsPerEm(face));
    const auto path = cf::adopt(FMFontCopyPathForGlyph(font, key.glyph));
    if (path)
        setPath(*record, cf::adopt(CGPathCreateCopyByTransformingPath(path.get(), &matrix)).get());
    record->advance = CGSizeApplyAffineTransform(unscaledAdvance(font, key.glyph), matrix);
    return record;
}

// ---- Pixels of the font

GlyphPointer scaleStrike(FMFontRef font, FT_Face face, const GlyphKey& key) {
    const SizedFace sized(face, key, SizedFace::Strike{});
    if (!sized || FT_Load_Glyph(face, key.glyph, FT_LOAD_COLOR) != 0 || !isPixels(face->glyph))
        return nullptr;
    FT_Int index = 0;
    const double scale = double(key.size) / nearestStrike(face, key.size, index);
    GlyphPointer record = scaleBitmap(key, *face->glyph, scale);
    if (record)
        record->advance = scaledAdvance(font, face, key);
    return record;
}

// ---- Masks

FT_Render_Mode modeOf(GlyphKind kind) {
    switch (kind) {
    case GlyphKind::Mono:
        return FT_RENDER_MODE_MONO;
    case GlyphKind::Smooth:
        return FT_RENDER_MODE_LCD;
    default:
        return FT_RENDER_MODE_NORMAL;
    }
}

bool isTooLarge(FT_Outline& shape) {
    FT_BBox box;
    FT_Outline_Get_CBox(&shape, &box);
    return (box.xMax - box.xMin) / 64 > kMostMaskPixels ||
           (box.yMax - box.yMin) / 64 > kMostMaskPixels;
}

void setMeasures(GlyphRecord& record, const FT_GlyphSlot slot, const GlyphKey& key,
                 std::uint32_t unitsPerEm) {
    const double pixels = static_cast<double>(slot->linearHoriAdvance) / 65536;
    record.advance = {static_cast<CGFloat>(pixels * key.matrix[0] / 65536),
                      static_cast<CGFloat>(pixels * key.matrix[1] / 65536)};
    const double bearing = static_cast<double>(slot->metrics.horiBearingX) * unitsPerEm / key.size;
    record.info = cg::saturate<std::int32_t>(std::floor(bearing + 0.5));
}

enum class Outcome { Made, TooLarge, Failed };

Outcome drawOutline(FT_Face face, const GlyphKey& key, GlyphPointer& record) {
    const SizedFace sized(face, key);
    const FT_Int32 flags = kUnhinted | (FT_HAS_COLOR(face) ? FT_LOAD_COLOR : FT_LOAD_NO_BITMAP);
    const FT_GlyphSlot slot = face->glyph;
    if (!sized || FT_Load_Glyph(face, key.glyph, flags) != 0)
        return Outcome::Failed;
    if (slot->format == FT_GLYPH_FORMAT_OUTLINE && isTooLarge(slot->outline))
        return Outcome::TooLarge;
    if (FT_Render_Glyph(slot, modeOf(key.kind)) != 0)
        return Outcome::Failed;
    record = copyBitmap(key, *slot);
    if (record)
        setMeasures(*record, slot, key, unitsPerEm(face));
    return record ? Outcome::Made : Outcome::Failed;
}

} // namespace

GlyphPointer renderGlyph(FMFontRef font, const GlyphKey& key, const GlyphKey& outlineKey) {
    const FaceUse use(font);
    const FT_Face face = use.face();
    if (!face || key.glyph >= face->num_glyphs)
        return nullptr;
    if (key.kind == GlyphKind::Unscaled)
        return measure(font, face, key);
    if (key.kind == GlyphKind::Outline)
        return hasStrikes(face) ? nullptr : outline(font, face, key);
    GlyphPointer record;
    if (hasStrikes(face) && (record = scaleStrike(font, face, key)))
        return record;
    if (!FT_IS_SCALABLE(face))
        return nullptr;
    switch (drawOutline(face, key, record)) {
    case Outcome::TooLarge:
        // It is kept under the key that was asked for.
        if ((record = outline(font, face, outlineKey)))
            record->key = key;
        return record;
    default:
        return record;
    }
}

} // namespace fm
