// TextLayout.h: where the glyphs of a text element go.
#pragma once

#include "Fonts.h"
#include "Occurrence.h"

#include <deque>
#include <vector>

namespace svg {

// A glyph on its baseline, in the text element's user space, y down.
struct TextGlyph {
    CGGlyph glyph = 0;
    double x = 0, y = 0;
    double rotation = 0; // In degrees, clockwise.
    double advance = 0;
};

// Glyphs of one font and style, one after the other.
struct TextRun {
    const Occurrence* span = nullptr; // The text element or a tspan in it.
    CGFontRef font = nullptr;
    std::vector<TextGlyph> glyphs;
};

// Characters are not shaped: each has the glyph that its font gives it, from left to right.
struct TextLayout {
    std::deque<Occurrence> spans; // What the runs refer to.
    std::vector<FontRef> fonts;   // The same.
    std::vector<TextRun> runs;

    // Around the cells of all glyphs: their advances, from ascent to descent.
    CGRect bounds() const;
};

TextLayout layOut(Scene& scene, const Occurrence& text);

} // namespace svg
