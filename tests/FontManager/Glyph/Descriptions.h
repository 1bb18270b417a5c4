// Descriptions.h: how tests ask for glyphs.
#pragma once

#include <FontManager/FMGlyph.h>

#include <memory>

namespace test {

struct ReleaseGlyph {
    void operator()(FMGlyphRef glyph) const { FMGlyphRelease(glyph); }
};
using Glyph = std::unique_ptr<FMGlyph, ReleaseGlyph>;

inline FMGlyphDescription upright(CGFloat size, FMGlyphOptions options = kFMGlyphAntialias) {
    return {size, CGAffineTransformIdentity, {0, 0}, options};
}

inline Glyph copyGlyph(FMFontRef font, CGGlyph glyph, const FMGlyphDescription& description) {
    return Glyph(FMFontCopyGlyph(font, glyph, &description));
}

} // namespace test
