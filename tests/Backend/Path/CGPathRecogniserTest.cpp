// CGPathRecogniserTest.cpp: circles, rectangles and lines along the axes as every builder makes
// them, and with single points moved to either side of what is tolerated.

#include "Paths.h"

#include <functional>
#include <numbers>
#include <string>
#include <vector>

namespace {

using namespace test;

constexpr float kTurn = 2 * std::numbers::pi_v<float>;
constexpr CGRect kBox = {{-5, -3}, {20, 20}};
constexpr CGAffineTransform kQuarterTurn = {0, 1, -1, 0, 0, 0};

using Build = std::function<void(CGMutablePathRef)>;

MutablePath built(const Build& build) {
    MutablePath path = makePath();
    build(path.get());
    return path;
}
MutablePath mutableCopy(const Path& path) {
    return cf::adopt(CGPathCreateMutableCopy(path.get()));
}
MutablePath box() {
    return makeRect(kBox);
}
// A circle by quadratics that touch it at their ends.
MutablePath quads(int count) {
    MutablePath path = makeLines({{15, 7}});
    const float step = kTurn / static_cast<float>(count), reach = 10 / std::cos(step / 2);
    for (int i = 0; i < count; ++i) {
        const float middle = (static_cast<float>(i) + 0.5f) * step;
        const float end = static_cast<float>(i + 1) * step;
        CGPathAddQuadCurveToPoint(path.get(), nullptr, 5 + reach * std::cos(middle),
                                  7 + reach * std::sin(middle), 5 + 10 * std::cos(end),
                                  7 + 10 * std::sin(end));
    }
    return path;
}
MutablePath throughBuffer(const MutablePath& path) {
    std::vector<char> bytes(_CGPathWriteToBuffer(path.get(), nullptr));
    _CGPathWriteToBuffer(path.get(), bytes.data());
    return cf::adopt(_CGPathCreateFromBuffer(bytes.data(), bytes.size()));
}
MutablePath turned(const MutablePath& path) {
    return cf::adopt(CGPathCreateMutableCopyByTransformingPath(path.get(), &kQuarterTurn));
}
MutablePath intersected(CGRect with) {
    MutablePath path = box();
    CGPathIntersectWithRect(path.get(), with);
    return path;
}
MutablePath dashed() {
    const CGFloat lengths[] = {3, 2};
    const MutablePath line = makeLines({{0, 0}, {10, 0}});
    return mutableCopy(
        cf::adopt(CGPathCreateCopyByDashingPath(line.get(), nullptr, 0, lengths, 2)));
}
MutablePath strokedLine(CGLineCap cap) {
    const MutablePath line = makeLines({{0, 0}, {10, 0}});
    return mutableCopy(cf::adopt(
        CGPathCreateCopyByStrokingPath(line.get(), nullptr, 2, cap, kCGLineJoinMiter, 10)));
}

// A rectangle next to or over another.
MutablePath rects(CGRect a, CGRect b) {
    MutablePath path = makeRect(a);
    CGPathAddRect(path.get(), nullptr, b);
    return path;
}
// An arc, then what else belongs to the path.
MutablePath arc(float start, float end, bool clockwise = false, const Build& rest = {}) {
    MutablePath path = makePath();
    CGPathAddArc(path.get(), nullptr, 5, 7, 10, start, end, clockwise);
    if (rest)
        rest(path.get());
    return path;
}
MutablePath ellipse(CGRect rect) {
    return built([rect](auto p) { CGPathAddEllipseInRect(p, nullptr, rect); });
}
MutablePath skiasOval() {
    MutablePath path = makePath();
    static_cast<SkPath*>(_CGPathGetNativeObject(path.get()))
        ->addOval(SkRect::MakeLTRB(-5, -3, 15, 17));
    return path;
}
MutablePath rotated(float angle) {
    const CGAffineTransform turn = CGAffineTransformMakeRotation(angle);
    return built([turn](auto p) { CGPathAddRect(p, &turn, {{0, 0}, {4, 2}}); });
}
MutablePath endless() {
    MutablePath path = box();
    _CGPathConcatCTM(path.get(), kInfinity, 0, 0, 1, 0, 0);
    return path;
}

// What the recognisers answer, a letter each: a circle, a rectangle, lines along the axes, so many
// rectangles to fill (- when there are none that do), ends that meet, rectangles that stroke.
std::string answers(const MutablePath& path) {
    const CGPathRef p = path.get();
    const CGRect bounds = CGPathGetBoundingBox(p);
    const bool hasArcs = native(p).getSegmentMasks() & SkPath::kConic_SegmentMask;
    CGRect circle = CGRectNull, rect = CGRectNull;
    size_t rects = 99;
    std::string letters;
    letters += _CGPathICantBelieveItsNotACircle(p, &circle) ? 'O' : '.';
    letters += CGPathIsRect(p, &rect) ? 'R' : '.';
    letters += hasArcs ? '!' : _CGPathIsRectilinear(p) ? 'L' : '.';
    letters +=
        _CGPathCanBeFilledByRects(p, nullptr, 0, &rects) ? static_cast<char>('0' + rects) : '-';
    letters += _CGPathIsClosed(p) ? 'C' : '.';
    letters += _CGPathCanBeStrokedByRects(p, kCGLineCapButt, kCGLineJoinMiter, 10) ? 'S' : '.';
    if (letters[0] == 'O')
        expectRect(circle, CGPathGetPathBoundingBox(p), 0.01f * bounds.size.width, "the circle");
    else
        EXPECT_TRUE(CGRectIsNull(circle));
    EXPECT_TRUE(CGRectEqualToRect(rect, letters[1] == 'R' ? bounds : CGRectNull));
    EXPECT_TRUE(letters[3] != '-' || rects == 99);
    EXPECT_EQ(_CGPathICantBelieveItsNotACircle(p, nullptr), letters[0] == 'O');
    EXPECT_EQ(CGPathIsRect(p, nullptr), letters[1] == 'R');
    return letters;
}

TEST(CGPathRecogniser, KnowsTheShapesOfEveryBuilder) {
    const CGRect two[] = {{{0, 0}, {4, 2}}, {{8, 0}, {4, 2}}};
    const struct {
        const char* what;
        MutablePath path;
        const char* expected;
    } cases[] = {
        {"rect", box(), ".RL1.S"},
        {"created rect", mutableCopy(cf::adopt(CGPathCreateWithRect(kBox, nullptr))), ".RL1.S"},
        {"lines around one", makeLines({{0, 0}, {4, 0}, {4, 2}, {0, 2}, {0, 0}}), ".RL1CS"},
        {"lines, the other way", makeLines({{0, 0}, {0, 2}, {4, 2}, {4, 0}, {0, 0}}), ".RL1CS"},
        {"rect turned by a quarter", turned(box()), ".RL1.S"},
        {"rect reversed", cf::adopt(_CGPathCreateReversedPath(box().get())), ".RL1.S"},
        {"rect through a buffer", throughBuffer(box()), ".RL1.S"},
        {"rect appended", built([](auto p) { CGPathAddPath(p, nullptr, box().get()); }), ".RL1.S"},
        {"rounded rect without radii",
         built([](auto p) { CGPathAddRoundedRect(p, nullptr, kBox, 0, 0); }), ".RL1.S"},
        {"rounded rect", built([](auto p) { CGPathAddRoundedRect(p, nullptr, kBox, 2, 2); }),
         "...-.."},
        {"two rects", built([&](auto p) { CGPathAddRects(p, nullptr, two, 2); }), "..L2.S"},
        {"intersection", intersected({{0, 0}, {9, 9}}), ".RL1.S"},
        {"stroke of a line", strokedLine(kCGLineCapButt), ".RL1CS"},
        {"stroke with round caps", strokedLine(kCGLineCapRound), "..!-C."},
        {"dashes", dashed(), "..L0.S"},
        {"ellipse", ellipse(kBox), "O..-C."},
        {"created ellipse", mutableCopy(cf::adopt(CGPathCreateWithEllipseInRect(kBox, nullptr))),
         "O..-C."},
        {"rounded to the full",
         built([](auto p) { CGPathAddRoundedRect(p, nullptr, kBox, 10, 10); }), "...-C."},
        {"arc", arc(0, kTurn), "O..-.."},
        {"arc from an eighth", arc(kTurn / 8, kTurn * 9 / 8), "O..-C."},
        {"relative arc",
         built([](auto p) { CGPathAddRelativeArc(p, nullptr, 5, 7, 10, 0, kTurn); }), "O..-.."},
        {"eight quadratics", quads(8), "O..-.."},
        {"circle turned", turned(ellipse(kBox)), "O..-C."},
        {"circle reversed", cf::adopt(_CGPathCreateReversedPath(ellipse(kBox).get())), "O..-C."},
        {"circle through a buffer", throughBuffer(ellipse(kBox)), "O..-C."},
        {"circle blended with itself",
         mutableCopy(
             cf::adopt(_CGPathCreateBlendedPath(ellipse(kBox).get(), ellipse(kBox).get(), 0.5f))),
         "O..-C."},
        {"flat ellipse", ellipse({{0, 0}, {4, 2}}), "...-C."},
        {"tangent arc", built([](auto p) {
             CGPathMoveToPoint(p, nullptr, 0, 0);
             CGPathAddArcToPoint(p, nullptr, 8, 0, 8, 8, 2);
         }),
         "..!-.."},
        {"rect from half-way along a side", makeLines({{2, 0}, {4, 0}, {4, 2}, {0, 2}, {0, 0}}),
         ".RL1.S"},
        {"the same, closed twice",
         makeLines({{2, 0}, {4, 0}, {4, 2}, {4, 2}, {0, 2}, {0, 0}, {1, 0}, {2, 0}}), "..L1CS"},
        {"rect with an ear", makeLines({{0, 0}, {6, 0}, {4, 0}, {4, 2}, {0, 2}, {0, 0}}), "..L-CS"},
        {"drawn from right to left", makeRect({{4, 2}, {-4, -2}}), ".RL1.S"},
        {"open", makeLines({{0, 0}, {4, 0}, {4, 2}, {0, 2}}), ".RL1.S"},
        {"side by side", rects({{0, 0}, {4, 2}}, {{4, 0}, {4, 2}}), "..L2.S"},
        {"overlapping", rects({{0, 0}, {4, 2}}, {{3, 1}, {4, 2}}), "..L-.S"},
        {"one in another", rects({{0, 0}, {9, 9}}, {{3, 3}, {2, 2}}), "..L-.S"},
        {"flat", makeRect({{0, 0}, {4, 0}}), "..L0CS"},
        {"line", makeLines({{0, 0}, {4, 0}}), "..L0.S"},
        {"two sides of a triangle", makeLines({{0, 0}, {4, 0}, {4, 2}}), "..L-.S"},
        {"notch", makeLines({{0, 0}, {4, 0}, {4, 2}, {2, 2}, {2, 1}, {0, 1}}), "..L-.S"},
        {"turned a little", rotated(0.01f), "...-.."},
        {"not finite", endless(), "..L-.."},
        {"circle, closed", arc(0, kTurn, false, CGPathCloseSubpath), "O..-.."},
        {"circle, clockwise", arc(0, -kTurn, true), "O..-.."},
        {"circle and a contour",
         arc(0, kTurn, false,
             [](auto p) {
                 CGPathAddRect(p, nullptr, {{1, 1}, {1, 1}});
             }),
         "...-.."},
        {"circle and a line",
         arc(0, kTurn, false, [](auto p) { CGPathAddLineToPoint(p, nullptr, 15, 7); }), "...-C."},
        {"cubics and a quadratic",
         arc(0, kTurn * 3 / 4, false,
             [](auto p) { CGPathAddQuadCurveToPoint(p, nullptr, 15, -3, 15, 7); }),
         "...-C."},
        {"three quarters", arc(0, kTurn * 3 / 4), "...-.."},
        {"five quarters", arc(0, kTurn * 5 / 4), "...-.."},
        {"five unequal pieces", arc(0, kTurn + 0.1f), "...-.."},
        {"seven quadratics", quads(7), "...-.."},
        {"nine quadratics", quads(9), "...-.."},
        {"an oval of Skia's", skiasOval(), "O.!-C."},
        {"an ellipse without size", ellipse({{3, 3}, {0, 0}}), "...-C."},
        {"an ellipse of NaN", ellipse({{kNaN, 3}, {4, 4}}), "...-.."},
        {"slope", makeLines({{0, 0}, {4, 1}}), "...0.."},
        {"straight quadratic", built([](auto p) {
             CGPathMoveToPoint(p, nullptr, 0, 0);
             CGPathAddQuadCurveToPoint(p, nullptr, 1, 0, 2, 0);
         }),
         "...-.."},
        {"point", makeLines({{1, 1}}), "..L0.S"},
        {"NaN", makeLines({{0, 0}, {kNaN, kNaN}}), "...-.."},
        {"nothing", makePath(), "..L0.S"},
    };
    for (const auto& [what, path, expected] : cases)
        EXPECT_EQ(answers(path), expected) << what << ": " << text(path);
    EXPECT_FALSE(_CGPathIsRectilinear(nullptr));
}

// The path with one of its points moved. Points are numbered as they are stored.
MutablePath withPointMoved(const MutablePath& path, int moved, float dx, float dy) {
    struct Copy {
        MutablePath path = makePath();
        int left;
        CGPoint by;
    } copy = {.left = moved, .by = {dx, dy}};
    CGPathApply(path.get(), &copy, [](void* info, const CGPathElement* element) {
        Copy& copy = *static_cast<Copy*>(info);
        constexpr int counts[] = {1, 1, 2, 3, 0};
        CGPoint* const p = element->points;
        for (int i = 0; i < counts[element->type]; ++i)
            if (copy.left-- == 0)
                p[i] = {p[i].x + copy.by.x, p[i].y + copy.by.y};
        CGMutablePathRef to = copy.path.get();
        switch (element->type) {
        case kCGPathElementMoveToPoint:
            return CGPathMoveToPoint(to, nullptr, p->x, p->y);
        case kCGPathElementAddLineToPoint:
            return CGPathAddLineToPoint(to, nullptr, p->x, p->y);
        case kCGPathElementAddQuadCurveToPoint:
            return CGPathAddQuadCurveToPoint(to, nullptr, p[0].x, p[0].y, p[1].x, p[1].y);
        case kCGPathElementAddCurveToPoint:
            return CGPathAddCurveToPoint(to, nullptr, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x,
                                         p[2].y);
        case kCGPathElementCloseSubpath:
            return CGPathCloseSubpath(to);
        }
    });
    return std::move(copy.path);
}

// Lengths may be 1 % off and right angles half a hundredth: a point moved by 0.15 % of the radius
// keeps to both everywhere, by 2 % to neither.
TEST(CGPathRecogniser, ToleratesCirclesWithAPointALittleOff) {
    const struct {
        const char* what;
        MutablePath path;
    } cases[] = {
        {"arc", arc(0, kTurn)},
        {"ellipse", ellipse(kBox)},
        {"eight quadratics", quads(8)},
    };
    for (const auto& [what, path] : cases)
        for (int point = 0; point < native(path.get()).countPoints(); ++point)
            for (const CGPoint way : {CGPoint{1, 0}, {0, 1}, {-1, 0}, {0, -1}}) {
                const auto isCircle = [&, &path = path](float by) {
                    const MutablePath moved = withPointMoved(path, point, by * way.x, by * way.y);
                    return _CGPathICantBelieveItsNotACircle(moved.get(), nullptr);
                };
                EXPECT_TRUE(isCircle(0.015f)) << what << " point " << point;
                EXPECT_FALSE(isCircle(0.2f)) << what << " point " << point;
            }
    for (const float stretch : {1.009f, 1.011f}) {
        const MutablePath oval = ellipse({{0, 0}, {10, 10 * stretch}});
        EXPECT_EQ(_CGPathICantBelieveItsNotACircle(oval.get(), nullptr), stretch < 1.01f);
    }
}

// Rectangles are filled to the pixel, so that one unit in the last place already makes another
// shape.
TEST(CGPathRecogniser, ToleratesNothingOnRectangles) {
    const MutablePath rect = makeLines({{1, 1}, {5, 1}, {5, 3}, {1, 3}, {1, 1}});
    for (int point = 1; point < 4; ++point)
        for (const CGPoint way : {CGPoint{1, 0}, {0, 1}}) {
            const float last = 4 * std::numeric_limits<float>::epsilon();
            EXPECT_EQ(answers(withPointMoved(rect, point, last * way.x, last * way.y)), "...-C.")
                << point;
        }
}

} // namespace
