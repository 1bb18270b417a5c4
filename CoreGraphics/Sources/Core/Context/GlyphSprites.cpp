// GlyphSprites.cpp: placing glyphs of an atlas, and drawing them without it.

#include "Core/Context/GlyphSprites.h"

#include "XGFont.h"
#include <CoreFoundation/CFData.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGImage.h>
#include <FontManager/FMGlyph.h>

#include "Core/CommandQueue/XGCommandQueueRecord.h"
#include "Core/Context/TextContrast.h"

#include <algorithm>
#include <cmath>

namespace cg {

namespace {

bool isAllowed(const CGContext& context, uint32_t flag) {
    return (context.allowsFlags & flag) != 0;
}

// How many places there are along an axis of a pixel. The raster backend's text has four, but where
// positions are quantised along the line alone.
struct Places {
    CGFloat x = 1, y = 1;

    static Places of(const CGContext& context, const CGAffineTransform& glyphs) {
        const XGGStateRef state = context.state.get();
        if (!isAllowed(context, kXGContextAllowsFontSubpixelPositioning) ||
            !XGGStateShouldSubpixelPositionFonts(state))
            return {};
        const bool isQuantized = isAllowed(context, kXGContextAllowsFontSubpixelQuantization) &&
                                 XGGStateShouldSubpixelQuantizeFonts(state);
        if (isQuantized && glyphs.b == 0)
            return {4, 1};
        if (isQuantized && glyphs.a == 0)
            return {1, 4};
        return {4, 4};
    }
};

// To the nearest place, as the raster backend has it: its rows run downwards.
CGPoint placed(CGPoint position, const Places& places, CGFloat height) {
    const CGFloat down = height - position.y;
    return {std::floor(position.x * places.x + 0.5f) / places.x,
            height - std::floor(down * places.y + 0.5f) / places.y};
}

FMGlyphDescription describe(const CGContext& context) {
    const XGGStateRef state = context.state.get();
    const bool isSmooth = isAllowed(context, kXGContextAllowsAntialiasing) &&
                          XGGStateShouldAntialias(state) && !disablesFontAntialiasing();
    return {
        .size = XGGStateGetFontSize(state),
        .transform = CGAffineTransformConcat(state->values.textMatrix, *XGGStateGetTextCTM(state)),
        .position = CGPointZero,
        .options = kFMGlyphSubpixelPosition | (isSmooth ? FMGlyphOptions{kFMGlyphAntialias} : 0u)};
}

Edges edgesOf(const FMGlyph& glyph, CGPoint origin) {
    const CGFloat left = origin.x + static_cast<CGFloat>(glyph.left);
    const CGFloat top = origin.y + static_cast<CGFloat>(glyph.top);
    return {left, top - static_cast<CGFloat>(glyph.height),
            left + static_cast<CGFloat>(glyph.width), top};
}

} // namespace

std::optional<Edges> addSprites(const CGContext& context, const ShownGlyphs& shown,
                                XGCommand& command) {
    const XGGStateRef state = context.state.get();
    const FMFontRef font = XGFontGetFMFont(XGGStateGetFont(state));
    const CGFloat height = context.queue.get()->canvas().size.height;
    FMGlyphDescription description = describe(context);
    const Places places = Places::of(context, description.transform);
    XGSprite* const sprites = XGCommandGetSprites(&command);
    Edges bounds;
    command.itemCount = 0;
    for (size_t index = 0; index < shown.count; ++index) {
        description.position =
            placed(CGPointApplyAffineTransform(shown.positions[index], *XGGStateGetTextCTM(state)),
                   places, height);
        const FMGlyphRef glyph =
            FMFontCopyBitmapGlyphWithSprite(font, shown.glyphs[index], &description);
        if (!glyph)
            return std::nullopt;
        if (glyph->width == 0 || glyph->height == 0) {
            FMGlyphRelease(glyph);
            continue;
        }
        const CGPoint origin = {std::floor(description.position.x),
                                std::floor(description.position.y)};
        sprites[command.itemCount] = {glyph, origin};
        const Edges edges = edgesOf(*glyph, origin);
        bounds = command.itemCount++ == 0 ? edges : bounds.including(edges);
    }
    return bounds;
}

// ---- Drawing without the atlas

namespace {

void releaseGlyph(void* glyph, const void*, size_t) {
    FMGlyphRelease(static_cast<FMGlyphRef>(glyph));
}

cf::Ref<CGDataProviderRef> pixelsOf(FMGlyphRef glyph) {
    auto provider = cf::adopt(
        CGDataProviderCreateWithData(FMGlyphRetain(glyph), glyph->pixels,
                                     size_t{glyph->bytesPerRow} * glyph->height, releaseGlyph));
    if (!provider)
        FMGlyphRelease(glyph);
    return provider;
}

// Where the mask's samples are highest, paint gets through.
cf::Ref<CGImageRef> maskOf(const FMGlyph& glyph, const TextContrast& contrast) {
    constexpr CGFloat kCoverage[] = {1, 0};
    const size_t size = size_t{glyph.bytesPerRow} * glyph.height;
    const auto coverage = cf::adopt(CFDataCreateMutable(nullptr, 0));
    if (coverage)
        CFDataSetLength(coverage.get(), static_cast<CFIndex>(size));
    if (!coverage || CFDataGetLength(coverage.get()) != static_cast<CFIndex>(size))
        return nullptr;
    std::transform(glyph.pixels, glyph.pixels + size, CFDataGetMutableBytePtr(coverage.get()),
                   contrast);
    const auto provider = cf::adopt(CGDataProviderCreateWithCFData(coverage.get()));
    return cf::adopt(CGImageMaskCreate(glyph.width, glyph.height, 8, 8, glyph.bytesPerRow,
                                       provider.get(), kCoverage, false));
}

cf::Ref<CGImageRef> pictureOf(FMGlyphRef glyph) {
    const auto space = cf::adopt(CGColorSpaceCreateDeviceRGB());
    return cf::adopt(CGImageCreate(
        glyph->width, glyph->height, 8, 32, glyph->bytesPerRow, space.get(),
        CGBitmapInfo{kCGBitmapByteOrder32Little} | CGBitmapInfo{kCGImageAlphaPremultipliedFirst},
        pixelsOf(glyph).get(), nullptr, false, kCGRenderingIntentDefault));
}

void drawPicture(CGContextRef context, FMGlyphRef glyph, CGRect rect, CGFloat alpha) {
    CGContextSaveGState(context);
    CGContextSetAlpha(context, XGGStateGetAlpha(context->state.get()) * alpha);
    CGContextDrawImage(context, rect, pictureOf(glyph).get());
    CGContextRestoreGState(context);
}

void drawSprite(CGContextRef context, const XGSprite& sprite, CGColorRef color,
                const TextContrast& contrast) {
    const auto glyph = static_cast<FMGlyphRef>(sprite.glyph);
    if (!glyph || !glyph->pixels)
        return;
    const auto rect = edgesOf(*glyph, sprite.origin).rect();
    if (!rect)
        return;
    if (glyph->format == kFMGlyphFormatColor)
        drawPicture(context, glyph, *rect, CGColorGetAlpha(color));
    else if (glyph->format == kFMGlyphFormatGreyMask)
        CGContextDrawImage(context, *rect, maskOf(*glyph, contrast).get());
}

} // namespace

void drawSprites(CGContextRef context, const XGCommand& command) {
    const TextContrast contrast(command.color);
    for (uint32_t index = 0; index < command.itemCount; ++index)
        drawSprite(context, XGCommandGetSprites(&command)[index], command.color, contrast);
}

} // namespace cg
