// RandomDrawing.cpp: random calls with sensible and less sensible arguments.

#include "Support/RandomDrawing.h"

#include "XGImage.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include <array>
#include <cmath>
#include <functional>
#include <random>
#include <span>
#include <vector>

namespace test {

namespace {

constexpr CGFloat kWidth = 64, kHeight = 48;

using Image = cf::Ref<CGImageRef>;

class Program {
public:
    Program(CGContextRef context, const RandomDrawing& program)
        : c(context), program_(program), random_(program.seed) {}

    void run() {
        for (int step = 0; step < program_.steps; ++step)
            one();
        while (!groups_.empty())
            endGroup();
        while (depth_ > 0)
            restore();
    }

private:
    int floor() const { return groups_.empty() ? 0 : groups_.back(); }

    using Step = void (Program::*)();

    int upTo(int most) {
        return static_cast<int>(random_() % static_cast<std::uint32_t>(most + 1));
    }
    bool oneIn(int count) { return upTo(count - 1) == 0; }
    CGFloat real(CGFloat from, CGFloat to) {
        return from + (to - from) * static_cast<CGFloat>(random_() & 0xFFFF) / 0xFFFF;
    }
    // Whole numbers and halves as often as others.
    CGFloat place(CGFloat most) {
        const CGFloat value = real(-8, most + 8);
        const int kind = upTo(3);
        return kind == 0 ? value : kind == 1 ? std::floor(value) + 0.5f : std::floor(value);
    }
    CGPoint point() { return {place(kWidth), place(kHeight)}; }
    CGRect rect() {
        const CGPoint at = point();
        return {at, {place(kWidth / 2), place(kHeight / 2)}};
    }
    CGRect wholeRect() {
        const CGRect r = rect();
        return {{std::floor(r.origin.x), std::floor(r.origin.y)},
                {std::floor(r.size.width), std::floor(r.size.height)}};
    }

    void one() {
        static constexpr Step simple[] = {
            &Program::color,     &Program::color,      &Program::fillRect,  &Program::fillRect,
            &Program::fillRects, &Program::clearRect,  &Program::rectPath,  &Program::circle,
            &Program::fillPath,  &Program::stroke,     &Program::strokeBox, &Program::wholeClip,
            &Program::save,      &Program::restore,    &Program::translate, &Program::alpha,
            &Program::lineStyle, &Program::porterDuff, &Program::image,     &Program::cover};
        static constexpr Step others[] = {
            &Program::anyBlend, &Program::anyClip,    &Program::transform,  &Program::shadow,
            &Program::group,    &Program::endGroup,   &Program::gradient,   &Program::layer,
            &Program::dash,     &Program::smoothness, &Program::otherColor, &Program::quality,
            &Program::tiles,    &Program::maskClip,   &Program::pattern,    &Program::bothWays};
        const bool isSimple = upTo(99) < program_.simple;
        const std::span<const Step> steps =
            isSimple ? std::span<const Step>(simple) : std::span<const Step>(others);
        (this->*steps[static_cast<std::size_t>(upTo(static_cast<int>(steps.size()) - 1))])();
    }

    // ---- State

    void color() {
        const CGFloat opacity = oneIn(2) ? 1 : real(0, 1);
        if (oneIn(2))
            CGContextSetRGBFillColor(c, real(0, 1), real(0, 1), real(0, 1), opacity);
        else
            CGContextSetRGBStrokeColor(c, real(0, 1), real(0, 1), real(0, 1), opacity);
    }
    void otherColor() {
        if (oneIn(3))
            CGContextSetCMYKFillColor(c, real(0, 1), real(0, 1), real(0, 1), 0, real(0, 1));
        else if (oneIn(2))
            CGContextSetGrayStrokeColor(c, real(0, 1), 1);
        else
            CGContextSetGrayFillColor(c, real(0, 1), real(0, 1));
    }
    void alpha() { CGContextSetAlpha(c, oneIn(2) ? 1 : real(0, 1)); }
    void porterDuff() {
        static constexpr CGBlendMode modes[] = {
            kCGBlendModeNormal,    kCGBlendModeNormal,          kCGBlendModeNormal,
            kCGBlendModeCopy,      kCGBlendModeSourceAtop,      kCGBlendModeDestinationOver,
            kCGBlendModeXOR,       kCGBlendModeDestinationOut,  kCGBlendModeSourceIn,
            kCGBlendModeSourceOut, kCGBlendModeDestinationAtop, kCGBlendModeClear};
        CGContextSetBlendMode(c, modes[upTo(11)]);
    }
    void anyBlend() { CGContextSetBlendMode(c, static_cast<CGBlendMode>(upTo(27))); }
    void lineStyle() {
        CGContextSetLineWidth(c, oneIn(2) ? static_cast<CGFloat>(upTo(6)) : real(0, 7));
        CGContextSetLineCap(c, static_cast<CGLineCap>(upTo(2)));
        CGContextSetLineJoin(c, static_cast<CGLineJoin>(upTo(2)));
        CGContextSetMiterLimit(c, real(0, 6));
    }
    void dash() {
        const CGFloat lengths[] = {real(0.5f, 6), real(0.5f, 4), 2};
        CGContextSetLineDash(c, real(-3, 9), lengths, static_cast<size_t>(upTo(3)));
    }
    void smoothness() {
        CGContextSetShouldAntialias(c, !oneIn(3));
        CGContextSetAllowsAntialiasing(c, !oneIn(4));
    }
    void quality() {
        CGContextSetInterpolationQuality(c, static_cast<CGInterpolationQuality>(upTo(4)));
        CGContextSetRenderingIntent(c, static_cast<CGColorRenderingIntent>(upTo(4)));
    }
    void shadow() {
        CGContextSetShadow(c, {real(-4, 4), real(-4, 4)}, oneIn(2) ? 0 : real(0, 6));
        if (!oneIn(3))
            CGContextSetShadowWithColor(c, {0, 0}, 0, nullptr);
    }
    void translate() { CGContextTranslateCTM(c, std::floor(real(-6, 6)), std::floor(real(-6, 6))); }
    void transform() {
        switch (upTo(4)) {
        case 0:
            CGContextRotateCTM(c, real(0, 6));
            break;
        case 1:
            CGContextScaleCTM(c, real(0.5f, 2), real(-2, 2));
            break;
        case 2:
            CGContextScaleCTM(c, 2, 2);
            break;
        case 3:
            CGContextConcatCTM(c, {0, 1, -1, 0, kHeight, 0});
            break;
        default:
            CGContextTranslateCTM(c, real(-5, 5), real(-5, 5));
        }
    }
    void save() {
        CGContextSaveGState(c);
        ++depth_;
    }
    void restore() {
        if (depth_ == floor())
            return;
        --depth_;
        CGContextRestoreGState(c);
    }
    void wholeClip() {
        if (!oneIn(3))
            return;
        save();
        CGContextClipToRect(c, {{std::floor(real(0, 20)), std::floor(real(0, 20))}, {40, 30}});
    }
    void anyClip() {
        save();
        if (oneIn(2)) {
            CGContextClipToRect(c, rect());
            return;
        }
        CGContextAddEllipseInRect(c, {{-4, -4}, {60, 44}});
        CGContextAddRect(c, rect());
        oneIn(2) ? CGContextClip(c) : CGContextEOClip(c);
    }
    void maskClip() {
        save();
        CGContextClipToMask(c, {{2, 2}, {58, 42}}, anImage(oneIn(2)).get());
    }

    // ---- Marks

    void fillRect() { CGContextFillRect(c, oneIn(2) ? rect() : wholeRect()); }
    void fillRects() {
        const CGRect rects[] = {rect(), wholeRect(), rect(), wholeRect()};
        CGContextFillRects(c, rects, static_cast<size_t>(upTo(4)));
    }
    void clearRect() {
        if (oneIn(2))
            CGContextClearRect(c, oneIn(2) ? rect() : wholeRect());
    }
    void cover() {
        if (oneIn(4))
            CGContextFillRect(c, {{-400, -400}, {1000, 1000}});
    }
    void draw() {
        constexpr CGPathDrawingMode modes[] = {kCGPathFill, kCGPathEOFill};
        CGContextDrawPath(c, modes[upTo(1)]);
    }
    void rectPath() {
        CGContextAddRect(c, oneIn(3) ? rect() : wholeRect());
        if (oneIn(3))
            CGContextAddRect(c, wholeRect());
        draw();
    }
    void circle() {
        const CGFloat side = real(1, 40);
        const CGPoint at = point();
        if (oneIn(4))
            CGContextAddArc(c, at.x, at.y, side / 2, real(0, 7), real(0, 7), oneIn(2));
        else if (oneIn(3))
            CGContextAddEllipseInRect(c, {at, {side, side * real(0.5f, 1)}});
        else if (oneIn(2))
            CGContextAddEllipseInRect(c, {at, {side, side}});
        else
            return CGContextFillEllipseInRect(c, {at, {side, side}});
        draw();
    }
    void shape() {
        for (int contour = 0; contour <= upTo(1); ++contour) {
            const CGPoint start = point();
            CGContextMoveToPoint(c, start.x, start.y);
            for (int segment = 0; segment <= upTo(4); ++segment) {
                const CGPoint p = point(), q = point(), r = point();
                if (oneIn(3))
                    CGContextAddCurveToPoint(c, p.x, p.y, q.x, q.y, r.x, r.y);
                else if (oneIn(3))
                    CGContextAddQuadCurveToPoint(c, p.x, p.y, q.x, q.y);
                else if (oneIn(6))
                    CGContextAddArcToPoint(c, p.x, p.y, q.x, q.y, real(1, 20));
                else
                    CGContextAddLineToPoint(c, p.x, p.y);
            }
            if (oneIn(2))
                CGContextClosePath(c);
        }
    }
    void fillPath() {
        shape();
        draw();
    }
    void bothWays() {
        shape();
        CGContextDrawPath(c, oneIn(2) ? kCGPathFillStroke : kCGPathEOFillStroke);
    }
    void stroke() {
        if (oneIn(2)) {
            shape();
            CGContextStrokePath(c);
            return;
        }
        // Along the axes.
        CGPoint at = point();
        CGContextMoveToPoint(c, at.x, at.y);
        for (int segment = 0; segment <= upTo(5); ++segment) {
            (segment % 2 ? at.x : at.y) += std::floor(real(-20, 20));
            CGContextAddLineToPoint(c, at.x, at.y);
        }
        if (oneIn(3))
            CGContextClosePath(c);
        CGContextStrokePath(c);
    }
    void strokeBox() { CGContextStrokeRect(c, oneIn(2) ? rect() : wholeRect()); }

    // ---- Pictures, gradients, groups

    // Its bytes belong to the provider.
    static Image anImage(bool isMask) {
        constexpr std::size_t side = 12;
        std::vector<UInt8> bytes(side * side * (isMask ? 1 : 4));
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<UInt8>(!isMask && i % 4 == 3 ? 200 : i * 37 % 200);
        const auto data =
            cf::adopt(CFDataCreate(nullptr, bytes.data(), static_cast<CFIndex>(bytes.size())));
        const auto provider = cf::adopt(CGDataProviderCreateWithCFData(data.get()));
        Image image = makeImage(isMask, provider.get());
        XGImageSetSourceDataProvider(image.get(), provider.get()); // Or flat buffers refuse it.
        return image;
    }
    static Image makeImage(bool isMask, CGDataProviderRef provider) {
        constexpr std::size_t side = 12;
        if (isMask)
            return cf::adopt(CGImageMaskCreate(side, side, 8, 8, side, provider, nullptr, true));
        const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
        return cf::adopt(CGImageCreate(side, side, 8, 32, side * 4, space.get(),
                                       kCGImageAlphaPremultipliedLast, provider, nullptr, true,
                                       kCGRenderingIntentDefault));
    }
    void image() {
        const CGPoint at = point();
        const CGRect place = oneIn(2) ? CGRect{{std::floor(at.x), std::floor(at.y)}, {12, 12}}
                                      : CGRect{at, {real(2, 40), real(2, 40)}};
        CGContextDrawImage(c, place, anImage(oneIn(3)).get());
    }
    void tiles() { CGContextDrawTiledImage(c, {{3, 2}, {9, 9}}, anImage(false).get()); }
    void gradient() {
        const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
        const CGFloat components[] = {1, 0, 0, 1, 0, 0.5f, 1, 0.25f};
        const auto gradient =
            cf::adopt(CGGradientCreateWithColorComponents(space.get(), components, nullptr, 2));
        if (oneIn(2))
            CGContextDrawLinearGradient(c, gradient.get(), point(), point(), 0);
        else
            CGContextDrawRadialGradient(c, gradient.get(), point(), 1, point(), 12, 0);
    }
    void group() {
        if (groups_.size() > 3)
            return;
        CGContextBeginTransparencyLayer(c, nullptr);
        groups_.push_back(depth_);
    }
    void endGroup() {
        if (groups_.empty())
            return;
        while (depth_ > floor())
            restore();
        groups_.pop_back();
        CGContextEndTransparencyLayer(c);
    }
    // Of a bitmap of its own: those that record have none.
    void layer() {
        const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
        std::array<std::uint32_t, 16> pixels = {};
        const auto like = cf::adopt(CGBitmapContextCreate(pixels.data(), 4, 4, 8, 16, space.get(),
                                                          kCGImageAlphaPremultipliedLast));
        const auto layer = cf::adopt(CGLayerCreateWithContext(like.get(), {15, 9}, nullptr));
        CGContextSetRGBFillColor(CGLayerGetContext(layer.get()), 0, 1, 0.5f, 0.7f);
        CGContextFillRect(CGLayerGetContext(layer.get()), {{2, 1}, {11, 5.5f}});
        CGContextDrawLayerAtPoint(c, point(), layer.get());
    }
    void pattern() {
        static constexpr CGPatternCallbacks callbacks = {
            0,
            [](void*, CGContextRef cell) {
                CGContextSetRGBFillColor(cell, 1, 0, 0.2f, 1);
                CGContextFillRect(cell, CGRectMake(0, 0, 3, 2));
            },
            nullptr};
        const auto pattern =
            cf::adopt(CGPatternCreate(nullptr, CGRectMake(0, 0, 5, 4), {1, 0, 0, 1, 2, 1}, 5, 4,
                                      kCGPatternTilingNoDistortion, 1, &callbacks));
        const auto space = cf::adopt(CGColorSpaceCreatePattern(nullptr));
        const CGFloat opacity = real(0, 1);
        const auto color =
            cf::adopt(CGColorCreateWithPattern(space.get(), pattern.get(), &opacity));
        CGContextSetFillColorWithColor(c, color.get());
    }

    CGContextRef c;
    RandomDrawing program_;
    std::mt19937 random_;
    int depth_ = 0;
    std::vector<int> groups_; // The depths that they began at.
};

} // namespace

void drawAtRandom(CGContextRef context, const RandomDrawing& program) {
    Program(context, program).run();
}

} // namespace test
