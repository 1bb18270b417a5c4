// ColorTransform.cpp: the numbers of single colours from one space to another.

#include "Core/Color/ColorTransform.h"

#include "XGColorSpace.h"

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/DirectRows.h"
#include "Core/Color/NativeProfile.h"
#include "Core/Color/RowTransform.h"

#include <algorithm>
#include <cmath>

namespace cg {

namespace {

// ---- Between the spaces of the device

ColorComponents convertOnDevice(CGColorSpaceRef from, const ColorComponents& color) {
    if (from->model == kCGColorSpaceModelMonochrome)
        return {color[0], color[0], color[0], color[1]};
    return {luma(color[0], color[1], color[2]), color[3]};
}

// ---- Through a base

// The colour that an index stands for; indices beyond the table mean its last colour.
ColorComponents lookUp(CGColorSpaceRef base, const ColorTable& table,
                       const ColorComponents& color) {
    const CGFloat last = static_cast<CGFloat>(table.count - 1);
    const CGFloat index = color[0];
    const auto row = static_cast<std::size_t>(index > 0 ? std::lround(std::min(index, last))
                                                        : 0); // A NaN means the first.

    ColorComponents components = {};
    const auto bytes = table.bytes.subspan(row * base->componentCount, base->componentCount);
    std::ranges::transform(bytes, components.begin(),
                           [](std::uint8_t byte) { return static_cast<CGFloat>(byte) / 255; });
    if (const auto* const lab = std::get_if<LabCalibration>(&base->calibration)) {
        const auto& range = lab->range;
        components[1] = range[0] + components[1] * (range[1] - range[0]);
        components[2] = range[2] + components[2] * (range[3] - range[2]);
    }
    components[base->componentCount] = color[1];
    return components;
}

// A lightness of 1 is white in a colour, where a row counts to 100.
void scaleLightness(CGColorSpaceRef space, ColorComponents& color, CGFloat factor) {
    if (space->model == kCGColorSpaceModelLab)
        color[0] *= factor;
}

bool convertThroughBase(CGColorSpaceRef base, ColorComponents inBase, CGColorSpaceRef to,
                        CGColorRenderingIntent intent, ColorComponents& out) {
    XGColorSpaceClampComponents(base, inBase.data(), inBase.data());
    return base && convertColor(base, inBase, to, intent, out);
}

} // namespace

bool convertByProfiles(CGColorSpaceRef from, const ColorComponents& color, CGColorSpaceRef to,
                       CGColorRenderingIntent intent, ColorComponents& out) {
    constexpr RowFormat kFormat = {ComponentType::Float, false};
    const RowTransformRef transform = RowTransform::between(from, kFormat, to, kFormat, intent);
    if (!transform)
        return false;
    ColorComponents in = color;
    scaleLightness(from, in, 100);
    transform.get()->applyToColor(in.data(), out.data());
    scaleLightness(to, out, 0.01f);
    out[to->componentCount] = color[from->componentCount];
    return true;
}

bool convertColor(CGColorSpaceRef from, const ColorComponents& color, CGColorSpaceRef to,
                  CGColorRenderingIntent intent, ColorComponents& out) {
    if (XGColorSpaceEqualToColorSpace(from, to)) {
        out = color;
        return true;
    }
    const CGColorSpaceRef base = from->baseSpace.get();
    if (const auto* const table = std::get_if<ColorTable>(&from->calibration))
        return convertThroughBase(base, lookUp(base, *table, color), to, intent, out);
    if (from->model == kCGColorSpaceModelPattern)
        return convertThroughBase(base, color, to, intent, out);
    if (!isDeviceLike(from) || !isDeviceLike(to))
        return convertByProfiles(from, color, to, intent, out);
    out = convertOnDevice(from, color);
    return true;
}

} // namespace cg
