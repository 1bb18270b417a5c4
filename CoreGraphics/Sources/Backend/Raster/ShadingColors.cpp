// ShadingColors.cpp: a shading's colours as Skia's gradients take them.

#include "Backend/Raster/ShadingColors.h"

#include "XGFunction.h"
#include "XGShading.h"

#include "Core/Color/CGColorRecord.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Paint/CGFunctionRecord.h"
#include "Core/Paint/CGGradientRecord.h"

#include <algorithm>
#include <cmath>

namespace cg {

namespace {

// A component in 0 … 1; NaN is 0.
float limited(CGFloat component) {
    return component > 0 ? std::min(component, CGFloat(1)) : 0;
}

// Components of one colour space as Skia's colours, by the rules of fill colours.
class ColorReader {
public:
    ColorReader(CGColorSpaceRef space, const ColorTarget& target)
        : space_(space), target_(target), model_(CGColorSpaceGetModel(space)),
          componentCount_(CGColorSpaceGetNumberOfComponents(space)),
          keepsLines_(isPaintedAsItStands(space, target)) {}

    std::size_t componentCount() const { return componentCount_; }
    // Whether half-way between two colours lies half-way in Skia's colours too.
    bool keepsLines() const { return keepsLines_; }

    // Of the components and, behind them, the opacity.
    SkColor4f read(const CGFloat* components) const {
        if (!keepsLines_)
            return convert(components);
        if (model_ == kCGColorSpaceModelMonochrome) {
            const float gray = limited(components[0]);
            return {gray, gray, gray, limited(components[1])};
        }
        return {limited(components[0]), limited(components[1]), limited(components[2]),
                limited(components[3])};
    }

private:
    SkColor4f convert(const CGFloat* components) const {
        const auto color = cf::adopt(CGColorCreate(space_, components));
        const auto [red, green, blue, alpha] = displayedColor(color.get(), target_);
        return {limited(red), limited(green), limited(blue), limited(alpha)};
    }

    CGColorSpaceRef space_;
    ColorTarget target_;
    CGColorSpaceModel model_;
    std::size_t componentCount_;
    bool keepsLines_;
};

// Whether Skia can take the stops as they are. Those outside 0 … 1 it would move to the ends.
bool areWithinEnds(CGGradient& gradient) {
    const auto stops = gradient.stops();
    return stops.front().location == 0 && stops.back().location == 1 &&
           std::ranges::is_sorted(stops, {}, &GradientStop::location) &&
           std::ranges::none_of(stops,
                                [](const GradientStop& stop) { return std::isnan(stop.location); });
}

ShadingColors stopsOf(CGGradient& gradient, const ColorReader& reader) {
    ShadingColors result;
    for (const GradientStop& stop : gradient.stops())
        result.add(stop.location, reader.read(stop.components.data()));
    return result;
}

// Calls a shading's function, whatever it believes its dimensions to be.
class FunctionColors {
public:
    FunctionColors(CGFunctionRef function, const ColorReader& reader)
        : function_(function), reader_(reader),
          outputs_(std::max(function->rangeDimension, reader.componentCount() + 1)) {
        if (!function->domain.empty())
            domain_ = function->domain[0];
    }

    SkColor4f operator()(float location) {
        const double least = domain_.least, greatest = domain_.greatest;
        const auto input =
            static_cast<CGFloat>(least + static_cast<double>(location) * (greatest - least));
        std::ranges::fill(outputs_, CGFloat(0));
        outputs_[reader_.componentCount()] = 1; // For functions without opacity.
        XGFunctionEvaluate(function_, &input, outputs_.data());
        return reader_.read(outputs_.data());
    }

private:
    CGFunctionRef function_;
    const ColorReader& reader_;
    std::vector<CGFloat> outputs_;
    Limits domain_ = {0, 1};
};

bool areEven(const std::vector<ShadingStop>& stops) {
    const auto last = static_cast<float>(stops.size() - 1);
    for (std::size_t index = 0; index < stops.size(); ++index)
        if (stops[index].location != static_cast<float>(index) / last)
            return false;
    return true;
}

} // namespace

ShadingColors ShadingColors::reversed() const {
    ShadingColors result;
    result.areEvenlySpread = areEvenlySpread;
    for (int index = count() - 1; index >= 0; --index)
        result.add(1 - locations[index], colors[index]);
    return result;
}

ShadingColors colorsOf(CGShadingRef shading, const ColorTarget& target) {
    const CGFunctionRef function = XGShadingGetFunction(shading);
    const ColorReader reader(XGShadingGetColorSpace(shading), target);
    const CGGradientRef gradient = gradientOfFunction(function);
    if (gradient && gradient->componentsPerStop == reader.componentCount() + 1 &&
        reader.keepsLines() && areWithinEnds(*gradient))
        return stopsOf(*gradient, reader);
    if (function->domainDimension != 1) {
        CG_LOG_WARNING("a shading's function has one input, not %zu", function->domainDimension);
        return {};
    }
    const auto stops = sampleShading(FunctionColors(function, reader));
    ShadingColors result;
    for (const ShadingStop& stop : stops)
        result.add(stop.location, stop.color);
    result.areEvenlySpread = areEven(stops);
    return result;
}

} // namespace cg
