// FaceMetrics.cpp: measures that tables give, or that are taken of letters.

#include "Font/FaceMetrics.h"

#include "Font/StyleWords.h"

#include FT_GLYPH_H
#include FT_TRUETYPE_TABLES_H
#include FT_TYPE1_TABLES_H

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>

namespace fm {

namespace {

// The tables and flags that measures come from; NULL where the face has no such table.
struct Tables {
    explicit Tables(FT_Face face)
        : os2(get<TT_OS2>(face, FT_SFNT_OS2)), post(get<TT_Postscript>(face, FT_SFNT_POST)),
          head(get<TT_Header>(face, FT_SFNT_HEAD)), hhea(get<TT_HoriHeader>(face, FT_SFNT_HHEA)),
          hasInfo(FT_Get_PS_Font_Info(face, &info) == 0) {
        // FreeType gives zeroes for tables that are not there, and marks this one.
        constexpr FT_UShort kNoTable = 0xFFFF;
        if (os2 && os2->version == kNoTable)
            os2 = nullptr;
        if (post && post->FormatType == 0)
            post = nullptr;
        if (head && head->Table_Version == 0)
            head = nullptr;
        if (hhea && hhea->Version == 0)
            hhea = nullptr;
    }

    const TT_OS2* os2;
    const TT_Postscript* post;
    const TT_Header* head;
    const TT_HoriHeader* hhea;
    PS_FontInfoRec info{};
    bool hasInfo;

private:
    template <typename Table>
    static const Table* get(FT_Face face, FT_Sfnt_Tag tag) {
        return static_cast<const Table*>(FT_Get_Sfnt_Table(face, tag));
    }
};

// FreeType's `long` has 64 bits on some hosts; fonts' numbers have 32.
std::int32_t narrow(FT_Long value) {
    return static_cast<std::int32_t>(value);
}

// ---- Letters

std::optional<FT_BBox> measureLetter(FT_Face face, FT_ULong letter) {
    if (!FT_IS_SCALABLE(face) || FT_Get_Char_Index(face, letter) == 0 ||
        FT_Load_Char(face, letter, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) != 0)
        return std::nullopt;
    FT_Glyph loaded = nullptr;
    if (FT_Get_Glyph(face->glyph, &loaded) != 0)
        return std::nullopt;
    FT_BBox box{};
    FT_Glyph_Get_CBox(loaded, FT_GLYPH_BBOX_UNSCALED, &box);
    FT_Done_Glyph(loaded);
    return box;
}

// Boxes lie within 16 bits on valid fonts, and anywhere on others.
std::int32_t difference(FT_Pos high, FT_Pos low) {
    return static_cast<std::int32_t>(std::int64_t{high} - std::int64_t{low});
}

std::int32_t heightOf(FT_Face face, FT_ULong letter) {
    const auto box = measureLetter(face, letter);
    return box ? narrow(box->yMax) : 0;
}

// The width of a stem shows in a letter that is nothing else. With serifs "l" is wider than its
// stem and the full stop hardly so; without, it is the other way round.
std::int32_t measureStem(FT_Face face) {
    std::int32_t narrowest = 0;
    for (const FT_ULong letter : {FT_ULong{'l'}, FT_ULong{'.'}}) {
        const auto box = measureLetter(face, letter);
        const std::int32_t width = box ? difference(box->xMax, box->xMin) : 0;
        if (width > 0 && (narrowest == 0 || width < narrowest))
            narrowest = width;
    }
    return narrowest;
}

// ---- Groups of measures

CGRect rectOf(FT_Pos xMin, FT_Pos yMin, FT_Pos xMax, FT_Pos yMax) {
    return {{static_cast<CGFloat>(xMin), static_cast<CGFloat>(yMin)},
            {static_cast<CGFloat>(difference(xMax, xMin)),
             static_cast<CGFloat>(difference(yMax, yMin))}};
}

// A face of bitmaps alone may have no units: its pixels serve, at its first size.
void readStrike(FMFontMetrics& metrics, FT_Face face) {
    if (metrics.unitsPerEm != 0 || !FT_HAS_FIXED_SIZES(face) || FT_Select_Size(face, 0) != 0)
        return;
    const FT_Size_Metrics& size = face->size->metrics;
    metrics.unitsPerEm = size.y_ppem;
    metrics.ascent = narrow(size.ascender / 64);
    metrics.descent = narrow(size.descender / 64);
    metrics.bbox = rectOf(0, size.descender / 64, size.max_advance / 64, size.ascender / 64);
}

void readExtents(FMFontMetrics& metrics, FT_Face face, const Tables& tables) {
    metrics.unitsPerEm = face->units_per_EM;
    metrics.ascent = face->ascender;
    metrics.descent = face->descender;
    metrics.bbox = rectOf(face->bbox.xMin, face->bbox.yMin, face->bbox.xMax, face->bbox.yMax);
    // Line gaps are a thing of SFNT fonts; for others FreeType makes the height up.
    if (FT_IS_SFNT(face))
        metrics.leading = std::max(0, face->height - (face->ascender - face->descender));

    // Deliberate: only for bitmaps in colour. Of these FreeType gives no extents at all; outlines
    // keep its choice among hhea and OS/2, which is what layout elsewhere goes by.
    if (!hasColorBitmaps(face))
        return readStrike(metrics, face);
    if (tables.hhea) {
        metrics.ascent = tables.hhea->Ascender;
        metrics.descent = tables.hhea->Descender;
        metrics.leading = std::max(0, int{tables.hhea->Line_Gap});
    }
    if (tables.head) {
        const TT_Header& head = *tables.head;
        metrics.bbox = rectOf(head.xMin, head.yMin, head.xMax, head.yMax);
        if (metrics.unitsPerEm == 0)
            metrics.unitsPerEm = head.Units_Per_EM;
    }
}

// 5 is a normal width; below are the condensed, above the expanded ones.
int widthOf(FT_Face face, const Tables& tables, const StyleHints& hints) {
    constexpr int kNormal = 5;
    constexpr int kWidest = 9;
    if (tables.os2 && tables.os2->usWidthClass != 0)
        return std::min(int{tables.os2->usWidthClass}, kWidest) - kNormal;
    constexpr FT_UShort kCondensed = 1 << 5;
    constexpr FT_UShort kExtended = 1 << 6;
    const FT_UShort style = tables.head && FT_IS_SFNT(face) ? tables.head->Mac_Style : FT_UShort{0};
    return style & kCondensed ? -1 : style & kExtended ? 1 : hints.width;
}

void readStyle(FMFontMetrics& metrics, FT_Face face, const Tables& tables) {
    const StyleHints hints = hintsOfStyle(face->style_name);
    const int width = widthOf(face, tables, hints);
    std::optional<std::int32_t> weight =
        tables.os2 ? weightOfClass(tables.os2->usWeightClass) : std::nullopt;
    if (!weight)
        weight = hints.weight;
    if (!weight && (face->style_flags & FT_STYLE_FLAG_BOLD))
        weight = 400;
    metrics.weight = weight.value_or(0);
    metrics.reserved16 = width;

    const bool isFixedPitch = FT_IS_FIXED_WIDTH(face) || (tables.post && tables.post->isFixedPitch);
    const auto bit = [](bool isSet, FMFontTraits trait) {
        return isSet ? static_cast<std::uint32_t>(trait) : 0;
    };
    metrics.traits = bit(face->style_flags & FT_STYLE_FLAG_ITALIC, kFMFontTraitItalic) |
                     bit(face->style_flags & FT_STYLE_FLAG_BOLD, kFMFontTraitBold) |
                     bit(width > 0, kFMFontTraitExpanded) | bit(width < 0, kFMFontTraitCondensed) |
                     bit(isFixedPitch, kFMFontTraitFixedPitch);
    if (!tables.os2)
        return;
    const auto familyClass = static_cast<std::uint16_t>(tables.os2->sFamilyClass);
    metrics.traits |= std::uint32_t{familyClass} >> 8 << 28;
    std::copy(std::begin(tables.os2->panose), std::end(tables.os2->panose),
              std::begin(metrics.panose));
}

void readHeights(FMFontMetrics& metrics, FT_Face face, const Tables& tables) {
    // The table has had these since its version 2.
    if (tables.os2 && tables.os2->version >= 2) {
        metrics.xHeight = tables.os2->sxHeight;
        metrics.capHeight = tables.os2->sCapHeight;
    }
    if (metrics.xHeight == 0)
        metrics.xHeight = heightOf(face, 'x');
    if (metrics.capHeight == 0)
        metrics.capHeight = heightOf(face, 'H');
    metrics.stemV = measureStem(face);
}

void readLines(FMFontMetrics& metrics, FT_Face face, const Tables& tables) {
    if (tables.post) {
        metrics.italicAngle = narrow(tables.post->italicAngle);
        metrics.underlinePosition = tables.post->underlinePosition;
        metrics.underlineThickness = tables.post->underlineThickness;
        return;
    }
    metrics.underlinePosition = face->underline_position;
    metrics.underlineThickness = face->underline_thickness;
    if (!tables.hasInfo)
        return;
    // In whole degrees; out of range is what no angle can be.
    constexpr FT_Long kMostDegrees = 90;
    metrics.italicAngle =
        narrow(std::clamp(tables.info.italic_angle, -kMostDegrees, kMostDegrees) * 0x10000);
    metrics.underlinePosition = tables.info.underline_position;
    metrics.underlineThickness = tables.info.underline_thickness;
}

} // namespace

bool hasColorBitmaps(FT_Face face) {
    return FT_HAS_FIXED_SIZES(face) && FT_HAS_COLOR(face);
}

FMFontMetrics readMetrics(FT_Face face) {
    const Tables tables(face);
    FMFontMetrics metrics{};
    readExtents(metrics, face, tables);
    readStyle(metrics, face, tables);
    readHeights(metrics, face, tables);
    readLines(metrics, face, tables);
    // From line to line, as the fixed record of the last-resort font has it.
    metrics.reserved48 = metrics.ascent - metrics.descent + metrics.leading;
    metrics.heightMultiple = 1;
    metrics.heightMultipleForUIKit = 1;
    return metrics;
}

} // namespace fm
