// TextBytes.h: the glyphs of text that comes as bytes.
#pragma once

#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGFont.h>

#include <cstddef>
#include <string_view>

namespace cg {

// Writes the glyph of each character, no more than there are bytes, and returns how many. Text in
// the font's own encoding is Latin 1 where that is Unicode, since a byte is a character there.
size_t glyphsOfBytes(CGFontRef font, CGTextEncoding encoding, std::string_view bytes,
                     CGGlyph* glyphs);

} // namespace cg
