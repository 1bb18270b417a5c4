/* CGFont.h: fonts at no particular size: glyphs, outlines and tables. */
#pragma once

#include <CoreGraphics/CGBase.h>
#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

typedef struct CGFont* CGFontRef;

/** A glyph's place in its font. */
typedef unsigned short CGFontIndex;
typedef CGFontIndex CGGlyph;

enum {
    kCGFontIndexMax = 65534,
    kCGFontIndexInvalid = 65535,
    kCGGlyphMin = 0,
    kCGGlyphMax = kCGFontIndexMax
};

/** The PostScript font types that a font can be written as. */
CG_ENUM(int32_t, CGFontPostScriptFormat) {
    kCGFontPostScriptFormatType1 = 1,
    kCGFontPostScriptFormatType3 = 3,
    kCGFontPostScriptFormatType42 = 42
};

CG_END_DECLS
