// CGContextRecord.h: the fields that contexts of all kinds share.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGPath.h>

#include "XGContext.h"

struct CGContext {
    CFRuntimeBase base;
    uint32_t kind = 0;
    // Smoothing is not allowed until asked for.
    uint32_t allowsFlags = kXGContextAllowsAntialiasing | kXGContextAllowsFontSubpixelPositioning |
                           kXGContextAllowsFontSubpixelQuantization;
    cf::Ref<XGGStateRef> state;
    cf::Ref<CGMutablePathRef> path;           // In device space; absent without a current path.
    cf::Ref<CFMutableArrayRef> savedStates;   // Absent until the first save.
    CGAffineTransform textMatrix = {1, 0, 0, 1, 0, 0};
    void* info = nullptr;
    CGFloat sizeInPoints[3] = {};
    XGContextCallbacks callbacks = {};
    // A consumed path that nobody else holds, emptied: the next one starts in its storage.
    cf::Ref<CGMutablePathRef> sparePath;
};
