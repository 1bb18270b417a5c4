// Shapes.cpp: the outlines of the elements that have one.

#include "Shapes.h"

#include "Geometry.h"
#include "PathData.h"
#include "Scanner.h"

#include <algorithm>

namespace svg {

namespace {

Path newPath() {
    return Path(CGPathCreateMutable());
}

// One function for each element; all read their attributes in user units.
Path pathShape(const Occurrence& shape) {
    return parsePathData(shape.element.attribute("d").value_or(std::string()));
}

// The rectangle starts at its top left corner and runs along the top: dashes start there too.
Path roundedRectangle(double x, double y, double width, double height, double rx, double ry) {
    Path path = newPath();
    const double right = x + width, bottom = y + height;
    const auto line = [&](double toX, double toY) {
        CGPathAddLineToPoint(path.get(), nullptr, toCoordinate(toX), toCoordinate(toY));
    };
    const auto corner = [&](double fromX, double fromY, double toX, double toY) {
        addArc(path.get(), fromX, fromY,
               {.radiusX = rx, .radiusY = ry, .isSweep = true, .x = toX, .y = toY});
    };
    CGPathMoveToPoint(path.get(), nullptr, toCoordinate(x + rx), toCoordinate(y));
    line(right - rx, y);
    corner(right - rx, y, right, y + ry);
    line(right, bottom - ry);
    corner(right, bottom - ry, right - rx, bottom);
    line(x + rx, bottom);
    corner(x + rx, bottom, x, bottom - ry);
    line(x, y + ry);
    corner(x, y + ry, x + rx, y);
    CGPathCloseSubpath(path.get());
    return path;
}

// A width or height of 0 or less draws nothing, and radii reach to the middle of a side at most.
Path rectangleShape(const Occurrence& shape) {
    const double width = shape.length("width", Axis::X);
    const double height = shape.length("height", Axis::Y);
    if (!(width > 0 && height > 0))
        return nullptr;
    const double x = shape.length("x", Axis::X), y = shape.length("y", Axis::Y);
    // A radius that is missing ("auto" or unreadable) is the other one.
    double rx = shape.length("rx", Axis::X, -1), ry = shape.length("ry", Axis::Y, -1);
    rx = rx < 0 ? std::max(ry, 0.0) : rx;
    ry = ry < 0 ? rx : ry;
    rx = std::min(rx, width / 2);
    ry = std::min(ry, height / 2);
    if (rx > 0 && ry > 0)
        return roundedRectangle(x, y, width, height, rx, ry);
    Path path = newPath();
    CGPathAddRect(path.get(), nullptr, toRect(x, y, width, height));
    return path;
}

Path ellipse(const Occurrence& shape, double rx, double ry) {
    if (!(rx > 0 && ry > 0))
        return nullptr;
    const double x = shape.length("cx", Axis::X), y = shape.length("cy", Axis::Y);
    Path path = newPath();
    CGPathAddEllipseInRect(path.get(), nullptr, toRect(x - rx, y - ry, 2 * rx, 2 * ry));
    return path;
}

// A percentage of a circle's radius is one of the viewport's diagonal.
Path circleShape(const Occurrence& shape) {
    const double radius = shape.length("r", Axis::Diagonal);
    return ellipse(shape, radius, radius);
}

Path ellipseShape(const Occurrence& shape) {
    const double rx = shape.length("rx", Axis::X, -1), ry = shape.length("ry", Axis::Y, -1);
    return ellipse(shape, rx < 0 ? ry : rx, ry < 0 ? rx : ry);
}

Path lineShape(const Occurrence& shape) {
    const CGPoint from = toPoint(shape.length("x1", Axis::X), shape.length("y1", Axis::Y));
    const CGPoint to = toPoint(shape.length("x2", Axis::X), shape.length("y2", Axis::Y));
    Path path = newPath();
    CGPathMoveToPoint(path.get(), nullptr, from.x, from.y);
    CGPathAddLineToPoint(path.get(), nullptr, to.x, to.y);
    return path;
}

// The points up to the first that cannot be read; a number without its partner counts for nothing.
Path polylineShape(const Occurrence& shape) {
    const std::string points = shape.element.attribute("points").value_or(std::string());
    Scanner scanner(points);
    Path path = newPath();
    for (bool isFirst = true;; isFirst = false) {
        const auto x = scanner.nextNumber();
        const auto y = x ? scanner.nextNumber() : std::nullopt;
        if (!y)
            break;
        if (isFirst)
            CGPathMoveToPoint(path.get(), nullptr, toCoordinate(*x), toCoordinate(*y));
        else
            CGPathAddLineToPoint(path.get(), nullptr, toCoordinate(*x), toCoordinate(*y));
    }
    return path;
}

// The same, closed. Closing a path without points would be a mistake.
Path polygonShape(const Occurrence& shape) {
    Path path = polylineShape(shape);
    if (!CGPathIsEmpty(path.get()))
        CGPathCloseSubpath(path.get());
    return path;
}

struct ShapeRow {
    std::string_view element;
    Path (*make)(const Occurrence& shape);
};

constexpr ShapeRow kShapes[] = {
    {"path", pathShape},       {"rect", rectangleShape}, {"circle", circleShape},
    {"ellipse", ellipseShape}, {"line", lineShape},      {"polyline", polylineShape},
    {"polygon", polygonShape},
};

} // namespace

Path shapePath(const Occurrence& occurrence) {
    const std::string_view name = occurrence.element.name();
    for (const ShapeRow& row : kShapes)
        if (row.element == name)
            return row.make(occurrence);
    return nullptr;
}

} // namespace svg
