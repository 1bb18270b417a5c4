// CGFunctionRecord.h: what a function is made of.
#pragma once

#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGFunction.h>

#include <cstddef>
#include <span>

namespace cg {

// The limits of one input or output.
struct Limits {
    CGFloat least = 0;
    CGFloat greatest = 0;
    bool operator==(const Limits&) const = default;
};

} // namespace cg

struct CGFunction {
    CFRuntimeBase base;
    // Both lie behind the record, and are empty where there is no limit.
    std::span<cg::Limits> domain;
    std::span<cg::Limits> range;
    CGFloat* scratch = nullptr; // The limited inputs of functions of many; behind the record too.
    CGFunctionCallbacks callbacks = {};
    std::size_t domainDimension = 0;
    std::size_t rangeDimension = 0;
    void* info = nullptr;
    // Computes many places at once, limits included; NULL where only the callback knows how.
    void (*evaluateSpan)(void* info, const CGFloat* in, std::size_t count, CGFloat* out) = nullptr;

    ~CGFunction() {
        if (callbacks.releaseInfo)
            callbacks.releaseInfo(info);
    }
};
