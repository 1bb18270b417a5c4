// CGPathStrokeTest.cpp: stroke outlines and dashes, against bare Skia and closed forms.

#include "Paths.h"
#include "Support/CollectedLog.h"
#include "include/core/SkMatrix.h"
#include "include/core/SkPaint.h"
#include "include/core/SkPathEffect.h"
#include "include/core/SkStrokeRec.h"
#include "include/effects/SkDashPathEffect.h"

#include <cmath>
#include <vector>

namespace {

using namespace test;

MutablePath wave() {
    MutablePath path = makeLines({{0, 0}, {20, 0}, {20, 10}});
    CGPathAddCurveToPoint(path.get(), nullptr, 40, 30, 60, -30, 80, 0);
    CGPathAddQuadCurveToPoint(path.get(), nullptr, 90, 9, 100, 0);
    CGPathAddRect(path.get(), nullptr, {{10, 20}, {30, 15}});
    return path;
}

Path stroked(const MutablePath& path, float width, CGLineCap cap = kCGLineCapButt,
             CGLineJoin join = kCGLineJoinMiter, float miter = 10,
             const CGAffineTransform* m = nullptr) {
    return cf::adopt(CGPathCreateCopyByStrokingPath(path.get(), m, width, cap, join, miter));
}

SkPath bareStroke(const SkPath& path, float width, int cap, int join, float miter) {
    SkStrokeRec record(SkStrokeRec::kFill_InitStyle);
    record.setStrokeStyle(width, false);
    record.setStrokeParams(static_cast<SkPaint::Cap>(cap), static_cast<SkPaint::Join>(join), miter);
    SkPath outline;
    record.applyToPath(&outline, path);
    return outline;
}

TEST(CGPathStroke, IsSkiasOutline) {
    const MutablePath path = wave();
    for (const CGLineCap cap : {kCGLineCapButt, kCGLineCapRound, kCGLineCapSquare})
        for (const CGLineJoin join : {kCGLineJoinMiter, kCGLineJoinRound, kCGLineJoinBevel})
            for (const float miter : {1.f, 10.f})
                EXPECT_EQ(native(stroked(path, 3, cap, join, miter).get()),
                          bareStroke(native(path.get()), 3, cap, join, miter))
                    << cap << join << miter;
}

TEST(CGPathStroke, WithoutWidthIsAlmostWithoutWidth) {
    const MutablePath line = makeLines({{0, 0}, {10, 0}});
    for (const float width : {0.f, -1.f, kNaN})
        expectRect(CGPathGetBoundingBox(stroked(line, width).get()),
                   {{0, -0.00005f}, {10, 0.0001f}}, 1e-8f, "width");
}

TEST(CGPathStroke, IsMappedAfterItIsMade) {
    const CGAffineTransform wide = CGAffineTransformMakeScale(2, 1);
    const MutablePath path = makeLines({{0, 0}, {0, 10}});
    expectRect(
        CGPathGetBoundingBox(stroked(path, 2, kCGLineCapButt, kCGLineJoinMiter, 10, &wide).get()),
        {{-2, 0}, {4, 10}}, 0, "vertical");
}

// Enlarged a thousand times, an outline made to the usual quarter of a unit would be all corners.
TEST(CGPathStroke, IsAsSmoothAsItsTransformNeeds) {
    const MutablePath circle = makePath();
    CGPathAddEllipseInRect(circle.get(), nullptr, {{-1, -1}, {2, 2}});
    const CGAffineTransform m = CGAffineTransformMakeScale(1000, 1000);
    const Path outline = stroked(circle, 0.5f, kCGLineCapButt, kCGLineJoinMiter, 10, &m);
    for (int degrees = 1; degrees < 360; degrees += 7) {
        const float angle = static_cast<float>(degrees) * 0.017453293f;
        const auto at = [&](float radius) {
            return CGPathContainsPoint(outline.get(), nullptr,
                                       {radius * std::cos(angle), radius * std::sin(angle)}, false);
        };
        EXPECT_TRUE(at(1249)) << degrees;
        EXPECT_FALSE(at(1251)) << degrees;
        EXPECT_TRUE(at(751)) << degrees;
        EXPECT_FALSE(at(749)) << degrees;
    }
}

// Floats cannot be as fine as such transforms ask for. Trying took a minute.
TEST(CGPathStroke, EndsUnderAnyTransform) {
    const MutablePath circles = makePath();
    for (const float radius : {1.f, 1000.f, 3500.f})
        CGPathAddArc(circles.get(), nullptr, 3, -4, radius, 0, 60, false);
    for (const float scale : {236.f, 1e6f, 5e8f, kInfinity, kNaN, 0.f}) {
        const CGAffineTransform m = {scale, 2, 80, scale, 100, -141};
        EXPECT_TRUE(stroked(circles, 0, kCGLineCapRound, kCGLineJoinRound, 4, &m)) << scale;
    }
}

TEST(CGPathStroke, OfPointsThatAreNotFiniteIsEmpty) {
    const MutablePath path = makeLines({{0, 0}, {kNaN, 4}, {4, 4}});
    EXPECT_TRUE(CGPathIsEmpty(stroked(path, 2).get()));
}

TEST(CGPathStroke, ReportsUnknownCapsAndJoins) {
    const CollectedLog log;
    const MutablePath path = wave();
    const Path plain = stroked(path, 3);
    const Path odd = stroked(path, 3, static_cast<CGLineCap>(77), static_cast<CGLineJoin>(-1));
    EXPECT_TRUE(CGPathEqualToPath(odd.get(), plain.get()));
    EXPECT_EQ(log.lines().size(), 2u);
    EXPECT_FALSE(
        CGPathCreateCopyByStrokingPath(nullptr, nullptr, 1, kCGLineCapButt, kCGLineJoinMiter, 1));
}

TEST(CGPathStroke, SurvivesWildNumbers) {
    const MutablePath wild = makeLines({{0, 0}, {3e38f, -3e38f}, {kNaN, 1}, {1, 1}});
    CGPathAddCurveToPoint(wild.get(), nullptr, 3e38f, 1, -3e38f, 2, 0, 0);
    for (const float width : {1.f, 1e30f, 3e38f, kInfinity})
        for (const float miter : {kNaN, kInfinity, -1.f, 4.f}) {
            EXPECT_TRUE(stroked(wild, width, kCGLineCapRound, kCGLineJoinMiter, miter)) << width;
            EXPECT_TRUE(stroked(wave(), width, kCGLineCapRound, kCGLineJoinMiter, miter)) << width;
        }
}

// ---- Dashes

MutablePath dashed(const MutablePath& path, std::vector<float> lengths, float phase = 0,
                   const CGAffineTransform* m = nullptr) {
    return cf::adopt(const_cast<CGMutablePathRef>(
        CGPathCreateCopyByDashingPath(path.get(), m, phase, lengths.data(), lengths.size())));
}

TEST(CGPathDash, LeavesTheDrawnLengths) {
    const MutablePath line = makeLines({{0, 0}, {40, 0}});
    const CGAffineTransform lifted = {2, 0, 0, 1, 0, 5};
    const struct {
        const char* what;
        std::vector<float> lengths;
        float phase;
        const CGAffineTransform* m;
        const char* expected;
    } cases[] = {
        {"one length", {10}, 0, nullptr, "M 0 0 L 10 0 M 20 0 L 30 0"},
        {"on and off", {6, 4}, 0, nullptr, "M 0 0 L 6 0 M 10 0 L 16 0 M 20 0 L 26 0 M 30 0 L 36 0"},
        {"odd, so that the second round begins with a gap",
         {5, 3, 12},
         0,
         nullptr,
         "M 0 0 L 5 0 M 8 0 L 20 0 M 25 0 L 28 0"},
        {"a phase", {10, 10}, 5, nullptr, "M 0 0 L 5 0 M 15 0 L 25 0 M 35 0 L 40 0"},
        {"a phase of many rounds",
         {10, 10},
         20005,
         nullptr,
         "M 0 0 L 5 0 M 15 0 L 25 0 M 35 0 L 40 0"},
        {"a negative phase", {10, 10}, -5, nullptr, "M 5 0 L 15 0 M 25 0 L 35 0"},
        {"mapped", {10}, 0, &lifted, "M 0 5 L 20 5 M 40 5 L 60 5"},
    };
    for (const auto& [what, lengths, phase, m, expected] : cases)
        EXPECT_EQ(text(dashed(line, lengths, phase, m)), expected) << what;
}

TEST(CGPathDash, IsSkiasDash) {
    const MutablePath path = wave();
    std::vector<float> many;
    for (int i = 0; i < 40; ++i)
        many.push_back(1 + 0.25f * static_cast<float>(i));
    for (const std::vector<float>& lengths : {std::vector<float>{7, 3}, {5, 3, 2}, many}) {
        std::vector<float> twice = lengths;
        twice.insert(twice.end(), lengths.begin(), lengths.end());
        SkStrokeRec record(SkStrokeRec::kHairline_InitStyle);
        SkPath expected;
        ASSERT_TRUE(SkDashPathEffect::Make(twice, 1.5f)
                        ->filterPath(&expected, native(path.get()), &record, nullptr));
        EXPECT_EQ(native(dashed(path, lengths, 1.5f).get()), expected) << lengths.size();
    }
}

TEST(CGPathDash, IsNullWhenTheDashIsNoDash) {
    const MutablePath path = wave();
    const struct {
        const char* what;
        std::vector<float> lengths;
        float phase;
    } cases[] = {
        {"no lengths", {}, 0},
        {"only zeroes", {0, 0}, 0},
        {"a negative length", {5, -1}, 0},
        {"NaN", {kNaN, 1}, 0},
        {"infinite", {kInfinity, 1}, 0},
        {"a phase of NaN", {1, 1}, kNaN},
        {"an infinite phase", {1, 1}, kInfinity},
        {"millions of pieces", {1e-6f, 1e-6f}, 0},
    };
    for (const auto& [what, lengths, phase] : cases)
        EXPECT_FALSE(dashed(path, lengths, phase)) << what;
    const float one = 1;
    EXPECT_FALSE(CGPathCreateCopyByDashingPath(path.get(), nullptr, 0, nullptr, 2));
    EXPECT_FALSE(CGPathCreateCopyByDashingPath(nullptr, nullptr, 0, &one, 1));
    EXPECT_FALSE(CGPathCreateCopyByDashingPath(path.get(), nullptr, 0, &one, SIZE_MAX));
    EXPECT_FALSE(_CGPathCreateDashedPath(path.get(), nullptr));
    EXPECT_FALSE(_CGPathCreateDashedPath(nullptr, nullptr));
}

TEST(CGPathDash, OfAPathOfWildNumbersEnds) {
    const MutablePath wild = makeLines({{0, 0}, {3e38f, -3e38f}, {kNaN, 1}, {1, 1}});
    dashed(wild, {1, 1});
    const MutablePath far = makeLines({{-3e38f, 0}, {3e38f, 0}});
    EXPECT_FALSE(dashed(far, {1, 1}));
    EXPECT_TRUE(dashed(far, {1e6f}));
}

} // namespace
