// CGContextPaintTest.cpp: what painting and clipping ask of the destination, and in which order.

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Core/Context/CGContextRecord.h"
#include "Support/RecordingBackend.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

using test::RecordingBackend;
using Calls = std::vector<std::string>;

namespace {

constexpr CGRect kSquare = {{0, 0}, {4, 4}};
constexpr const char* kSquareText = "M 0 0 L 4 0 L 4 4 L 0 4 Z";

// A backend that fills in red and strokes in blue.
struct Painter : RecordingBackend {
    Painter() {
        CGContextSetRGBFillColor(context(), 1, 0, 0, 1);
        CGContextSetRGBStrokeColor(context(), 0, 0, 1, 1);
    }
};

std::string fillOf(const std::string& path, const char* rule = "winding") {
    return "fill " + path + ' ' + rule + " in 1 0 0 1";
}
std::string strokeOf(const std::string& path, const char* width = "1") {
    return "stroke " + path + " width " + width + " in 0 0 1 1";
}

TEST(Painting, AsksForWhatTheModeSays) {
    const std::string square = kSquareText;
    const struct {
        const char* what;
        CGPathDrawingMode mode;
        Calls expected;
    } cases[] = {
        {"fill", kCGPathFill, {"prepare", fillOf(square)}},
        {"even-odd", kCGPathEOFill, {"prepare", fillOf(square, "even-odd")}},
        {"stroke", kCGPathStroke, {"prepare", strokeOf(square)}},
        {"both", kCGPathFillStroke, {"prepare", fillOf(square) + ", " + strokeOf(square)}},
        {"both, even-odd",
         kCGPathEOFillStroke,
         {"prepare", fillOf(square, "even-odd") + ", " + strokeOf(square)}},
    };
    for (const auto& [what, mode, expected] : cases) {
        Painter painter;
        CGContextAddRect(painter.context(), kSquare);
        CGContextDrawPath(painter.context(), mode);
        EXPECT_EQ(painter.takeCalls(), expected) << what;
        EXPECT_EQ(painter.lastFlags(), 13u | kXGContextGeometryInDeviceSpace) << what;
        CGContextDrawPath(painter.context(), mode);
        EXPECT_EQ(painter.takeCalls(), Calls{}) << what << ": the path is consumed";
    }
}

TEST(Painting, FillsRectanglesInUserSpace) {
    Painter painter;
    const CGContextRef c = painter.context();
    CGContextScaleCTM(c, 2, 2);
    CGContextFillRect(c, kSquare);
    const CGRect rects[] = {{{0, 0}, {1, 1}}, {{2, 2}, {1, 1}}};
    CGContextFillRects(c, rects, 2);
    EXPECT_EQ(painter.takeCalls(),
              (Calls{"rects 0 0 4 4 blend 0", "rects 0 0 1 1, 2 2 1 1 blend 0"}));
    EXPECT_EQ(painter.lastFlags(), 13u);
    CGContextFillRects(c, nullptr, 2);
    CGContextFillRects(c, rects, 0);
    CGContextFillRect(c, CGRectMake(0, 0, 0, 4));
    CGContextFillRect(c, CGRectNull);
    EXPECT_EQ(painter.takeCalls(), Calls{});
}

TEST(Painting, ClearsWithABlendModeOfItsOwn) {
    Painter painter;
    CGContextSetBlendMode(painter.context(), kCGBlendModeMultiply);
    CGContextSetShadow(painter.context(), {1, 1}, 1);
    CGContextClearRect(painter.context(), kSquare);
    CGContextClearRect(painter.context(), CGRectMake(0, 0, 4, 0));
    EXPECT_EQ(painter.takeCalls(), Calls{"rects 0 0 4 4 blend 16"});
    EXPECT_EQ(XGGStateGetBlendMode(painter.state()), kCGBlendModeMultiply);
}

TEST(Painting, ShapesReplaceTheCurrentPath) {
    const CGPoint points[] = {{0, 0}, {4, 0}, {0, 1}, {4, 1}, {9, 9}};
    const struct {
        const char* what;
        std::function<void(CGContextRef)> paint;
        std::string expected;
    } cases[] = {
        {"stroked rectangle", [](CGContextRef c) { CGContextStrokeRect(c, kSquare); },
         strokeOf(kSquareText)},
        {"with a width", [](CGContextRef c) { CGContextStrokeRectWithWidth(c, kSquare, 3); },
         strokeOf(kSquareText, "3")},
        {"with a width of no sense",
         [](CGContextRef c) { CGContextStrokeRectWithWidth(c, kSquare, -3); },
         strokeOf(kSquareText)},
        {"segments in pairs", [&](CGContextRef c) { CGContextStrokeLineSegments(c, points, 5); },
         strokeOf("M 0 0 L 4 0 M 0 1 L 4 1")},
    };
    for (const auto& [what, paint, expected] : cases) {
        Painter painter;
        CGContextMoveToPoint(painter.context(), 50, 50);
        CGContextAddLineToPoint(painter.context(), 60, 60);
        paint(painter.context());
        EXPECT_EQ(painter.takeCalls(), (Calls{"prepare", expected})) << what;
        EXPECT_TRUE(CGContextIsPathEmpty(painter.context())) << what;
        EXPECT_EQ(CGContextGetLineWidth(painter.context()), 1) << what;
    }
}

TEST(Painting, EllipsesAreFilledAndStroked) {
    Painter painter;
    CGContextFillEllipseInRect(painter.context(), kSquare);
    CGContextStrokeEllipseInRect(painter.context(), kSquare);
    const Calls calls = painter.takeCalls();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(calls[1].substr(0, 13), "fill M 4 2 C ");
    EXPECT_EQ(calls[3].substr(0, 15), "stroke M 4 2 C ");
}

// ---- Strokes

TEST(Stroking, FillsTheOutlineInTheStrokeColorElsewhere) {
    Painter painter;
    const CGContextRef c = painter.context();
    CGContextSetLineWidth(c, 2);
    CGContextScaleCTM(c, 3, 5);
    CGContextAddRect(c, kSquare);
    CGContextDrawPath(c, kCGPathFillStroke);
    const Calls calls = painter.takeCalls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[1], fillOf("M 0 0 L 12 0 L 12 20 L 0 20 Z"));
    EXPECT_EQ(calls[2].substr(0, 7), "fill M ");
    EXPECT_EQ(calls[2].substr(calls[2].size() - 18), "winding in 0 0 1 1");
    EXPECT_EQ(CGColorGetComponents(XGGStateGetFillColor(painter.state()))[0], 1)
        << "for the call alone";
}

TEST(Stroking, OutlinesWithoutAStrokeColorAreBlack) {
    RecordingBackend backend;
    CGContextSetRGBFillColor(backend.context(), 1, 0, 0, 1);
    CGContextScaleCTM(backend.context(), 3, 5);
    CGContextStrokeRect(backend.context(), kSquare);
    const Calls calls = backend.takeCalls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[1].substr(calls[1].size() - 7), "in none");
}

TEST(Stroking, KeepsTheThinnestLineThin) {
    Painter painter;
    CGContextSetLineWidth(painter.context(), 0);
    CGContextScaleCTM(painter.context(), 3, 5);
    CGContextStrokeRect(painter.context(), kSquare);
    const Calls calls = painter.takeCalls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[1], strokeOf("M 0 0 L 12 0 L 12 20 L 0 20 Z", "0"));
}

TEST(Dashing, CutsInUserUnits) {
    const struct {
        const char* what;
        CGFloat scale;
        std::vector<CGFloat> lengths;
        CGFloat phase;
        const char* expected; // Of the line (0, 0) to (8, 0).
    } cases[] = {
        {"plain", 1, {3, 1}, 0, "M 0 0 L 3 0 M 4 0 L 7 0"},
        {"with a phase", 1, {3, 1}, 1, "M 0 0 L 2 0 M 3 0 L 6 0 M 7 0 L 8 0"},
        {"a negative phase", 1, {3, 1}, -1, "M 1 0 L 4 0 M 5 0 L 8 0"},
        {"scaled", 2, {3, 1}, 1, "M 0 0 L 4 0 M 6 0 L 12 0 M 14 0 L 16 0"},
        {"scaled, a negative phase", 2, {3, 1}, -1, "M 2 0 L 8 0 M 10 0 L 16 0"},
        {"scaled, a huge phase", 2, {3, 1}, 4e6f, "M 0 0 L 6 0 M 8 0 L 14 0"},
        {"one length", 2, {2}, 0, "M 0 0 L 4 0 M 8 0 L 12 0"},
        {"no length at all", 2, {0, 0}, 0, "M 0 0 L 16 0"},
        {"a negative length", 2, {3, -1}, 0, "M 0 0 L 16 0"},
        {"more dashes than can be", 2, {1e-30f, 1e-30f}, 0, "M 0 0 L 16 0"},
        {"a phase of no sense",
         2,
         {3, 1},
         std::numeric_limits<CGFloat>::quiet_NaN(),
         "M 0 0 L 16 0"},
        {"an infinite phase", 1, {3, 1}, std::numeric_limits<CGFloat>::infinity(), "M 0 0 L 8 0"},
    };
    for (const auto& [what, scale, lengths, phase, expected] : cases) {
        Painter painter;
        const CGContextRef c = painter.context();
        CGContextSetLineWidth(c, 1 / scale);
        CGContextScaleCTM(c, scale, scale);
        CGContextSetLineDash(c, phase, lengths.data(), lengths.size());
        CGContextMoveToPoint(c, 0, 0);
        CGContextAddLineToPoint(c, 8, 0);
        CGContextStrokePath(c);
        EXPECT_EQ(painter.takeCalls(), (Calls{"prepare", strokeOf(expected)})) << what;
    }
}

// ---- Clips

CGRect clipOf(const RecordingBackend& backend) {
    return XGClippingGetBoundingBox(XGGStateGetClipping(backend.state()));
}
CFIndex clipPathsOf(const RecordingBackend& backend) {
    const CFArrayRef paths = XGClippingGetPaths(XGGStateGetClipping(backend.state()));
    return paths ? CFArrayGetCount(paths) : 0;
}

TEST(ContextClip, RectanglesClipToTheirUnion) {
    const auto nan = std::numeric_limits<CGFloat>::quiet_NaN();
    const CGAffineTransform plain = {2, 0, 0, 2, 0, 0}, turned = {1, 1, -1, 1, 0, 0};
    const struct {
        const char* what;
        CGAffineTransform ctm;
        std::vector<CGRect> rects;
        CGRect bounds;
        CFIndex paths;
    } cases[] = {
        {"one", plain, {kSquare}, {{0, 0}, {8, 8}}, 0},
        {"one, turned by a quarter", {0, 1, -1, 0, 0, 0}, {kSquare}, {{-4, 0}, {4, 4}}, 0},
        {"one, turned", turned, {kSquare}, {{-4, 0}, {8, 8}}, 1},
        {"two", plain, {kSquare, {{8, 0}, {2, 2}}}, {{0, 0}, {20, 8}}, 1},
        {"two, one of them empty", plain, {kSquare, CGRectNull}, {{0, 0}, {8, 8}}, 1},
        {"two, one of no size", plain, {kSquare, {{0, 0}, {nan, 1}}}, {{0, 0}, {8, 8}}, 1},
        {"an empty one", plain, {{{2, 2}, {0, 3}}}, {{0, 0}, {0, 0}}, 0},
        {"empty ones", plain, {{{2, 2}, {0, 3}}, CGRectNull}, {{0, 0}, {0, 0}}, 0},
        {"the null rectangle", plain, {CGRectNull}, {{0, 0}, {0, 0}}, 0},
    };
    for (const auto& [what, ctm, rects, bounds, paths] : cases) {
        RecordingBackend backend;
        const CGContextRef c = backend.context();
        CGContextClipToRect(c, CGRectMake(-1000, -1000, 2000, 2000));
        CGContextConcatCTM(c, ctm);
        CGContextClipToRects(c, rects.data(), rects.size());
        EXPECT_EQ(CGRectIsEmpty(bounds), CGRectIsEmpty(clipOf(backend))) << what;
        if (!CGRectIsEmpty(bounds)) {
            EXPECT_TRUE(CGRectEqualToRect(clipOf(backend), bounds)) << what;
        }
        EXPECT_EQ(clipPathsOf(backend), paths) << what;
    }
}

TEST(ContextClip, TheInfiniteRectangleClipsNothing) {
    RecordingBackend backend;
    CGContextScaleCTM(backend.context(), 100, 100);
    CGContextClipToRect(backend.context(), CGRectInfinite);
    EXPECT_EQ(XGGStateGetClipping(backend.state()), nullptr);
    CGContextClipToRects(backend.context(), nullptr, 3);
    EXPECT_EQ(XGGStateGetClipping(backend.state()), nullptr);
}

// ---- Transparency layers

TEST(ContextLayer, StartsOverInsideAndCompositesWithTheStateFromBefore) {
    Painter painter;
    const CGContextRef c = painter.context();
    CGContextSetAlpha(c, 0.5f);
    CGContextSetBlendMode(c, kCGBlendModeMultiply);
    CGContextSetShadow(c, {1, 1}, 1);
    CGContextBeginTransparencyLayerWithRect(c, kSquare, nullptr);
    EXPECT_EQ(XGGStateGetAlpha(painter.state()), 1);
    EXPECT_EQ(XGGStateGetBlendMode(painter.state()), kCGBlendModeNormal);
    EXPECT_FALSE(XGGStateHasShadow(painter.state()));
    CGContextFillRect(c, kSquare);
    CGContextEndTransparencyLayer(c);
    EXPECT_EQ(painter.takeCalls(),
              (Calls{"prepare", "begin layer alpha 0.5 blend 1 shadowed", "rects 0 0 4 4 blend 0",
                     "prepare", "end layer alpha 0.5 blend 1 shadowed"}));
    EXPECT_EQ(XGGStateGetAlpha(painter.state()), 0.5f);
}

} // namespace
