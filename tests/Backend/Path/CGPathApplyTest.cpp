// CGPathApplyTest.cpp: what appliers are handed.

#include "Paths.h"

#include <cmath>
#include <vector>

namespace {

using namespace test;

MutablePath everyKind() {
    MutablePath path = makeLines({{1, 1}, {2, 2}});
    CGPathAddQuadCurveToPoint(path.get(), nullptr, 3, 3, 4, 4);
    CGPathAddCurveToPoint(path.get(), nullptr, 5, 5, 6, 6, 7, 7);
    CGPathCloseSubpath(path.get());
    return path;
}

TEST(CGPathApply, GivesTheElementsInOrder) {
    EXPECT_EQ(text(everyKind()), "M 1 1 L 2 2 Q 3 3 4 4 C 5 5 6 6 7 7 Z");
    CGPathApply(nullptr, nullptr, [](void*, const CGPathElement*) { FAIL(); });
    CGPathApply(everyKind().get(), nullptr, nullptr);
}

TEST(CGPathApply, PutsThePreviousEndBeforeTheElementsPoints) {
    struct Seen {
        CGPathElementType type;
        uint32_t count;
        std::vector<float> x;
    };
    std::vector<Seen> all;
    CGPathApply(everyKind().get(), &all, [](void* info, const CGPathElement* element) {
        Seen seen = {element->type, 99, {}};
        const CGPoint* const points = _CGPathElementGetAllPoints(element, &seen.count);
        for (uint32_t i = 0; seen.count != 99 && i < seen.count; ++i)
            seen.x.push_back(points[i].x);
        if (seen.count == 99)
            seen.x.push_back(points[0].x);
        static_cast<std::vector<Seen>*>(info)->push_back(seen);
    });
    ASSERT_EQ(all.size(), 5u);
    const std::vector<std::vector<float>> expected = {{1}, {1, 2}, {2, 3, 4}, {4, 5, 6, 7}, {}};
    const uint32_t counts[] = {99, 2, 3, 4, 0};
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(all[i].type, static_cast<CGPathElementType>(i));
        EXPECT_EQ(all[i].x, expected[i]) << i;
        EXPECT_EQ(all[i].count, counts[i]) << i;
    }
}

TEST(CGPathApply, LetsTheFunctionDoAsItLikes) {
    MutablePath path = everyKind();
    const std::string before = text(path);
    struct Context {
        MutablePath& path;
        int calls;
    } context = {path, 0};
    CGPathApply(path.get(), &context, [](void* info, const CGPathElement* element) {
        Context& c = *static_cast<Context*>(info);
        element->points[0] = {-1, -1};
        if (++c.calls == 2)
            c.path = nullptr; // The last reference.
        CGPathAddLineToPoint(c.path.get(), nullptr, 9, 9);
    });
    EXPECT_EQ(context.calls, 5);

    const Path fixed = cf::adopt(CGPathCreateCopy(everyKind().get()));
    CGPathApply(fixed.get(), nullptr, [](void*, const CGPathElement* element) {
        element->points[0] = {-1, -1};
    });
    EXPECT_EQ(text(fixed), before);
}

TEST(CGPathApply, ReportsATangentArcAsQuadraticsBySize) {
    std::size_t smaller = 0;
    for (const float radius : {1.f, 100.f, 10000.f, 1e8f}) {
        const MutablePath path = makeLines({{0, 0}});
        CGPathAddArcToPoint(path.get(), nullptr, 2 * radius, 0, 2 * radius, 2 * radius, radius);
        const std::string kinds = pathKinds(path.get());
        EXPECT_EQ(kinds.substr(0, 4), "MLQQ") << radius;
        EXPECT_EQ(kinds.find_first_not_of('Q', 2), std::string::npos) << radius;
        EXPECT_GE(kinds.size(), smaller) << radius;
        smaller = kinds.size();

        // The joints of the quadratics lie on the circle around (r, r), the middles close to it.
        struct Check {
            float radius;
            double worst = 0;
        } check = {radius};
        CGPathApply(path.get(), &check, [](void* info, const CGPathElement* element) {
            Check& c = *static_cast<Check*>(info);
            if (element->type != kCGPathElementAddQuadCurveToPoint)
                return;
            const CGPoint* const p = element->points - 1;
            const double x = (double{p[0].x} + 2 * double{p[1].x} + double{p[2].x}) / 4;
            const double y = (double{p[0].y} + 2 * double{p[1].y} + double{p[2].y}) / 4;
            const double r = double{c.radius};
            c.worst = std::max(c.worst, std::abs(std::hypot(x - r, y - r) - r));
            c.worst =
                std::max(c.worst, std::abs(std::hypot(double{p[2].x} - r, double{p[2].y} - r) - r));
        });
        EXPECT_LE(check.worst, std::max(0.0625, double{radius} * 1e-6)) << radius;
    }
    EXPECT_GT(smaller, 8u);
}

} // namespace
