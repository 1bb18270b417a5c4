// Type1Outline.cpp: a walk along a path that writes glyph program commands.

#include "PostScript/Type1Outline.h"

#include "Core/Object/Saturate.h"

#include <string_view>

namespace {

struct Walk {
    fm::PostScriptText& text;
    CGPoint current{0, 0};
};

fm::PostScriptText& operator<<(fm::PostScriptText& text, CGPoint point) {
    return text << fm::Digits{point.x} << " " << fm::Digits{point.y} << " ";
}

// A command by how far it goes: only the direction in which it moves is told, where it is one.
void appendStep(Walk& walk, CGPoint to, std::string_view kind) {
    const CGFloat dx = to.x - walk.current.x;
    const CGFloat dy = to.y - walk.current.y;
    if (dx == 0 && dy == 0)
        return;
    const auto wholeDx = cg::saturate<std::int64_t>(dx);
    const auto wholeDy = cg::saturate<std::int64_t>(dy);
    if (dx == 0)
        walk.text << wholeDy << " v" << kind;
    else if (dy == 0)
        walk.text << wholeDx << " h" << kind;
    else
        walk.text << wholeDx << " " << wholeDy << " r" << kind;
    walk.current = to;
}

// Deliberate: curves are written with absolute coordinates, and neither they nor a closed contour
// leave the current point where the outline is. Readers of these programs expect what earlier
// versions wrote.
void appendElement(void* info, const CGPathElement* element) {
    Walk& walk = *static_cast<Walk*>(info);
    const CGPoint* const points = element->points;
    switch (element->type) {
    case kCGPathElementMoveToPoint:
        appendStep(walk, points[0], "moveto\n");
        break;
    case kCGPathElementAddLineToPoint:
        appendStep(walk, points[0], "lineto\n");
        break;
    case kCGPathElementAddQuadCurveToPoint:
        walk.text << points[0] << points[1] << "rrcurveto\n";
        break;
    case kCGPathElementAddCurveToPoint:
        walk.text << points[0] << points[1] << points[2] << "rrcurveto\n";
        break;
    case kCGPathElementCloseSubpath:
        walk.text << "closepath\n";
        walk.current = {0, 0};
        break;
    }
}

} // namespace

void fm::appendType1Outline(PostScriptText& text, CGPathRef path) {
    Walk walk{text};
    CGPathApply(path, &walk, appendElement);
}
