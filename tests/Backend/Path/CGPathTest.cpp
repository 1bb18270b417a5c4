// CGPathTest.cpp: paths as objects: creation, copies, immutability, equality, cost.

#include <CoreFoundation/CFBase.h>

#include "Core/Context/XGBackend.h"
#include "Paths.h"
#include "Support/FailingAllocator.h"
#include "Support/Threads.h"

#include <vector>

namespace {

using namespace test;

constexpr CGAffineTransform kMoved = {2, 0, 0, 2, 10, 20};

// What every function that changes a path must leave alone.
const struct {
    const char* what;
    void (*change)(CGMutablePathRef path);
} kChanges[] = {
    {"move", [](CGMutablePathRef p) { CGPathMoveToPoint(p, nullptr, 1, 2); }},
    {"line", [](CGMutablePathRef p) { CGPathAddLineToPoint(p, nullptr, 1, 2); }},
    {"quad", [](CGMutablePathRef p) { CGPathAddQuadCurveToPoint(p, nullptr, 1, 2, 3, 4); }},
    {"cubic", [](CGMutablePathRef p) { CGPathAddCurveToPoint(p, nullptr, 1, 2, 3, 4, 5, 6); }},
    {"close", [](CGMutablePathRef p) { CGPathCloseSubpath(p); }},
    {"lines", [](CGMutablePathRef p) { CGPathAddLines(p, nullptr, &CGPointZero, 1); }},
    {"rect", [](CGMutablePathRef p) { CGPathAddRect(p, nullptr, CGRectMake(0, 0, 1, 1)); }},
    {"rects", [](CGMutablePathRef p) { CGPathAddRects(p, nullptr, &CGRectZero, 1); }},
    {"ellipse",
     [](CGMutablePathRef p) { CGPathAddEllipseInRect(p, nullptr, CGRectMake(0, 0, 1, 1)); }},
    {"rounded",
     [](CGMutablePathRef p) { CGPathAddRoundedRect(p, nullptr, CGRectMake(0, 0, 4, 4), 1, 1); }},
    {"arc", [](CGMutablePathRef p) { CGPathAddArc(p, nullptr, 0, 0, 1, 0, 1, false); }},
    {"relative arc", [](CGMutablePathRef p) { CGPathAddRelativeArc(p, nullptr, 0, 0, 1, 0, 1); }},
    {"tangent arc", [](CGMutablePathRef p) { CGPathAddArcToPoint(p, nullptr, 5, 0, 5, 5, 1); }},
    {"path",
     [](CGMutablePathRef p) {
         CGPathAddPath(p, nullptr, makeLines({{9, 9}}).get());
     }},
    {"concat", [](CGMutablePathRef p) { _CGPathConcatCTM(p, 2, 0, 0, 2, 1, 1); }},
    {"fill rule", [](CGMutablePathRef p) { _CGPathSetEvenOddFill(p, 1); }},
    {"rewind", [](CGMutablePathRef p) { cg::rewindPath(p); }},
};

TEST(CGPath, IsChangedWhenMutableAndOnlyThen) {
    const MutablePath original = makeLines({{0, 0}, {3, 1}});
    for (const auto& [what, change] : kChanges) {
        const Path fixed = cf::adopt(CGPathCreateCopy(original.get()));
        change(const_cast<CGMutablePathRef>(fixed.get()));
        EXPECT_TRUE(CGPathEqualToPath(fixed.get(), original.get())) << what;

        const MutablePath open = cf::adopt(CGPathCreateMutableCopy(original.get()));
        change(open.get());
        EXPECT_FALSE(CGPathEqualToPath(open.get(), original.get())) << what;
        change(nullptr);
    }
    EXPECT_EQ(text(original), "M 0 0 L 3 1");
}

TEST(CGPath, IsMutableAsItsCreatorSays) {
    const MutablePath source = makeLines({{0, 0}, {3, 1}});
    const CGRect rect = {{0, 0}, {4, 4}};
    const struct {
        const char* what;
        Path path;
        bool isMutable;
    } cases[] = {
        {"copy", cf::adopt(CGPathCreateCopy(source.get())), false},
        {"mutable copy", cf::adopt<CGPathRef>(CGPathCreateMutableCopy(source.get())), true},
        {"mapped", cf::adopt(CGPathCreateCopyByTransformingPath(source.get(), &kMoved)), false},
        {"mutable mapped",
         cf::adopt<CGPathRef>(CGPathCreateMutableCopyByTransformingPath(source.get(), &kMoved)),
         true},
        {"reversed", cf::adopt<CGPathRef>(_CGPathCreateReversedPath(source.get())), true},
        {"rect", cf::adopt(CGPathCreateWithRect(rect, nullptr)), true},
        {"ellipse", cf::adopt(CGPathCreateWithEllipseInRect(rect, nullptr)), true},
        {"rounded", cf::adopt(CGPathCreateWithRoundedRect(rect, 1, 1, nullptr)), true},
        {"stroked",
         cf::adopt(CGPathCreateCopyByStrokingPath(source.get(), nullptr, 1, kCGLineCapButt,
                                                  kCGLineJoinMiter, 10)),
         false},
    };
    for (const auto& [what, path, isMutable] : cases) {
        ASSERT_TRUE(path) << what;
        const std::string before = text(path);
        CGPathMoveToPoint(const_cast<CGMutablePathRef>(path.get()), nullptr, 77, 77);
        EXPECT_EQ(text(path) != before, isMutable) << what;
    }
}

TEST(CGPath, CopyKeepsElementsAndFillRuleWhenTheSourceGoesOn) {
    const MutablePath source = makeLines({{0, 0}, {3, 1}});
    _CGPathSetEvenOddFill(source.get(), 1);
    const Path copy = cf::adopt(CGPathCreateCopy(source.get()));
    const Path mapped = cf::adopt(CGPathCreateCopyByTransformingPath(source.get(), &kMoved));
    const Path same = cf::adopt(CGPathCreateCopyByTransformingPath(source.get(), nullptr));
    CGPathAddLineToPoint(source.get(), nullptr, 9, 9);
    _CGPathSetEvenOddFill(source.get(), 0);

    EXPECT_EQ(text(copy), "M 0 0 L 3 1");
    EXPECT_EQ(text(same), "M 0 0 L 3 1");
    EXPECT_EQ(text(mapped), "M 10 20 L 16 22");
    EXPECT_EQ(text(source), "M 0 0 L 3 1 L 9 9");
    for (const Path& path : {copy, mapped, same})
        EXPECT_TRUE(_CGPathIsEvenOddFill(path.get()));
}

TEST(CGPath, ReversesEachContourAndTheirOrder) {
    const MutablePath path = makeLines({{0, 0}, {3, 1}, {5, 5}});
    CGPathCloseSubpath(path.get());
    CGPathMoveToPoint(path.get(), nullptr, 7, 7);
    CGPathAddCurveToPoint(path.get(), nullptr, 8, 7, 9, 8, 9, 9);
    const MutablePath reversed = cf::adopt(_CGPathCreateReversedPath(path.get()));
    EXPECT_EQ(text(reversed), "M 9 9 C 9 8 8 7 7 7 M 5 5 L 3 1 L 0 0 Z");
}

TEST(CGPath, IsEqualByElementsAndFillRule) {
    const MutablePath path = makeLines({{0, 0}, {3, 1}});
    const MutablePath same = makeLines({{-0.f, 0}, {3, 1}});
    const MutablePath shorter = makeLines({{0, 0}});
    const MutablePath moved = makeLines({{0, 0}, {3, std::nextafter(1.f, 2.f)}});
    const MutablePath otherRule = makeLines({{0, 0}, {3, 1}});
    _CGPathSetEvenOddFill(otherRule.get(), 1);
    const struct {
        const char* what;
        CGPathRef other;
        bool equal;
    } cases[] = {
        {"itself", path.get(), true},
        {"the same elements", same.get(), true},
        {"fewer elements", shorter.get(), false},
        {"a point one bit off", moved.get(), false},
        {"another rule", otherRule.get(), false},
        {"no path", nullptr, false},
    };
    for (const auto& [what, other, equal] : cases) {
        EXPECT_EQ(CGPathEqualToPath(path.get(), other), equal) << what;
        EXPECT_EQ(CGPathEqualToPath(other, path.get()), equal) << what;
        if (equal) {
            EXPECT_TRUE(CFEqual(path.get(), other)) << what;
            EXPECT_EQ(CFHash(path.get()), CFHash(other)) << what;
        }
    }
}

TEST(CGPath, TakesOnlyOneForEvenOdd) {
    for (const int flag : {0, 1, 2, 3, 5, 255}) {
        const MutablePath path = makeRect({{0, 0}, {1, 1}});
        _CGPathSetEvenOddFill(path.get(), static_cast<uint8_t>(flag));
        EXPECT_EQ(_CGPathIsEvenOddFill(path.get()), flag == 1) << flag;
        EXPECT_EQ(native(path.get()).getFillType(),
                  flag == 1 ? SkPathFillType::kEvenOdd : SkPathFillType::kWinding)
            << flag;
        const MutablePath plain = makeRect({{0, 0}, {1, 1}});
        EXPECT_EQ(CGPathEqualToPath(path.get(), plain.get()), flag == 0) << flag;
    }
}

TEST(CGPath, CopiesCostLittleAndShareTheirPoints) {
    const MutablePath path = makePath();
    for (int i = 0; i < 100; ++i)
        CGPathAddRect(path.get(), nullptr, {{float(i), 0}, {1, 1}});
    std::vector<Path> copies;
    constexpr std::ptrdiff_t kCopies = 64;
    copies.reserve(kCopies);
    const AllocationMeter meter;
    for (std::ptrdiff_t i = 0; i < kCopies; ++i)
        copies.push_back(cf::adopt(CGPathCreateCopy(path.get())));
    EXPECT_LE(meter.liveBytes(), 200 * kCopies);
    EXPECT_LE(meter.allocations(), static_cast<std::size_t>(kCopies));
}

TEST(CGPath, IsNullWhenMemoryRunsOut) {
    const MutablePath source = makeLines({{0, 0}, {3, 1}});
    const Path settled = cf::adopt(CGPathCreateCopy(source.get()));
    const FailureSweep sweep = failEachAllocation([&settled] {
        CGPathRelease(CGPathCreateMutable());
        CGPathRelease(CGPathCreateCopy(settled.get()));
    });
    EXPECT_EQ(sweep.failures, 2u);
    EXPECT_EQ(sweep.leakedBytes, 0);
}

TEST(CGPath, MayBeReadByManyThreads) {
    const MutablePath source = makePath();
    for (int i = 0; i < 500; ++i)
        CGPathAddEllipseInRect(source.get(), nullptr, {{float(i), 0}, {4, 4}});
    const Path shared = cf::adopt(CGPathCreateCopy(source.get()));
    std::atomic<int> agreeing = 0;
    onThreads([&](std::size_t thread) {
        for (int i = 0; i < 50; ++i)
            if (thread == 0)
                CGPathAddLineToPoint(source.get(), nullptr, float(i), 900);
            else
                agreeing +=
                    CGRectEqualToRect(CGPathGetBoundingBox(shared.get()), {{0, 0}, {503, 4}}) &&
                    CGPathContainsPoint(shared.get(), nullptr, {250, 2}, false);
    });
    EXPECT_EQ(agreeing, 3 * 50);
}

} // namespace
