// Markers.cpp: the symbols at the vertices of lines.

#include "Markers.h"

#include "PathData.h"
#include "Renderer.h"
#include "Scanner.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

namespace svg {

namespace {

// Of no length where there is none.
struct Direction {
    double x = 0, y = 0;

    bool isKnown() const { return x != 0 || y != 0; }
};

Direction directionTo(CGPoint from, CGPoint to) {
    const double x = double(to.x) - from.x, y = double(to.y) - from.y;
    const double length = std::hypot(x, y);
    return length > 0 ? Direction{x / length, y / length} : Direction{};
}

// The first that is known.
Direction firstOf(Direction a, Direction b, Direction c) {
    return a.isKnown() ? a : b.isKnown() ? b : c;
}

// Where a line turns: how it comes and how it goes on.
struct Vertex {
    CGPoint at;
    Direction in, out;

    // The angle between both ways, in radians.
    double angle() const {
        const Direction sum = {in.x + out.x, in.y + out.y};
        if (sum.isKnown())
            return std::atan2(sum.y, sum.x);
        return in.isKnown() ? std::atan2(in.x, -in.y) : 0;
    }
};

class VertexCollector {
public:
    explicit VertexCollector(const std::vector<CGPoint>& arcJoints) : arcJoints_(arcJoints) {}

    std::vector<Vertex> collect(CGPathRef path) {
        CGPathApply(path, this, [](void* info, const CGPathElement* element) {
            static_cast<VertexCollector*>(info)->add(*element);
        });
        return vertices_;
    }

private:
    void add(const CGPathElement& element) {
        const CGPoint* const p = element.points;
        const CGPoint from = current_;
        switch (element.type) {
        case kCGPathElementMoveToPoint:
            return moveTo(p[0]);
        case kCGPathElementAddLineToPoint:
            return segmentTo(p[0], directionTo(from, p[0]), directionTo(from, p[0]));
        case kCGPathElementAddQuadCurveToPoint:
            return segmentTo(p[1], firstOf(directionTo(from, p[0]), directionTo(from, p[1]), {}),
                             firstOf(directionTo(p[0], p[1]), directionTo(from, p[1]), {}));
        case kCGPathElementAddCurveToPoint:
            return segmentTo(
                p[2],
                firstOf(directionTo(from, p[0]), directionTo(from, p[1]), directionTo(from, p[2])),
                firstOf(directionTo(p[1], p[2]), directionTo(p[0], p[2]), directionTo(from, p[2])));
        default:
            return close();
        }
    }

    // A line that goes on where another was closed has no vertex of its own there.
    void moveTo(CGPoint to) {
        if (!isClosed_ || !CGPointEqualToPoint(to, current_)) {
            start_ = vertices_.size();
            vertices_.push_back({to, {}, {}});
        }
        isClosed_ = false;
        current_ = to;
    }

    void segmentTo(CGPoint to, Direction out, Direction in) {
        if (vertices_.empty())
            return;
        // The inside of an arc is no vertex.
        if (!isInArc_)
            vertices_.back().out = out;
        isInArc_ =
            nextJoint_ < arcJoints_.size() && CGPointEqualToPoint(to, arcJoints_[nextJoint_]);
        if (isInArc_)
            ++nextJoint_;
        else
            vertices_.push_back({to, in, {}});
        current_ = to;
    }

    void close() {
        if (vertices_.empty())
            return;
        const CGPoint to = vertices_[start_].at;
        if (!CGPointEqualToPoint(current_, to))
            segmentTo(to, directionTo(current_, to), directionTo(current_, to));
        vertices_.back().out = vertices_[start_].out;
        vertices_[start_].in = vertices_.back().in;
        isClosed_ = true;
        current_ = to;
    }

    const std::vector<CGPoint>& arcJoints_;
    std::vector<Vertex> vertices_;
    std::size_t start_ = 0, nextJoint_ = 0;
    CGPoint current_ = {0, 0};
    bool isInArc_ = false, isClosed_ = false;
};

std::vector<Vertex> verticesOf(const Occurrence& shape, CGPathRef outline) {
    std::vector<CGPoint> arcJoints;
    if (shape.element.is("path"))
        parsePathData(shape.element.attribute("d").value_or(std::string()), &arcJoints);
    return VertexCollector(arcJoints).collect(outline);
}

// "auto", "auto-start-reverse", or degrees; in radians.
double orientationOf(Element marker, const Vertex& vertex, bool isStart) {
    const std::string text = marker.attribute("orient").value_or("0");
    if (text == "auto")
        return vertex.angle();
    if (text == "auto-start-reverse")
        return vertex.angle() + (isStart ? std::numbers::pi : 0);
    Scanner scanner(text);
    return scanner.number().value_or(0) * std::numbers::pi / 180;
}

class MarkerPainter {
public:
    MarkerPainter(Scene& scene, CGContextRef context, const Occurrence& shape)
        : scene_(scene), context_(context), shape_(shape) {}

    void paint(const std::string& id, const Vertex& vertex, bool isStart) {
        const Element element = scene_.document.find(id);
        if (!element.is("marker"))
            return;
        const InUse use(scene_, element);
        if (!use)
            return;
        const SavedState saved(context_);
        CGContextTranslateCTM(context_, vertex.at.x, vertex.at.y);
        CGContextRotateCTM(context_, CGFloat(orientationOf(element, vertex, isStart)));
        if (element.attribute("markerUnits") != "userSpaceOnUse") {
            const Style& style = shape_.style;
            const CGFloat width = toCoordinate(
                style.strokeWidth.resolve(Axis::Diagonal, shape_.viewport, style.emSize()));
            CGContextScaleCTM(context_, width, width);
        }
        paintContent(occurFor(scene_, shape_, element));
    }

private:
    // The marker's own viewport, with the reference point at the vertex.
    void paintContent(Occurrence marker) {
        const double width = marker.length("markerWidth", Axis::X, 3);
        const double height = marker.length("markerHeight", Axis::Y, 3);
        if (!(width > 0 && height > 0))
            return;
        const auto text = marker.element.attribute("viewBox");
        const auto box = parseViewBox(text.value_or(std::string()));
        auto toViewport = CGAffineTransformIdentity;
        if (box) {
            const auto ratio = marker.element.attribute("preserveAspectRatio");
            toViewport =
                fitViewBox(*box, parseAspectRatio(ratio.value_or(std::string())), width, height);
        }
        marker.viewport = box ? Viewport{box->width, box->height} : Viewport{width, height};
        const CGPoint reference = CGPointApplyAffineTransform(
            toPoint(marker.length("refX", Axis::X), marker.length("refY", Axis::Y)), toViewport);
        CGContextTranslateCTM(context_, -reference.x, -reference.y);
        if (marker.style.clipsOverflow)
            CGContextClipToRect(context_, toRect(0, 0, width, height));
        CGContextConcatCTM(context_, toViewport);
        Renderer renderer(scene_, context_);
        for (const Occurrence& child : interiorOf(scene_, marker).children)
            renderer.draw(child);
    }

    Scene& scene_;
    CGContextRef context_;
    const Occurrence& shape_;
};

} // namespace

bool hasMarkers(const Occurrence& shape) {
    constexpr std::array kNames = {"path", "line", "polyline", "polygon"};
    const Style& style = shape.style;
    return std::ranges::any_of(kNames, [&](auto name) { return shape.element.is(name); }) &&
           !(style.markerStartId.empty() && style.markerMidId.empty() && style.markerEndId.empty());
}

void drawMarkers(Scene& scene, CGContextRef context, const Occurrence& shape, CGPathRef outline) {
    if (!hasMarkers(shape))
        return;
    const std::vector<Vertex> vertices = verticesOf(shape, outline);
    MarkerPainter painter(scene, context, shape);
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        if (i == 0)
            painter.paint(shape.style.markerStartId, vertices[i], true);
        if (i > 0 && i + 1 < vertices.size())
            painter.paint(shape.style.markerMidId, vertices[i], false);
        if (i + 1 == vertices.size())
            painter.paint(shape.style.markerEndId, vertices[i], false);
    }
}

} // namespace svg
