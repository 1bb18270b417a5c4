// CGGradientRecord.h: what a gradient is made of.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGFunction.h>
#include <CoreGraphics/CGGradient.h>

#include "Core/Object/RuntimeObject.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <span>

namespace cg {

struct GradientStop {
    CGFloat location = 0;
    std::array<CGFloat, 5> components = {}; // Up to four of a colour, and its opacity.
};

} // namespace cg

struct CGGradient {
    CFRuntimeBase base;
    cf::Ref<CGColorSpaceRef> space;
    // The one reference to it is the gradient's; made on whichever thread asks first.
    std::atomic<CGFunctionRef> function = nullptr;
    std::size_t stopCount = 0;
    std::size_t componentsPerStop = 0; // Opacity included.

    // By ascending location; the first is at 0 unless a smaller one was given, the last at 1.
    std::span<cg::GradientStop> stops() {
        return {cg::trailing<cg::GradientStop>(this), stopCount};
    }

    ~CGGradient() { cg::release(function.load(std::memory_order_relaxed)); }
};

namespace cg {

// The gradient whose function this is; NULL for any other function.
CGGradientRef gradientOfFunction(CGFunctionRef function);

} // namespace cg
