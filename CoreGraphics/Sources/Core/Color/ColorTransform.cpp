// ColorTransform.cpp: the components of single colours in other spaces.

#include "Core/Color/ColorTransform.h"

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/RowTransform.h"

namespace cg {

namespace {

// A lightness of 1 is white in a colour, where a row counts to 100.
CGFloat lightnessScale(CGColorSpaceRef space) {
    return space->model == kCGColorSpaceModelLab ? 100 : 1;
}

} // namespace

std::optional<ColorComponents> transformed(CGColorSpaceRef from, CGColorSpaceRef to,
                                           CGColorRenderingIntent intent,
                                           const ColorComponents& components) {
    constexpr RowFormat kFormat = {ComponentType::Float, false};
    const RowTransformRef transform = RowTransform::between(from, kFormat, to, kFormat, intent);
    if (!transform)
        return std::nullopt;
    ColorComponents in = components;
    in[0] *= lightnessScale(from);
    ColorComponents out = {};
    transform.get()->apply(in.data(), out.data(), 1);
    out[0] /= lightnessScale(to);
    return out;
}

} // namespace cg
