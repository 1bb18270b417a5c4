// Gradient.h: linear and radial gradients over whatever is clipped to.
#pragma once

#include "Color.h"
#include "Handles.h"

#include <vector>

namespace svg {

// A place along a gradient, from 0 to 1, and the colour there.
struct GradientStop {
    double offset = 0;
    Color color;
};

// What lies beyond the ends: their colours, the gradient there and back again, or once more.
enum class Spread { Pad, Reflect, Repeat };

// Colours from a circle to another, or along the line between their centres.
struct Gradient {
    bool isRadial = false;
    CGPoint start = {0, 0}; // Of a radial gradient the focal point.
    CGFloat startRadius = 0;
    CGPoint end = {0, 0};
    CGFloat endRadius = 0;
    Spread spread = Spread::Pad;
    CGAffineTransform toUserSpace = CGAffineTransformIdentity;
    std::vector<GradientStop> stops; // Two or more, by offset.
};

// Paints everything inside the context's clip.
void drawGradient(CGContextRef context, const Gradient& gradient);

} // namespace svg
