// PatternTile.h: drawings repeated as a paint.
#pragma once

#include "Handles.h"
#include "Occurrence.h"

namespace svg {

// A pattern as one shape paints with it.
struct PatternTile {
    Scene* scene = nullptr;
    Occurrence content; // The pattern element whose children are drawn.
    CGRect bounds = CGRectZero;
    CGAffineTransform contentToTile = CGAffineTransformIdentity;
    CGAffineTransform toUserSpace = CGAffineTransformIdentity; // From the space of `bounds`.
};

enum class PaintedPart { Fill, Stroke };

// Makes the context fill or stroke with a pattern; its user space is the shape's.
void setPattern(CGContextRef context, const PatternTile& tile, PaintedPart part, double opacity);

} // namespace svg
