// CGGradient.cpp: stops in order, and the function that goes from one to the next.

#include "XGColor.h"
#include "XGColorSpace.h"
#include "XGFunction.h"
#include "XGGradient.h"

#include "Core/Color/CGColorRecord.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Paint/CGFunctionRecord.h"
#include "Core/Paint/CGGradientRecord.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr CFRuntimeClass kGradientClass = {
    .className = "CGGradient",
    .finalize = cg::finalize<CGGradient>,
    .equal = cg::equalBy<XGGradientEqualToGradient>,
};

// A gradient with room for `count` stops and one at either end; empty when that cannot be had.
cf::Ref<CGGradientRef> makeGradient(CGColorSpaceRef space, std::size_t count) {
    const std::size_t componentsPerStop = CGColorSpaceGetNumberOfComponents(space) + 1;
    if (componentsPerStop > cg::GradientStop{}.components.size()) {
        CG_LOG_WARNING("a gradient's colours have at most four components");
        return nullptr;
    }
    const auto bytes = ((cg::CheckedSize(count) + 2) * sizeof(cg::GradientStop)).value();
    auto* const gradient = bytes ? cg::create<CGGradient>(CGGradientGetTypeID(), *bytes) : nullptr;
    if (gradient) {
        gradient->space = cf::retain(space);
        gradient->stopCount = count;
        gradient->componentsPerStop = componentsPerStop;
    }
    return cf::adopt(gradient);
}

void setLocations(CGGradient& gradient, const CGFloat* locations) {
    const auto stops = gradient.stops();
    const auto last = static_cast<CGFloat>(stops.size() - 1);
    for (std::size_t index = 0; index < stops.size(); ++index)
        stops[index].location = locations ? locations[index] : static_cast<CGFloat>(index) / last;
}

// A NaN comes before all numbers: the order must be a strict one.
bool comesBefore(const cg::GradientStop& a, const cg::GradientStop& b) {
    if (std::isnan(a.location) || std::isnan(b.location))
        return std::isnan(a.location) && !std::isnan(b.location);
    return a.location < b.location;
}

// Stable, so that equal locations keep their order. Few stops, as nearly all gradients have, are
// inserted one by one, which allocates nothing; the library's sort of many may.
void sortStops(std::span<cg::GradientStop> stops) {
    constexpr std::size_t kFew = 32;
    if (stops.size() > kFew) {
        if (!std::ranges::is_sorted(stops, comesBefore))
            std::ranges::stable_sort(stops, comesBefore);
        return;
    }
    for (auto next = stops.begin(); next != stops.end(); ++next)
        std::rotate(std::upper_bound(stops.begin(), next, *next, comesBefore), next, next + 1);
}

// Repeats the outermost stops at 0 and 1.
void addEnds(CGGradient& gradient) {
    if (gradient.stops().front().location != 0) {
        ++gradient.stopCount;
        const auto stops = gradient.stops();
        std::copy_backward(stops.begin(), stops.end() - 1, stops.end());
        stops.front().location = 0;
    }
    if (gradient.stops().back().location != 1) {
        ++gradient.stopCount;
        const auto stops = gradient.stops();
        stops.back() = stops[stops.size() - 2];
        stops.back().location = 1;
    }
}

CGGradientRef finish(cf::Ref<CGGradientRef> gradient, const CGFloat* locations) {
    setLocations(*gradient.get(), locations);
    sortStops(gradient.get()->stops());
    addEnds(*gradient.get());
    return gradient.release();
}

} // namespace

CFTypeID CGGradientGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kGradientClass);
    return id;
}

CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space, const CGFloat* components,
                                                  const CGFloat* locations, size_t count) {
    if (!space || !components || count < 2)
        return nullptr;
    auto gradient = makeGradient(space, count);
    if (!gradient)
        return nullptr;
    for (cg::GradientStop& stop : gradient.get()->stops()) {
        std::copy_n(components, gradient.get()->componentsPerStop, stop.components.begin());
        components += gradient.get()->componentsPerStop;
    }
    return finish(std::move(gradient), locations);
}

namespace {

// Whether `item` is a colour that could be converted, and `stop` has its components.
bool readColor(CFTypeRef item, const CGGradient& gradient, cg::GradientStop& stop) {
    if (!item || (_CFRuntimeIsNative(item) && CFGetTypeID(item) != CGColorGetTypeID()))
        return false;
    const auto color = cf::adopt(XGColorCreateWithColor(
        gradient.space.get(), cg::as<CGColorRef>(item), kCGRenderingIntentDefault));
    if (CGColorGetNumberOfComponents(color.get()) != gradient.componentsPerStop)
        return false;
    std::ranges::copy(color.get()->components(), stop.components.begin());
    return true;
}

} // namespace

CGGradientRef CGGradientCreateWithColors(CGColorSpaceRef space, CFArrayRef colors,
                                         const CGFloat* locations) {
    const CFIndex count = colors ? CFArrayGetCount(colors) : 0;
    if (!space || count < 2)
        return nullptr;
    auto gradient = makeGradient(space, static_cast<std::size_t>(count));
    if (!gradient)
        return nullptr;
    CFIndex index = 0;
    for (cg::GradientStop& stop : gradient.get()->stops()) {
        if (!readColor(CFArrayGetValueAtIndex(colors, index++), *gradient.get(), stop))
            return nullptr;
    }
    return finish(std::move(gradient), locations);
}

CGGradientRef CGGradientRetain(CGGradientRef gradient) {
    return cg::retain(gradient);
}
void CGGradientRelease(CGGradientRef gradient) {
    cg::release(gradient);
}

// ---- The function

namespace {

using Components = std::array<CGFloat, 5>;

// Deliberate: exactly where stops share the first location the share is not a number, and neither
// are the components.
Components between(const cg::GradientStop& start, const cg::GradientStop& end, CGFloat x) {
    const CGFloat share = (x - start.location) / (end.location - start.location);
    Components mixed;
    for (std::size_t index = 0; index < mixed.size(); ++index) {
        const CGFloat from = start.components[index];
        mixed[index] = from + share * (end.components[index] - from);
    }
    return mixed;
}

void evaluate(void* info, const CGFloat* in, CGFloat* out) {
    CGGradient& gradient = *static_cast<CGGradient*>(info);
    const auto stops = gradient.stops();
    const CGFloat x = in[0];
    const auto end = std::find_if(stops.begin() + 1, stops.end(),
                                  [x](const cg::GradientStop& stop) { return x <= stop.location; });
    if (end != stops.end())
        std::copy_n(between(*(end - 1), *end, x).begin(), gradient.componentsPerStop, out);
}

// A value in 0 … 1; what is not a number or not finite is 0.
CGFloat inUnit(CGFloat value) {
    const bool isUsable = value >= 0 && value <= std::numeric_limits<CGFloat>::max();
    return isUsable ? std::min(value, CGFloat(1)) : 0;
}

// The same for many places with the limits of the function. Places mostly come in order, so that
// the stops found for one serve the next.
template <std::size_t componentCount>
void evaluateSpan(std::span<const cg::GradientStop> stops, std::span<const CGFloat> places,
                  CGFloat* out) {
    auto end = stops.begin() + 1;
    for (const CGFloat place : places) {
        const CGFloat x = place >= 0 ? std::min(place, CGFloat(1)) : 0;
        if (!((end - 1)->location < x))
            end = stops.begin() + 1;
        while (end != stops.end() - 1 && !(x <= end->location))
            ++end;
        const Components mixed = between(*(end - 1), *end, x);
        for (std::size_t index = 0; index < componentCount; ++index)
            *out++ = inUnit(mixed[index]);
    }
}

void evaluateSpan(void* info, const CGFloat* in, std::size_t count, CGFloat* out) {
    CGGradient& gradient = *static_cast<CGGradient*>(info);
    const std::span places(in, count);
    switch (gradient.componentsPerStop) {
    case 1:
        return evaluateSpan<1>(gradient.stops(), places, out);
    case 2:
        return evaluateSpan<2>(gradient.stops(), places, out);
    case 3:
        return evaluateSpan<3>(gradient.stops(), places, out);
    case 4:
        return evaluateSpan<4>(gradient.stops(), places, out);
    default: // Gradients of more are not made.
        return evaluateSpan<5>(gradient.stops(), places, out);
    }
}

constexpr CGFunctionCallbacks kGradientCallbacks = {.version = 0, .evaluate = evaluate};

// Deliberate: the gradient is not retained, since it owns the function.
CGFunctionRef createFunction(CGGradientRef gradient) {
    constexpr std::array<CGFloat, 10> kUnit = {0, 1, 0, 1, 0, 1, 0, 1, 0, 1};
    const CGFunctionRef function = CGFunctionCreate(
        gradient, 1, kUnit.data(), gradient->componentsPerStop, kUnit.data(), &kGradientCallbacks);
    if (function)
        function->evaluateSpan = evaluateSpan;
    return function;
}

} // namespace

CGFunctionRef XGGradientGetFunction(CGGradientRef gradient) {
    if (!gradient)
        return nullptr;
    if (const CGFunctionRef made = gradient->function.load(std::memory_order_acquire))
        return made;
    auto function = cf::adopt(createFunction(gradient));
    CGFunctionRef first = nullptr;
    if (gradient->function.compare_exchange_strong(first, function.get(),
                                                   std::memory_order_acq_rel))
        return function.release();
    return first;
}

CGGradientRef cg::gradientOfFunction(CGFunctionRef function) {
    return function && function->callbacks.evaluate == evaluate
               ? static_cast<CGGradientRef>(function->info)
               : nullptr;
}

// ---- Accessors and comparison

CGColorSpaceRef XGGradientGetColorSpace(CGGradientRef gradient) {
    return gradient ? gradient->space.get() : nullptr;
}

namespace {

bool sameStops(CGGradient& a, CGGradient& b) {
    return a.componentsPerStop == b.componentsPerStop &&
           std::ranges::equal(a.stops(), b.stops(),
                              [](const cg::GradientStop& left, const cg::GradientStop& right) {
                                  return left.location == right.location &&
                                         left.components == right.components;
                              });
}

} // namespace

bool XGGradientEqualToGradient(CGGradientRef a, CGGradientRef b) {
    if (!a || !b)
        return false;
    return a == b || (XGColorSpaceEqualToColorSpace(a->space.get(), b->space.get()) &&
                      XGFunctionEqualToFunction(a->function, b->function) && sameStops(*a, *b));
}
