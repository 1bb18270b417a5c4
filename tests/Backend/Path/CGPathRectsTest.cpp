// CGPathRectsTest.cpp: paths that rectangles can stand for, and paths between two others.

#include "Paths.h"

#include <vector>

namespace {

using namespace test;

MutablePath both(const MutablePath& a, const MutablePath& b) {
    MutablePath path = makePath();
    CGPathAddPath(path.get(), nullptr, a.get());
    CGPathAddPath(path.get(), nullptr, b.get());
    return path;
}

MutablePath rotated(float angle) {
    const CGAffineTransform turn = CGAffineTransformMakeRotation(angle);
    MutablePath path = makePath();
    CGPathAddRect(path.get(), &turn, {{0, 0}, {4, 2}});
    return path;
}

MutablePath tangentArc() {
    MutablePath path = makeLines({{0, 0}});
    CGPathAddArcToPoint(path.get(), nullptr, 8, 0, 8, 8, 2);
    return path;
}

TEST(CGPathRects, CanStandForAFill) {
    struct Case {
        const char* what;
        MutablePath path;
        int expected; // How many rectangles; -1 when they cannot.
    };
    std::vector<Case> cases;
    const auto add = [&](const char* what, MutablePath path, int expected) {
        cases.push_back({what, std::move(path), expected});
    };
    add("a rectangle", makeRect({{0, 0}, {4, 2}}), 1);
    add("one drawn from right to left", makeRect({{4, 2}, {-4, -2}}), 1);
    add("an open one", makeLines({{0, 0}, {4, 0}, {4, 2}, {0, 2}}), 1);
    add("one that returns by itself", makeLines({{0, 0}, {0, 2}, {4, 2}, {4, 0}, {0, 0}}), 1);
    add("two side by side", both(makeRect({{0, 0}, {4, 2}}), makeRect({{4, 0}, {4, 2}})), 2);
    add("two that overlap", both(makeRect({{0, 0}, {4, 2}}), makeRect({{3, 1}, {4, 2}})), -1);
    add("one in another", both(makeRect({{0, 0}, {9, 9}}), makeRect({{3, 3}, {2, 2}})), -1);
    add("nothing", makePath(), 0);
    add("a contour without area", makeLines({{0, 0}, {4, 0}}), 0);
    add("a flat rectangle", makeRect({{0, 0}, {4, 0}}), 0);
    add("a triangle", makeLines({{0, 0}, {4, 0}, {4, 2}}), -1);
    add("a corner on a side", makeLines({{0, 0}, {4, 0}, {4, 2}, {2, 2}, {0, 2}}), 1);
    add("a notch", makeLines({{0, 0}, {4, 0}, {4, 2}, {2, 2}, {2, 1}, {0, 1}}), -1);
    add("a quarter turn", rotated(0), 1);
    add("turned a little", rotated(0.01f), -1);
    add("a curve", tangentArc(), -1);
    MutablePath endless = makeRect({{1, 1}, {4, 2}});
    _CGPathConcatCTM(endless.get(), kInfinity, 0, 0, 1, 0, 0);
    add("not finite", std::move(endless), -1);
    for (const auto& [what, path, expected] : cases) {
        size_t count = 99;
        const bool can = _CGPathCanBeFilledByRects(path.get(), nullptr, 0, &count);
        EXPECT_EQ(can, expected >= 0) << what;
        EXPECT_EQ(count, can ? static_cast<size_t>(expected) : 99) << what;
    }
}

TEST(CGPathRects, AreHandedOverUpToACapacity) {
    MutablePath many = makePath();
    for (int i = 99; i >= 0; --i)
        CGPathAddRect(many.get(), nullptr, {{static_cast<float>(i) * 2, 5}, {1, 3}});
    CGRect rects[40];
    size_t count = 0;
    ASSERT_TRUE(_CGPathCanBeFilledByRects(many.get(), rects, 40, &count));
    EXPECT_EQ(count, 100u);
    for (int i = 0; i < 40; ++i)
        EXPECT_TRUE(CGRectEqualToRect(rects[i], {{static_cast<float>(i) * 2, 5}, {1, 3}})) << i;
}

TEST(CGPathRects, CanStandForAStroke) {
    const MutablePath steps = makeLines({{0, 0}, {4, 0}, {4, 2}, {9, 2}});
    const struct {
        const char* what;
        const MutablePath& path;
        CGLineCap cap;
        CGLineJoin join;
        float miterLimit;
        bool expected;
    } cases[] = {
        {"steps", steps, kCGLineCapButt, kCGLineJoinMiter, 4, true},
        {"square caps", steps, kCGLineCapSquare, kCGLineJoinMiter, 4, true},
        {"a miter just long enough", steps, kCGLineCapButt, kCGLineJoinMiter, 1.41421357f, true},
        {"a miter cut off", steps, kCGLineCapButt, kCGLineJoinMiter, 1.414f, false},
        {"round caps", steps, kCGLineCapRound, kCGLineJoinMiter, 4, false},
        {"round joins", steps, kCGLineCapButt, kCGLineJoinRound, 4, false},
        {"a slope", makeLines({{0, 0}, {4, 1}}), kCGLineCapButt, kCGLineJoinMiter, 4, false},
        {"a tangent arc", tangentArc(), kCGLineCapButt, kCGLineJoinMiter, 4, false},
    };
    for (const auto& [what, path, cap, join, limit, expected] : cases)
        EXPECT_EQ(_CGPathCanBeStrokedByRects(path.get(), cap, join, limit), expected) << what;
}

TEST(CGPathBlend, LiesBetweenPathsOfTheSameElements) {
    const MutablePath from = makeRect({{0, 0}, {4, 2}}), to = makeRect({{10, 20}, {8, 6}});
    const struct {
        float t;
        CGRect expected;
    } cases[] = {{0, {{0, 0}, {4, 2}}},
                 {0.25f, {{2.5f, 5}, {5, 3}}},
                 {1, {{10, 20}, {8, 6}}},
                 {2, {{20, 40}, {12, 10}}}};
    for (const auto& [t, expected] : cases) {
        const Path blended = cf::adopt(_CGPathCreateBlendedPath(from.get(), to.get(), t));
        ASSERT_TRUE(blended) << t;
        expectRect(CGPathGetBoundingBox(blended.get()), expected, 0, "bounds");
    }
    EXPECT_FALSE(cf::adopt(_CGPathCreateBlendedPath(from.get(), tangentArc().get(), 0.5f)));
}

} // namespace
