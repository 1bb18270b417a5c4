// HostileCallsTest.cpp: every context call with numbers and objects that make no sense, on bitmaps.

#include "XGContext.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "Support/Bitmaps.h"
#include "Support/CollectedLog.h"
#include "Support/Fonts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kSize = 24;

// Arguments: now and then what drawing programs pass, now and then what they must not.
class Arguments {
public:
    explicit Arguments(uint32_t seed) : random_(seed) {}

    std::size_t upTo(std::size_t count) { return random_() % count; }
    bool flag() { return upTo(2) == 0; }
    CGFloat number() {
        constexpr CGFloat kOdd[] = {
            0,
            -0.f,
            -1,
            std::numeric_limits<CGFloat>::quiet_NaN(),
            std::numeric_limits<CGFloat>::infinity(),
            -std::numeric_limits<CGFloat>::infinity(),
            FLT_MAX,
            -FLT_MAX,
            FLT_MIN,
            std::numeric_limits<CGFloat>::denorm_min(),
            1e-7f,
            1e9f,
            -2147483648.f,
            4294967296.f,
            536869920.f,
            32767.5f,
        };
        return upTo(8) == 0 ? kOdd[upTo(std::size(kOdd))] : static_cast<CGFloat>(upTo(120)) / 4 - 3;
    }
    int32_t integer() {
        constexpr int32_t kOdd[] = {-1, INT32_MIN, INT32_MAX, 28, 255};
        return upTo(4) == 0 ? kOdd[upTo(std::size(kOdd))] : static_cast<int32_t>(upTo(30));
    }
    CGPoint point() { return {number(), number()}; }
    CGSize size() { return {number(), number()}; }
    CGRect rect() {
        constexpr CGRect kOdd[] = {{{0, 0}, {0, 0}}, {{-1e9f, -1e9f}, {FLT_MAX, FLT_MAX}}};
        switch (upTo(12)) {
        case 0:
            return CGRectNull;
        case 1:
            return CGRectInfinite;
        case 2:
            return kOdd[upTo(2)];
        default:
            return {point(), size()};
        }
    }
    CGAffineTransform transform() {
        return {number(), number(), number(), number(), number(), number()};
    }
    // A few values, or no list with a count all the same.
    template <typename Value, typename Make>
    std::pair<const Value*, std::size_t> list(Make make) {
        static std::array<Value, 5> values;
        for (Value& value : values)
            value = make();
        return {upTo(8) == 0 ? nullptr : values.data(), upTo(values.size() + 1)};
    }
    auto numbers() {
        return list<CGFloat>([this] { return number(); });
    }
    auto points() {
        return list<CGPoint>([this] { return point(); });
    }
    auto rects() {
        return list<CGRect>([this] { return rect(); });
    }

    // Objects of all kinds, and none.
    cf::Ref<CGColorSpaceRef> space();
    cf::Ref<CGColorRef> color();
    cf::Ref<CGPathRef> path();
    cf::Ref<CGImageRef> image();
    cf::Ref<CGGradientRef> gradient();
    cf::Ref<CGShadingRef> shading();
    cf::Ref<CGPatternRef> pattern();
    CGFontRef font(); // Lent.
    auto glyphs() {
        return list<CGGlyph>(
            [this] { return static_cast<CGGlyph>(flag() ? upTo(80) : upTo(65536)); });
    }

private:
    std::mt19937 random_;
};

cf::Ref<CGColorSpaceRef> Arguments::space() {
    const auto rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    switch (upTo(5)) {
    case 0:
        return nullptr;
    case 1:
        return cf::adopt(CGColorSpaceCreateDeviceGray());
    case 2:
        return cf::adopt(CGColorSpaceCreateDeviceCMYK());
    case 3:
        return cf::adopt(CGColorSpaceCreatePattern(flag() ? rgb.get() : nullptr));
    default:
        return rgb;
    }
}

cf::Ref<CGColorRef> Arguments::color() {
    const CGFloat components[] = {number(), number(), number(), number(), number()};
    return cf::adopt(CGColorCreate(space().get(), components));
}

CGFontRef Arguments::font() {
    static const test::Font fonts[] = {nullptr, test::makeFont(test::kTrueTypeFont),
                                       test::makeFont(test::kColorFont)};
    return fonts[upTo(std::size(fonts))].get();
}

cf::Ref<CGPathRef> Arguments::path() {
    if (upTo(6) == 0)
        return nullptr;
    const auto path = cf::adopt(CGPathCreateMutable());
    const CGAffineTransform m = transform();
    CGPathMoveToPoint(path.get(), nullptr, number(), number());
    CGPathAddCurveToPoint(path.get(), flag() ? &m : nullptr, number(), number(), number(), number(),
                          number(), number());
    CGPathAddArcToPoint(path.get(), nullptr, number(), number(), number(), number(), number());
    return cf::retain(CGPathRef{path.get()});
}

cf::Ref<CGImageRef> Arguments::image() {
    static const auto image = [] {
        const auto context = test::makeContext(3, 2);
        CGContextFillRect(context.get(), CGRectMake(0, 0, 2, 1));
        return cf::adopt(CGBitmapContextCreateImage(context.get()));
    }();
    static const auto mask = [] {
        constexpr uint8_t kSamples[] = {0, 100, 200, 255};
        const auto data = cf::adopt(CFDataCreate(nullptr, kSamples, sizeof kSamples));
        const auto provider = cf::adopt(CGDataProviderCreateWithCFData(data.get()));
        return cf::adopt(CGImageMaskCreate(2, 2, 8, 8, 2, provider.get(), nullptr, false));
    }();
    const CGImageRef images[] = {nullptr, image.get(), image.get(), mask.get()};
    return cf::retain(images[upTo(4)]);
}

cf::Ref<CGGradientRef> Arguments::gradient() {
    CGFloat components[10]; // Two stops of the space with most components.
    std::ranges::generate(components, [this] { return number(); });
    const CGFloat locations[] = {number(), number()};
    return cf::adopt(CGGradientCreateWithColorComponents(
        space().get(), flag() ? components : nullptr, flag() ? locations : nullptr, upTo(3)));
}

cf::Ref<CGShadingRef> Arguments::shading() {
    static CGFloat given = 0;
    given = number();
    constexpr CGFunctionCallbacks kCallbacks = {
        0, [](void*, const CGFloat* in, CGFloat* out) { std::fill_n(out, 4, *in * given); },
        nullptr};
    const CGFloat domain[] = {number(), number()};
    const auto rgb = cf::adopt(CGColorSpaceCreateDeviceRGB());
    const auto function =
        cf::adopt(CGFunctionCreate(nullptr, 1, flag() ? domain : nullptr, 4, nullptr, &kCallbacks));
    return cf::adopt(
        flag() ? CGShadingCreateAxial(rgb.get(), point(), point(), function.get(), flag(), flag())
               : CGShadingCreateRadial(rgb.get(), point(), number(), point(), number(),
                                       function.get(), flag(), flag()));
}

cf::Ref<CGPatternRef> Arguments::pattern() {
    constexpr CGPatternCallbacks kCallbacks = {
        0, [](void*, CGContextRef c) { CGContextFillRect(c, CGRectMake(1, 1, 3, 2)); }, nullptr};
    const CGAffineTransform m = flag() ? transform() : CGAffineTransform{1, 0, 0, 1, 2, 3};
    return cf::adopt(CGPatternCreate(nullptr, rect(), m, number(), number(),
                                     CGPatternTiling(integer()), flag(), &kCallbacks));
}

using Call = void (*)(CGContextRef c, Arguments& a);

constexpr Call kSettings[] = {
    [](CGContextRef c, Arguments& a) { CGContextSetLineWidth(c, a.number()); },
    [](CGContextRef c, Arguments& a) { CGContextSetLineCap(c, CGLineCap(a.integer())); },
    [](CGContextRef c, Arguments& a) { CGContextSetLineJoin(c, CGLineJoin(a.integer())); },
    [](CGContextRef c, Arguments& a) { CGContextSetMiterLimit(c, a.number()); },
    [](CGContextRef c, Arguments& a) {
        const auto [lengths, count] = a.numbers();
        CGContextSetLineDash(c, a.number(), lengths, count);
    },
    [](CGContextRef c, Arguments& a) { CGContextSetFlatness(c, a.number()); },
    [](CGContextRef c, Arguments& a) { CGContextSetSmoothness(c, a.number()); },
    [](CGContextRef c, Arguments& a) { CGContextSetAlpha(c, a.number()); },
    [](CGContextRef c, Arguments& a) { CGContextSetBlendMode(c, CGBlendMode(a.integer())); },
    [](CGContextRef c, Arguments& a) {
        CGContextSetRenderingIntent(c, CGColorRenderingIntent(a.integer()));
    },
    [](CGContextRef c, Arguments& a) {
        CGContextSetInterpolationQuality(c, CGInterpolationQuality(a.integer()));
    },
    [](CGContextRef c, Arguments& a) { CGContextSetPatternPhase(c, a.size()); },
    [](CGContextRef c, Arguments& a) { CGContextSetShouldAntialias(c, a.flag()); },
    [](CGContextRef c, Arguments& a) { CGContextSetAllowsAntialiasing(c, a.flag()); },
    [](CGContextRef c, Arguments& a) { CGContextSetAllowsAcceleration(c, a.flag()); },
    [](CGContextRef c, Arguments& a) {
        CGContextSetTextDrawingMode(c, CGTextDrawingMode(a.integer()));
    },
    [](CGContextRef c, Arguments& a) { CGContextSetTextMatrix(c, a.transform()); },
    [](CGContextRef c, Arguments& a) { CGContextSetFontSize(c, a.number()); },
    [](CGContextRef c, Arguments& a) { CGContextSetCharacterSpacing(c, a.number()); },
    [](CGContextRef c, Arguments& a) { CGContextSetFont(c, a.font()); },
    [](CGContextRef c, Arguments& a) { CGContextSetFillColorWithColor(c, a.color().get()); },
    [](CGContextRef c, Arguments& a) { CGContextSetStrokeColorWithColor(c, a.color().get()); },
    [](CGContextRef c, Arguments& a) { CGContextSetFillColorSpace(c, a.space().get()); },
    [](CGContextRef c, Arguments& a) { CGContextSetStrokeColorSpace(c, a.space().get()); },
    [](CGContextRef c, Arguments& a) {
        const auto plain = cf::adopt(CGColorSpaceCreatePattern(nullptr));
        CGContextSetFillColorSpace(c, plain.get());
        CGContextSetFillPattern(c, a.pattern().get(), a.numbers().first);
    },
    [](CGContextRef c, Arguments& a) {
        CGContextSetStrokePattern(c, a.pattern().get(), a.numbers().first);
    },
    [](CGContextRef c, Arguments& a) { CGContextSetFillColor(c, a.numbers().first); },
    [](CGContextRef c, Arguments& a) { CGContextSetStrokeColor(c, a.numbers().first); },
    [](CGContextRef c, Arguments& a) { CGContextSetGrayFillColor(c, a.number(), a.number()); },
    [](CGContextRef c, Arguments& a) {
        CGContextSetRGBStrokeColor(c, a.number(), a.number(), a.number(), a.number());
    },
    [](CGContextRef c, Arguments& a) {
        CGContextSetCMYKFillColor(c, a.number(), a.number(), a.number(), a.number(), a.number());
    },
    [](CGContextRef c, Arguments& a) { CGContextSetShadow(c, a.size(), a.number()); },
    [](CGContextRef c, Arguments& a) {
        CGContextSetShadowWithColor(c, a.size(), a.number(), a.color().get());
    },
    [](CGContextRef c, Arguments& a) { CGContextSetShadowWithColor(c, a.size(), 0, nullptr); },
    [](CGContextRef c, Arguments& a) { CGContextScaleCTM(c, a.number(), a.number()); },
    [](CGContextRef c, Arguments& a) { CGContextTranslateCTM(c, a.number(), a.number()); },
    [](CGContextRef c, Arguments& a) { CGContextRotateCTM(c, a.number()); },
    [](CGContextRef c, Arguments& a) { CGContextConcatCTM(c, a.transform()); },
    [](CGContextRef c, Arguments&) {
        CGContextSetCTM(c, {2, 0, 1, -1, 0, kSize});
    },
    [](CGContextRef c, Arguments& a) {
        XGContextSetScales(c, a.flag(), a.number(), a.number(), a.number());
    },
    [](CGContextRef c, Arguments&) { CGContextSaveGState(c); },
    [](CGContextRef c, Arguments&) { CGContextRestoreGState(c); },
    [](CGContextRef c, Arguments&) { CGContextBeginTransparencyLayer(c, nullptr); },
    [](CGContextRef c, Arguments&) { CGContextEndTransparencyLayer(c); },
    [](CGContextRef c, Arguments&) { CGContextEndTransparencyLayer(c); },
};

constexpr Call kPaths[] = {
    [](CGContextRef c, Arguments& a) { CGContextMoveToPoint(c, a.number(), a.number()); },
    [](CGContextRef c, Arguments& a) { CGContextAddLineToPoint(c, a.number(), a.number()); },
    [](CGContextRef c, Arguments& a) {
        CGContextAddCurveToPoint(c, a.number(), a.number(), a.number(), a.number(), a.number(),
                                 a.number());
    },
    [](CGContextRef c, Arguments& a) {
        CGContextAddQuadCurveToPoint(c, a.number(), a.number(), a.number(), a.number());
    },
    [](CGContextRef c, Arguments& a) {
        CGContextAddArc(c, a.number(), a.number(), a.number(), a.number(), a.number(), a.flag());
    },
    [](CGContextRef c, Arguments& a) {
        CGContextAddArcToPoint(c, a.number(), a.number(), a.number(), a.number(), a.number());
    },
    [](CGContextRef c, Arguments& a) { CGContextAddRect(c, a.rect()); },
    [](CGContextRef c, Arguments& a) {
        const auto [rects, count] = a.rects();
        CGContextAddRects(c, rects, count);
    },
    [](CGContextRef c, Arguments& a) {
        const auto [points, count] = a.points();
        CGContextAddLines(c, points, count);
    },
    [](CGContextRef c, Arguments& a) { CGContextAddEllipseInRect(c, a.rect()); },
    [](CGContextRef c, Arguments& a) { CGContextAddPath(c, a.path().get()); },
    [](CGContextRef c, Arguments&) { CGContextClosePath(c); },
    [](CGContextRef c, Arguments&) { CGContextBeginPath(c); },
    [](CGContextRef c, Arguments&) { CGContextReplacePathWithStrokedPath(c); },
    [](CGContextRef c, Arguments& a) {
        CGContextPathContainsPoint(c, a.point(), CGPathDrawingMode(a.upTo(6)));
    },
    [](CGContextRef c, Arguments&) { CGContextGetPathBoundingBox(c); },
    [](CGContextRef c, Arguments&) { CGContextGetPathCurrentPoint(c); },
    [](CGContextRef c, Arguments& a) { CGContextConvertRectToUserSpace(c, a.rect()); },
    [](CGContextRef c, Arguments& a) { CGContextConvertPointToDeviceSpace(c, a.point()); },
};

constexpr Call kMarks[] = {
    [](CGContextRef c, Arguments& a) { CGContextDrawPath(c, CGPathDrawingMode(a.integer())); },
    [](CGContextRef c, Arguments&) { CGContextFillPath(c); },
    [](CGContextRef c, Arguments&) { CGContextStrokePath(c); },
    [](CGContextRef c, Arguments& a) { XGContextDrawShadowPath(c, CGPathDrawingMode(a.upTo(6))); },
    [](CGContextRef c, Arguments& a) { CGContextFillRect(c, a.rect()); },
    [](CGContextRef c, Arguments& a) {
        const auto [rects, count] = a.rects();
        CGContextFillRects(c, rects, count);
    },
    [](CGContextRef c, Arguments& a) { CGContextClearRect(c, a.rect()); },
    [](CGContextRef c, Arguments& a) { CGContextStrokeRectWithWidth(c, a.rect(), a.number()); },
    [](CGContextRef c, Arguments& a) { CGContextFillEllipseInRect(c, a.rect()); },
    [](CGContextRef c, Arguments& a) { CGContextStrokeEllipseInRect(c, a.rect()); },
    [](CGContextRef c, Arguments& a) {
        const auto [points, count] = a.points();
        CGContextStrokeLineSegments(c, points, count);
    },
    [](CGContextRef c, Arguments& a) {
        const auto [glyphs, count] = a.glyphs();
        CGContextShowGlyphsAtPoint(c, a.number(), a.number(), glyphs, count);
    },
    [](CGContextRef c, Arguments& a) {
        const auto [points, count] = a.points();
        CGContextShowGlyphsAtPositions(c, a.glyphs().first, points, count);
    },
    [](CGContextRef c, Arguments& a) {
        const CGSize advances[] = {a.size(), a.size(), a.size(), a.size(), a.size()};
        const auto [glyphs, count] = a.glyphs();
        CGContextShowGlyphsWithAdvances(c, glyphs, advances, count);
    },
    [](CGContextRef c, Arguments& a) { CGContextShowText(c, "Nim\xFF", a.upTo(5)); },
    [](CGContextRef c, Arguments& a) { CGContextDrawImage(c, a.rect(), a.image().get()); },
    [](CGContextRef c, Arguments& a) { CGContextDrawTiledImage(c, a.rect(), a.image().get()); },
    [](CGContextRef c, Arguments& a) { XGContextDrawShadowImage(c, a.rect(), a.image().get()); },
    [](CGContextRef c, Arguments& a) {
        const auto layer = cf::adopt(CGLayerCreateWithContext(c, {5, 4}, nullptr));
        CGContextDrawLayerInRect(c, a.rect(), layer.get());
        CGContextDrawLayerAtPoint(c, a.point(), layer.get());
    },
    [](CGContextRef c, Arguments& a) {
        CGContextDrawLinearGradient(c, a.gradient().get(), a.point(), a.point(),
                                    CGGradientDrawingOptions(a.integer()));
    },
    [](CGContextRef c, Arguments& a) {
        CGContextDrawRadialGradient(c, a.gradient().get(), a.point(), a.number(), a.point(),
                                    a.number(), CGGradientDrawingOptions(a.integer()));
    },
    [](CGContextRef c, Arguments& a) {
        CGContextDrawConicGradient(c, a.gradient().get(), a.point(), a.number());
    },
    [](CGContextRef c, Arguments& a) { CGContextDrawShading(c, a.shading().get()); },
    [](CGContextRef c, Arguments&) { CGContextClip(c); },
    [](CGContextRef c, Arguments&) { CGContextEOClip(c); },
    [](CGContextRef c, Arguments& a) { CGContextClipToRect(c, a.rect()); },
    [](CGContextRef c, Arguments& a) {
        const auto [rects, count] = a.rects();
        CGContextClipToRects(c, rects, count);
    },
    [](CGContextRef c, Arguments& a) { CGContextClipToMask(c, a.rect(), a.image().get()); },
    [](CGContextRef c, Arguments&) { CGContextGetClipBoundingBox(c); },
    [](CGContextRef c, Arguments&) { CGContextResetClip(c); },
};

// Lets most marks reach the bitmap again.
void startOver(CGContextRef c) {
    CGContextResetClip(c);
    XGContextSetScales(c, false, 1, 1, 1);
    CGContextSetCTM(c, {1, 0, 0, 1, 0, 0});
    CGContextSetBlendMode(c, kCGBlendModeNormal);
    CGContextSetAlpha(c, 1);
    CGContextSetLineWidth(c, 1);
    CGContextSetShadowWithColor(c, {0, 0}, 0, nullptr);
}

std::vector<uint8_t> pixelsOf(CGContextRef c) {
    const auto* const pixels = static_cast<const uint8_t*>(CGBitmapContextGetData(c));
    return {pixels, pixels + kSize * CGBitmapContextGetBytesPerRow(c)};
}

// Formats that are drawn into as they stand, and formats that are not.
const struct {
    CGColorSpaceRef (*makeSpace)(void);
    std::size_t bitsPerComponent, bitsPerPixel;
    CGBitmapInfo info;
} kFormats[] = {
    {CGColorSpaceCreateDeviceRGB, 8, 32, test::kBGRA},
    {CGColorSpaceCreateDeviceRGB, 8, 32, test::kRGBA},
    {CGColorSpaceCreateDeviceGray, 8, 8, kCGImageAlphaNone},
    {CGColorSpaceCreateDeviceGray, 8, 8, kCGImageAlphaOnly},
    {CGColorSpaceCreateDeviceRGB, 5, 16,
     CGBitmapInfo{kCGImageAlphaNoneSkipFirst} | CGBitmapInfo{kCGBitmapByteOrder16Little}},
    {CGColorSpaceCreateDeviceRGB, 8, 32, kCGImageAlphaPremultipliedFirst},
    {CGColorSpaceCreateDeviceRGB, 16, 64, kCGImageAlphaPremultipliedLast},
    {CGColorSpaceCreateDeviceCMYK, 8, 32, kCGImageAlphaNone},
};

constexpr std::size_t kPadding = 16; // Behind the rows, where nothing may be written.

test::Context makeBitmap(std::size_t format) {
    const auto& [makeSpace, bitsPerComponent, bitsPerPixel, info] = kFormats[format];
    return cf::adopt(CGBitmapContextCreate(nullptr, kSize, kSize, bitsPerComponent,
                                           kSize * bitsPerPixel / 8 + kPadding,
                                           cf::adopt(makeSpace()).get(), info));
}

void fillAnew(CGContextRef c) {
    startOver(c);
    CGContextSetAllowsAntialiasing(c, true);
    CGContextSetRGBFillColor(c, 1, 0.5f, 0, 1);
    CGContextFillRect(c, CGRectMake(0, 0, kSize, kSize));
}

// Whatever was called before, a context that is set up again draws as a new one.
TEST(HostileCalls, LeaveABitmapThatDraws) {
    constexpr std::size_t kRounds = 40, kTurns = 600;
    const CollectedLog log;
    std::size_t marksSeen = 0;
    for (uint32_t round = 0; round < kRounds; ++round) {
        SCOPED_TRACE(round);
        const std::size_t format = round % std::size(kFormats);
        const test::Context context = makeBitmap(format);
        ASSERT_TRUE(context);
        Arguments arguments(round);
        const auto callOneOf = [&](const auto& calls) {
            calls[arguments.upTo(std::size(calls))](
                arguments.upTo(500) == 0 ? nullptr : context.get(), arguments);
        };
        std::vector<uint8_t> before = pixelsOf(context.get());
        for (std::size_t turn = 0; turn < kTurns; ++turn) {
            if (arguments.flag())
                startOver(context.get());
            callOneOf(kSettings);
            callOneOf(kPaths);
            callOneOf(kPaths);
            callOneOf(kMarks);
            std::vector<uint8_t> after = pixelsOf(context.get());
            marksSeen += after != before ? 1 : 0;
            before = std::move(after);
        }
        for (std::size_t layers = kTurns; layers > 0; --layers)
            CGContextEndTransparencyLayer(context.get());
        fillAnew(context.get());
        const test::Context fresh = makeBitmap(format);
        fillAnew(fresh.get());
        EXPECT_EQ(pixelsOf(context.get()), pixelsOf(fresh.get()));
    }
    EXPECT_GT(marksSeen, kRounds * kTurns / 20) << "calls that draw nothing prove nothing";
}

} // namespace
