// ShadingShader.cpp: the geometry of shadings as Skia's gradients.

#include "Backend/Raster/ShadingShader.h"

#include "XGShading.h"

#include "Backend/Raster/ShadingColors.h"
#include "Core/Paint/ConicShading.h"
#include "include/core/SkBlendMode.h"
#include "include/effects/SkGradientShader.h"

#include <algorithm>
#include <cmath>

namespace cg {

namespace {

struct Circle {
    SkPoint center = {0, 0};
    float radius = 0;
};

struct Geometry {
    bool isRadial = false;
    Circle start, end; // The ends of a line have radius 0.
    bool extendsStart = false;
    bool extendsEnd = false;

    SkVector way() const { return end.center - start.center; }
    float growth() const { return end.radius - start.radius; }
};

Geometry geometryOf(CGShadingRef shading) {
    const CGPoint start = XGShadingGetStartPoint(shading);
    const CGPoint end = XGShadingGetEndPoint(shading);
    return {.isRadial = XGShadingIsRadial(shading),
            .start = {{start.x, start.y}, XGShadingGetStartRadius(shading)},
            .end = {{end.x, end.y}, XGShadingGetEndRadius(shading)},
            .extendsStart = XGShadingExtendsStart(shading),
            .extendsEnd = XGShadingExtendsEnd(shading)};
}

// Ends that coincide have no colours between them; negative radii mean nothing.
bool paintsSomething(const Geometry& geometry) {
    const auto isFinite = [](const Circle& circle) {
        return circle.center.isFinite() && std::isfinite(circle.radius) && circle.radius >= 0;
    };
    return isFinite(geometry.start) && isFinite(geometry.end) &&
           (geometry.start.center != geometry.end.center || geometry.growth() != 0) &&
           (!geometry.isRadial || geometry.start.radius > 0 || geometry.end.radius > 0);
}

// Skia takes ends closer than 2⁻¹⁵ for one, and squares distances. Scaled by a power of two, which
// loses no bit, the geometry is of the order of 1 wherever it was small or huge.
SkMatrix normalize(Geometry& geometry) {
    const float extent = std::max({std::abs(geometry.way().x()), std::abs(geometry.way().y()),
                                   geometry.start.radius, geometry.end.radius});
    int exponent = 0;
    std::frexp(extent, &exponent);
    if (!std::isfinite(extent) || (exponent > -8 && exponent < 24))
        return SkMatrix::I();
    exponent = std::clamp(exponent, -100, 100);
    for (Circle* const circle : {&geometry.start, &geometry.end}) {
        circle->center = {std::ldexp(circle->center.x(), -exponent),
                          std::ldexp(circle->center.y(), -exponent)};
        circle->radius = std::ldexp(circle->radius, -exponent);
    }
    const float scale = std::ldexp(1.f, exponent);
    return SkMatrix::Scale(scale, scale);
}

// The colours from one circle to the other, or along the line, in the extent that the geometry has.
// An end that stops while the other goes on becomes an edge to transparency.
sk_sp<SkShader> makeGradient(const Geometry& geometry, ShadingColors colors,
                             const SkMatrix& matrix) {
    const SkTileMode mode =
        geometry.extendsStart || geometry.extendsEnd ? SkTileMode::kClamp : SkTileMode::kDecal;
    if (geometry.extendsStart != geometry.extendsEnd) {
        ShadingColors edged;
        if (!geometry.extendsStart)
            edged.add(0, SkColors::kTransparent);
        for (int index = 0; index < colors.count(); ++index)
            edged.add(colors.locations[index], colors.colors[index]);
        if (!geometry.extendsEnd)
            edged.add(1, SkColors::kTransparent);
        colors = std::move(edged);
    }
    if (!geometry.isRadial) {
        const SkPoint ends[] = {geometry.start.center, geometry.end.center};
        return SkGradientShader::MakeLinear(ends, colors.colors.data(), nullptr, colors.positions(),
                                            colors.count(), mode, 0, &matrix);
    }
    return SkGradientShader::MakeTwoPointConical(
        geometry.start.center, geometry.start.radius, geometry.end.center, geometry.end.radius,
        colors.colors.data(), nullptr, colors.positions(), colors.count(), mode, 0, &matrix);
}

// Whether circles cover each other twice: neither of the two lies inside the other.
bool overlapsItself(const Geometry& geometry) {
    return geometry.isRadial && geometry.way().length() > std::abs(geometry.growth());
}

Geometry reversed(const Geometry& geometry) {
    return {.isRadial = geometry.isRadial,
            .start = geometry.end,
            .end = geometry.start,
            .extendsStart = geometry.extendsEnd,
            .extendsEnd = geometry.extendsStart};
}

// Of the two circles through a point Skia takes the later one, also where that lies behind an end
// which does not go on, and the earlier one is to be seen. Going backwards it takes the earlier:
// that shows where there is no later one.
sk_sp<SkShader> makeOverlapping(const Geometry& geometry, const ShadingColors& colors,
                                const SkMatrix& matrix) {
    ShadingColors covering;
    covering.add(0, SkColors::kBlack);
    covering.add(1, SkColors::kBlack);
    auto earlier = SkShaders::Blend(SkBlendMode::kDstOut,
                                    makeGradient(reversed(geometry), colors.reversed(), matrix),
                                    makeGradient(geometry, covering, matrix));
    return SkShaders::Blend(SkBlendMode::kPlus, std::move(earlier),
                            makeGradient(geometry, colors, matrix));
}

// Skia turns from x towards y, too.
sk_sp<SkShader> makeConic(CGShadingRef shading, CGFloat angle, const SkMatrix& toPixels,
                          const ColorTarget& target) {
    const SkPoint center = geometryOf(shading).start.center;
    if (!center.isFinite() || !std::isfinite(angle))
        return nullptr;
    const ShadingColors colors = colorsOf(shading, target);
    SkMatrix matrix;
    matrix.setSinCos(std::sin(angle), std::cos(angle), center.x(), center.y());
    matrix.postConcat(toPixels);
    return SkGradientShader::MakeSweep(center.x(), center.y(), colors.colors.data(), nullptr,
                                       colors.positions(), colors.count(), 0, &matrix);
}

} // namespace

sk_sp<SkShader> makeShadingShader(CGShadingRef shading, const SkMatrix& toPixels,
                                  const ColorTarget& target) {
    if (const auto angle = startAngleOf(shading))
        return makeConic(shading, *angle, toPixels, target);
    Geometry geometry = geometryOf(shading);
    if (!paintsSomething(geometry))
        return nullptr;
    const ShadingColors colors = colorsOf(shading, target);
    if (colors.count() == 0)
        return nullptr;
    SkMatrix matrix = toPixels;
    matrix.preConcat(normalize(geometry));
    return overlapsItself(geometry) && !geometry.extendsEnd
               ? makeOverlapping(geometry, colors, matrix)
               : makeGradient(geometry, colors, matrix);
}

} // namespace cg
