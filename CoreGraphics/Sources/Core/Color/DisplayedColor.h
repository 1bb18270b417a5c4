// DisplayedColor.h: the red, green and blue that a colour is painted with.
#pragma once

#include <CoreGraphics/CGColor.h>

#include <array>

namespace cg {

// What colours are painted into.
struct ColorTarget {
    CGColorSpaceRef space =
        nullptr; // Of a bitmap; one that is neither gray nor RGB is the device's RGB.
    CGColorRenderingIntent intent = kCGRenderingIntentDefault;
};

// Whether gray or RGB of a space is painted as it stands. Not where a profile shows its numbers
// otherwise than the target does: a colour then looks as an image in its space does.
bool isPaintedAsItStands(CGColorSpaceRef space, const ColorTarget& target);

// Red, green, blue and opacity of a colour in the target. Where the colour is to be painted as it
// stands, cannot be converted or has a pattern, these are what _CGColorGetRGBA gives.
std::array<CGFloat, 4> displayedColor(CGColorRef color, const ColorTarget& target);

} // namespace cg
