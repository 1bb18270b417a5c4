// CGContextRecord.h: the fields that contexts of all kinds share, and what the front end does to
// them.
#pragma once

#include "XGCommandQueue.h"
#include "XGContext.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGPath.h>

#include "Core/Context/RecentColors.h"
#include "Core/Context/TextMarks.h"
#include "Core/State/StateReuse.h"
#include "Core/State/XGGStateRecord.h"

struct CGContext {
    CFRuntimeBase base;
    uint32_t kind = 0;
    // Whether a bitmap's fields follow these: the kind alone is whatever a caller says.
    bool holdsBitmap = false;
    // Smoothing is not allowed until asked for.
    uint32_t allowsFlags = kXGContextAllowsAntialiasing | kXGContextAllowsFontSubpixelPositioning |
                           kXGContextAllowsFontSubpixelQuantization;
    cf::Ref<XGGStateRef> state;     // With those that were saved below it.
    cf::Ref<CGMutablePathRef> path; // In device space; absent without a current path.
    // Saves for which there was no memory, and those inside them: as many restores do nothing.
    size_t failedSaves = 0;
    CGAffineTransform textMatrix = {1, 0, 0, 1, 0, 0};
    cg::TextClip textClip; // Of the glyphs shown last, while nothing else was drawn.
    void* info = nullptr;
    CGFloat sizeInPoints[3] = {};
    XGContextCallbacks callbacks = {};
    // Takes drawing as commands while there is one; then the destination has no pixels yet.
    cf::Ref<XGCommandQueueRef> queue;
    // A consumed path that nobody else holds, emptied: the next one starts in its storage.
    cf::Ref<CGMutablePathRef> sparePath;
    cg::SpareStates spareStates;
    cg::RecentColors recentColors;
};

namespace cg {

// The functions of XGGState accept NULL, and so do those of CGPath: what a NULL context does not
// have is passed on to them as it is.
inline XGGStateRef stateOf(CGContextRef context) {
    return context ? context->state.get() : nullptr;
}
inline const CGAffineTransform* combinedCTM(CGContextRef context) {
    const XGGStateRef state = stateOf(context);
    return state ? &state->values.combinedCTM : nullptr;
}

// What is drawn where the state has a shadow; without one ShadowAlone draws nothing.
enum class Passes { ShadowAndMark, ShadowAlone };

// Lets the destination get ready for marks.
inline void prepare(CGContext& context) {
    context.textClip.end();
    if (context.callbacks.prepare)
        context.callbacks.prepare(&context);
}

// Whether glyphs have hard edges, whatever contexts allow and ask for.
bool disablesFontAntialiasing();

// The current path, begun if there is none; NULL when memory runs out.
CGMutablePathRef currentPath(CGContextRef context);
// Takes the current path out of the context: marking and clipping consume it.
cf::Ref<CGMutablePathRef> takePath(CGContext& context);
// Draws a path in device space as CGContextDrawPath draws the current one. The context has no
// queue.
void paintPath(CGContext& context, CGPathRef path, CGPathDrawingMode mode);
// Gives a path that was taken back, for the storage that the next one can use.
void recyclePath(CGContext& context, cf::Ref<CGMutablePathRef> path);
void dropPath(CGContext& context);

} // namespace cg
