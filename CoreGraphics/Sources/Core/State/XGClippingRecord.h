// XGClippingRecord.h: what a clipping is made of.
#pragma once

#include "XGClipping.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGImage.h>

struct XGClipping {
    CFRuntimeBase base;
    CGRect rect = CGRectNull;
    // Absent without paths. Copies share it until one of them adds a path.
    cf::Ref<CFMutableArrayRef> paths;
    cf::Ref<CGImageRef> mask;
    // Where the mask is; meaningless without one.
    CGRect maskRect = CGRectNull;
    CGAffineTransform maskMatrix = {1, 0, 0, 1, 0, 0};

    void clipAll();
    bool add(CGPathRef path, bool evenOdd);
};
