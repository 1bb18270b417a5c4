/* FMPostScript.h: fonts written as PostScript programs, for printing.
 *
 * The programs' layout is fixed, oddities included: consumers compare them byte by byte. Numbers
 * are written with a decimal point, whatever the locale. */
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFString.h>
#include <FontManager/FMBase.h>

CG_BEGIN_DECLS

/** A PostScript encoding vector: which glyph stands for each of the 256 codes. `encoding` holds 256
 *  glyphs, 0 where a code has none; glyphs without a name are left out. NULL without a font or an
 *  encoding, and without memory. */
CG_EXPORT CFDataRef FMFontCreatePostScriptEncoding(FMFontRef font, const CGGlyph* encoding);

/** A font program of the given glyphs under the name `name`: a Type 1 font, in plain text, or a
 *  Type 42 wrapper, which holds names alone. `encoding` is as above.
 *
 *  NULL for a font whose restrictions (FMFontGetRestrictions) have bit 1 or 2, that is not scalable
 *  or cannot be opened; for any other format, type 3 included; without a name, an encoding or, with
 *  a `count`, glyphs. A glyph without a name or an outline ends a Type 1 font's glyphs; the program
 *  then stops short of its closing lines but for the trailer. */
CG_EXPORT CFDataRef FMFontCreatePostScriptSubset(FMFontRef font, CFStringRef name,
                                                 CGFontPostScriptFormat format,
                                                 const CGGlyph* glyphs, size_t count,
                                                 const CGGlyph* encoding);

CG_END_DECLS
