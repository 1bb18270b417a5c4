// PathData.h: turns the text of a path's d attribute into a path.
#pragma once

#include "Handles.h"

#include <string_view>
#include <vector>

namespace svg {

// An elliptical arc as path data gives it: radii, the turn of the ellipse's x axis in degrees,
// which of the four possible arcs is meant, and the end.
struct Arc {
    double radiusX = 0;
    double radiusY = 0;
    double rotation = 0;
    bool isLarge = false;
    bool isSweep = false;
    double x = 0;
    double y = 0;
};
// Appends it as cubic curves to a path whose current point is the start. Where one curve goes over
// into the next is added to `joints`, which may be NULL.
void addArc(CGMutablePathRef path, double startX, double startY, const Arc& arc,
            std::vector<CGPoint>* joints = nullptr);

// The path that path data describes. As the SVG standard asks, a mistake ends the path but what
// stands before it is drawn; the result is never NULL unless memory runs out.
//
// `arcJoints`, which may be NULL, gets the points within arcs at which the path has curves end that
// the text does not speak of.
Path parsePathData(std::string_view text, std::vector<CGPoint>* arcJoints = nullptr);

} // namespace svg
