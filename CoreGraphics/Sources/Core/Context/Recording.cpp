// Recording.cpp: what commands can say of drawing operations.

#include "Core/Context/Recording.h"

#include "XGColorSpace.h"
#include "XGImage.h"
#include "XGImagePixels.h"
#include "XGPath.h"

#include "Core/Color/DisplayedColor.h"
#include "Core/CommandQueue/XGCommandQueueRecord.h"
#include "Core/Context/GlyphSprites.h"
#include "Core/Context/RecordedShapes.h"
#include "Core/Context/XGBackend.h"
#include "Core/Data/CGDataProviderRecord.h"
#include "Core/Image/CGImageRecord.h"
#include "Core/State/XGClippingRecord.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace cg {

namespace {

// ---- The state

bool isSmooth(const CGContext& context) {
    return (context.allowsFlags & kXGContextAllowsAntialiasing) &&
           (context.state.get()->values.flags & kShouldAntialias);
}

Edges canvasOf(const CGContext& context) {
    const XGCommandQueue& queue = *context.queue.get();
    return {0, 0, static_cast<CGFloat>(queue.width), static_cast<CGFloat>(queue.height)};
}

// What the clip leaves of the canvas; none for a clip that is more than a rectangle of pixels.
// There is none, too, where the state asks for what no command has.
// Inlined, as is what follows from it for a rectangle: edges that are returned in memory are
// written one by one and read at once, which waits for the writes.
[[gnu::always_inline]] inline std::optional<Edges> recordableArea(const CGContext& context) {
    const XGGState& state = *context.state.get();
    const XGClipping* const clipping = state.clipping.get();
    if ((state.values.shadowColor && XGGStateHasShadow(context.state.get())) ||
        !state.values.isPorterDuff || !clipping || clipping->paths || clipping->mask ||
        CGRectIsNull(clipping->rect))
        return std::nullopt;
    const Edges area = Edges::of(clipping->rect).within(canvasOf(context));
    return area.isEmpty() || area.isWhole() ? std::optional(area) : std::nullopt;
}

// A component in 0 … 1 in steps of bitmaps; NaN is 0.
CGFloat toSteps(CGFloat component) {
    return component > 0 ? std::round(std::min(component, CGFloat{1}) * 255) : 0;
}

// The colour on the canvas, with the state's alpha in it, as precisely as bitmaps have that; lent.
// NULL for one that the canvas's space cannot express, and for patterns.
CGColorRef recordedColor(CGContext& context, CGColorRef color) {
    const XGCommandQueue& queue = *context.queue.get();
    const CGFloat alpha = context.state.get()->values.alpha;
    if (color && color == queue.lastColor && alpha == 1)
        return color; // Was asked about for the command before.
    if (!color || CGColorGetPattern(color))
        return nullptr;
    const CGColorSpaceRef canvas = queue.space.get();
    const CGColorSpaceRef space = CGColorGetColorSpace(color);
    if (alpha == 1 && (space == canvas || XGColorSpaceEqualToColorSpace(space, canvas)))
        return color;
    // Gray bitmaps are painted in colours, which only then become gray.
    const bool isGray = CGColorSpaceGetModel(canvas) == kCGColorSpaceModelMonochrome;
    if (isGray && CGColorSpaceGetModel(space) != kCGColorSpaceModelMonochrome)
        return nullptr;
    const auto [red, green, blue, opacity] = displayedColor(
        color, {.space = canvas, .intent = XGGStateGetRenderingIntent(context.state.get())});
    const CGFloat total = std::round(alpha * toSteps(opacity)) / 255;
    const std::array components = isGray ? std::array{red, total, CGFloat{0}, CGFloat{0}}
                                         : std::array{red, green, blue, total};
    return context.recentColors.get(canvas, components.data());
}

// ---- Commands

// A command that is being made, with the state's blend mode and a colour, which is lent.
class Draft {
public:
    Draft(CGContext& context, XGCommandKind kind, CGColorRef color, std::size_t itemCount = 0)
        : queue_(*context.queue.get()), color_(color),
          command_(draftCommand(queue_, kind, itemCount)) {
        if (command_)
            command_->blendMode = context.state.get()->values.blendMode;
    }
    ~Draft() {
        if (command_)
            dropDraft(queue_, command_);
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    // Not when memory ran out.
    explicit operator bool() const { return command_; }
    XGCommand* operator->() const { return command_; }
    XGCommand* get() const { return command_; }

    // A copy onto an empty canvas becomes a normal fill, which is as much only where pixels are
    // covered as a whole.
    bool isTranslucentCopy() const {
        constexpr CGFloat kOpaque = 0.999f;
        return command_->blendMode == kCGBlendModeCopy && CGColorGetAlpha(color_) <= kOpaque;
    }

    bool add() {
        if (!addDraft(queue_, command_, color_))
            return false;
        command_ = nullptr;
        return true;
    }

private:
    XGCommandQueue& queue_;
    CGColorRef color_;
    XGCommand* command_;
};

// Collects what is to be seen of rectangles in device space, in a colour that is lent.
class RectCollector {
public:
    RectCollector(CGContext& context, const Edges& area, CGColorRef color, std::size_t count)
        : draft_(context, kXGCommandFillRects, color, count), area_(area),
          isCanvas_(area == canvasOf(context)) {
        needsWholePixels_ = draft_ && (!isSmooth(context) || draft_.isTranslucentCopy());
    }

    [[gnu::always_inline]] bool add(const Edges& edges) {
        if (!draft_ || !edges.isFinite())
            return false;
        const Edges seen = edges.within(area_);
        if (seen.isEmpty())
            return true;
        // What a clip cuts off with smooth edges is blended by other steps than a smaller mark.
        const bool isCut = !isCanvas_ && !area_.contains(edges.outset(1));
        if ((needsWholePixels_ || isCut) && !edges.isWhole())
            return false;
        const auto rect = (isCut ? seen : edges).rect();
        if (!rect)
            return false;
        XGCommandGetRects(draft_.get())[count_++] = *rect;
        bounds_ = count_ == 1 ? seen : bounds_.including(seen);
        return true;
    }

    // Nothing to be seen is recorded without a trace.
    bool finish() {
        if (!draft_ || count_ == 0)
            return bool(draft_);
        draft_->itemCount = count_;
        draft_->bounds = bounds_.enclosingRect();
        return draft_.add();
    }

private:
    Draft draft_;
    Edges area_;
    Edges bounds_;
    std::uint32_t count_ = 0;
    bool isCanvas_;
    bool needsWholePixels_;
};

template <typename Rects>
bool recordDeviceRects(CGContext& context, const Edges& area, CGColorRef color,
                       const Rects& rects) {
    RectCollector collector(context, area, color, rects.size());
    return std::ranges::all_of(rects, [&](const Edges& each) { return collector.add(each); }) &&
           collector.finish();
}

// Whether a clip to `area` changes nothing of a mark within `bounds`: neither what is seen of it
// nor, as a clip through its middle might, how its edges are computed.
bool isUntouchedBy(const Edges& area, const Edges& bounds, const CGContext& context) {
    return area == canvasOf(context) || area.contains(bounds.outset(1));
}

enum class Seen { Nothing, AsItIs, Clipped };

Seen seenOf(const CGContext& context, const Edges& area, const Edges& bounds) {
    if (area.isEmpty() || bounds.outset(1).within(area).isEmpty())
        return Seen::Nothing;
    return isUntouchedBy(area, bounds, context) ? Seen::AsItIs : Seen::Clipped;
}

bool recordPath(const CGContext& context, Draft& draft, CGPathRef path, const Edges& bounds,
                const Edges& area) {
    if (!draft || !isSmooth(context) || draft.isTranslucentCopy())
        return false;
    settlePath(path); // Images of the queue are drawn wherever somebody looks at them.
    draft->path = cf::retain(path).release();
    draft->bounds = bounds.outset(1).within(area).enclosingRect();
    return draft.add();
}

bool recordFilledPath(CGContext& context, CGColorRef color, CGPathRef path, const Edges& bounds,
                      const Edges& area) {
    Draft draft(context, kXGCommandFillPath, color);
    return recordPath(context, draft, path, bounds, area);
}

// Whether rectangles put down what paths of whole pixels do. So they do in the layout that most
// bitmaps have; in others the rasteriser rounds the blends of a path's sides by themselves, and
// sets bits that no component has.
bool drawsRectsAsPaths(const CGContext& context) {
    const XGCommandQueue& queue = *context.queue.get();
    const CGImageAlphaInfo alpha = alphaInfo(queue.bitmapInfo);
    return queue.bitsPerPixel == 32 &&
           (queue.bitmapInfo & kCGBitmapByteOrderMask) == kCGBitmapByteOrder32Little &&
           (alpha == kCGImageAlphaPremultipliedFirst || alpha == kCGImageAlphaNoneSkipFirst);
}

// ---- Fills

bool recordAsRects(CGContext& context, const Edges& area, CGPathRef path, CGColorRef color) {
    if (!drawsRectsAsPaths(context))
        return false;
    std::array<CGRect, 8> rects;
    std::size_t count = 0;
    if (!_CGPathCanBeFilledByRects(path, rects.data(), rects.size(), &count) || count == 0 ||
        count > rects.size())
        return false;
    std::array<Edges, 8> edges;
    std::transform(rects.begin(), rects.begin() + count, edges.begin(), Edges::of);
    const std::span found(edges.data(), count);
    // A path's coverage of parts of pixels is computed otherwise than a rectangle's.
    if (!std::ranges::all_of(found, &Edges::isWhole))
        return false;
    return recordDeviceRects(context, area, color, found);
}

bool recordCircle(CGContext& context, const Edges& area, CGRect square, CGColorRef color) {
    if (!isSmooth(context) || seenOf(context, area, Edges::of(square)) != Seen::AsItIs)
        return false;
    Draft draft(context, kXGCommandFillCircle, color);
    if (!draft || draft.isTranslucentCopy())
        return false;
    draft->bounds = square;
    return draft.add();
}

bool recordAsCircle(CGContext& context, const Edges& area, CGPathRef path, CGColorRef color) {
    const auto square = circleOf(path);
    return square && recordCircle(context, area, *square, color);
}

bool hasUprightCTM(const CGContext& context) {
    const CGAffineTransform& ctm = *XGGStateGetCombinedCTM(context.state.get());
    return (ctm.b == 0 && ctm.c == 0) || (ctm.a == 0 && ctm.d == 0);
}

} // namespace

bool recordRects(CGContext& context, const CGRect* rects, std::size_t count) {
    const auto area = recordableArea(context);
    if (!area || !hasUprightCTM(context))
        return false;
    const StateValues& values = context.state.get()->values;
    const CGColorRef color = recordedColor(context, values.fillColor.get());
    if (!color)
        return false;
    RectCollector collector(context, *area, color, count);
    for (std::size_t index = 0; index < count; ++index)
        if (!collector.add(Edges::of(rects[index]).mapped(values.combinedCTM)))
            return false;
    return collector.finish();
}

bool recordFill(CGContext& context, CGMutablePathRef path, bool evenOdd, CGColorRef color) {
    const auto area = recordableArea(context);
    const CGColorRef onCanvas = area ? recordedColor(context, color) : nullptr;
    const Edges bounds = Edges::of(CGPathGetBoundingBox(path));
    if (!onCanvas || !bounds.isFinite())
        return false;
    if (seenOf(context, *area, bounds) == Seen::Nothing)
        return true;
    if (hasUprightCTM(context) && (recordAsRects(context, *area, path, onCanvas) ||
                                   recordAsCircle(context, *area, path, onCanvas)))
        return true;
    if (seenOf(context, *area, bounds) != Seen::AsItIs)
        return false;
    _CGPathSetEvenOddFill(path, evenOdd ? kXGPathFillEvenOdd : kXGPathFillWinding);
    return recordFilledPath(context, onCanvas, path, bounds, *area);
}

bool recordCircle(CGContext& context, CGRect square) {
    // Large enough for its points to be round, and where no transform rounds them.
    constexpr CGFloat kLeast = 1.f / 16;
    const auto area = recordableArea(context);
    const StateValues& values = context.state.get()->values;
    const CGColorRef color = area ? recordedColor(context, values.fillColor.get()) : nullptr;
    return color && square.size.width == square.size.height && square.size.width >= kLeast &&
           CGAffineTransformIsIdentity(values.combinedCTM) &&
           recordCircle(context, *area, square, color);
}

// ---- Strokes

namespace {

// How far from its path a stroke may reach.
CGFloat reachOf(XGGStateRef state, CGFloat width) {
    constexpr CGFloat kDiagonal = 1.5f; // Of a square cap, and more.
    const bool hasMiters = XGGStateGetLineJoin(state) == kCGLineJoinMiter;
    const CGFloat miters =
        hasMiters ? std::max(XGGStateGetMiterLimit(state), kDiagonal) : kDiagonal;
    return std::max(width, CGFloat{1}) / 2 * miters;
}

bool recordLine(CGContext& context, const DeviceStroke& stroke, CGColorRef color,
                const Edges& area) {
    const XGGStateRef state = context.state.get();
    const CGPathRef path = stroke.path.get();
    const Edges bounds = Edges::of(CGPathGetBoundingBox(path)).outset(reachOf(state, stroke.width));
    if (!bounds.isFinite())
        return false;
    const Seen seen = seenOf(context, area, bounds);
    if (seen == Seen::Nothing)
        return true;
    const LineStyle style = {.width = stroke.width,
                             .cap = XGGStateGetLineCap(state),
                             .join = XGGStateGetLineJoin(state),
                             .miterLimit = XGGStateGetMiterLimit(state)};
    StrokeRects rects;
    if (hasUprightCTM(context) && drawsRectsAsPaths(context) && rects.collect(path, style) &&
        recordDeviceRects(context, area, color, rects.all()))
        return true;
    Draft draft(context, kXGCommandStrokePath, color);
    if (seen != Seen::AsItIs || !draft)
        return false;
    draft->parameters.stroke = {.width = style.width,
                                .cap = static_cast<std::int32_t>(style.cap),
                                .join = static_cast<std::int32_t>(style.join),
                                .miterLimit = style.miterLimit};
    return recordPath(context, draft, path, bounds, area);
}

} // namespace

bool recordStroke(CGContext& context, const DeviceStroke& stroke) {
    const CGColorRef color = XGGStateGetStrokeColor(context.state.get());
    if (!stroke.path)
        return true; // It puts nothing down.
    const auto area = recordableArea(context);
    const CGColorRef onCanvas = area ? recordedColor(context, color) : nullptr;
    if (!onCanvas)
        return false;
    if (stroke.form == StrokeForm::Line)
        return recordLine(context, stroke, onCanvas, *area);
    const Edges bounds = Edges::of(CGPathGetBoundingBox(stroke.path.get()));
    if (!bounds.isFinite())
        return false;
    const Seen seen = seenOf(context, *area, bounds);
    return seen == Seen::Nothing ||
           (seen == Seen::AsItIs &&
            recordFilledPath(context, onCanvas, stroke.path.get(), bounds, *area));
}

// ---- Glyphs

namespace {

// On opaque pixels the raster backend's smooth text covers a pixel's three colours one by one.
bool wantsStripes(const CGContext& context) {
    const CGImageAlphaInfo alpha = alphaInfo(context.queue.get()->bitmapInfo);
    return (alpha == kCGImageAlphaNone || alpha == kCGImageAlphaNoneSkipFirst ||
            alpha == kCGImageAlphaNoneSkipLast) &&
           isSmooth(context) && (context.allowsFlags & kXGContextAllowsFontSmoothing) &&
           XGGStateShouldSmoothFonts(context.state.get());
}

} // namespace

bool recordSprites(CGContext& context, const ShownGlyphs& shown) {
    const auto area = textureAtlasCallbacks() ? recordableArea(context) : std::nullopt;
    const CGColorRef color =
        area ? recordedColor(context, XGGStateGetFillColor(context.state.get())) : nullptr;
    if (!color || wantsStripes(context))
        return false;
    Draft draft(context, kXGCommandDrawSprites, color, shown.count);
    if (!draft || draft.isTranslucentCopy())
        return false;
    const auto bounds = addSprites(context, shown, *draft.get());
    if (!bounds || seenOf(context, *area, *bounds) == Seen::Clipped)
        return false;
    if (draft->itemCount == 0 || seenOf(context, *area, *bounds) == Seen::Nothing)
        return true;
    draft->bounds = bounds->within(*area).enclosingRect();
    return draft.add();
}

// ---- Images

namespace {

// Numbers that are added, and halved, without rounding as long as they are no larger than canvases
// are.
bool isOnGrid(CGFloat value) {
    constexpr CGFloat kSteps = 64, kMost = 1 << 14;
    return std::fabs(value) <= kMost && value * kSteps == std::floor(value * kSteps);
}

bool isPowerOfTwo(CGFloat value) {
    int exponent = 0;
    return value > 0 && std::frexp(value, &exponent) == 0.5f;
}

// Where an image goes on the canvas, if the transform of its samples can be had from that alone, to
// the bit.
std::optional<Edges> exactPlace(const CGRect& rect, const CGAffineTransform& ctm) {
    const bool isUpright = ctm.b == 0 && ctm.c == 0 && ctm.a == ctm.d && isPowerOfTwo(ctm.a);
    const Edges edges = Edges::of(rect);
    const Edges place = edges.mapped(ctm);
    const CGFloat numbers[] = {ctm.tx,    ctm.ty,     edges.left,   edges.bottom, edges.right,
                               edges.top, place.left, place.bottom, place.right,  place.top};
    return isUpright && std::ranges::all_of(numbers, isOnGrid) ? std::optional(place)
                                                               : std::nullopt;
}

// Whether the image is still the same when the command is drawn.
bool keepsItsBytes(CGImageRef image) {
    const CGDataProviderRef source = XGImageGetSourceDataProvider(image);
    return XGImageGetCommandQueue(image) || CGImageGetDataProvider(image)->keepsBytes ||
           (source && source->keepsBytes);
}

bool isDrawnByDefault(const CGContext& context, CGImageRef image) {
    const XGGStateRef state = context.state.get();
    const bool isQualityFree = XGGStateGetInterpolationQuality(state) == kCGInterpolationDefault ||
                               !CGImageGetShouldInterpolate(image);
    return isQualityFree && isSmooth(context) &&
           XGGStateGetRenderingIntent(state) == kCGRenderingIntentDefault &&
           XGGStateGetBlendMode(state) != kCGBlendModeCopy;
}

} // namespace

bool recordImage(CGContext& context, CGRect rect, CGImageRef image) {
    const XGGStateRef state = context.state.get();
    const auto area = recordableArea(context);
    const auto place = area ? exactPlace(rect, *XGGStateGetCombinedCTM(state)) : std::nullopt;
    if (!place || !isDrawnByDefault(context, image) || !keepsItsBytes(image))
        return false;
    const Seen seen = seenOf(context, *area, *place);
    if (seen != Seen::AsItIs || place->isEmpty())
        return seen == Seen::Nothing || place->isEmpty();

    // Image masks are filled with a colour; pictures have their own, and no room for an alpha.
    const bool isMask = CGImageIsMask(image);
    if (!isMask && XGGStateGetAlpha(state) != 1)
        return false;
    const CGColorRef color = isMask ? recordedColor(context, XGGStateGetFillColor(state)) : nullptr;
    const auto bounds = place->rect();
    Draft draft(context, kXGCommandDrawImage, color);
    if ((isMask && !color) || !bounds || !draft)
        return false;
    draft->bounds = *bounds;
    draft->image = cf::retain(image).release();
    return draft.add();
}

} // namespace cg
