// CGColorRecord.h: what a colour is made of, and how one is made.
#pragma once

#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGColor.h>

#include "Core/Object/RuntimeObject.h"

#include <cstddef>
#include <optional>
#include <span>

struct CGColor {
    CFRuntimeBase base;
    cf::Ref<CGColorSpaceRef> space;
    cf::Ref<CGPatternRef> pattern; // Of pattern colours.
    std::size_t count = 0; // Of components, the opacity included; they lie behind the record.

    std::span<CGFloat> components() { return {cg::trailing<CGFloat>(this), count}; }
    CGFloat alpha() { return components().back(); }
};

namespace cg {

// A colour of `space` with a copy of its components, the last of them replaced by `alpha` when that
// is given, clamped. Empty when memory runs out.
cf::Ref<CGColorRef> makeColor(CGColorSpaceRef space, const CGFloat* components,
                              CGPatternRef pattern = nullptr,
                              std::optional<CGFloat> alpha = std::nullopt);

// Whether nobody else holds a colour, which has so many components, so that it can become another.
inline bool canRefill(CGColor& color, std::size_t count) {
    return color.count == count && CFGetRetainCount(&color) == 1;
}
// Makes such a colour another.
void refill(CGColor& color, CGColorSpaceRef space, const CGFloat* components);

// Whether a colour without a pattern has this very space and, bit for bit, these components.
bool isColorOf(CGColor& color, CGColorSpaceRef space, const CGFloat* components);

// Black at a third of full opacity, the shadow of those who ask for no colour; lent.
CGColorRef defaultShadowColor();

// The native colour that a foreign runtime's object stands for, lent by it, or NULL.
CGColorRef colorOfForeignObject(CGColorRef object);

// Every function that takes a colour begins with this.
inline CGColorRef nativeColor(CGColorRef color) {
    return !color || _CFRuntimeIsNative(color) ? color : colorOfForeignObject(color);
}

} // namespace cg
