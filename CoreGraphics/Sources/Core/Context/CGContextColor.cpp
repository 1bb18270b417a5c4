// CGContextColor.cpp: fill and stroke colours, and the shadow.

#include "XGColor.h"
#include "XGColorSpace.h"
#include <CoreGraphics/CGContext.h>

#include "Core/Color/CGColorRecord.h"
#include "Core/Context/CGContextRecord.h"
#include "Core/Object/Diagnostics.h"
#include "Core/State/XGGStateRecord.h"

#include <array>

using cg::stateOf;

namespace {

// One of the state's two colours.
struct ColorSlot {
    CGColorRef (*get)(XGGStateRef state);
    void (*set)(XGGStateRef state, CGColorRef color);
    cf::Ref<CGColorRef> cg::StateValues::*value;
};

constexpr ColorSlot kFill = {XGGStateGetFillColor, XGGStateSetFillColor,
                             &cg::StateValues::fillColor};
constexpr ColorSlot kStroke = {XGGStateGetStrokeColor, XGGStateSetStrokeColor,
                               &cg::StateValues::strokeColor};

void setSpace(ColorSlot slot, CGContextRef context, CGColorSpaceRef space) {
    const XGGStateRef state = stateOf(context);
    if (!state || !space ||
        XGColorSpaceEqualToColorSpace(CGColorGetColorSpace(slot.get(state)), space))
        return;
    slot.set(state, cf::adopt(XGColorSpaceCopyDefaultColor(space)).get());
}

// Patterns that compare equal may still draw differently, since their callbacks do not count, and
// so may equal colours of two profiles: the one is not taken for the other that is there.
bool isOfSameKind(CGColorRef a, CGColorRef b) {
    return CGColorGetPattern(a) == CGColorGetPattern(b) &&
           CGColorGetColorSpace(a) == CGColorGetColorSpace(b);
}

void setColor(ColorSlot slot, XGGStateRef state, CGColorRef color) {
    if (!isOfSameKind(color, slot.get(state)))
        slot.set(state, nullptr);
    slot.set(state, color);
}

void setPattern(ColorSlot slot, CGContextRef context, CGPatternRef pattern,
                const CGFloat* components) {
    const XGGStateRef state = stateOf(context);
    const CGColorSpaceRef space = CGColorGetColorSpace(slot.get(state));
    if (!pattern || !components || CGColorSpaceGetModel(space) != kCGColorSpaceModelPattern)
        return;
    const CGColorRef current = slot.get(state);
    if (CGColorGetPattern(current) == pattern &&
        XGColorEqualToColorComponents(current, space, components, nullptr))
        return;
    if (const auto color = cf::adopt(CGColorCreateWithPattern(space, pattern, components)))
        setColor(slot, state, color.get());
}

// Makes no new colour when the current one has these components in this very space already.
void setComponents(ColorSlot slot, CGContext& context, CGColorSpaceRef space,
                   const CGFloat* components) {
    auto& value = context.state.get()->values.*slot.value;
    if (value && cg::isColorOf(*value.get(), space, components))
        return;
    if (const CGColorRef color = context.recentColors.get(space, components))
        value = cf::retain(color);
}

void setComponentsInCurrentSpace(ColorSlot slot, CGContextRef context, const CGFloat* components) {
    const XGGStateRef state = stateOf(context);
    if (!state || !components)
        return;
    const CGColorSpaceRef current = CGColorGetColorSpace(slot.get(state));
    setComponents(slot, *context, current ? current : XGColorSpaceGetDeviceGray(), components);
}

void setGray(ColorSlot slot, CGContextRef context, const std::array<CGFloat, 2>& components) {
    if (context)
        setComponents(slot, *context, XGColorSpaceGetDeviceGray(), components.data());
}

void setRGB(ColorSlot slot, CGContextRef context, const std::array<CGFloat, 4>& components) {
    if (context)
        setComponents(slot, *context, XGColorSpaceGetDeviceRGB(), components.data());
}

void setCMYK(ColorSlot slot, CGContextRef context, const std::array<CGFloat, 5>& components) {
    if (!context)
        return;
    const auto space = cf::adopt(XGColorSpaceGetDeviceCMYK()); // Its Get gives a reference.
    setComponents(slot, *context, space.get(), components.data());
}

} // namespace

void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color) {
    setColor(kFill, stateOf(context), color);
}

void CGContextSetStrokeColorWithColor(CGContextRef context, CGColorRef color) {
    setColor(kStroke, stateOf(context), color);
}

void CGContextSetFillColorSpace(CGContextRef context, CGColorSpaceRef space) {
    setSpace(kFill, context, space);
}

void CGContextSetStrokeColorSpace(CGContextRef context, CGColorSpaceRef space) {
    setSpace(kStroke, context, space);
}

void CGContextSetFillColor(CGContextRef context, const CGFloat* components) {
    setComponentsInCurrentSpace(kFill, context, components);
}

void CGContextSetStrokeColor(CGContextRef context, const CGFloat* components) {
    setComponentsInCurrentSpace(kStroke, context, components);
}

void CGContextSetGrayFillColor(CGContextRef context, CGFloat gray, CGFloat alpha) {
    setGray(kFill, context, {gray, alpha});
}

void CGContextSetGrayStrokeColor(CGContextRef context, CGFloat gray, CGFloat alpha) {
    setGray(kStroke, context, {gray, alpha});
}

void CGContextSetRGBFillColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue,
                              CGFloat alpha) {
    setRGB(kFill, context, {red, green, blue, alpha});
}

void CGContextSetRGBStrokeColor(CGContextRef context, CGFloat red, CGFloat green, CGFloat blue,
                                CGFloat alpha) {
    setRGB(kStroke, context, {red, green, blue, alpha});
}

void CGContextSetCMYKFillColor(CGContextRef context, CGFloat cyan, CGFloat magenta, CGFloat yellow,
                               CGFloat black, CGFloat alpha) {
    setCMYK(kFill, context, {cyan, magenta, yellow, black, alpha});
}

void CGContextSetCMYKStrokeColor(CGContextRef context, CGFloat cyan, CGFloat magenta,
                                 CGFloat yellow, CGFloat black, CGFloat alpha) {
    setCMYK(kStroke, context, {cyan, magenta, yellow, black, alpha});
}

void CGContextSetFillPattern(CGContextRef context, CGPatternRef pattern,
                             const CGFloat* components) {
    setPattern(kFill, context, pattern, components);
}

void CGContextSetStrokePattern(CGContextRef context, CGPatternRef pattern,
                               const CGFloat* components) {
    setPattern(kStroke, context, pattern, components);
}

CGColorRef CGContextGetFillColorAsColor(CGContextRef) {
    CG_NOT_YET_IMPLEMENTED();
}

// ---- Shadow

void CGContextSetShadowWithColor(CGContextRef context, CGSize offset, CGFloat blur,
                                 CGColorRef color) {
    XGGStateSetShadow(stateOf(context), color, offset.width, offset.height, blur);
}

void CGContextSetShadow(CGContextRef context, CGSize offset, CGFloat blur) {
    CGContextSetShadowWithColor(context, offset, blur, cg::defaultShadowColor());
}
