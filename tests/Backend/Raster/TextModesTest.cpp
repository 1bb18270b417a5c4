// TextModesTest.cpp: text in all drawing modes beside the same shapes drawn as paths, shadows,
// patterns and gradients through it, and fonts and numbers that make no sense.

#include "XGContext.h"
#include "XGFont.h"
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/Fonts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <vector>

namespace {

constexpr std::size_t kWidth = 220, kHeight = 80;
constexpr CGFloat kSize = 50;
constexpr CGPoint kOrigin = {8, 20};

using Bytes = std::vector<std::uint8_t>;
using Draw = std::function<void(CGContextRef)>;

const std::vector<CGGlyph>& glyphs(CGFontRef font) {
    static const std::vector<CGGlyph> letters = test::glyphsOf(font, u"Ragout");
    return letters;
}

CGFontRef font() {
    static const test::Font sans = test::makeFont(test::kTrueTypeFont);
    return sans.get();
}

void show(CGContextRef context) {
    CGContextSetFont(context, font());
    CGContextSetFontSize(context, kSize);
    const auto& letters = glyphs(font());
    CGContextShowGlyphsAtPoint(context, kOrigin.x, kOrigin.y, letters.data(), letters.size());
}

// The outlines of what show() shows, as the current path.
void addOutlines(CGContextRef context) {
    CGFloat x = kOrigin.x;
    for (const CGGlyph glyph : glyphs(font())) {
        int advance = 0;
        CGFontGetGlyphAdvances(font(), &glyph, 1, &advance);
        const CGAffineTransform place = {kSize / 2048, 0, 0, kSize / 2048, x, kOrigin.y};
        const auto path = cf::adopt(XGFontCreateGlyphPath(font(), &place, glyph));
        CGContextAddPath(context, path.get());
        x += static_cast<CGFloat>(advance) * kSize / 2048;
    }
}

void fillWithGradient(CGContextRef context) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const CGFloat components[] = {1, 0, 0, 1, 0, 0, 1, 1};
    const auto gradient =
        cf::adopt(CGGradientCreateWithColorComponents(space.get(), components, nullptr, 2));
    CGContextDrawLinearGradient(context, gradient.get(), {0, 0}, {kWidth, 0},
                                CGGradientDrawingOptions(3));
}

void setPattern(CGContextRef context) {
    const CGPatternCallbacks callbacks = {0,
                                          [](void*, CGContextRef c) {
                                              CGContextSetRGBFillColor(c, 1, 0.5f, 0, 1);
                                              CGContextFillRect(c, CGRectMake(0, 0, 4, 8));
                                              CGContextSetRGBFillColor(c, 0, 0.5f, 0, 1);
                                              CGContextFillRect(c, CGRectMake(4, 0, 4, 8));
                                          },
                                          nullptr};
    const auto space = cf::adopt(CGColorSpaceCreatePattern(nullptr));
    const auto pattern =
        cf::adopt(CGPatternCreate(nullptr, CGRectMake(0, 0, 8, 8), CGAffineTransformIdentity, 8, 8,
                                  kCGPatternTilingConstantSpacing, true, &callbacks));
    const CGFloat alpha = 1;
    CGContextSetFillColorSpace(context, space.get());
    CGContextSetFillPattern(context, pattern.get(), &alpha);
}

Bytes draw(const Draw& drawing, CGBitmapInfo info = test::kBGRA) {
    const test::Context context = test::makeContext(kWidth, kHeight, info);
    CGContextSetRGBFillColor(context.get(), 0, 0.3f, 0.8f, 1);
    CGContextSetRGBStrokeColor(context.get(), 0.9f, 0.2f, 0, 0.7f);
    CGContextSetLineWidth(context.get(), 2.5f);
    drawing(context.get());
    const auto* const first = static_cast<std::uint8_t*>(CGBitmapContextGetData(context.get()));
    return {first, first + CGBitmapContextGetBytesPerRow(context.get()) * kHeight};
}

void showIn(CGContextRef context, CGTextDrawingMode mode) {
    CGContextSetTextDrawingMode(context, mode);
    show(context);
}

struct Difference {
    int largest = 0;
    double mean = 0; // Over what either covers.
};

Difference between(const Bytes& a, const Bytes& b) {
    Difference difference;
    double sum = 0, covered = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const int apart = std::abs(a[i] - b[i]);
        difference.largest = std::max(difference.largest, apart);
        sum += apart;
        covered += (a[i] | b[i]) != 0;
    }
    difference.mean = covered > 0 ? sum / covered : 255;
    return difference;
}

} // namespace

// Masks are FreeType's, with the contrast that text needs; outlines are the rasteriser's.
TEST(TextModes, AreTheMarksOfTheOutlines) {
    const struct {
        const char* what;
        Draw text, outlines;
        double mean;
    } cases[] = {
        {"fill", [](CGContextRef c) { showIn(c, kCGTextFill); },
         [](CGContextRef c) {
             addOutlines(c);
             CGContextFillPath(c);
         },
         10},
        {"stroke", [](CGContextRef c) { showIn(c, kCGTextStroke); },
         [](CGContextRef c) {
             addOutlines(c);
             CGContextStrokePath(c);
         },
         0.1},
        {"dashed stroke under a skewed transform",
         [](CGContextRef c) {
             const CGFloat dash[] = {6, 3};
             CGContextSetLineDash(c, 0, dash, 2);
             CGContextConcatCTM(c, {1, 0.1f, 0, 0.7f, 0, 0});
             showIn(c, kCGTextStroke);
         },
         [](CGContextRef c) {
             const CGFloat dash[] = {6, 3};
             CGContextSetLineDash(c, 0, dash, 2);
             CGContextConcatCTM(c, {1, 0.1f, 0, 0.7f, 0, 0});
             addOutlines(c);
             CGContextStrokePath(c);
         },
         0.1},
        {"clip",
         [](CGContextRef c) {
             showIn(c, kCGTextClip);
             fillWithGradient(c);
         },
         [](CGContextRef c) {
             addOutlines(c);
             CGContextClip(c);
             fillWithGradient(c);
         },
         0.1},
        {"pattern",
         [](CGContextRef c) {
             setPattern(c);
             showIn(c, kCGTextFill);
         },
         [](CGContextRef c) {
             setPattern(c);
             addOutlines(c);
             CGContextFillPath(c);
         },
         10},
    };
    for (const auto& [what, text, outlines, mean] : cases) {
        const Difference difference = between(draw(text), draw(outlines));
        EXPECT_LT(difference.mean, mean) << what;
    }
}

TEST(TextModes, ComposeOfEachOther) {
    const struct {
        const char* what;
        Draw together, apart;
    } cases[] = {
        {"fill and stroke", [](CGContextRef c) { showIn(c, kCGTextFillStroke); },
         [](CGContextRef c) {
             showIn(c, kCGTextFill);
             showIn(c, kCGTextStroke);
         }},
        {"fill, stroke and clip",
         [](CGContextRef c) {
             showIn(c, kCGTextFillStrokeClip);
             fillWithGradient(c);
         },
         [](CGContextRef c) {
             showIn(c, kCGTextFillStroke);
             showIn(c, kCGTextClip);
             fillWithGradient(c);
         }},
        {"glyphs that clip one by one",
         [](CGContextRef c) {
             showIn(c, kCGTextClip);
             fillWithGradient(c);
         },
         [](CGContextRef c) {
             CGContextSetFont(c, font());
             CGContextSetFontSize(c, kSize);
             CGContextSetTextDrawingMode(c, kCGTextClip);
             CGContextSetTextPosition(c, kOrigin.x, kOrigin.y);
             for (const CGGlyph& glyph : glyphs(font()))
                 CGContextShowGlyphs(c, &glyph, 1);
             fillWithGradient(c);
         }},
    };
    for (const auto& [what, together, apart] : cases)
        EXPECT_LE(between(draw(together), draw(apart)).largest, 1) << what;
    EXPECT_EQ(draw([](CGContextRef c) { showIn(c, kCGTextInvisible); }), draw([](CGContextRef) {}));
}

TEST(TextModes, CastOneShadowUnderTheWholeRun) {
    const auto shadowed = [](const Draw& drawing) {
        return draw([&](CGContextRef c) {
            const auto color = cf::adopt(CGColorCreateGenericRGB(0, 0, 0, 0.7f));
            CGContextSetShadowWithColor(c, {6, -5}, 4, color.get());
            drawing(c);
        });
    };
    const auto asGroup = [](CGContextRef c) {
        CGContextBeginTransparencyLayer(c, nullptr);
        show(c);
        CGContextEndTransparencyLayer(c);
    };
    // Masks on paper and on black differ by their contrast, a little.
    EXPECT_LT(between(shadowed(show), shadowed(asGroup)).mean, 2);
    const auto withPattern = [](const Draw& drawing) {
        return [=](CGContextRef c) {
            setPattern(c);
            drawing(c);
        };
    };
    EXPECT_LT(between(shadowed(withPattern(show)), shadowed(withPattern(asGroup))).mean, 2);
}

TEST(TextModes, DrawTheSameInPartsOfPixelsThatAreLent) {
    // 24 bits have no pixels at hand; each run borrows what it may touch.
    const Bytes whole = draw(show, CGBitmapInfo{kCGImageAlphaNoneSkipFirst} |
                                       CGBitmapInfo{kCGBitmapByteOrder32Little});
    const Bytes lent = draw(show, CGBitmapInfo{kCGImageAlphaNoneSkipFirst} |
                                      CGBitmapInfo{kCGBitmapByteOrder32Big});
    ASSERT_EQ(whole.size(), lent.size());
    for (std::size_t i = 0; i < whole.size(); i += 4)
        for (std::size_t c = 0; c < 3; ++c)
            ASSERT_EQ(whole[i + c], lent[i + 3 - c]) << i;
}

// ---- Hostile fonts and numbers

namespace {

constexpr CGFloat kOddSizes[] = {0, -1, NAN, INFINITY, 1e-30f, 0.01f, 255, 257, 10000, 1e9f, 3e38f};
const CGAffineTransform kOddMatrices[] = {{1, 0, 0, 1, 0, 0},          {0, 0, 0, 0, 0, 0},
                                          {NAN, 0, 0, 1, 0, 0},        {1e20f, 0, 0, 1e20f, 0, 0},
                                          {1e-20f, 0, 0, 1, 5, 5},     {1, 1, 1, 1, 0, 0},
                                          {1, 0, 0, 1, NAN, INFINITY}, {1, 0, 0, 1, 3e38f, -3e38f}};

// Every way of showing text, in every mode.
void showAll(CGContextRef context, CGFontRef font) {
    const CGGlyph letters[] = {36, 0, 65535, 1000};
    const CGPoint places[] = {{5, 5}, {NAN, 0}, {1e30f, -1e30f}, {30, 30}};
    const CGSize advances[] = {{10, 0}, {INFINITY, 0}, {-3, 2}, {1e30f, 1}};
    for (int mode = -1; mode < 9; ++mode) {
        CGContextSaveGState(context);
        CGContextSetFont(context, font);
        CGContextSetTextDrawingMode(context, static_cast<CGTextDrawingMode>(mode));
        CGContextShowGlyphs(context, letters, 4);
        CGContextShowGlyphsAtPositions(context, letters, places, 4);
        CGContextShowGlyphsWithAdvances(context, letters, advances, 4);
        CGContextShowTextAtPoint(context, 4, 4, "Ab\xFF", 3);
        CGContextRestoreGState(context);
    }
}

Bytes bytesOf(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

} // namespace

TEST(HostileText, OfAbsurdSizesAndMatricesHarmsNothing) {
    for (const char* path :
         {test::kTrueTypeFont, test::kCFFFont, test::kBitmapFont, test::kColorFont}) {
        const test::Font face = test::makeFont(path);
        ASSERT_TRUE(face) << path;
        for (const CGFloat size : kOddSizes)
            for (const CGAffineTransform& matrix : kOddMatrices) {
                const test::Context context = test::makeContext(40, 40);
                CGContextSetFontSize(context.get(), size);
                CGContextSetTextMatrix(context.get(), matrix);
                showAll(context.get(), face.get());
                CGContextConcatCTM(context.get(), matrix);
                CGContextSetTextMatrix(context.get(), CGAffineTransformIdentity);
                showAll(context.get(), face.get());
            }
    }
}

TEST(HostileText, OfDamagedFontsHarmsNothing) {
    std::uint32_t random = 1;
    std::size_t made = 0; // Of those that FreeType lets pass; it refuses most.
    for (const char* path : {test::kTrueTypeFont, test::kCFFFont, test::kType1Font}) {
        const Bytes whole = bytesOf(path);
        for (int round = 0; round < 24; ++round) {
            Bytes damaged = whole;
            if (round % 3 == 2)
                damaged.resize(whole.size() * static_cast<std::size_t>(round + 1) / 25);
            for (int i = 0; i <= round * round; ++i) {
                random = random * 1664525 + 1013904223;
                damaged[2000 % damaged.size() + random % (damaged.size() - 2000 % damaged.size())] =
                    static_cast<std::uint8_t>(random >> 24);
            }
            const auto data = cf::adopt(
                CFDataCreate(nullptr, damaged.data(), static_cast<CFIndex>(damaged.size())));
            const auto provider = cf::adopt(CGDataProviderCreateWithCFData(data.get()));
            const test::Font face = cf::adopt(CGFontCreateWithDataProvider(provider.get()));
            made += bool(face);
            const test::Context context = test::makeContext(64, 64);
            CGContextSetFontSize(context.get(), 24);
            showAll(context.get(), face.get());
        }
    }
    EXPECT_GT(made, 5u);
}
