// CGPathRectsTest.cpp: paths that rectangles can stand for, and paths between two others.

#include "Paths.h"

namespace {

using namespace test;

MutablePath tangentArc() {
    MutablePath path = makeLines({{0, 0}});
    CGPathAddArcToPoint(path.get(), nullptr, 8, 0, 8, 8, 2);
    return path;
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
