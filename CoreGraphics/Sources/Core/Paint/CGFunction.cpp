// CGFunction.cpp: functions of the caller's own, limited to their domain and range.

#include "XGFunction.h"

#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"
#include "Core/Paint/CGFunctionRecord.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace {

// Equal functions have equal infos.
CFHashCode hash(CGFunctionRef function) {
    return static_cast<CFHashCode>(reinterpret_cast<std::uintptr_t>(function->info) >> 4);
}

constexpr CFRuntimeClass kFunctionClass = {
    .className = "CGFunction",
    .finalize = cg::finalize<CGFunction>,
    .equal = cg::equalBy<XGFunctionEqualToFunction>,
    .hash = cg::hashBy<hash>,
};

// Inputs and outputs, their limits and the scratch area; empty when the product overflows or a
// dimension is beyond 32 bits.
std::optional<std::size_t> trailingBytes(std::size_t inputs, std::size_t outputs) {
    constexpr std::size_t kMost = std::numeric_limits<std::uint32_t>::max();
    if (inputs > kMost || outputs > kMost)
        return std::nullopt;
    const auto limits = (cg::CheckedSize(inputs) + outputs) * sizeof(cg::Limits);
    return (limits + cg::CheckedSize(std::max(inputs, outputs)) * sizeof(CGFloat)).value();
}

// Pairs of least and greatest values copied to `to`; an empty span when there are none.
std::span<cg::Limits> copyLimits(const CGFloat* limits, std::size_t count, cg::Limits* to) {
    if (!limits)
        return {};
    for (std::size_t index = 0; index < count; ++index)
        to[index] = {limits[2 * index], limits[2 * index + 1]};
    return {to, count};
}

} // namespace

CFTypeID CGFunctionGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kFunctionClass);
    return id;
}

CGFunctionRef CGFunctionCreate(void* info, size_t domainDimension, const CGFloat* domain,
                               size_t rangeDimension, const CGFloat* range,
                               const CGFunctionCallbacks* callbacks) {
    if (!callbacks || callbacks->version != 0 || !callbacks->evaluate)
        return nullptr;
    const auto bytes = trailingBytes(domainDimension, rangeDimension);
    if (!bytes)
        return nullptr;
    auto* const function = cg::create<CGFunction>(CGFunctionGetTypeID(), *bytes);
    if (!function)
        return nullptr;

    auto* const limits = cg::trailing<cg::Limits>(function);
    function->domain = copyLimits(domain, domainDimension, limits);
    function->range = copyLimits(range, rangeDimension, limits + domainDimension);
    function->scratch = reinterpret_cast<CGFloat*>(limits + domainDimension + rangeDimension);
    function->callbacks = *callbacks;
    function->domainDimension = domainDimension;
    function->rangeDimension = rangeDimension;
    function->info = info;
    return function;
}

CGFunctionRef CGFunctionRetain(CGFunctionRef function) {
    return cg::retain(function);
}
void CGFunctionRelease(CGFunctionRef function) {
    cg::release(function);
}

// ---- Evaluation

namespace {

CGFloat limitedInput(CGFloat value, const cg::Limits& limits) {
    return value >= limits.least ? std::min(value, limits.greatest) : limits.least; // As a NaN is.
}

// Deliberate: an infinite output is a failed computation, not a large one, and becomes the least.
CGFloat limitedOutput(CGFloat value, const cg::Limits& limits) {
    const bool isUsable =
        value >= limits.least && value <= std::numeric_limits<CGFloat>::max(); // No NaN is.
    return isUsable ? std::min(value, limits.greatest) : limits.least;
}

void limitOutputs(CGFunctionRef function, CGFloat* out) {
    for (const cg::Limits& limits : function->range) {
        *out = limitedOutput(*out, limits);
        ++out;
    }
}

void evaluateOne(CGFunctionRef function, const CGFloat* in, CGFloat* out) {
    // Functions of shadings have one input: threads that share them do not meet in the scratch
    // area.
    std::array<CGFloat, 4> few;
    const CGFloat* inputs = in;
    if (!function->domain.empty()) {
        CGFloat* const limited =
            function->domain.size() <= few.size() ? few.data() : function->scratch;
        for (std::size_t index = 0; index < function->domain.size(); ++index)
            limited[index] = limitedInput(in[index], function->domain[index]);
        inputs = limited;
    }
    function->callbacks.evaluate(function->info, inputs, out);
    limitOutputs(function, out);
}

} // namespace

void XGFunctionEvaluate(CGFunctionRef function, const CGFloat* in, CGFloat* out) {
    XGFunctionEvaluateSpan(function, in, 1, out);
}

void XGFunctionEvaluateSpan(CGFunctionRef function, const CGFloat* in, size_t count, CGFloat* out) {
    if (!function || !in || !out)
        return;
    if (function->evaluateSpan) {
        function->evaluateSpan(function->info, in, count, out);
        return;
    }
    for (; count > 0; --count, in += function->domainDimension, out += function->rangeDimension)
        evaluateOne(function, in, out);
}

// ---- Comparison

namespace {

// Field by field: a record may have padding.
bool sameCallbacks(const CGFunctionCallbacks& a, const CGFunctionCallbacks& b) {
    return a.version == b.version && a.evaluate == b.evaluate && a.releaseInfo == b.releaseInfo;
}

} // namespace

bool XGFunctionEqualToFunction(CGFunctionRef a, CGFunctionRef b) {
    if (!a || !b)
        return false;
    return a == b ||
           (sameCallbacks(a->callbacks, b->callbacks) && a->info == b->info &&
            a->domainDimension == b->domainDimension && a->rangeDimension == b->rangeDimension &&
            std::ranges::equal(a->domain, b->domain) && std::ranges::equal(a->range, b->range));
}
