// Recording.h: drawing operations as commands of a context's queue.
//
// What a command cannot say is refused, and then nothing has been recorded: the clip must be a
// rectangle of whole pixels, edges smooth unless they lie between pixels, there is no shadow, no
// pattern, and blending is one of Porter and Duff's operators. So drawing the commands gives what
// drawing the operations would have given.
//
// All of these want a context that has a queue.
#pragma once

#include "Core/Context/CGContextRecord.h"
#include "Core/Context/DeviceStroke.h"
#include "Core/Context/TextMarks.h"

#include <cstddef>

namespace cg {

// Rectangles of user space, in the state's fill colour.
bool recordRects(CGContext& context, const CGRect* rects, std::size_t count);

// A path in device space, in the colour given, as rectangles or a circle where it is such. The path
// is kept and must not change any more.
bool recordFill(CGContext& context, CGMutablePathRef path, bool evenOdd, CGColorRef color);

// A circle in the state's fill colour, if it is one in device space as well; spares its path.
bool recordCircle(CGContext& context, CGRect square);

// What deviceStroke() gave, in the state's stroke colour.
bool recordStroke(CGContext& context, const DeviceStroke& stroke);

// A run of glyphs in the state's fill colour, as sprites of the compositor's atlas. Unlike the
// others they are drawn to within a step of coverage, pictures in colours somewhat softer.
bool recordSprites(CGContext& context, const ShownGlyphs& shown);

// An image with its mask applied, in a rectangle of user space.
bool recordImage(CGContext& context, CGRect rect, CGImageRef image);

} // namespace cg
