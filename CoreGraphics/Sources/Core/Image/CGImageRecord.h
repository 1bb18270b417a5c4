// CGImageRecord.h: what an image is made of.
#pragma once

#include "XGImage.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGImage.h>

#include "Core/Object/RuntimeObject.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace cg {

// Pixels of an image in another layout, kept with the image. Opaque here; made and freed by what
// converts pixels.
class PixelCache;
void destroyPixelCache(PixelCache* cache);
void purgePixelCache(PixelCache& cache);

// What a destination keeps with an image to draw it sooner the next time.
struct DrawingCache {
    virtual ~DrawingCache() = default;
};

// Bits of CGImage::flags.
constexpr std::uint32_t kImageInterpolates = 0x1;
constexpr std::uint32_t kImageHasMaskingColors = 0x4;
constexpr std::uint32_t kImageCreatedAsMask = 0x8;
constexpr std::uint32_t kImageHasMask = 0x10;

// A minimum and a maximum for each component of a pixel; four colours and an opacity are the most.
constexpr std::size_t kMostDecodePairs = 5;
using ComponentRanges = std::array<CGFloat, 2 * kMostDecodePairs>;

} // namespace cg

// Created by CGImageCreate, the layout is a legal one but for two things that callers decide alone:
// `bytesPerRow` may be anything, 0 and less than a row's pixels included, and the provider may hold
// fewer bytes than height × bytesPerRow. Who reads pixels holds each row against the provider's
// size. An image mask has no space, `bitsPerPixel` of its own choice and whole rows of bytes.
struct CGImage {
    CFRuntimeBase base;
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t bitsPerComponent = 0;
    std::size_t bitsPerPixel = 0;
    std::size_t bytesPerRow = 0;
    // With the private bits of XGImage.h, which may be set while others read.
    std::atomic<CGBitmapInfo> bitmapInfo = 0;
    std::uint32_t flags = 0;
    cf::Ref<CGColorSpaceRef> space;
    cf::Ref<CGDataProviderRef> provider;
    // Pairs beyond those that were given are 0 and 1.
    cg::ComponentRanges decode{};
    bool hasDecode = false;
    cg::ComponentRanges maskingColors{}; // Meaningful under kImageHasMaskingColors.
    CGColorRenderingIntent intent = kCGRenderingIntentDefault;
    cf::Ref<CGImageRef> mask;
    // Both are made at most once, by whoever needs them first: a thread that comes second finds the
    // pointer set by its compare-and-swap, and frees its own.
    std::atomic<CGImageRef> maskedImage = nullptr;
    std::atomic<cg::PixelCache*> pixelCache = nullptr;
    std::atomic<cg::DrawingCache*> drawingCache = nullptr; // Made once, as those above.
    // In which layout the provider's bytes can be drawn into which space; 0 before it is found out.
    std::atomic<std::uint64_t> layoutInPlace = 0;
    cf::Ref<CFStringRef> debugSource;
    std::atomic<std::int32_t> traceID = -1;
    std::atomic<std::uint32_t> uploadKey =
        0; // Stands for it in flat buffers, once it was asked for.
    CGSize sizeInPoints = {0, 0};
    cf::Ref<CGDataProviderRef> sourceProvider;
    cf::Ref<CFStringRef> utType;

    ~CGImage();
};

namespace cg {

// What an image is created from. References are borrowed.
struct ImageDescription {
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t bitsPerComponent = 0;
    std::size_t bitsPerPixel = 0;
    std::size_t bytesPerRow = 0;
    CGBitmapInfo bitmapInfo = 0;
    std::uint32_t flags = 0;
    CGColorSpaceRef space = nullptr;
    CGDataProviderRef provider = nullptr;
    std::optional<ComponentRanges> decode;
    CGColorRenderingIntent intent = kCGRenderingIntentDefault;
};

// The description of an image without its masks and without what only this object is: uploaded.
ImageDescription describe(const CGImage& image);

// An image as described, which is not validated again: copies and crops of images that creation
// accepted, among them those that it changed (a 16-bit pixel of three times 5 bits is "skip last"
// afterwards and would not pass a second time). Empty when memory runs out.
cf::Ref<CGImageRef> makeImage(const ImageDescription& description);

// How many pairs a decode array has for pixels of `space`, NULL for none, and `alpha`: the space's
// components, and one more for an opacity, skipped or not.
std::size_t componentsPerPixel(CGColorSpaceRef space, CGImageAlphaInfo alpha);

// The pairs that callers gave, no more than there is room for; nothing for NULL and for no pairs.
std::optional<ComponentRanges> decodeRanges(const CGFloat* decode, std::size_t pairs);

inline CGImageAlphaInfo alphaInfo(CGBitmapInfo bitmapInfo) {
    return static_cast<CGImageAlphaInfo>(bitmapInfo & kCGBitmapAlphaInfoMask);
}

// Called with every uploaded image at the start of its finalisation, on the thread that drops the
// last reference: who keeps the list of uploads notes the address, and must not retain it. Set once
// by that module; NULL, the initial value, tells nobody.
using UploadedImageObserver = void (*)(CGImageRef image);
void setUploadedImageObserver(UploadedImageObserver observer);

} // namespace cg
