// Type1Outline.h: outlines in the words of Type 1 glyph programs.
#pragma once

#include <CoreGraphics/CGPath.h>

#include "PostScript/PostScriptText.h"

namespace fm {

// Appends the commands that draw a path in font units. Moves and lines are relative to a current
// point that starts at (0, 0), and those of no length are left out.
void appendType1Outline(PostScriptText& text, CGPathRef path);

} // namespace fm
