// CGPathBlend.cpp: paths between two others.

#include "CGPathRecord.h"
#include "XGPath.h"

// Skia asks for the first path's share.
CGPathRef _CGPathCreateBlendedPath(CGPathRef from, CGPathRef to, CGFloat t) {
    if (!from || !to || !from->path.isInterpolatable(to->path))
        return nullptr;
    const CGMutablePathRef blended = cg::createPath(0);
    if (!blended)
        return nullptr;
    if (t == 0) {
        blended->path = from->path;
    } else if (!from->path.interpolate(to->path, 1 - t, &blended->path)) {
        CFRelease(blended);
        return nullptr;
    }
    cg::settle(blended->path);
    return blended;
}
