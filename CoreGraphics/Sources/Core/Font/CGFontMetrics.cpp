// CGFontMetrics.cpp: the measures of a font as a whole.

#include <CoreGraphics/CGFont.h>

#include "Core/Font/CGFontRecord.h"

namespace {

// Without a font all measures are 0.
template <typename Number>
Number metric(CGFontRef font, auto FMFontMetrics::*field) {
    return font && font->metrics ? static_cast<Number>(font->metrics->*field) : Number{0};
}

} // namespace

int CGFontGetUnitsPerEm(CGFontRef font) {
    return metric<int>(font, &FMFontMetrics::unitsPerEm);
}
int CGFontGetAscent(CGFontRef font) {
    return metric<int>(font, &FMFontMetrics::ascent);
}
int CGFontGetDescent(CGFontRef font) {
    return metric<int>(font, &FMFontMetrics::descent);
}
int CGFontGetLeading(CGFontRef font) {
    return metric<int>(font, &FMFontMetrics::leading);
}
int CGFontGetCapHeight(CGFontRef font) {
    return metric<int>(font, &FMFontMetrics::capHeight);
}
int CGFontGetXHeight(CGFontRef font) {
    return metric<int>(font, &FMFontMetrics::xHeight);
}
CGFloat CGFontGetItalicAngle(CGFontRef font) {
    constexpr CGFloat kPerUnit = 1.f / 65536; // 16.16 fixed point.
    return metric<CGFloat>(font, &FMFontMetrics::italicAngle) * kPerUnit;
}
CGFloat CGFontGetStemV(CGFontRef font) {
    return metric<CGFloat>(font, &FMFontMetrics::stemV);
}
CGFloat XGFontGetUnderlinePosition(CGFontRef font) {
    return metric<CGFloat>(font, &FMFontMetrics::underlinePosition);
}
CGFloat XGFontGetUnderlineThickness(CGFontRef font) {
    return metric<CGFloat>(font, &FMFontMetrics::underlineThickness);
}

CGRect CGFontGetFontBBox(CGFontRef font) {
    return font && font->metrics ? font->metrics->bbox : CGRectZero;
}

bool CGFontIsFixedPitch(CGFontRef font) {
    return (metric<uint32_t>(font, &FMFontMetrics::traits) & kFMFontTraitFixedPitch) != 0;
}

size_t CGFontGetNumberOfGlyphs(CGFontRef font) {
    return static_cast<size_t>(FMFontGetNumberOfGlyphs(XGFontGetFMFont(font)));
}
