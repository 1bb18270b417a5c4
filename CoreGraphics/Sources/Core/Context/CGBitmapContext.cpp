// CGBitmapContext.cpp: what a bitmap context says of itself, and its end.

#include "XGBitmapContext.h"
#include "XGColorSpace.h"
#include <CoreGraphics/CGBitmapContext.h>

#include "Core/Context/CGBitmapContextRecord.h"
#include "Core/Context/NativeBuffer.h"
#include "Core/Context/XGBackend.h"
#include "Core/Object/Diagnostics.h"

using cg::BitmapFields;
using cg::fieldsOf;

// ---- For the files of bitmap contexts

cg::Bitmap cg::describe(const BitmapFields& fields) {
    return {.pixels = fields.pixels,
            .width = fields.width,
            .height = fields.height,
            .bitsPerComponent = fields.bitsPerComponent,
            .bitsPerPixel = fields.bitsPerPixel,
            .bytesPerRow = fields.bytesPerRow,
            .space = fields.space.get(),
            .info = fields.info & ~kRecordsCommands,
            .buffer = fields.buffer};
}

void cg::logFailedAllocation(CGContextRef context, const Bitmap& bitmap) {
    CG_LOG_ERROR("[%p] Failed to allocate %s (%zuX%zu+%zu-bit).", static_cast<const void*>(context),
                 "pixels", bitmap.width, bitmap.height, bitmap.bitsPerPixel);
}

cg::LockedPixels::LockedPixels(const BitmapFields& fields)
    : buffer_(fields.buffer),
      pixels_(static_cast<const std::byte*>(buffer_ ? lockNativeBuffer(*buffer_) : fields.pixels)) {
}

cg::LockedPixels::~LockedPixels() {
    if (buffer_ && pixels_)
        unlockNativeBuffer(*buffer_);
}

// ---- The end

// The finaliser of contexts calls this once, for bitmap contexts only.
void XGBitmapContextDispose(CGContextRef context) {
    BitmapFields* const bitmap = fieldsOf(context);
    if (!bitmap)
        return;
    if (bitmap->release)
        bitmap->release(bitmap->releaseInfo, bitmap->pixels);
    context->holdsBitmap = false;
    bitmap->~BitmapFields();
}

// ---- Accessors

void* CGBitmapContextGetData(CGContextRef context) {
    BitmapFields* const bitmap = fieldsOf(context);
    if (!bitmap || !cg::bringIntoPixels(context) || !cg::takeBackPixels(context))
        return nullptr;
    bitmap->isReachable = true;
    return bitmap->buffer ? bitmap->buffer->data : bitmap->pixels;
}

size_t CGBitmapContextGetWidth(CGContextRef context) {
    const BitmapFields* const bitmap = fieldsOf(context);
    return bitmap ? bitmap->width : 0;
}

size_t CGBitmapContextGetHeight(CGContextRef context) {
    const BitmapFields* const bitmap = fieldsOf(context);
    return bitmap ? bitmap->height : 0;
}

size_t CGBitmapContextGetBitsPerComponent(CGContextRef context) {
    const BitmapFields* const bitmap = fieldsOf(context);
    return bitmap ? bitmap->bitsPerComponent : 0;
}

size_t CGBitmapContextGetBitsPerPixel(CGContextRef context) {
    const BitmapFields* const bitmap = fieldsOf(context);
    return bitmap ? bitmap->bitsPerPixel : 0;
}

size_t CGBitmapContextGetBytesPerRow(CGContextRef context) {
    const BitmapFields* const bitmap = fieldsOf(context);
    return bitmap ? bitmap->bytesPerRow : 0;
}

CGColorSpaceRef CGBitmapContextGetColorSpace(CGContextRef context) {
    const BitmapFields* const bitmap = fieldsOf(context);
    return bitmap ? bitmap->space.get() : nullptr;
}

CGBitmapInfo CGBitmapContextGetBitmapInfo(CGContextRef context) {
    const BitmapFields* const bitmap = fieldsOf(context);
    return bitmap ? bitmap->info : 0;
}

CGImageAlphaInfo CGBitmapContextGetAlphaInfo(CGContextRef context) {
    return static_cast<CGImageAlphaInfo>(CGBitmapContextGetBitmapInfo(context) &
                                         kCGBitmapAlphaInfoMask);
}

bool CGBitmapContextHasCommandQueue(CGContextRef context) {
    return (CGBitmapContextGetBitmapInfo(context) & cg::kRecordsCommands) != 0;
}

void XGBitmapContextAddFlags(CGContextRef context, CGBitmapInfo flags) {
    if (BitmapFields* const bitmap = fieldsOf(context))
        bitmap->info |= flags;
}

bool XGBitmapContextConvertFromAlphaToGrayscale(CGContextRef context) {
    BitmapFields* const fields = fieldsOf(context);
    if (!fields || CGBitmapContextGetAlphaInfo(context) != kCGImageAlphaOnly ||
        !cg::bringIntoPixels(context))
        return false;
    cg::Bitmap gray = cg::describe(*fields);
    gray.space = XGColorSpaceGetDeviceGray();
    gray.info &= ~CGBitmapInfo{kCGBitmapAlphaInfoMask};
    if (!cg::reinterpretPixels(context->info, gray))
        return false;
    fields->space = cf::retain(gray.space);
    fields->info &= ~CGBitmapInfo{kCGBitmapAlphaInfoMask};
    return true;
}
