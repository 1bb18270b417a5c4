// XGImageOrientation.cpp: pictures turned upright.

#include "XGImageOrientation.h"

#include "XGColorSpace.h"

#include "Core/Image/CGImageRecord.h"
#include "Core/Object/Saturate.h"
#include "PixelReader.h"
#include "PixelResampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace {

// Of the stored column and row (x, y), upright (ax + cy, bx + dy); negative ones count from the
// far end. Exactly one of each line is not 0, so that the inverse is the transpose.
struct Turn {
    int a, b, c, d;

    bool swapsSides() const { return a == 0; }
};

constexpr std::array kTurns = {
    Turn{1, 0, 0, 1},   // Up
    Turn{-1, 0, 0, 1},  // UpMirrored
    Turn{-1, 0, 0, -1}, // Down
    Turn{1, 0, 0, -1},  // DownMirrored
    Turn{0, 1, 1, 0},   // LeftMirrored
    Turn{0, 1, -1, 0},  // Right
    Turn{0, -1, -1, 0}, // RightMirrored
    Turn{0, -1, 1, 0},  // Left
};

std::optional<Turn> turnOf(XGImageOrientation orientation) {
    if (orientation < kXGImageOrientationUp || orientation > kXGImageOrientationLeft)
        return std::nullopt;
    return kTurns[orientation - kXGImageOrientationUp];
}

struct Place {
    std::size_t x, y;
};

std::size_t along(int direction, std::size_t place, std::size_t length) {
    return direction < 0 ? length - 1 - place : place;
}

// Where an upright pixel is stored, in a picture of `width` by `height` stored pixels.
Place stored(const Turn& turn, Place upright, std::size_t width, std::size_t height) {
    return {turn.a ? along(turn.a, upright.x, width) : along(turn.b, upright.y, width),
            turn.d ? along(turn.d, upright.y, height) : along(turn.c, upright.x, height)};
}

// The stored pixels that make up a part of the upright picture.
cg::PixelRect storedPart(const Turn& turn, const cg::PixelRect& part, std::size_t width,
                         std::size_t height) {
    const Place one = stored(turn, {part.x, part.y}, width, height);
    const Place other =
        stored(turn, {part.x + part.width - 1, part.y + part.height - 1}, width, height);
    const auto [left, right] = std::minmax(one.x, other.x);
    const auto [top, bottom] = std::minmax(one.y, other.y);
    return {left, top, right - left + 1, bottom - top + 1};
}

cg::BakedPixels turned(const cg::BakedPixels& source, const Turn& turn) {
    const std::size_t width = turn.swapsSides() ? source.height : source.width;
    const std::size_t height = turn.swapsSides() ? source.width : source.height;
    cg::BakedPixels result = cg::roomFor(width, height, source.layout);
    if (!result)
        return {};
    std::byte* out = result.bytes.get();
    const std::size_t pixelBytes = source.layout.bytesPerPixel();
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x, out += pixelBytes) {
            const Place from = stored(turn, {x, y}, source.width, source.height);
            const std::byte* const row = source.bytes.get() + from.y * source.bytesPerRow();
            std::copy_n(row + from.x * pixelBytes, pixelBytes, out);
        }
    return result;
}

// 0 for lengths that no memory holds.
std::size_t scaledLength(std::size_t length, CGFloat scale) {
    const double scaled = std::round(static_cast<double>(length) * static_cast<double>(scale));
    return scaled < 0x1p31 ? std::max<std::size_t>(cg::saturate<std::size_t>(scaled), 1) : 0;
}

bool isUsableScale(CGFloat scale) {
    return std::isfinite(scale) && scale > 0;
}

std::optional<cg::PixelRect> pixelsInside(CGRect clip, std::size_t width, std::size_t height) {
    const CGRect bounds =
        CGRectMake(0, 0, static_cast<CGFloat>(width), static_cast<CGFloat>(height));
    const CGRect inside = CGRectIntersection(CGRectIntegral(clip), bounds);
    if (CGRectIsEmpty(inside))
        return std::nullopt;
    // Lengths beyond what a float counts exactly are cut to the picture's own.
    cg::PixelRect part = {cg::saturate<std::size_t>(inside.origin.x),
                          cg::saturate<std::size_t>(inside.origin.y), 0, 0};
    if (part.x >= width || part.y >= height)
        return std::nullopt;
    part.width = std::min(cg::saturate<std::size_t>(inside.size.width), width - part.x);
    part.height = std::min(cg::saturate<std::size_t>(inside.size.height), height - part.y);
    return part;
}

} // namespace

CGAffineTransform XGImageGetOrientationTransform(XGImageOrientation orientation, CGSize size) {
    const auto turn = turnOf(orientation);
    if (!turn)
        return CGAffineTransformIdentity;
    // Both pictures have y up here: the signs of b and c change, and what counts down is what
    // counts up from the other side.
    const auto a = static_cast<CGFloat>(turn->a), b = static_cast<CGFloat>(-turn->b);
    const auto c = static_cast<CGFloat>(-turn->c), d = static_cast<CGFloat>(turn->d);
    const CGFloat tx = (a < 0 ? size.width : 0) + (c < 0 ? size.height : 0);
    const CGFloat ty = (b < 0 ? size.width : 0) + (d < 0 ? size.height : 0);
    return CGAffineTransformMake(a, b, c, d, tx, ty);
}

CGImageRef XGImageCopyWithScaleAndRotation(CGImageRef image, CGFloat xScale, CGFloat yScale,
                                           XGImageOrientation orientation) {
    return XGImageCopyWithScaleRotationAndClipRect(image, xScale, yScale, orientation,
                                                   CGRectInfinite);
}

CGImageRef XGImageCopyWithScaleRotationAndClipRect(CGImageRef image, CGFloat xScale, CGFloat yScale,
                                                   XGImageOrientation orientation, CGRect clip) {
    const auto turn = turnOf(orientation);
    if (!image || !turn || !isUsableScale(xScale) || !isUsableScale(yScale))
        return nullptr;
    const std::size_t width = scaledLength(image->width, xScale);
    const std::size_t height = scaledLength(image->height, yScale);
    if (width == 0 || height == 0)
        return nullptr;
    const auto part = pixelsInside(clip, turn->swapsSides() ? height : width,
                                   turn->swapsSides() ? width : height);
    if (!part)
        return nullptr;

    const CGColorSpaceRef own = cg::pixelSpace(image);
    const CGColorSpaceRef space =
        CGColorSpaceGetModel(own) == kCGColorSpaceModelRGB ? own : XGColorSpaceGetDeviceRGB();
    const cg::BakedPixels source = cg::bake(image, space);
    if (!source)
        return nullptr;
    const cg::BakedPixels scaled =
        cg::resample(source, width, height, storedPart(*turn, *part, width, height));
    return scaled ? cg::imageOf(turned(scaled, *turn), space, image).release() : nullptr;
}
