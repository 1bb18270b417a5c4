// Geometry.h: transform lists, view boxes, and doubles on their way into the drawing interface.
#pragma once

#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGGeometry.h>

#include <optional>
#include <string_view>

namespace svg {

// A coordinate for the drawing interface, which computes in single precision: what lies beyond its
// range becomes its largest number.
CGFloat toCoordinate(double value);
CGPoint toPoint(double x, double y);
CGRect toRect(double x, double y, double width, double height);

// The value of a transform attribute: the rightmost transform is applied first. Nothing for a list
// with a mistake in it.
std::optional<CGAffineTransform> parseTransform(std::string_view text);

// The rectangle of user space that a viewport shows; its sides are greater than 0.
struct ViewBox {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

std::optional<ViewBox> parseViewBox(std::string_view text);

// How a view box sits in a viewport of other proportions.
struct AspectRatio {
    enum class Fit { Stretch, Meet, Slice };
    Fit fit = Fit::Meet;
    double alignX = 0.5; // Share of the space left over that goes before the picture, 0 to 1.
    double alignY = 0.5;
};

// "xMidYMid meet" and its like; what cannot be read means just that.
AspectRatio parseAspectRatio(std::string_view text);

// Maps user space so that `box` fills a viewport of this size whose origin is (0, 0).
CGAffineTransform fitViewBox(const ViewBox& box, AspectRatio ratio, double width, double height);

} // namespace svg
