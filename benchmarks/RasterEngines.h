// RasterEngines.h: a bitmap context, a bare Skia canvas and a Cairo surface, with the same words.
//
// A scene is a function template over the engine; NIMBRA_SCENE makes a benchmark of it for each.
// All draw in a y-up space over the same kind of pixels, in one colour of half opacity unless told
// otherwise, and keep their path's memory from one path to the next.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CoreGraphics.h>

#include "include/core/SkBitmap.h"
#include "include/core/SkBlurTypes.h"
#include "include/core/SkCanvas.h"
#include "include/core/SkGraphics.h"
#include "include/core/SkMaskFilter.h"
#include "include/core/SkPath.h"
#include "include/effects/SkDashPathEffect.h"

#include <benchmark/benchmark.h>

#if NIMBRA_HAS_CAIRO
#include <cairo.h>
#endif

#include <optional>
#include <vector>

namespace raster {

inline constexpr int kSize = 512;
inline constexpr float kRed = 0.2f, kGreen = 0.4f, kBlue = 0.8f;

inline constexpr float kMiterLimit = 4;

enum class Rule { Winding, EvenOdd };

class Ours {
public:
    Ours() : pixels_(kSize * kSize) {
        const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
        const CGBitmapInfo info = CGBitmapInfo{kCGImageAlphaPremultipliedFirst} |
                                  CGBitmapInfo{kCGBitmapByteOrder32Little};
        owned_ =
            cf::adopt(CGBitmapContextCreate(pixels_.data(), kSize, kSize, 8, 0, space.get(), info));
        context_ = owned_.get();
        CGContextSetMiterLimit(context_, kMiterLimit);
        setOpacity(0.5f);
    }

    void setOpacity(float opacity) {
        CGContextSetRGBFillColor(context_, kRed, kGreen, kBlue, opacity);
        CGContextSetRGBStrokeColor(context_, kRed, kGreen, kBlue, opacity);
    }
    void setLine(float width) { CGContextSetLineWidth(context_, width); }
    void setRoundJoin() { CGContextSetLineJoin(context_, kCGLineJoinRound); }
    void setDash(float on, float off) {
        const CGFloat lengths[] = {on, off};
        CGContextSetLineDash(context_, 0, lengths, 2);
    }
    void setShadow(float offset, float sigma) {
        const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
        const CGFloat black[] = {0, 0, 0, 0.5f};
        const auto color = cf::adopt(CGColorCreate(space.get(), black));
        CGContextSetShadowWithColor(context_, {offset, -offset}, 2 * sigma, color.get());
    }

    void moveTo(CGPoint p) { CGContextMoveToPoint(context_, p.x, p.y); }
    void lineTo(CGPoint p) { CGContextAddLineToPoint(context_, p.x, p.y); }
    void curveTo(CGPoint a, CGPoint b, CGPoint end) {
        CGContextAddCurveToPoint(context_, a.x, a.y, b.x, b.y, end.x, end.y);
    }
    void close() { CGContextClosePath(context_); }

    void fill() { CGContextFillPath(context_); }
    void stroke() { CGContextStrokePath(context_); }
    void fillRect(CGRect rect) { CGContextFillRect(context_, rect); }

    void save() { CGContextSaveGState(context_); }
    void restore() { CGContextRestoreGState(context_); }
    void clip(Rule rule) {
        if (rule == Rule::EvenOdd)
            CGContextEOClip(context_);
        else
            CGContextClip(context_);
    }
    void clipRect(CGRect rect) { CGContextClipToRect(context_, rect); }
    void beginGroup(float opacity) {
        CGContextSaveGState(context_);
        CGContextSetAlpha(context_, opacity);
        CGContextBeginTransparencyLayer(context_, nullptr);
    }
    void endGroup() {
        CGContextEndTransparencyLayer(context_);
        CGContextRestoreGState(context_);
    }

private:
    std::vector<std::uint32_t> pixels_;
    cf::Ref<CGContextRef> owned_;
    CGContextRef context_ = nullptr;
};

class Bare {
public:
    Bare() {
        SkGraphics::Init();
        bitmap_.allocN32Pixels(kSize, kSize);
        bitmap_.eraseColor(0);
        canvas_.emplace(bitmap_);
        canvas_->translate(0, kSize);
        canvas_->scale(1, -1);
        paint_.setAntiAlias(true);
        paint_.setStrokeMiter(kMiterLimit);
        setOpacity(0.5f);
    }

    void setOpacity(float opacity) { paint_.setColor4f({kRed, kGreen, kBlue, opacity}); }
    void setLine(float width) { paint_.setStrokeWidth(width); }
    void setRoundJoin() { paint_.setStrokeJoin(SkPaint::kRound_Join); }
    void setDash(float on, float off) {
        const SkScalar lengths[] = {on, off};
        paint_.setPathEffect(SkDashPathEffect::Make(lengths, 0));
    }
    void setShadow(float offset, float sigma) {
        shadow_ = paint_;
        shadow_->setColor4f({0, 0, 0, 0.25f});
        shadow_->setMaskFilter(SkMaskFilter::MakeBlur(kNormal_SkBlurStyle, sigma, false));
        shadowOffset_ = offset;
    }

    void moveTo(CGPoint p) { path_.moveTo(p.x, p.y); }
    void lineTo(CGPoint p) { path_.lineTo(p.x, p.y); }
    void curveTo(CGPoint a, CGPoint b, CGPoint end) {
        path_.cubicTo(a.x, a.y, b.x, b.y, end.x, end.y);
    }
    void close() { path_.close(); }

    void fill() {
        if (shadow_) {
            canvas_->save();
            canvas_->translate(shadowOffset_, -shadowOffset_);
            canvas_->drawPath(path_, *shadow_);
            canvas_->restore();
        }
        canvas_->drawPath(path_, paint_);
        path_.rewind();
    }
    void stroke() {
        paint_.setStyle(SkPaint::kStroke_Style);
        canvas_->drawPath(path_, paint_);
        path_.rewind();
    }
    void fillRect(CGRect rect) { canvas_->drawRect(native(rect), paint_); }

    void save() { canvas_->save(); }
    void restore() { canvas_->restore(); }
    void clip(Rule rule) {
        path_.setFillType(rule == Rule::EvenOdd ? SkPathFillType::kEvenOdd
                                                : SkPathFillType::kWinding);
        canvas_->clipPath(path_, true);
        path_.rewind();
    }
    void clipRect(CGRect rect) { canvas_->clipRect(native(rect), true); }
    void beginGroup(float opacity) { canvas_->saveLayerAlphaf(nullptr, opacity); }
    void endGroup() { canvas_->restore(); }

private:
    static SkRect native(CGRect rect) {
        return SkRect::MakeXYWH(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    }

    SkBitmap bitmap_;
    std::optional<SkCanvas> canvas_;
    SkPaint paint_;
    SkPath path_;
    std::optional<SkPaint> shadow_;
    float shadowOffset_ = 0;
};

#if NIMBRA_HAS_CAIRO

// It has no shadows.
class Cairo {
public:
    Cairo()
        : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSize, kSize)),
          cairo_(cairo_create(surface_)) {
        cairo_translate(cairo_, 0, kSize);
        cairo_scale(cairo_, 1, -1);
        cairo_set_miter_limit(cairo_, double{kMiterLimit});
        setOpacity(0.5f);
    }
    ~Cairo() {
        cairo_destroy(cairo_);
        cairo_surface_destroy(surface_);
    }
    Cairo(const Cairo&) = delete;
    Cairo& operator=(const Cairo&) = delete;

    cairo_t* context() { return cairo_; }

    void setOpacity(float opacity) {
        cairo_set_source_rgba(cairo_, double{kRed}, double{kGreen}, double{kBlue}, double{opacity});
    }
    void setLine(float width) { cairo_set_line_width(cairo_, double{width}); }
    void setRoundJoin() { cairo_set_line_join(cairo_, CAIRO_LINE_JOIN_ROUND); }
    void setDash(float on, float off) {
        const double lengths[] = {double{on}, double{off}};
        cairo_set_dash(cairo_, lengths, 2, 0);
    }

    void moveTo(CGPoint p) { cairo_move_to(cairo_, double{p.x}, double{p.y}); }
    void lineTo(CGPoint p) { cairo_line_to(cairo_, double{p.x}, double{p.y}); }
    void curveTo(CGPoint a, CGPoint b, CGPoint end) {
        cairo_curve_to(cairo_, double{a.x}, double{a.y}, double{b.x}, double{b.y}, double{end.x},
                       double{end.y});
    }
    void close() { cairo_close_path(cairo_); }

    void fill() { cairo_fill(cairo_); }
    void stroke() { cairo_stroke(cairo_); }
    void fillRect(CGRect rect) {
        addRect(rect);
        cairo_fill(cairo_);
    }

    void save() { cairo_save(cairo_); }
    void restore() { cairo_restore(cairo_); }
    void clip(Rule rule) {
        cairo_set_fill_rule(cairo_, rule == Rule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD
                                                          : CAIRO_FILL_RULE_WINDING);
        cairo_clip(cairo_);
    }
    void clipRect(CGRect rect) {
        addRect(rect);
        cairo_clip(cairo_);
    }
    void beginGroup(float opacity) {
        groupOpacity_ = opacity;
        cairo_push_group(cairo_);
    }
    void endGroup() {
        cairo_pop_group_to_source(cairo_);
        cairo_paint_with_alpha(cairo_, double{groupOpacity_});
        setOpacity(0.5f);
    }

private:
    void addRect(CGRect rect) {
        cairo_rectangle(cairo_, double{rect.origin.x}, double{rect.origin.y},
                        double{rect.size.width}, double{rect.size.height});
    }

    cairo_surface_t* surface_;
    cairo_t* cairo_;
    float groupOpacity_ = 1;
};

#define NIMBRA_SCENE_OF_CAIRO(scene, ...) BENCHMARK(scene<Cairo>)->Name(#scene "Cairo") __VA_ARGS__

#else

#define NIMBRA_SCENE_OF_CAIRO(scene, ...) static_assert(true)

#endif

// NIMBRA_SCENE(fillRect, ->Arg(4)): `fillRect`, and its peers by the names that tools/ratios knows.
#define NIMBRA_SCENE_BESIDE_SKIA(scene, ...)                                                       \
    BENCHMARK(scene<Ours>)->Name(#scene) __VA_ARGS__;                                              \
    BENCHMARK(scene<Bare>)->Name(#scene "Bare") __VA_ARGS__
#define NIMBRA_SCENE(scene, ...)                                                                   \
    NIMBRA_SCENE_BESIDE_SKIA(scene, __VA_ARGS__);                                                  \
    NIMBRA_SCENE_OF_CAIRO(scene, __VA_ARGS__)

} // namespace raster
