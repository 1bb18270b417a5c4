// GlyphSprites.h: runs of glyphs as items that refer to a compositor's texture.
#pragma once

#include "XGCommandQueue.h"

#include "Core/Context/CGContextRecord.h"
#include "Core/Context/RecordedShapes.h"
#include "Core/Context/TextMarks.h"

#include <optional>

namespace cg {

// Fills in the items of a command that has room for the run, each with a reference to its glyph,
// and their number: glyphs that mark nothing have none. Glyphs lie where the raster backend has
// them, to the fraction of a pixel. What they mark, or none where a glyph has no place in the
// atlas; the items that are there belong to the command in either case.
std::optional<Edges> addSprites(const CGContext& context, const ShownGlyphs& shown,
                                XGCommand& command);

// Draws the items with the context's fill colour, which is the command's, and those that have
// colours of their own with its alpha. The canvas's space is the user space.
void drawSprites(CGContextRef context, const XGCommand& command);

} // namespace cg
