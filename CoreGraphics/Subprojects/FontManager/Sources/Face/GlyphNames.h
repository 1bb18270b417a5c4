// GlyphNames.h: the names that fonts give their glyphs.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFString.h>
#include <CoreGraphics/CGFont.h>

#include "Face/FreeType.h"

namespace fm {

// 0 for a name that no glyph has, and in faces without names.
CGGlyph glyphNamed(FT_Face face, const char* name);
CGGlyph glyphNamed(FT_Face face, CFStringRef name);

// None for a glyph without a name, or one whose name is not UTF-8.
cf::Ref<CFStringRef> copyGlyphName(FT_Face face, CGGlyph glyph);

} // namespace fm
