// PatternTest.cpp: patterns painted into bitmaps, against pictures drawn by hand.

#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/CollectedLog.h"
#include "Support/SkiaPeer.h"
#include "include/core/SkPath.h"
#include "include/core/SkShader.h"
#include "include/core/SkTileMode.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using test::makeContext;
using Rows = std::vector<std::string>;
using Cell = std::function<void(CGContextRef)>;
using Pattern = cf::Ref<CGPatternRef>;

// Rows from the top, a letter a pixel: the strongest of red, green and blue, in capitals where it
// is opaque; a point where nothing is.
Rows letters(CGContextRef context) {
    const auto* const bytes = static_cast<const std::uint8_t*>(CGBitmapContextGetData(context));
    Rows rows;
    for (std::size_t y = 0; y < CGBitmapContextGetHeight(context); ++y) {
        std::string row;
        for (std::size_t x = 0; x < CGBitmapContextGetWidth(context); ++x) {
            const auto* const p = bytes + y * CGBitmapContextGetBytesPerRow(context) + 4 * x;
            const char name = p[2] > p[1] && p[2] > p[0] ? 'r'
                              : p[1] > p[0]              ? 'g'
                              : p[0] > 0                 ? 'b'
                                                         : 'k';
            row += p[3] == 0 ? '.' : p[3] == 255 ? static_cast<char>(std::toupper(name)) : name;
        }
        rows.push_back(row);
    }
    return rows;
}

struct Shape {
    CGRect bounds;
    CGSize step;
    CGAffineTransform matrix = CGAffineTransformIdentity;
    CGPatternTiling tiling = kCGPatternTilingConstantSpacing;
    bool isColored = true;
};

Pattern makePattern(const Shape& shape, const Cell& cell) {
    const CGPatternCallbacks callbacks = {
        0, [](void* info, CGContextRef context) { (*static_cast<Cell*>(info))(context); },
        [](void* info) { delete static_cast<Cell*>(info); }};
    return cf::adopt(CGPatternCreate(new Cell(cell), shape.bounds, shape.matrix, shape.step.width,
                                     shape.step.height, shape.tiling, shape.isColored, &callbacks));
}

void setFill(CGContextRef context, CGPatternRef pattern, CGFloat alpha = 1) {
    const auto space = cf::adopt(CGColorSpaceCreatePattern(nullptr));
    CGContextSetFillColorSpace(context, space.get());
    CGContextSetFillPattern(context, pattern, &alpha);
}

void setFill(CGContextRef context, CGPatternRef pattern, const std::vector<CGFloat>& components) {
    const auto device = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const auto space = cf::adopt(CGColorSpaceCreatePattern(device.get()));
    CGContextSetFillColorSpace(context, space.get());
    CGContextSetFillPattern(context, pattern, components.data());
}

void fill(CGContextRef context, char color, CGRect rect) {
    CGContextSetRGBFillColor(context, color == 'r', color == 'g', color == 'b', 1);
    CGContextFillRect(context, rect);
}

// A red foot and a green toe to its right, blue above the foot.
void drawBoot(CGContextRef context) {
    fill(context, 'r', CGRectMake(0, 0, 1, 1));
    fill(context, 'g', CGRectMake(1, 0, 1, 1));
    fill(context, 'b', CGRectMake(0, 1, 1, 1));
}

constexpr CGRect kEverywhere = {{-100, -100}, {1000, 1000}};

Rows painted(const Shape& shape, const Cell& cell, std::size_t width, std::size_t height,
             CGSize phase = {0, 0}) {
    const test::Context context = makeContext(width, height);
    CGContextSetPatternPhase(context.get(), phase);
    setFill(context.get(), makePattern(shape, cell).get());
    CGContextFillRect(context.get(), kEverywhere);
    return letters(context.get());
}

TEST(Pattern, RepeatsItsCellFromTheLowerLeft) {
    const CGRect boot = CGRectMake(0, 0, 2, 2);
    const struct {
        const char* what;
        Shape shape;
        CGSize phase;
        Rows rows;
    } cases[] = {
        {"side by side", {boot, {2, 2}}, {0, 0}, {"B.B.B.", "RGRGRG", "B.B.B.", "RGRGRG"}},
        {"with gaps", {boot, {3, 4}}, {0, 0}, {"......", "......", "B..B..", "RG.RG."}},
        {"a phase", {boot, {3, 4}}, {1, -1}, {".RG.RG", "......", "......", ".B..B."}},
        {"scaled",
         {boot, {2, 2}, {2, 0, 0, 1, 0, 0}},
         {0, 0},
         {"BB..BB", "RRGGRR", "BB..BB", "RRGGRR"}},
        {"upside down",
         {boot, {3, 4}, {1, 0, 0, -1, 0, 4}},
         {0, 0},
         {"RG.RG.", "B..B..", "......", "......"}},
        {"a mirror image",
         {boot, {3, 4}, {-1, 0, 0, 1, 3, 0}},
         {0, 0},
         {"......", "......", "..B..B", ".GR.GR"}},
        {"a quarter turn",
         {boot, {3, 4}, {0, 1, -1, 0, 2, 0}},
         {0, 0},
         {"BR..BR", "......", ".G...G", "BR..BR"}},
        {"its bounds elsewhere",
         {{{1, 0}, {1, 1}}, {3, 4}},
         {0, 0},
         {"......", "......", "......", ".G..G."}},
        {"negative steps", {boot, {-3, -4}}, {0, 0}, {"......", "......", "B..B..", "RG.RG."}},
        {"no steps", {boot, {0, NAN}}, {0, 0}, {"B.B.B.", "RGRGRG", "B.B.B.", "RGRGRG"}},
        {"steps of millions",
         {boot, {5e6f, 5e6f}},
         {2, 1},
         {"......", "..B...", "..RG..", "......"}},
        {"steps without end",
         {boot, {INFINITY, 2}},
         {0, 0},
         {"B.....", "RG....", "B.....", "RG...."}},
        {"far from its origin",
         {boot, {3, 4}, {1, 0, 0, 1, -3e6f, 4e6f}},
         {0, 0},
         {"......", "......", "B..B..", "RG.RG."}},
    };
    for (const auto& [what, shape, phase, rows] : cases)
        EXPECT_EQ(painted(shape, drawBoot, 6, 4, phase), rows) << what;
}

TEST(Pattern, LetsLaterCellsLieOverEarlierOnes) {
    const Shape shape = {CGRectMake(0, 0, 3, 3), {2, 2}};
    const Cell frame = [](CGContextRef context) {
        fill(context, 'r', CGRectMake(0, 0, 3, 1));
        fill(context, 'g', CGRectMake(0, 0, 1, 3));
        fill(context, 'b', CGRectMake(2, 1, 1, 2));
    };
    // Each cell is RGG, below from the left; the column left of it shows under its green.
    EXPECT_EQ(painted(shape, frame, 4, 4), (Rows{"G.G.", "GRGR", "G.G.", "GRGR"}));
}

TEST(Pattern, FitsFractionsOfPixelsAsItsTilingSays) {
    const Cell line = [](CGContextRef context) { fill(context, 'r', CGRectMake(0, 0, 1, 1)); };
    const auto row = [&](CGPatternTiling tiling) {
        return painted({CGRectMake(0, 0, 1, 1), {2.5f, 1}, CGAffineTransformIdentity, tiling}, line,
                       16, 1)[0];
    };
    EXPECT_EQ(row(kCGPatternTilingNoDistortion), "R..R.R..R.R..R.R") << "on average";
    const std::string even = row(kCGPatternTilingConstantSpacing);
    EXPECT_EQ(even, row(kCGPatternTilingConstantSpacingMinimalDistortion));
    const auto first = even.find('R'), second = even.find('R', 1),
               third = even.find('R', second + 1);
    EXPECT_EQ(first, 0u);
    EXPECT_EQ(third - second, second - first);
}

// A cell that is all paint leaves no gap at any scale.
TEST(Pattern, HasNoSeams) {
    const CGRect square = CGRectMake(0, 0, 4, 4);
    const Cell all = [=](CGContextRef context) { fill(context, 'g', square); };
    for (const CGFloat scale : {0.3f, 1.f, 1.1f, 2.77f})
        for (const CGFloat angle : {0.f, 0.4f, 1.5707964f})
            for (const auto tiling :
                 {kCGPatternTilingNoDistortion, kCGPatternTilingConstantSpacing}) {
                const auto matrix =
                    CGAffineTransformScale(CGAffineTransformMakeRotation(angle), scale, scale);
                const Rows rows =
                    painted({square, {4, 4}, matrix, tiling}, all, 40, 3, {0.4f, 0.7f});
                EXPECT_EQ(rows, Rows(3, std::string(40, 'G'))) << scale << " " << angle;
            }
}

TEST(Pattern, StaysInBaseSpace) {
    const test::Context context = makeContext(6, 4);
    CGContextTranslateCTM(context.get(), 1, 0);
    CGContextScaleCTM(context.get(), 2, 2);
    setFill(context.get(), makePattern({CGRectMake(0, 0, 2, 2), {2, 2}}, drawBoot).get());
    CGContextFillRect(context.get(), CGRectMake(0, 0, 2, 1));
    EXPECT_EQ(letters(context.get()), (Rows{"......", "......", "..B.B.", ".GRGR."}));
}

TEST(Pattern, PaintsEveryKindOfMark) {
    const Pattern pattern = makePattern({CGRectMake(0, 0, 2, 2), {2, 2}}, drawBoot);
    const std::uint8_t samples[] = {0, 255, 0, 0}; // Ink but for the second.
    const auto provider =
        cf::adopt(CGDataProviderCreateWithData(nullptr, samples, sizeof samples, nullptr));
    const auto mask = cf::adopt(CGImageMaskCreate(4, 1, 8, 8, 4, provider.get(), nullptr, false));
    const Rows all = {"B.B.B.", "RGRGRG", "B.B.B.", "RGRGRG"};
    const struct {
        const char* what;
        std::function<void(CGContextRef)> draw;
        Rows rows;
    } cases[] = {
        {"a path",
         [](CGContextRef c) {
             CGContextAddRect(c, CGRectMake(1, 1, 4, 2));
             CGContextFillPath(c);
         },
         {"......", ".GRGR.", "..B.B.", "......"}},
        {"an aligned stroke",
         [&](CGContextRef c) {
             const auto color = cf::adopt(CGColorCreateCopy(
                 cf::adopt(
                     CGColorCreateWithPattern(cf::adopt(CGColorSpaceCreatePattern(nullptr)).get(),
                                              pattern.get(), std::vector<CGFloat>{1}.data()))
                     .get()));
             CGContextSetStrokeColorWithColor(c, color.get());
             CGContextStrokeRect(c, CGRectMake(0.5f, 0.5f, 5, 3));
         },
         {"B.B.B.", "R....G", "B.....", "RGRGRG"}},
        {"an image mask",
         [&](CGContextRef c) { CGContextDrawImage(c, CGRectMake(1, 0, 4, 1), mask.get()); },
         {"......", "......", "......", ".G.GR."}},
        {"tiles of an image mask",
         [&](CGContextRef c) { CGContextDrawTiledImage(c, CGRectMake(1, 0, 4, 4), mask.get()); },
         {"B...B.", "RG.GRG", "B...B.", "RG.GRG"}},
        {"a group",
         [](CGContextRef c) {
             CGContextClipToRect(c, CGRectMake(1, 1, 4, 2));
             CGContextBeginTransparencyLayer(c, nullptr);
             CGContextFillRect(c, kEverywhere);
             CGContextEndTransparencyLayer(c);
         },
         {"......", ".GRGR.", "..B.B.", "......"}},
    };
    for (const auto& [what, draw, rows] : cases) {
        const test::Context context = makeContext(6, 4);
        CGContextSetInterpolationQuality(context.get(), kCGInterpolationNone);
        setFill(context.get(), pattern.get());
        draw(context.get());
        EXPECT_EQ(letters(context.get()), rows) << what;
    }
}

TEST(Pattern, ThrowsTheShadowOfItsPaint) {
    const test::Context context = makeContext(6, 4);
    setFill(context.get(), makePattern({CGRectMake(0, 0, 2, 2), {4, 4}}, drawBoot).get());
    CGContextSetShadow(context.get(), {2, 1}, 0);
    CGContextFillRect(context.get(), CGRectMake(0, 0, 3, 3));
    EXPECT_EQ(letters(context.get()), (Rows{"......", "..k...", "B.kk..", "RG...."}));
}

TEST(Pattern, TakesOpacityFromColorAndState) {
    const test::Context context = makeContext(1, 1);
    CGContextSetAlpha(context.get(), 0.5f);
    setFill(context.get(), makePattern({CGRectMake(0, 0, 2, 2), {2, 2}}, drawBoot).get(), 0.5f);
    CGContextFillRect(context.get(), kEverywhere);
    const auto* const pixel = static_cast<std::uint8_t*>(CGBitmapContextGetData(context.get()));
    EXPECT_NEAR(pixel[3], 64, 1);
    EXPECT_NEAR(pixel[2], 64, 1) << "premultiplied";
}

TEST(Pattern, WithoutColorsTakesThoseOfThePaint) {
    const Pattern pattern =
        makePattern({CGRectMake(0, 0, 2, 1),
                     {2, 1},
                     CGAffineTransformIdentity,
                     kCGPatternTilingNoDistortion,
                     false},
                    [](CGContextRef c) { CGContextFillRect(c, CGRectMake(0, 0, 1, 1)); });
    const test::Context context = makeContext(6, 1);
    setFill(context.get(), pattern.get(), {1, 0, 0, 1});
    CGContextFillRect(context.get(), CGRectMake(0, 0, 2, 1));
    setFill(context.get(), pattern.get(), {0, 1, 0, 1});
    CGContextFillRect(context.get(), CGRectMake(2, 0, 2, 1));
    setFill(context.get(), pattern.get(), {0, 0, 1, 0.5f});
    CGContextFillRect(context.get(), CGRectMake(4, 0, 2, 1));
    EXPECT_EQ(letters(context.get()), (Rows{"R.G.b."}));
}

TEST(Pattern, IsRecognisedByItselfAlone) {
    const test::Context context = makeContext(2, 1);
    const CGPatternCallbacks red = {0, [](void*, CGContextRef c) { fill(c, 'r', kEverywhere); },
                                    nullptr};
    const CGPatternCallbacks green = {0, [](void*, CGContextRef c) { fill(c, 'g', kEverywhere); },
                                      nullptr};
    CGFloat x = 0;
    for (const auto& callbacks : {red, green}) {
        const auto pattern =
            cf::adopt(CGPatternCreate(nullptr, CGRectMake(0, 0, 1, 1), CGAffineTransformIdentity, 1,
                                      1, kCGPatternTilingNoDistortion, 1, &callbacks));
        setFill(context.get(), pattern.get());
        CGContextFillRect(context.get(), CGRectMake(x++, 0, 1, 1));
    }
    EXPECT_EQ(letters(context.get()), (Rows{"RG"}));
}

TEST(Pattern, DrawsACellOnceWhileItServes) {
    int calls = 0;
    bool isReleased = false;
    const test::Context context = makeContext(8, 8);
    {
        struct Watch {
            bool* gone;
            ~Watch() { *gone = true; }
        };
        const auto watch = std::shared_ptr<Watch>(new Watch{&isReleased});
        const Pattern pattern =
            makePattern({CGRectMake(0, 0, 2, 2), {2, 2}}, [&calls, watch](CGContextRef c) {
                ++calls;
                drawBoot(c);
            });
        CGContextSaveGState(context.get());
        setFill(context.get(), pattern.get());
        for (int i = 0; i < 9; ++i) {
            CGContextSetPatternPhase(context.get(), {static_cast<CGFloat>(i) / 3, 0});
            CGContextFillRect(context.get(), kEverywhere);
        }
        EXPECT_EQ(calls, 1);
    }
    CGContextRestoreGState(context.get());
    EXPECT_TRUE(isReleased) << "what is kept of it does not keep it";
}

TEST(Pattern, LiesInTheSpaceOfThePatternAroundIt) {
    const Pattern inner = makePattern({CGRectMake(0, 0, 2, 1), {2, 1}},
                                      [](CGContextRef c) { fill(c, 'r', CGRectMake(0, 0, 1, 1)); });
    const Cell outer = [&](CGContextRef c) {
        setFill(c, inner.get());
        CGContextFillRect(c, CGRectMake(1, 0, 3, 1));
    };
    EXPECT_EQ(painted({CGRectMake(1, 0, 4, 1), {4, 1}, {2, 0, 0, 1, 0, 0}}, outer, 16, 1)[0],
              "....RR......RR..");
}

TEST(Pattern, ThatDrawsItselfEndsWithAnError) {
    CollectedLog log;
    Pattern pattern;
    const Shape shape = {CGRectMake(0, 0, 2, 2), {2, 2}};
    pattern = makePattern(shape, [&](CGContextRef c) {
        drawBoot(c);
        setFill(c, pattern.get());
        CGContextFillRect(c, CGRectMake(1, 1, 1, 1));
    });
    const test::Context context = makeContext(2, 2);
    setFill(context.get(), pattern.get());
    CGContextFillRect(context.get(), kEverywhere);
    EXPECT_EQ(letters(context.get()), (Rows{"B.", "RG"}));
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_NE(log.lines()[0].find("draws itself"), std::string::npos);

    // By way of ever new patterns, and of contexts of their own.
    const Cell deeper = [&](CGContextRef) {
        const test::Context own = makeContext(2, 2);
        setFill(own.get(), pattern.get());
        CGContextFillRect(own.get(), kEverywhere);
    };
    pattern = makePattern(shape, [&](CGContextRef c) {
        pattern = makePattern(shape, deeper);
        deeper(c);
    });
    setFill(context.get(), pattern.get());
    CGContextFillRect(context.get(), kEverywhere);
}

TEST(Pattern, SurvivesCallbacksThatMisbehave) {
    CollectedLog log;
    const test::Context context = makeContext(4, 4);
    CGContextRef kept = nullptr;
    CGContextBeginTransparencyLayer(context.get(), nullptr);
    CGContextSaveGState(context.get());
    const Pattern pattern = makePattern({CGRectMake(0, 0, 2, 2), {2, 2}}, [&](CGContextRef c) {
        kept = CGContextRetain(c);
        for (int i = 0; i < 4; ++i) {
            CGContextRestoreGState(c);
            CGContextEndTransparencyLayer(context.get());
            CGContextRestoreGState(context.get());
        }
        CGContextBeginTransparencyLayer(c, nullptr);
    });
    setFill(context.get(), pattern.get());
    CGContextFillRect(context.get(), kEverywhere);
    CGContextFillRect(kept, kEverywhere);
    CGContextRelease(kept);
}

// Nothing to see, but no crash and no long wait either.
TEST(Pattern, SurvivesNumbersOfAllSizes) {
    const CGFloat numbers[] = {0, -1, 1e-7f, 0.37f, 3000, 1e30f, NAN, INFINITY};
    const Cell line = [](CGContextRef c) { fill(c, 'r', CGRectMake(0, 0, 1, 1)); };
    CollectedLog log;
    for (const CGFloat size : numbers)
        for (const CGFloat step : numbers)
            for (const CGFloat scale : numbers)
                for (const CGFloat skew : {0.f, 0.3f, 1e30f})
                    painted({CGRectMake(-1, -1, size, size),
                             {step, step},
                             {scale, skew, 0, scale, 3, skew},
                             kCGPatternTilingNoDistortion},
                            line, 40, 30);
}

TEST(Pattern, IsBareSkiasBitmapShader) {
    constexpr CGPoint corners[] = {{5.3f, 5.1f}, {50.2f, 20.7f}, {20.9f, 55.4f}};
    const test::Context context = makeContext(60, 60);
    setFill(context.get(), makePattern({CGRectMake(0, 0, 2, 2), {2, 2}}, drawBoot).get());
    CGContextSetAlpha(context.get(), 0.6f);
    CGContextAddLines(context.get(), corners, 3);
    CGContextFillPath(context.get());

    SkBitmap boot;
    boot.allocN32Pixels(2, 2);
    boot.eraseColor(0);
    *boot.getAddr32(0, 0) = 0xFF0000FF;
    *boot.getAddr32(0, 1) = 0xFFFF0000;
    *boot.getAddr32(1, 1) = 0xFF00FF00;
    const SkMatrix upright = SkMatrix::MakeAll(1, 0, 0, 0, -1, 2, 0, 0, 1);
    SkPaint paint;
    paint.setAntiAlias(true);
    paint.setAlpha(153);
    paint.setShader(
        boot.makeShader(SkTileMode::kRepeat, SkTileMode::kRepeat, SkSamplingOptions(), &upright));
    SkPath path;
    for (const CGPoint corner : corners)
        path.isEmpty() ? path.moveTo(corner.x, corner.y) : path.lineTo(corner.x, corner.y);
    test::SkiaPeer peer(60, 60);
    peer.canvas().drawPath(path, paint);
    EXPECT_TRUE(samePixels(context.get(), peer));
}

// Patterns with the same info are equal, whatever they draw; a stroke that is outlined because of
// its transform is painted with its own all the same.
TEST(Pattern, OfAnOutlinedStrokeIsNotTheFills) {
    const auto patternOf = [](CGPatternDrawPatternCallback draw) {
        const CGPatternCallbacks callbacks = {0, draw, nullptr};
        return cf::adopt(CGPatternCreate(nullptr, CGRectMake(0, 0, 2, 2), CGAffineTransformIdentity,
                                         2, 2, kCGPatternTilingConstantSpacing, true, &callbacks));
    };
    const Pattern red =
        patternOf([](void*, CGContextRef context) { fill(context, 'r', CGRectMake(0, 0, 2, 2)); });
    const Pattern blue =
        patternOf([](void*, CGContextRef context) { fill(context, 'b', CGRectMake(0, 0, 2, 2)); });
    const test::Context context = makeContext(8, 4);
    const auto space = cf::adopt(CGColorSpaceCreatePattern(nullptr));
    const CGFloat alpha = 1;
    setFill(context.get(), red.get());
    CGContextSetStrokeColorSpace(context.get(), space.get());
    CGContextSetStrokePattern(context.get(), blue.get(), &alpha);
    CGContextScaleCTM(context.get(), 2, 1);
    CGContextSetLineWidth(context.get(), 2);
    CGContextMoveToPoint(context.get(), 0, 1);
    CGContextAddLineToPoint(context.get(), 4, 1);
    CGContextStrokePath(context.get());
    CGContextFillRect(context.get(), CGRectMake(0, 3, 4, 1));
    EXPECT_EQ(letters(context.get()), (Rows{"RRRRRRRR", "........", "BBBBBBBB", "BBBBBBBB"}));
}

} // namespace
