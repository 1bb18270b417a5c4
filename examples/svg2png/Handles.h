// Handles.h: owners for the objects of the drawing interface, so that each is released once.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <memory>
#include <type_traits>

namespace svg {

// Calls the release function of one type; NULL never reaches it.
template <auto Release>
struct Releaser {
    template <typename T>
    void operator()(T* object) const {
        Release(object);
    }
};

using Path = std::unique_ptr<std::remove_pointer_t<CGMutablePathRef>, Releaser<CGPathRelease>>;
using Context = std::unique_ptr<std::remove_pointer_t<CGContextRef>, Releaser<CGContextRelease>>;
using Image = std::unique_ptr<std::remove_pointer_t<CGImageRef>, Releaser<CGImageRelease>>;
using ColorRef = std::unique_ptr<std::remove_pointer_t<CGColorRef>, Releaser<CGColorRelease>>;
using PatternRef = std::unique_ptr<std::remove_pointer_t<CGPatternRef>, Releaser<CGPatternRelease>>;
using ColorSpace =
    std::unique_ptr<std::remove_pointer_t<CGColorSpaceRef>, Releaser<CGColorSpaceRelease>>;
using GradientRef =
    std::unique_ptr<std::remove_pointer_t<CGGradientRef>, Releaser<CGGradientRelease>>;
using FunctionRef =
    std::unique_ptr<std::remove_pointer_t<CGFunctionRef>, Releaser<CGFunctionRelease>>;
using ShadingRef = std::unique_ptr<std::remove_pointer_t<CGShadingRef>, Releaser<CGShadingRelease>>;

// Puts the graphics state back when the scope ends.
class SavedState {
public:
    explicit SavedState(CGContextRef context) : context_(context) { CGContextSaveGState(context_); }
    ~SavedState() { CGContextRestoreGState(context_); }
    SavedState(const SavedState&) = delete;
    SavedState& operator=(const SavedState&) = delete;

private:
    CGContextRef context_;
};

// Collects what is drawn while the scope lasts and composites it at the end as one picture, with
// the alpha and blend mode that the context had at the start.
class TransparencyLayer {
public:
    explicit TransparencyLayer(CGContextRef context) : context_(context) {
        CGContextBeginTransparencyLayer(context_, nullptr);
    }
    ~TransparencyLayer() { CGContextEndTransparencyLayer(context_); }
    TransparencyLayer(const TransparencyLayer&) = delete;
    TransparencyLayer& operator=(const TransparencyLayer&) = delete;

private:
    CGContextRef context_;
};

} // namespace svg
