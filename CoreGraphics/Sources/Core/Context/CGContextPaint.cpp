// CGContextPaint.cpp: filling and stroking.

#include "XGContext.h"
#include <CoreGraphics/CGContext.h>

#include "Core/Context/CGContextRecord.h"
#include "Core/Context/DeviceStroke.h"
#include "Core/Context/Recording.h"
#include "Core/State/XGGStateRecord.h"

#include <cmath>
#include <utility>

using cg::combinedCTM;
using cg::stateOf;

namespace {

// ---- A state's attributes for the length of a call

class LineWidthScope {
public:
    LineWidthScope(XGGStateRef state, CGFloat width)
        : state_(state), width_(XGGStateGetLineWidth(state)) {
        XGGStateSetLineWidth(state, width);
    }
    ~LineWidthScope() { XGGStateSetLineWidth(state_, width_); }
    LineWidthScope(const LineWidthScope&) = delete;
    LineWidthScope& operator=(const LineWidthScope&) = delete;

private:
    XGGStateRef state_;
    CGFloat width_;
};

// Outlines of strokes are filled, with the paint of strokes.
class FillWithStrokeColorScope {
public:
    explicit FillWithStrokeColorScope(XGGStateRef state) : state_(state) { exchange(); }
    ~FillWithStrokeColorScope() { exchange(); }
    FillWithStrokeColorScope(const FillWithStrokeColorScope&) = delete;
    FillWithStrokeColorScope& operator=(const FillWithStrokeColorScope&) = delete;

private:
    // Not by the setter, which keeps a colour that equals the new one: equal patterns may differ in
    // what they draw.
    void exchange() { state_->values.fillColor.swap(state_->values.strokeColor); }

    XGGStateRef state_;
};

// ---- Paths

// What a drawing mode makes of a path; all in device space.
struct PathMarks {
    CGPathRef fill = nullptr;
    bool evenOdd = false;
    cg::DeviceStroke stroke;
};

void drawPass(CGContext& context, const PathMarks& marks, uint32_t passFlags) {
    const XGGStateRef state = context.state.get();
    const uint32_t flags = context.allowsFlags | kXGContextGeometryInDeviceSpace | passFlags;
    const bool isOutline = marks.stroke.form == cg::StrokeForm::Outline;
    const CGPathRef line = isOutline ? nullptr : marks.stroke.path.get();
    const CGPathRef outline = isOutline ? marks.stroke.path.get() : nullptr;
    if (marks.fill || line)
        context.callbacks.drawPath(state, flags, marks.fill, line, marks.evenOdd, context.info);
    if (outline) {
        const FillWithStrokeColorScope scope(state);
        context.callbacks.drawPath(state, flags, outline, nullptr, false, context.info);
    }
}

void drawMarks(CGContext& context, const PathMarks& marks, cg::Passes passes) {
    cg::prepare(context);
    if (!context.callbacks.drawPath)
        return;
    const bool hasPen = marks.stroke.path && marks.stroke.form == cg::StrokeForm::Line;
    const XGGStateRef state = context.state.get();
    const LineWidthScope scope(state, hasPen ? marks.stroke.width : XGGStateGetLineWidth(state));
    if (XGGStateHasShadow(state))
        drawPass(context, marks, kXGContextShadowPass);
    if (passes == cg::Passes::ShadowAndMark)
        drawPass(context, marks, 0);
}

// Records the marks in turn, and leaves those to be drawn that are refused and what comes after
// them: commands are drawn before anything else.
bool recordMarks(CGContext& context, PathMarks& marks, CGMutablePathRef path) {
    if (marks.fill) {
        const CGColorRef color = XGGStateGetFillColor(context.state.get());
        if (!cg::recordFill(context, path, marks.evenOdd, color))
            return false;
        marks.fill = nullptr;
    }
    return cg::recordStroke(context, marks.stroke);
}

void drawPath(CGContext& context, CGMutablePathRef path, CGPathDrawingMode mode,
              cg::Passes passes) {
    if (CGPathIsEmpty(path) || !(context.callbacks.drawPath || context.queue) ||
        !(cg::fills(mode) || cg::strokes(mode)))
        return;
    PathMarks marks;
    if (cg::fills(mode))
        marks = {.fill = path, .evenOdd = cg::isEvenOdd(mode)};
    if (cg::strokes(mode))
        marks.stroke = cg::deviceStroke(context.state.get(), path);
    if (context.queue && passes == cg::Passes::ShadowAndMark && recordMarks(context, marks, path))
        return;
    drawMarks(context, marks, passes);
}

// Consumes the current path. It is taken first: a destination that draws by calling back finds no
// current path.
void paintCurrentPath(CGContextRef context, CGPathDrawingMode mode, cg::Passes passes) {
    if (!context || !context->path)
        return;
    auto path = cg::takePath(*context);
    drawPath(*context, path.get(), mode, passes);
    cg::recyclePath(*context, std::move(path));
}

// Paints a path of its own that `build(path, ctm)` makes; the current one is dropped.
template <typename Build>
void paintShape(CGContextRef context, CGPathDrawingMode mode, Build build) {
    if (!context)
        return;
    cg::dropPath(*context);
    build(cg::currentPath(context), combinedCTM(context));
    CGContextDrawPath(context, mode);
}

} // namespace

void cg::drawStroke(CGContext& context, const DeviceStroke& stroke, uint32_t passFlags) {
    const XGGStateRef state = context.state.get();
    const bool isLine = stroke.form == StrokeForm::Line;
    const LineWidthScope scope(state, isLine ? stroke.width : XGGStateGetLineWidth(state));
    if (context.callbacks.drawPath)
        drawPass(context, {.stroke = stroke}, passFlags);
}

void cg::paintPath(CGContext& context, CGPathRef path, CGPathDrawingMode mode) {
    drawPath(context, const_cast<CGMutablePathRef>(path), mode, Passes::ShadowAndMark);
}

void CGContextDrawPath(CGContextRef context, CGPathDrawingMode mode) {
    paintCurrentPath(context, mode, cg::Passes::ShadowAndMark);
}
void XGContextDrawShadowPath(CGContextRef context, CGPathDrawingMode mode) {
    paintCurrentPath(context, mode, cg::Passes::ShadowAlone);
}

void CGContextFillPath(CGContextRef context) {
    CGContextDrawPath(context, kCGPathFill);
}
void CGContextEOFillPath(CGContextRef context) {
    CGContextDrawPath(context, kCGPathEOFill);
}
void CGContextStrokePath(CGContextRef context) {
    CGContextDrawPath(context, kCGPathStroke);
}

// ---- Rectangles

namespace {

void fillRects(CGContext& context, const CGRect* rects, size_t count) {
    context.textClip.end();
    if (context.queue) {
        if (cg::recordRects(context, rects, count))
            return;
        cg::prepare(context);
    }
    if (context.callbacks.fillRects)
        context.callbacks.fillRects(context.state.get(), context.allowsFlags, rects, count,
                                    context.info);
}

} // namespace

// Destinations draw the shadows of paths, not those of rectangles.
void CGContextFillRects(CGContextRef context, const CGRect* rects, size_t count) {
    if (!context || !rects || count == 0)
        return;
    if (XGGStateHasShadow(context->state.get())) {
        paintShape(context, kCGPathFill, [&](CGMutablePathRef path, const CGAffineTransform* ctm) {
            CGPathAddRects(path, ctm, rects, count);
        });
        return;
    }
    cg::dropPath(*context);
    fillRects(*context, rects, count);
}

void CGContextFillRect(CGContextRef context, CGRect rect) {
    if (!CGRectIsEmpty(rect))
        CGContextFillRects(context, &rect, 1);
}

void CGContextClearRect(CGContextRef context, CGRect rect) {
    if (!context || CGRectIsEmpty(rect))
        return;
    cg::dropPath(*context);
    const XGGStateRef state = context->state.get();
    const CGBlendMode mode = XGGStateGetBlendMode(state);
    XGGStateSetBlendMode(state, kCGBlendModeClear);
    fillRects(*context, &rect, 1);
    XGGStateSetBlendMode(state, mode);
}

void CGContextStrokeRect(CGContextRef context, CGRect rect) {
    XGContextStrokeRects(context, &rect, 1);
}

void CGContextStrokeRectWithWidth(CGContextRef context, CGRect rect, CGFloat width) {
    const XGGStateRef state = stateOf(context);
    const bool isUsable = std::isfinite(width) && width >= 0;
    const LineWidthScope scope(state, isUsable ? width : XGGStateGetLineWidth(state));
    CGContextStrokeRect(context, rect);
}

void XGContextStrokeRects(CGContextRef context, const CGRect* rects, size_t count) {
    if (!rects || count == 0)
        return;
    paintShape(context, kCGPathStroke, [&](CGMutablePathRef path, const CGAffineTransform* ctm) {
        CGPathAddRects(path, ctm, rects, count);
    });
}

// ---- Other shapes

void CGContextFillEllipseInRect(CGContextRef context, CGRect rect) {
    if (context && context->queue && cg::recordCircle(*context, rect)) {
        cg::dropPath(*context);
        return;
    }
    paintShape(context, kCGPathFill, [&](CGMutablePathRef path, const CGAffineTransform* ctm) {
        CGPathAddEllipseInRect(path, ctm, rect);
    });
}

void CGContextStrokeEllipseInRect(CGContextRef context, CGRect rect) {
    paintShape(context, kCGPathStroke, [&](CGMutablePathRef path, const CGAffineTransform* ctm) {
        CGPathAddEllipseInRect(path, ctm, rect);
    });
}

void CGContextStrokeLineSegments(CGContextRef context, const CGPoint* points, size_t count) {
    if (!points || count < 2)
        return;
    paintShape(context, kCGPathStroke, [&](CGMutablePathRef path, const CGAffineTransform* ctm) {
        for (size_t index = 0; index + 1 < count; index += 2)
            CGPathAddLines(path, ctm, points + index, 2);
    });
}
