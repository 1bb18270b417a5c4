// HarfBuzzFunctions.cpp: glyphs and measures for HarfBuzz, in font units.

#include "Glyph/HarfBuzzFunctions.h"

#include <CoreFoundation/CFRef.h>
#include <FontManager/FMFont.h>
#include <FontManager/FMFontGlyphs.h>

#include "Core/Object/Saturate.h"
#include "Font/FaceUse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace {

// How many are asked for at once: the font is locked once for all of them.
constexpr unsigned kBatch = 64;

FMFontRef fontOf(void* data) {
    return static_cast<FMFontRef>(data);
}

hb_position_t position(CGFloat value) {
    return cg::saturate<hb_position_t>(std::floor(value + 0.5f));
}

CGGlyph glyphOf(hb_codepoint_t glyph) {
    return glyph <= kCGGlyphMax ? static_cast<CGGlyph>(glyph) : CGGlyph{kCGFontIndexInvalid};
}

// HarfBuzz's arrays are members of larger records.
template <typename Value>
Value& at(Value* first, unsigned stride, unsigned index) {
    using Byte = std::conditional_t<std::is_const_v<Value>, const char, char>;
    return *reinterpret_cast<Value*>(reinterpret_cast<Byte*>(first) + std::size_t{stride} * index);
}

// ---- Glyphs of characters

unsigned nominalGlyphs(hb_font_t*, void* font, unsigned count, const hb_codepoint_t* characters,
                       unsigned characterStride, hb_codepoint_t* glyphs, unsigned glyphStride,
                       void*) {
    std::array<UTF32Char, kBatch> asked;
    std::array<CGGlyph, kBatch> found;
    for (unsigned first = 0; first < count; first += kBatch) {
        const unsigned batch = std::min(kBatch, count - first);
        for (unsigned i = 0; i < batch; ++i)
            asked[i] = at(characters, characterStride, first + i);
        FMFontGetGlyphsForCodePoints(fontOf(font), asked.data(), found.data(), batch);
        for (unsigned i = 0; i < batch; ++i) {
            if (found[i] == 0)
                return first + i;
            at(glyphs, glyphStride, first + i) = found[i];
        }
    }
    return count;
}

hb_bool_t nominalGlyph(hb_font_t*, void* font, hb_codepoint_t character, hb_codepoint_t* glyph,
                       void*) {
    CGGlyph found = 0;
    FMFontGetGlyphsForCodePoints(fontOf(font), &character, &found, 1);
    *glyph = found;
    return found != 0;
}

hb_bool_t variationGlyph(hb_font_t*, void* font, hb_codepoint_t character, hb_codepoint_t selector,
                         hb_codepoint_t* glyph, void*) {
    const fm::FaceUse use(fontOf(font));
    *glyph = use ? FT_Face_GetCharVariantIndex(use.face(), character, selector) : 0;
    return *glyph != 0;
}

// ---- Measures

void horizontalAdvances(hb_font_t*, void* font, unsigned count, const hb_codepoint_t* glyphs,
                        unsigned glyphStride, hb_position_t* advances, unsigned advanceStride,
                        void*) {
    std::array<CGGlyph, kBatch> asked;
    std::array<CGSize, kBatch> found{};
    for (unsigned first = 0; first < count; first += kBatch) {
        const unsigned batch = std::min(kBatch, count - first);
        for (unsigned i = 0; i < batch; ++i)
            asked[i] = glyphOf(at(glyphs, glyphStride, first + i));
        FMFontGetAdvancesForGlyphs(fontOf(font), asked.data(), found.data(), batch);
        for (unsigned i = 0; i < batch; ++i)
            at(advances, advanceStride, first + i) = position(found[i].width);
    }
}

hb_position_t horizontalAdvance(hb_font_t*, void* font, hb_codepoint_t glyph, void*) {
    const CGGlyph asked = glyphOf(glyph);
    CGSize found = CGSizeZero;
    FMFontGetAdvancesForGlyphs(fontOf(font), &asked, &found, 1);
    return position(found.width);
}

// A glyph that is missing from a font of bitmaps has no box, which is not an empty one: marks are
// then not placed by it.
bool isMissing(FMFontRef font, CGRect box) {
    const fm::FaceUse use(font);
    return CGRectIsEmpty(box) && (!use || !FT_IS_SCALABLE(use.face()));
}

hb_bool_t glyphExtents(hb_font_t*, void* font, hb_codepoint_t glyph, hb_glyph_extents_t* extents,
                       void*) {
    const CGGlyph asked = glyphOf(glyph);
    CGRect box = CGRectZero;
    if (!FMFontGetBoundingRectsForGlyphs(fontOf(font), &asked, &box, 1) ||
        isMissing(fontOf(font), box))
        return false;
    extents->x_bearing = position(CGRectGetMinX(box));
    extents->y_bearing = position(CGRectGetMaxY(box));
    extents->width = position(CGRectGetMaxX(box)) - extents->x_bearing;
    extents->height = position(CGRectGetMinY(box)) - extents->y_bearing;
    return true;
}

hb_bool_t lineExtents(hb_font_t*, void* font, hb_font_extents_t* extents, void*) {
    const FMFontMetrics* const metrics = FMFontGetMetrics(fontOf(font));
    if (!metrics)
        return false;
    extents->ascender = metrics->ascent;
    extents->descender = metrics->descent;
    extents->line_gap = metrics->leading;
    return true;
}

// ---- Names

hb_bool_t glyphName(hb_font_t*, void* font, hb_codepoint_t glyph, char* name, unsigned size,
                    void*) {
    const auto found = cf::adopt(FMFontCopyGlyphName(fontOf(font), glyphOf(glyph)));
    return found && size > 0 &&
           CFStringGetCString(found.get(), name, static_cast<CFIndex>(size), kCFStringEncodingUTF8);
}

hb_bool_t glyphNamed(hb_font_t*, void* font, const char* name, int length, hb_codepoint_t* glyph,
                     void*) {
    std::array<char, 256> terminated{};
    const std::size_t size =
        length < 0 ? std::char_traits<char>::length(name) : static_cast<std::size_t>(length);
    if (size >= terminated.size())
        return false;
    std::copy_n(name, size, terminated.begin());
    *glyph = FMFontGetGlyphWithName(fontOf(font), terminated.data());
    return *glyph != 0;
}

hb_font_funcs_t* makeFunctions() {
    hb_font_funcs_t* const functions = hb_font_funcs_create();
    hb_font_funcs_set_font_h_extents_func(functions, lineExtents, nullptr, nullptr);
    hb_font_funcs_set_nominal_glyph_func(functions, nominalGlyph, nullptr, nullptr);
    hb_font_funcs_set_nominal_glyphs_func(functions, nominalGlyphs, nullptr, nullptr);
    hb_font_funcs_set_variation_glyph_func(functions, variationGlyph, nullptr, nullptr);
    hb_font_funcs_set_glyph_h_advance_func(functions, horizontalAdvance, nullptr, nullptr);
    hb_font_funcs_set_glyph_h_advances_func(functions, horizontalAdvances, nullptr, nullptr);
    hb_font_funcs_set_glyph_extents_func(functions, glyphExtents, nullptr, nullptr);
    hb_font_funcs_set_glyph_name_func(functions, glyphName, nullptr, nullptr);
    hb_font_funcs_set_glyph_from_name_func(functions, glyphNamed, nullptr, nullptr);
    hb_font_funcs_make_immutable(functions);
    return functions;
}

} // namespace

hb_font_funcs_t* fm::harfBuzzFunctions() {
    static hb_font_funcs_t* const functions = makeFunctions();
    return functions;
}
