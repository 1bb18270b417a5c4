// ContextModel.h: what a context's state is, told apart from how contexts keep it.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include "Core/Context/CGContextRecord.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <span>
#include <vector>

namespace model {

inline constexpr CGFloat kNaN = std::numeric_limits<CGFloat>::quiet_NaN();
inline constexpr CGFloat kInfinity = std::numeric_limits<CGFloat>::infinity();

// ---- Settings that are one number

inline double asGiven(double, CGFloat given) {
    return given;
}
inline double unlessSenseless(double old, CGFloat given) {
    return given >= 0 && given < kInfinity ? given : old;
}
inline double zeroIfSenseless(double, CGFloat given) {
    return unlessSenseless(0, given);
}
inline double asOpacity(double, CGFloat given) {
    return std::min(unlessSenseless(0, given), 1.0);
}
inline double asWhole(double, CGFloat given) {
    return given >= 0 && given < 16 ? std::floor(given) : 1;
}
inline double asSwitch(double, CGFloat given) {
    return given > 1 ? 1 : 0;
}

template <auto Set, typename Value>
void setWhole(CGContextRef c, CGFloat given) {
    Set(c, static_cast<Value>(asWhole(0, given)));
}
template <auto Set>
void setSwitch(CGContextRef c, CGFloat given) {
    Set(c, asSwitch(0, given) > 0);
}
template <auto Get>
double ofState(CGContextRef c) {
    return static_cast<double>(Get(c->state.get()));
}
template <auto Get>
double ofContext(CGContextRef c) {
    return static_cast<double>(Get(c));
}

struct Setting {
    const char* what;
    void (*set)(CGContextRef context, CGFloat given);
    double (*get)(CGContextRef context);
    double initial;
    double (*kept)(double old, CGFloat given);
};

inline constexpr Setting kSettings[] = {
    {"alpha", CGContextSetAlpha, ofState<XGGStateGetAlpha>, 1, asOpacity},
    {"blend mode", setWhole<CGContextSetBlendMode, CGBlendMode>, ofState<XGGStateGetBlendMode>, 0,
     asWhole},
    {"line width", CGContextSetLineWidth, ofContext<CGContextGetLineWidth>, 1, unlessSenseless},
    {"flatness", CGContextSetFlatness, ofState<XGGStateGetFlatness>, 0, unlessSenseless},
    {"smoothness", CGContextSetSmoothness, ofContext<CGContextGetSmoothness>, 0, unlessSenseless},
    {"miter limit", CGContextSetMiterLimit, ofContext<CGContextGetMiterLimit>, 4, asGiven},
    {"cap", setWhole<CGContextSetLineCap, CGLineCap>, ofContext<CGContextGetLineCap>, 0, asWhole},
    {"join", setWhole<CGContextSetLineJoin, CGLineJoin>, ofContext<CGContextGetLineJoin>, 0,
     asWhole},
    {"intent", setWhole<CGContextSetRenderingIntent, CGColorRenderingIntent>,
     ofState<XGGStateGetRenderingIntent>, 0, asWhole},
    {"interpolation", setWhole<CGContextSetInterpolationQuality, CGInterpolationQuality>,
     ofContext<CGContextGetInterpolationQuality>, 0, asWhole},
    {"composite operation", setWhole<CGContextSetCompositeOperation, int32_t>,
     ofContext<CGContextGetCompositeOperation>, 0, asWhole},
    {"antialiasing style", setWhole<CGContextSetFontAntialiasingStyle, int32_t>,
     ofContext<CGContextGetFontAntialiasingStyle>, 0, asWhole},
    {"smoothing style", setWhole<CGContextSetFontSmoothingStyle, int32_t>,
     ofContext<CGContextGetFontSmoothingStyle>, 0, asWhole},
    {"rendering mode", setWhole<CGContextSetFontRenderingMode, int32_t>,
     ofContext<CGContextGetFontRenderingMode>, 0, asWhole},
    {"font size", CGContextSetFontSize, ofState<XGGStateGetFontSize>, 0, zeroIfSenseless},
    {"spacing", CGContextSetCharacterSpacing, ofState<XGGStateGetCharacterSpacing>, 0, asGiven},
    {"text mode", setWhole<CGContextSetTextDrawingMode, CGTextDrawingMode>,
     ofState<XGGStateGetTextDrawingMode>, 0, asWhole},
    {"antialias", setSwitch<CGContextSetShouldAntialias>, ofContext<CGContextGetShouldAntialias>, 1,
     asSwitch},
    {"smooth", setSwitch<CGContextSetShouldSmoothFonts>, ofContext<CGContextGetShouldSmoothFonts>,
     1, asSwitch},
    {"position", setSwitch<CGContextSetShouldSubpixelPositionFonts>,
     ofState<XGGStateShouldSubpixelPositionFonts>, 1, asSwitch},
    {"quantize", setSwitch<CGContextSetShouldSubpixelQuantizeFonts>,
     ofState<XGGStateShouldSubpixelQuantizeFonts>, 1, asSwitch},
};
enum { kAlpha, kBlendMode, kLineWidth }; // The first of them, which other calls use.

// ---- The model

struct Matrix {
    double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

    static Matrix of(CGAffineTransform m) { return {m.a, m.b, m.c, m.d, m.tx, m.ty}; }
    CGPoint map(double x, double y) const {
        return {static_cast<CGFloat>(a * x + c * y + tx), static_cast<CGFloat>(b * x + d * y + ty)};
    }
    // What this one does, then `next`.
    Matrix then(const Matrix& n) const {
        return {a * n.a + b * n.c, a * n.b + b * n.d,          c * n.a + d * n.c,
                c * n.b + d * n.d, tx * n.a + ty * n.c + n.tx, tx * n.b + ty * n.d + n.ty};
    }
    Matrix inverse() const {
        const double det = a * d - b * c;
        return {
            d / det, -b / det, -c / det, a / det, (c * ty - d * tx) / det, (b * tx - a * ty) / det};
    }
    // Whether single precision holds it and what it maps exactly, so that comparisons can be exact.
    bool isExact() const {
        const auto isSmall = [](double x) {
            return std::fabs(x) <= 8 && x * 8 == std::floor(x * 8);
        };
        const double det = std::fabs(a * d - b * c);
        int exponent = 0;
        return isSmall(a) && isSmall(b) && isSmall(c) && isSmall(d) && std::fabs(tx) <= 256 &&
               std::fabs(ty) <= 256 && std::frexp(det, &exponent) == 0.5 && det >= 0.25;
    }
    bool keepsShapes() const { return a * a + b * b == c * c + d * d && a * c + b * d == 0; }
    bool keepsRects() const { return (b == 0 && c == 0) || (a == 0 && d == 0); }
};

struct Box {
    double minX = kInfinity, minY = kInfinity, maxX = -kInfinity, maxY = -kInfinity;

    static Box of(std::span<const CGPoint> points, const Matrix& m = {}) {
        Box box;
        for (const CGPoint& point : points) {
            const CGPoint mapped = m.map(point.x, point.y);
            box.minX = std::min(box.minX, double{mapped.x});
            box.minY = std::min(box.minY, double{mapped.y});
            box.maxX = std::max(box.maxX, double{mapped.x});
            box.maxY = std::max(box.maxY, double{mapped.y});
        }
        return box;
    }
    static Box of(CGRect r, const Matrix& m = {}) {
        const CGPoint corners[] = {{r.origin.x, r.origin.y},
                                   {r.origin.x + r.size.width, r.origin.y},
                                   {r.origin.x, r.origin.y + r.size.height},
                                   {r.origin.x + r.size.width, r.origin.y + r.size.height}};
        return of(corners, m);
    }
    bool isEmpty() const { return !(minX < maxX && minY < maxY); }
    Box with(const Box& b) const {
        return {std::max(minX, b.minX), std::max(minY, b.minY), std::min(maxX, b.maxX),
                std::min(maxY, b.maxY)};
    }
    CGRect rect() const {
        return CGRectMake(static_cast<CGFloat>(minX), static_cast<CGFloat>(minY),
                          static_cast<CGFloat>(maxX - minX), static_cast<CGFloat>(maxY - minY));
    }
};

struct Color {
    CGColorSpaceModel model = kCGColorSpaceModelUnknown; // No colour.
    std::vector<CGFloat> components = {};

    bool operator==(const Color&) const = default;
    static Color of(CGColorRef color) {
        const CGFloat* const first = CGColorGetComponents(color);
        return color ? Color{CGColorSpaceGetModel(CGColorGetColorSpace(color)),
                             {first, first + CGColorGetNumberOfComponents(color)}}
                     : Color{};
    }
};

struct State {
    std::array<double, std::size(kSettings)> numbers = {};
    Matrix ctm;
    std::optional<Box> clip; // In device space.
    Color fill, stroke;
    bool hasShadow = false;
    CGSize shadowOffset = {0, 0}, phase = {0, 0};
    double shadowBlur = 0;
    std::vector<CGFloat> dash;
    bool isLayers = false; // Pushed by the start of a transparency layer.
};

} // namespace model
