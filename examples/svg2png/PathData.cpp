// PathData.cpp: turns the text of a path's d attribute into a path.

#include "PathData.h"

#include "Geometry.h"
#include "Scanner.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace svg {

namespace {

// In double precision, unlike CGPoint.
struct Point {
    double x = 0;
    double y = 0;
};

// Small letters take their points relative to the current one.
bool isRelative(char command) {
    return command >= 'a' && command <= 'z';
}
char absolute(char command) {
    return isRelative(command) ? char(command - 'a' + 'A') : command;
}

// Reads one command after the other and appends it to a path. Positions are kept in double
// precision, so that long chains of relative commands do not drift.
class PathReader {
public:
    PathReader(std::string_view text, CGMutablePathRef path, std::vector<CGPoint>* arcJoints)
        : scanner_(text), path_(path), arcJoints_(arcJoints) {}

    void readAll();

private:
    // Each answers false at a mistake, having drawn nothing.
    bool readCommand(char command);
    // One for each letter of the grammar; `relative` for the small ones.
    bool readMove(bool relative);
    bool readLine(bool relative);
    bool readHorizontal(bool relative);
    bool readVertical(bool relative);
    bool readCubic(bool relative);
    bool readSmoothCubic(bool relative);
    bool readQuadratic(bool relative);
    bool readSmoothQuadratic(bool relative);
    bool readArc(bool relative);
    void close();

    // The next arguments, made absolute; nothing at the end or at a mistake.
    std::optional<Point> nextPoint(bool relative);
    std::optional<double> nextCoordinate(double origin);
    // The control point that continues the previous curve smoothly, if that was one of `kind`.
    Point reflectedControl(char kind) const;
    void beginSegment();
    // Each appends one segment and moves the current point to its end.
    void lineTo(Point end);
    void cubicTo(Point control1, Point control2, Point end);
    void quadraticTo(Point control, Point end);

    Scanner scanner_;
    CGMutablePathRef path_;
    std::vector<CGPoint>* arcJoints_;
    Point current_;
    Point start_;       // Of the subpath.
    Point control_;     // The last curve's second control point.
    char previous_ = 0; // The previous command as a capital: decides whether control_ counts.
    bool afterClose_ = false;
};

// A letter stays in force while numbers follow, so that "L1 1 2 2" draws two lines. The grammar
// lets a path start with a "move to" only.
void PathReader::readAll() {
    scanner_.skipSpace();
    char command = 0;
    while (!scanner_.atEnd()) {
        const char c = scanner_.peek();
        const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (isLetter) {
            command = c;
            scanner_.advance();
        } else if (command == 'M' || command == 'm') {
            // Further points of a "move to" are lines.
            command = command == 'M' ? 'L' : 'l';
        } else if (absolute(command) == 'Z') {
            return;
        }
        const bool isFirst = previous_ == 0;
        if ((isFirst && absolute(command) != 'M') || !readCommand(command))
            return;
        previous_ = absolute(command);
        scanner_.skipSeparator();
    }
}

bool PathReader::readCommand(char command) {
    const bool relative = isRelative(command);
    switch (absolute(command)) {
    case 'M':
        return readMove(relative);
    case 'L':
        return readLine(relative);
    case 'H':
        return readHorizontal(relative);
    case 'V':
        return readVertical(relative);
    case 'C':
        return readCubic(relative);
    case 'S':
        return readSmoothCubic(relative);
    case 'Q':
        return readQuadratic(relative);
    case 'T':
        return readSmoothQuadratic(relative);
    case 'A':
        return readArc(relative);
    case 'Z':
        close();
        return true;
    default:
        return false;
    }
}

// Adding the origin here keeps the commands themselves free of the two ways of writing.
std::optional<double> PathReader::nextCoordinate(double origin) {
    const auto value = scanner_.nextNumber();
    return value ? std::optional(*value + origin) : std::nullopt;
}

std::optional<Point> PathReader::nextPoint(bool relative) {
    const auto x = nextCoordinate(relative ? current_.x : 0);
    const auto y = x ? nextCoordinate(relative ? current_.y : 0) : std::nullopt;
    return y ? std::optional(Point{*x, *y}) : std::nullopt;
}

// Without such a curve before it, a smooth curve starts as if the control point were the current
// one.
Point PathReader::reflectedControl(char kind) const {
    const bool continues =
        kind == 'C' ? previous_ == 'C' || previous_ == 'S' : previous_ == 'Q' || previous_ == 'T';
    return continues ? Point{2 * current_.x - control_.x, 2 * current_.y - control_.y} : current_;
}

// What follows a close without a "move to" starts a new subpath at the closed one's start.
void PathReader::beginSegment() {
    if (afterClose_)
        CGPathMoveToPoint(path_, nullptr, toCoordinate(start_.x), toCoordinate(start_.y));
    afterClose_ = false;
}

void PathReader::lineTo(Point end) {
    beginSegment();
    CGPathAddLineToPoint(path_, nullptr, toCoordinate(end.x), toCoordinate(end.y));
    current_ = end;
}

void PathReader::cubicTo(Point control1, Point control2, Point end) {
    beginSegment();
    CGPathAddCurveToPoint(path_, nullptr, toCoordinate(control1.x), toCoordinate(control1.y),
                          toCoordinate(control2.x), toCoordinate(control2.y), toCoordinate(end.x),
                          toCoordinate(end.y));
    control_ = control2;
    current_ = end;
}

void PathReader::quadraticTo(Point control, Point end) {
    beginSegment();
    CGPathAddQuadCurveToPoint(path_, nullptr, toCoordinate(control.x), toCoordinate(control.y),
                              toCoordinate(end.x), toCoordinate(end.y));
    control_ = control;
    current_ = end;
}

bool PathReader::readMove(bool relative) {
    const auto end = nextPoint(relative);
    if (!end)
        return false;
    CGPathMoveToPoint(path_, nullptr, toCoordinate(end->x), toCoordinate(end->y));
    current_ = start_ = *end;
    afterClose_ = false;
    return true;
}

bool PathReader::readLine(bool relative) {
    const auto end = nextPoint(relative);
    if (end)
        lineTo(*end);
    return end.has_value();
}

bool PathReader::readHorizontal(bool relative) {
    const auto x = nextCoordinate(relative ? current_.x : 0);
    if (x)
        lineTo({*x, current_.y});
    return x.has_value();
}

bool PathReader::readVertical(bool relative) {
    const auto y = nextCoordinate(relative ? current_.y : 0);
    if (y)
        lineTo({current_.x, *y});
    return y.has_value();
}

bool PathReader::readCubic(bool relative) {
    const auto control1 = nextPoint(relative);
    const auto control2 = control1 ? nextPoint(relative) : std::nullopt;
    const auto end = control2 ? nextPoint(relative) : std::nullopt;
    if (end)
        cubicTo(*control1, *control2, *end);
    return end.has_value();
}

bool PathReader::readSmoothCubic(bool relative) {
    const auto control2 = nextPoint(relative);
    const auto end = control2 ? nextPoint(relative) : std::nullopt;
    if (end)
        cubicTo(reflectedControl('C'), *control2, *end);
    return end.has_value();
}

bool PathReader::readQuadratic(bool relative) {
    const auto control = nextPoint(relative);
    const auto end = control ? nextPoint(relative) : std::nullopt;
    if (end)
        quadraticTo(*control, *end);
    return end.has_value();
}

bool PathReader::readSmoothQuadratic(bool relative) {
    const auto end = nextPoint(relative);
    if (end)
        quadraticTo(reflectedControl('Q'), *end);
    return end.has_value();
}

// The flags are single digits: "a1 1 0 0110 10" has the flags 0 and 1 and the end (10, 10).
bool PathReader::readArc(bool relative) {
    const auto radiusX = scanner_.nextNumber();
    const auto radiusY = radiusX ? scanner_.nextNumber() : std::nullopt;
    const auto rotation = radiusY ? scanner_.nextNumber() : std::nullopt;
    const auto isLarge = rotation ? scanner_.flag() : std::nullopt;
    const auto isSweep = isLarge ? scanner_.flag() : std::nullopt;
    const auto end = isSweep ? nextPoint(relative) : std::nullopt;
    if (!end)
        return false;
    beginSegment();
    addArc(path_, current_.x, current_.y,
           {*radiusX, *radiusY, *rotation, *isLarge, *isSweep, end->x, end->y}, arcJoints_);
    current_ = *end;
    return true;
}

// The path object knows where its subpath started; we keep our own copy for what is relative to it.
void PathReader::close() {
    CGPathCloseSubpath(path_);
    current_ = start_;
    afterClose_ = true;
}

// An ellipse's arc by its centre: point(t) = centre + turned (rx cos t, ry sin t).
struct CentreArc {
    Point centre;
    double radiusX, radiusY;
    double sine, cosine; // Of the ellipse's turn.
    double startAngle, sweepAngle;

    Point map(double x, double y) const {
        return {centre.x + cosine * radiusX * x - sine * radiusY * y,
                centre.y + sine * radiusX * x + cosine * radiusY * y};
    }
};

// The conversion from end points to centre of the SVG standard, appendix B.2.4, with radii that
// are too small grown until the end points can be reached.
CentreArc toCentre(Point start, const Arc& arc) {
    const double angle = std::fmod(arc.rotation, 360.0) * std::numbers::pi / 180;
    const double sine = std::sin(angle), cosine = std::cos(angle);
    const double halfX = (start.x - arc.x) / 2, halfY = (start.y - arc.y) / 2;
    double radiusX = std::abs(arc.radiusX), radiusY = std::abs(arc.radiusY);
    // Half the chord, in the frame where the ellipse is a unit circle.
    double x = (cosine * halfX + sine * halfY) / radiusX;
    double y = (cosine * halfY - sine * halfX) / radiusY;
    const double length = std::hypot(x, y);
    if (length > 1) {
        radiusX *= length;
        radiusY *= length;
        x /= length;
        y /= length;
    }
    const double squared = std::min(1.0, x * x + y * y);
    const double distance = std::sqrt((1 - squared) / squared);
    const double side = arc.isLarge == arc.isSweep ? -distance : distance;
    const double centreX = side * y, centreY = -side * x;
    const double startAngle = std::atan2(y - centreY, x - centreX);
    double sweep = std::atan2(-y - centreY, -x - centreX) - startAngle;
    if (arc.isSweep && sweep < 0)
        sweep += 2 * std::numbers::pi;
    else if (!arc.isSweep && sweep > 0)
        sweep -= 2 * std::numbers::pi;
    const Point middle = {(start.x + arc.x) / 2, (start.y + arc.y) / 2};
    CentreArc result = {middle, radiusX, radiusY, sine, cosine, startAngle, sweep};
    result.centre = result.map(centreX, centreY);
    return result;
}

} // namespace

void addArc(CGMutablePathRef path, double startX, double startY, const Arc& arc,
            std::vector<CGPoint>* joints) {
    if (startX == arc.x && startY == arc.y)
        return;
    if (arc.radiusX == 0 || arc.radiusY == 0) {
        CGPathAddLineToPoint(path, nullptr, toCoordinate(arc.x), toCoordinate(arc.y));
        return;
    }
    const CentreArc centred = toCentre({startX, startY}, arc);
    if (!std::isfinite(centred.sweepAngle)) // Coordinates beyond any drawing.
        return;
    const int count = std::max(1, int(std::ceil(std::abs(centred.sweepAngle) / 1.5708)));
    const double step = centred.sweepAngle / count;
    // The tangents' length that lets a cubic meet the circle's middle as well.
    const double k = 4.0 / 3 * std::tan(step / 4);
    for (int i = 0; i < count; ++i) {
        const double from = centred.startAngle + i * step, to = from + step;
        const double c0 = std::cos(from), s0 = std::sin(from), c1 = std::cos(to), s1 = std::sin(to);
        const Point control1 = centred.map(c0 - k * s0, s0 + k * c0);
        const Point control2 = centred.map(c1 + k * s1, s1 - k * c1);
        // The last curve ends exactly where the arc was said to.
        const Point end = i + 1 == count ? Point{arc.x, arc.y} : centred.map(c1, s1);
        CGPathAddCurveToPoint(path, nullptr, toCoordinate(control1.x), toCoordinate(control1.y),
                              toCoordinate(control2.x), toCoordinate(control2.y),
                              toCoordinate(end.x), toCoordinate(end.y));
        if (joints && i + 1 < count)
            joints->push_back(toPoint(end.x, end.y));
    }
}

Path parsePathData(std::string_view text, std::vector<CGPoint>* arcJoints) {
    Path path(CGPathCreateMutable());
    if (path)
        PathReader(text, path.get(), arcJoints).readAll();
    return path;
}

} // namespace svg
