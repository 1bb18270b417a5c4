// CGPathVisualizationTest.cpp: paths and pictures that show how a path is made.

#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGImage.h>

#include "Paths.h"
#include "Support/CollectedLog.h"

#include <cstring>
#include <string>

namespace {

using namespace test;

MutablePath everyKind() {
    MutablePath path = makeLines({{0, 0}, {10, 0}});
    CGPathAddQuadCurveToPoint(path.get(), nullptr, 20, 0, 20, 10);
    CGPathAddCurveToPoint(path.get(), nullptr, 20, 20, 15, 25, 10, 25);
    CGPathCloseSubpath(path.get());
    return path;
}

TEST(CGPathVisualization, MarksPointsAndDrawsHandles) {
    const MutablePath path = everyKind();
    const std::string own = text(path), handles = " M 10 0 L 20 0 M 20 0 L 20 10"
                                                  " M 20 10 L 20 20 M 15 25 L 10 25";
    EXPECT_EQ(text(cf::adopt(_CGPathCreateVisualizationPath(path.get(), 0))), own + handles);
    const Path marked = cf::adopt(_CGPathCreateVisualizationPath(path.get(), 2));
    const std::string corners = " M 1 0 L 0 1 L -1 0 L 0 -1 Z"
                                " M 9 -1 L 11 -1 L 11 1 L 9 1 Z"
                                " M 19 9 L 21 9 L 21 11 L 19 11 Z"
                                " M 9 24 L 11 24 L 11 26 L 9 26 Z";
    EXPECT_EQ(text(marked).find(own + handles + corners), 0u) << text(marked);
    // Discs around the three control points reach as far as the bounds.
    expectRect(CGPathGetPathBoundingBox(marked.get()), {{-1, -1}, {22, 27}}, 1e-5f, "marks");
    for (const CGPoint control : {CGPoint{20, 0}, {20, 20}, {15, 25}})
        EXPECT_TRUE(CGPathContainsPoint(marked.get(), nullptr, control, false));
}

// One letter for the pixel over a point of the path's own space.
char colorAt(CGImageRef image, CFDataRef data, float scale, CGRect bounds, CGPoint point) {
    const auto x = static_cast<size_t>((point.x - bounds.origin.x) * scale + 5);
    const auto y =
        static_cast<size_t>((bounds.origin.y + bounds.size.height - point.y) * scale + 5);
    const UInt8* const p = CFDataGetBytePtr(data) + y * CGImageGetBytesPerRow(image) + 4 * x;
    if (p[3] == 0)
        return ' ';
    if (p[3] < 0x40)
        return 'i';
    return p[0] > p[2] ? 'r' : p[2] > p[0] ? 'b' : 'k';
}

TEST(CGPathVisualization, IsPicturedWithYUp) {
    const MutablePath path = everyKind();
    const float scale = 8;
    const auto image = cf::adopt(_CGPathCreateVisualizationImage(path.get(), scale));
    ASSERT_TRUE(image);
    EXPECT_EQ(CGImageGetWidth(image.get()), 20u * 8 + 10);
    EXPECT_EQ(CGImageGetHeight(image.get()), 25u * 8 + 10);
    const auto data = cf::adopt(CGDataProviderCopyData(CGImageGetDataProvider(image.get())));
    const struct {
        const char* what;
        CGPoint point;
        char color;
    } cases[] = {
        {"start", {0, 0}, 'r'},    {"end of the line", {10, 0}, 'r'},
        {"end", {10, 25}, 'r'},    {"control point", {20, 0}, 'b'},
        {"handle", {15, 0}, 'b'},  {"second control point", {15, 25}, 'b'},
        {"inside", {10, 12}, 'i'}, {"outline", {5, 0}, 'k'},
        {"outside", {1, 24}, ' '}, {"below the other handle", {19.5f, 1}, ' '},
    };
    for (const auto& [what, point, color] : cases)
        EXPECT_EQ(colorAt(image.get(), data.get(), scale, {{0, 0}, {20, 25}}, point), color)
            << what;
}

TEST(CGPathVisualization, RefusesWhatCannotBeShown) {
    const CollectedLog log;
    const MutablePath path = everyKind();
    MutablePath endless = everyKind();
    _CGPathConcatCTM(endless.get(), kInfinity, 0, 0, 1, 0, 0);
    EXPECT_FALSE(_CGPathCreateVisualizationPath(nullptr, 1));
    EXPECT_FALSE(_CGPathCreateVisualizationPath(path.get(), kNaN));
    EXPECT_FALSE(_CGPathCreateVisualizationPath(endless.get(), 1));
    EXPECT_EQ(text(cf::adopt(_CGPathCreateVisualizationPath(makePath().get(), 1))), "");
    for (const float scale : {0.f, -1.f, kNaN, kInfinity, 1e4f, 1e30f})
        EXPECT_FALSE(_CGPathCreateVisualizationImage(path.get(), scale)) << scale;
    EXPECT_FALSE(_CGPathCreateVisualizationImage(makePath().get(), 1));
    EXPECT_FALSE(_CGPathCreateVisualizationImage(endless.get(), 1));
    EXPECT_EQ(log.lines().size(), 4u) << "three scales and the endless path";
}

} // namespace
