// BackendCallsTest.cpp: every operation's calls to its destination: order, flags, state, geometry.

#include "XGContext.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Core/Context/CGContextRecord.h"
#include "Support/Bitmaps.h"
#include "Support/RecordingBackend.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

using test::RecordingBackend;
using Lines = std::vector<std::string>;

namespace {

constexpr CGRect kSquare = {{0, 0}, {4, 4}};

cf::Ref<CGImageRef> makeImage() {
    return cf::adopt(CGBitmapContextCreateImage(test::makeContext(2, 1).get()));
}

cf::Ref<CGGradientRef> makeGradient() {
    const CGFloat components[] = {0, 1, 1, 1};
    const auto gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    return cf::adopt(CGGradientCreateWithColorComponents(gray.get(), components, nullptr, 2));
}

cf::Ref<CGShadingRef> makeShading() {
    constexpr CGFunctionCallbacks callbacks = {
        0, [](void*, const CGFloat*, CGFloat* out) { out[0] = out[1] = 1; }, nullptr};
    const auto gray = cf::adopt(CGColorSpaceCreateDeviceGray());
    const auto function = cf::adopt(CGFunctionCreate(nullptr, 1, nullptr, 2, nullptr, &callbacks));
    return cf::adopt(
        CGShadingCreateAxial(gray.get(), {0, 0}, {1, 1}, function.get(), false, false));
}

// "fill device shadow": the call's first word and the flags beyond the allowances.
Lines outlineOf(const std::vector<RecordingBackend::Call>& calls) {
    constexpr struct {
        uint32_t flag;
        const char* name;
    } kNames[] = {
        {kXGContextGeometryInDeviceSpace, " device"},
        {kXGContextTiledImage, " tiled"},
        {kXGContextShadowPass, " shadow"},
    };
    Lines lines;
    for (const auto& [text, state, flags] : calls) {
        std::string line = text.starts_with("shadow ") ? text.substr(7) : text;
        line.resize(std::min(line.find(' '), line.size()));
        for (const auto& [flag, name] : kNames)
            line += flags & flag ? name : "";
        lines.push_back(line);
    }
    return lines;
}

struct Operation {
    const char* what;
    void (*draw)(CGContextRef context);
    Lines plain;
    Lines shadowed;
};

const Operation kOperations[] = {
    {"fill",
     [](CGContextRef c) {
         CGContextAddRect(c, kSquare);
         CGContextFillPath(c);
     },
     {"prepare", "fill device"},
     {"prepare", "fill device shadow", "fill device"}},
    {"fill and stroke",
     [](CGContextRef c) {
         CGContextAddRect(c, kSquare);
         CGContextDrawPath(c, kCGPathEOFillStroke);
     },
     {"prepare", "fill device"},
     {"prepare", "fill device shadow", "fill device"}},
    {"fill and stroke under a skewed transform",
     [](CGContextRef c) {
         CGContextConcatCTM(c, {1, 0, 1, 1, 0, 0});
         CGContextAddRect(c, kSquare);
         CGContextDrawPath(c, kCGPathFillStroke);
     },
     {"prepare", "fill device", "fill device"},
     {"prepare", "fill device shadow", "fill device shadow", "fill device", "fill device"}},
    {"stroked rectangle",
     [](CGContextRef c) { CGContextStrokeRect(c, kSquare); },
     {"prepare", "stroke device"},
     {"prepare", "stroke device shadow", "stroke device"}},
    {"shadow of a path",
     [](CGContextRef c) {
         CGContextAddRect(c, kSquare);
         XGContextDrawShadowPath(c, kCGPathFill);
     },
     {"prepare"},
     {"prepare", "fill device shadow"}},
    {"mode out of range",
     [](CGContextRef c) {
         CGContextAddRect(c, kSquare);
         CGContextDrawPath(c, static_cast<CGPathDrawingMode>(5));
     },
     {},
     {}},
    {"rectangles",
     [](CGContextRef c) { CGContextFillRects(c, &kSquare, 1); },
     {"rects"},
     {"prepare", "fill device shadow", "fill device"}},
    {"cleared rectangle",
     [](CGContextRef c) { CGContextClearRect(c, kSquare); },
     {"rects"},
     {"rects"}},
    {"image",
     [](CGContextRef c) { CGContextDrawImage(c, kSquare, makeImage().get()); },
     {"prepare", "image"},
     {"prepare", "image shadow", "image"}},
    {"tiled image",
     [](CGContextRef c) { CGContextDrawTiledImage(c, kSquare, makeImage().get()); },
     {"prepare", "tiled tiled"},
     {"prepare", "tiled tiled shadow", "tiled tiled"}},
    {"shadow of an image",
     [](CGContextRef c) { XGContextDrawShadowImage(c, kSquare, makeImage().get()); },
     {"prepare"},
     {"prepare", "image shadow"}},
    {"linear gradient",
     [](CGContextRef c) {
         CGContextDrawLinearGradient(c, makeGradient().get(), {0, 0}, {1, 1}, 0);
     },
     {"prepare", "shading"},
     {"prepare", "shading"}},
    {"radial gradient",
     [](CGContextRef c) {
         CGContextDrawRadialGradient(c, makeGradient().get(), {0, 0}, 0, {0, 0}, 1, 0);
     },
     {"prepare", "shading"},
     {"prepare", "shading"}},
    {"shading",
     [](CGContextRef c) { CGContextDrawShading(c, makeShading().get()); },
     {"prepare", "shading"},
     {"prepare", "shading"}},
    {"transparency layer",
     [](CGContextRef c) {
         CGContextBeginTransparencyLayer(c, nullptr);
         CGContextEndTransparencyLayer(c);
     },
     {"prepare", "begin", "prepare", "end"},
     {"prepare", "begin", "prepare", "end"}},
    {"flush", CGContextFlush, {"flush"}, {"flush"}},
    {"synchronize", CGContextSynchronize, {"synchronize"}, {"synchronize"}},
};

TEST(BackendCalls, ComeInOrderWithTheirFlagsAndTheCurrentState) {
    for (const auto& [what, draw, plain, shadowed] : kOperations) {
        for (const bool hasShadow : {false, true}) {
            RecordingBackend backend;
            const CGContextRef c = backend.context();
            CGContextSetAllowsFontSmoothing(c, hasShadow);
            if (hasShadow)
                CGContextSetShadow(c, {1, 1}, 1);
            CGContextSaveGState(c);
            draw(c);
            CGContextRestoreGState(c);
            const auto calls = backend.takeWholeCalls();
            EXPECT_EQ(outlineOf(calls), hasShadow ? shadowed : plain) << what;
            for (const auto& call : calls) {
                if (call.state) {
                    EXPECT_EQ(call.flags & 15, hasShadow ? 15u : 13u) << what << ' ' << call.text;
                }
            }
            draw(c);
            for (const auto& call : backend.takeWholeCalls()) {
                EXPECT_TRUE(!call.state || call.state == backend.state())
                    << what << ' ' << call.text;
            }
            EXPECT_TRUE(CGContextIsPathEmpty(c)) << what;
        }
    }
}

TEST(BackendCalls, AskBitmapsAloneToGetReadyForUnacceleratedDrawing) {
    for (const uint32_t kind : {uint32_t{kXGContextKindBitmap}, uint32_t{kXGContextKindPDF}, 9u}) {
        RecordingBackend backend(kind);
        CGContextSetAllowsAcceleration(backend.context(), true);
        EXPECT_EQ(backend.takeCalls(), Lines{}) << kind;
        CGContextSetAllowsAcceleration(backend.context(), false);
        EXPECT_EQ(backend.takeCalls(), kind == kXGContextKindBitmap ? Lines{"prepare"} : Lines{})
            << kind;
    }
}

TEST(BackendCalls, FindTheCurrentPathTaken) {
    struct Seen {
        CGContextRef context = nullptr;
        bool pathWasEmpty = false;
    } seen;
    XGContextCallbacks table = {};
    table.drawPath = [](XGGStateRef, uint32_t, CGPathRef, CGPathRef, bool, void* info) {
        auto& note = *static_cast<Seen*>(info);
        note.pathWasEmpty = CGContextIsPathEmpty(note.context);
        CGContextAddRect(note.context, kSquare);
    };
    const auto context = cf::adopt(XGContextCreate(9, &table, &seen, 0));
    seen.context = context.get();
    CGContextFillEllipseInRect(context.get(), kSquare);
    EXPECT_TRUE(seen.pathWasEmpty);
    EXPECT_FALSE(CGContextIsPathEmpty(context.get())) << "what the destination adds stays";
}

TEST(BackendCalls, EndAfterTheStatesAreGone) {
    static XGGStateRef kept = nullptr;
    static CFIndex holders = 0;
    XGContextCallbacks table = {};
    table.releaseInfo = [](void*) { holders = CFGetRetainCount(kept); };
    auto context = cf::adopt(XGContextCreate(9, &table, nullptr, 0));
    kept = XGGStateRetain(context.get()->state.get());
    CGContextSaveGState(context.get());
    context = nullptr;
    EXPECT_EQ(holders, 1) << "the test alone";
    XGGStateRelease(kept);
}

// ---- Geometry of strokes in device space

struct Corners {
    std::vector<CGPoint> points; // Where a pen's path turns, each once, in order of x, then y.

    static Corners of(CGPathRef path) {
        Corners corners;
        CGPathApply(path, &corners, [](void* info, const CGPathElement* element) {
            if (element->type == kCGPathElementMoveToPoint ||
                element->type == kCGPathElementAddLineToPoint)
                static_cast<Corners*>(info)->add(element->points[0]);
        });
        return corners;
    }

    void add(CGPoint point) {
        const auto isNear = [&](CGPoint other) {
            return std::fabs(other.x - point.x) < 1e-3f && std::fabs(other.y - point.y) < 1e-3f;
        };
        if (std::ranges::any_of(points, isNear))
            return;
        const auto isBefore = [](CGPoint a, CGPoint b) {
            return std::fabs(a.x - b.x) < 1e-3f ? a.y < b.y : a.x < b.x;
        };
        points.insert(std::ranges::upper_bound(points, point, isBefore), point);
    }
};

// Strokes the line (0, 0) to (4, 0) and notes what reaches the destination.
struct StrokedLine {
    Corners corners;
    bool isOutline = false;
    CGFloat width = 0;
    CGContextRef context = nullptr;

    static XGContextCallbacks callbacks() {
        XGContextCallbacks table = {};
        table.drawPath = [](XGGStateRef state, uint32_t, CGPathRef fill, CGPathRef stroke, bool,
                            void* info) {
            auto& line = *static_cast<StrokedLine*>(info);
            line.corners = Corners::of(fill ? fill : stroke);
            line.isOutline = fill != nullptr;
            line.width = XGGStateGetLineWidth(state);
        };
        return table;
    }
};

TEST(BackendStrokes, HaveUserSpacePensAndDashesInDeviceSpace) {
    const auto root = std::sqrt(0.5f);
    const struct {
        const char* what;
        CGAffineTransform ctm;
        std::vector<CGFloat> dash;
        bool isOutline;
        CGFloat width; // Of a pen of 2 in user space.
        std::vector<CGPoint> corners;
    } cases[] = {
        {"identity", {1, 0, 0, 1, 0, 0}, {}, false, 2, {{0, 0}, {4, 0}}},
        {"turned by 45 degrees, twice as large",
         {2 * root, 2 * root, -2 * root, 2 * root, 1, 0},
         {},
         false,
         4,
         {{1, 0}, {1 + 8 * root, 8 * root}}},
        {"mirrored, dashed",
         {-3, 0, 0, 3, 0, 0},
         {1, 1},
         false,
         6,
         {{-9, 0}, {-6, 0}, {-3, 0}, {0, 0}}},
        {"stretched", {3, 0, 0, 1, 0, 0}, {}, true, 2, {{0, -1}, {0, 1}, {12, -1}, {12, 1}}},
        {"skewed", {1, 0, 1, 1, 0, 0}, {}, true, 2, {{-1, -1}, {1, 1}, {3, -1}, {5, 1}}},
        {"skewed, dashed",
         {1, 0, 1, 1, 0, 0},
         {1, 2},
         true,
         2,
         {{-1, -1}, {0, -1}, {1, 1}, {2, -1}, {2, 1}, {3, -1}, {4, 1}, {5, 1}}},
        {"flattened to a line", {1, 0, 0, 0, 0, 0}, {}, false, 0, {}},
    };
    for (const auto& [what, ctm, dash, isOutline, width, corners] : cases) {
        StrokedLine line;
        const XGContextCallbacks table = StrokedLine::callbacks();
        const auto context = cf::adopt(XGContextCreate(9, &table, &line, 0));
        CGContextSetCTM(context.get(), ctm);
        CGContextSetLineWidth(context.get(), 2);
        CGContextSetLineDash(context.get(), 0, dash.data(), dash.size());
        const CGPoint ends[] = {{0, 0}, {4, 0}};
        CGContextStrokeLineSegments(context.get(), ends, 2);
        EXPECT_EQ(line.isOutline, isOutline) << what;
        EXPECT_NEAR(line.width, width, 1e-5) << what;
        ASSERT_EQ(line.corners.points.size(), corners.size()) << what;
        for (std::size_t index = 0; index < corners.size(); ++index) {
            EXPECT_NEAR(line.corners.points[index].x, corners[index].x, 1e-3) << what << index;
            EXPECT_NEAR(line.corners.points[index].y, corners[index].y, 1e-3) << what << index;
        }
    }
}

} // namespace
